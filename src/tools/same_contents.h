// Whether two groups hold the same.
#pragma once

#include <string>
#include <vector>

#include "storage/hdf5_id.h"

namespace vak {

// Attributes and datasets of the same names, shapes and values, in the groups and in their subgroups.
// What cannot be read, or stands elsewhere in its file, is not the same, nor is what is nested deeper than
// any block's own groups: they might go round in a circle.
bool same_contents(hid_t a, hid_t b, int depth = 4);

// The names of the links of a group, sorted.
std::vector<std::string> names_in(hid_t group);

std::vector<hsize_t> extents_of(const Dataset&);  // none of a single value

// Of one row of the first extent. Rows that are larger than most_row_bytes are neither compared nor checked.
size_t row_bytes_of(const std::vector<hsize_t>& dims, size_t element);
constexpr size_t most_row_bytes = size_t{1} << 30;

// How many rows of the first extent are read at once: a few MiB, and whole chunks.
hsize_t rows_at_once(const Dataset&, const std::vector<hsize_t>& dims, size_t element);

// Whether the bytes of a value mean the same in another file.
bool stands_alone(const Type& stored);

}  // namespace vak
