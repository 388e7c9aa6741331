// The chunks that a dataset has in the file.
#pragma once

#include <optional>
#include <vector>

#include "storage/shape.h"

namespace vak {

// Whether the file is large enough for a chunk that is stored in so many bytes; asked only where it matters.
bool fits_in_file(hid_t dataset, hsize_t stored);

// A box of a dataset, cut into chunks.
struct ChunkBox {
    size_t rank = 0;
    Extents chunk{};
    Extents first{};  // element
    Extents end{};    // behind the last element, which is not before the first

    double chunks() const;  // that it touches
    bool touches(const hsize_t* corner) const;
};

// Where the box has so many chunks that asking for each may take for ever, and most of them were never
// written: the corners of those that were. Nothing where they are better asked for one by one.
struct SparseChunks {
    bool is_sparse = false;
    bool is_known = true;  // HDF5 could tell them
    double chunks = 0;     // that the box touches
    std::vector<Extents> corners{};
};
SparseChunks sparse_chunks(hid_t dataset, const ChunkBox& box);

}  // namespace vak
