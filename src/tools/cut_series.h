// Cutting a growing dataset back to some of its states.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/hdf5_id.h"

namespace vak {

// Writes `name` again under `copy` in the same group, with only the kept states (ascending places on the
// first axis; those behind the dataset's end are passed over). Type, layout, filters and every stored value
// stay as they are. At most one chunk is held in memory. 0, or the storage layer's code.
int32_t copy_kept_states(hid_t group, const char* name, const char* copy, const std::vector<hsize_t>& kept);

// Reads the kept states of `name` and delivers nothing: 0 when all of them are readable.
int32_t check_kept_states(hid_t group, const char* name, const std::vector<hsize_t>& kept);

}  // namespace vak
