// Putting a chunk back where the file looks for it.
#pragma once

#include "storage/chunk_filters.h"
#include "storage/shape.h"

namespace vak {

// To be called when a chunk could not be moved and its file has been shut. HDF5 may have written the new
// bytes over the old ones, for it gives up a place before it looks for another. The old ones are put back
// unless the file itself, opened anew, tells that it knows the new place; `has_moved`: that can be so.
void put_back_old_chunk(hid_t dataset, const Extents& corner, const StoredChunk& old, bool has_moved);

}  // namespace vak
