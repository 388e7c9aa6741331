// Whether two groups hold the same.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

// Attributes and datasets of the same names, shapes and values, in the groups and in their subgroups.
// What cannot be read, or stands elsewhere in its file, is not the same.
bool same_contents(hid_t a, hid_t b);

// Whether the bytes of a value mean the same in another file.
bool stands_alone(const Type& stored);

}  // namespace vak
