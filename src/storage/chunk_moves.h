// The two ways in which a transfer meets the chunks of its dataset: as a box, or as a list of points.
#pragma once

#include "storage/chunked_dataset.h"
#include "storage/direct_chunks.h"

namespace vak {

bool write_box(const ChunkTransfer& transfer, ChunkedDataset& chunks, const void* data);
bool read_box(const ChunkTransfer& transfer, ChunkedDataset& chunks, void* data);

// Whether the box takes everything that the dataset has in each chunk that it touches.
bool takes_whole_chunks(const ChunkTransfer& transfer, const ChunkedDataset& chunks);

// Whether a box has very many chunks and most of them were never written.
bool is_sparse(const ChunkTransfer& transfer, const ChunkedDataset& chunks);

bool write_points(const ChunkTransfer& transfer, ChunkedDataset& chunks, const void* data);
bool read_points(const ChunkTransfer& transfer, ChunkedDataset& chunks, void* data);

}  // namespace vak
