// Whether there is a chunk at a place, which HDF5 does not tell from a list of chunks that it cannot read.
#pragma once

#include "storage/shape.h"

namespace vak {

// Its size as it is stored; 0 where there is none, and where HDF5 cannot tell.
hsize_t stored_bytes(hid_t dataset, const Extents& place);

// To be asked where that is 0.
enum class Chunk { there, absent, not_told };
Chunk look_again(hid_t dataset, const Extents& place);

}  // namespace vak
