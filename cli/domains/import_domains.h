// Stores a result file of the solver as the files that the domains of a distributed run would have written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vak::domains {

// The names of the files: the number of the domain, from 0, in the place of %d or, with leading zeros, %03d.
// Throws the problem when the pattern has no such place.
std::vector<std::string> file_names(const std::string& pattern, int32_t domains);

// The files appear complete or not at all.
void import_domains(const std::string& result, const std::string& model, const std::string& series,
                    const std::vector<std::string>& outputs);

}  // namespace vak::domains
