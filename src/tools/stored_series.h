// A growing dataset as it is stored, chunk by chunk. The first axis counts the states.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "storage/hdf5_id.h"

namespace vak {

using ChunkPlace = std::vector<hsize_t>;  // of its first element

struct StoredChunkPlace {
    ChunkPlace at;
    hsize_t bytes;  // as stored
};

struct StoredSeries {
    StoredSeries(hid_t g, const char* n) : group(g), name(n) {}

    hid_t group;
    const char* name;
    Dataset dataset;
    Type type;
    Properties creation;
    int32_t type_code = 0;
    size_t rank = 0, element = 0;
    std::array<hsize_t, H5S_MAX_RANK> dims{}, max_dims{}, chunk{};
    std::vector<StoredChunkPlace> chunks;  // in the order of the states
};

// False when it is no series that can be cut: no chunks, numbers that no routine of ours writes, or chunks
// stored with more bytes than any of that shape have.
bool open_series(StoredSeries&);

// The stored chunks that hold a state.
std::span<const StoredChunkPlace> chunks_of(const StoredSeries&, hsize_t state);

size_t chunk_bytes(const StoredSeries&);

// A part of the series: as many states as `states` says from at[0] on, of the width of a chunk or of the
// whole.
struct SeriesPart {
    SeriesPart(const StoredSeries&, const ChunkPlace& place, hsize_t states, bool whole_width = false);

    std::array<hsize_t, H5S_MAX_RANK> start{}, count{};
    size_t bytes;
};

// Adds the values, in the machine's own form, at the end of `values`.
int32_t read_part(const StoredSeries&, const SeriesPart&, std::vector<char>& values);

}  // namespace vak
