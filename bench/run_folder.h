// The files of a run, in a folder of its own, and the end of a run that cannot go on.
#pragma once

#include <cstdint>
#include <string>

namespace bench {

// A name in the run's folder, which goes at its end.
std::string file_name(const std::string& name);
void remove_files();

// Ends the program when a call failed.
void must(int64_t status, const char* what);

}  // namespace bench
