// A file without the space that erased blocks leave.
#pragma once

#include <cstdint>
#include <string>

namespace vak::erase {

// Copies everything into a new file that takes the place of the old one. Gives the bytes freed.
int64_t repack(const std::string& file);

}  // namespace vak::erase
