// Element types as they are stored, found and described to HDF5.
#pragma once

#include "storage/storage.h"

namespace vak {

// The stored type of an element: numbers little-endian whatever the machine, texts blank padded.
// Not to be closed by the caller; negative when HDF5 refuses.
hid_t stored_type(int32_t type, size_t size, SharedIds& ids);

// The type of an attribute or dataset that exists.
struct FoundType {
    explicit FoundType(hid_t type);

    Type id;
    int32_t type_class;  // H5T_VLEN for texts of variable length: their elements are pointers
    size_t size;
};

// The type of the caller's elements next to stored ones; belongs to `found`. Texts keep all but length and
// padding of the stored type, so that equal lengths are passed byte by byte and HDF5 converts others.
hid_t memory_type_beside(FoundType& found, int32_t type, hid_t number, size_t data_size);

}  // namespace vak
