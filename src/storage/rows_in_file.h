// How many rows of an array that grows are in the file.
#pragma once

#include "storage/shape.h"

namespace vak {

// The one that tells whether all are: the last of an array that grows, else the first.
hsize_t last_row(std::span<const hsize_t> extents, std::span<const hsize_t> maximum);

// A flush that came to no end may leave extents that count rows whose chunks the file does not know. They
// would read as fill values, so those at the end, behind the last row that has a chunk, do not count. Rows
// that were skipped stand before it. Of an array without any chunk all do. None where HDF5 cannot tell.
std::optional<hsize_t> rows_in_file(hid_t dataset, std::span<const hsize_t> extents,
                                    std::span<const hsize_t> maximum);

// The extents of a dataset with only these rows. Its rank; negative where HDF5 cannot tell.
int extents_in_file(hid_t dataset, hid_t space, Extents& extents, Extents& maximum);

}  // namespace vak
