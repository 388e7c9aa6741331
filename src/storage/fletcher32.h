// The checksum of the fletcher32 filter, which some programs store with each chunk.
#pragma once

#include <cstddef>

namespace vak {

constexpr size_t checksum_size = 4;

// Whether the last four bytes are the checksum of those before, in the right order or in that of HDF5
// before 1.6.3.
bool checksum_holds(const unsigned char* bytes, size_t size);

}  // namespace vak
