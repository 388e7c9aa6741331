// Guards against chunks that were damaged, or crafted to inflate without bound.
#pragma once

#include "storage/dataset_layout.h"
#include "storage/found_layout.h"

namespace vak {

// Whether no chunk that the part touches is stored larger than its filters can have made it. HDF5 gives a
// chunk as much memory as it inflates to, however small the dataset.
bool chunks_are_plausible(hid_t dataset, const FoundLayout& found, const Part& part,
                          std::span<const hsize_t> extents, size_t element_size);

// The same for a part that HDF5 is to unpack, by the list of the dataset's creation where there are filters:
// whether each chunk moreover becomes as long as a chunk is, and they are not more than HDF5 can look for.
bool chunks_are_sound(hid_t dataset, hid_t list, const Part& part, std::span<const hsize_t> extents);

}  // namespace vak
