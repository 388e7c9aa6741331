// Whether what is copied as it is stored could be read.
#pragma once

#include <cstdint>

#include "storage/hdf5_id.h"

namespace vak {

// HDF5 copies chunks without a look at what is in them. Reads every dataset of the group, and of the groups
// that it has by these names, whose values stand behind filters or in other files. 0, or the storage layer's
// code, whose line is printed.
int32_t check_chunks(hid_t group);

}  // namespace vak
