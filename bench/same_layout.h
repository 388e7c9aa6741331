#pragma once

#include <string>

namespace bench {

// Ends the program when two files differ in their groups, or in type, shape, chunks or filters of an array.
void check_same_layout(const std::string& a, const std::string& b);

}  // namespace bench
