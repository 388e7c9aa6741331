// The filters of a chunked dataset, applied to one chunk at a time by our own hand: scale-offset, shuffle,
// deflate.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "storage/buffer.h"
#include "storage/deflate.h"
#include "storage/scale_offset.h"

namespace vak {

// More than this no filter adds to a chunk; larger ones were made to harm.
constexpr size_t largest_stored(size_t chunk_bytes)
{
    return chunk_bytes + chunk_bytes / 8 + size_t{64} * 1024;
}

struct FilterStep {
    H5Z_filter_t id = 0;
    unsigned parameter = 0;  // shuffle: size of an element; deflate: level
};

struct ChunkFilters {
    std::vector<FilterStep> steps;  // in the order of writing
    ScaleOffset scale_offset;       // the form of the first step, if it is that

    // Deflate ends with one.
    bool has_checksum(uint32_t mask) const
    {
        return !steps.empty() && steps.back().id == H5Z_FILTER_DEFLATE &&
               (mask >> (steps.size() - 1) & 1) == 0;
    }
    bool has_scale_offset() const { return !steps.empty() && steps[0].id == H5Z_FILTER_SCALEOFFSET; }
};

// Nothing when the list names a filter or a form that is not ours.
std::optional<ChunkFilters> chunk_filters(hid_t creation_list, size_t elements_in_chunk, size_t element_size);

struct StoredChunk {
    const unsigned char* bytes = nullptr;
    size_t size = 0;
    uint32_t mask = 0;  // bit n: filter n was left out
};

// The values of a chunk.
struct ChunkValues {
    const unsigned char* bytes = nullptr;
    bool are_same = false;  // one stands for all
};

class ChunkCodec {
public:
    ChunkCodec(ChunkFilters filters, size_t chunk_size)
        : filters_(std::move(filters)), chunk_size_(chunk_size)
    {
    }

    // Values in the stored type to what goes into the file; valid until the next call. Scale-offset is left
    // out of a chunk that it cannot hold soundly, and, if `exact`, where it would round. Nothing: deflate
    // failed.
    std::optional<StoredChunk> encode(const unsigned char* values, bool exact);

    // False: the bytes are not a chunk of this dataset.
    bool decode(const StoredChunk& chunk, unsigned char* values);

    // The same into memory of our own, of which a chunk gets no more than its bytes can hold, whatever size
    // the dataset claims. Valid until the next call.
    std::optional<ChunkValues> decode(const StoredChunk& chunk);

    const ChunkFilters& filters() const { return filters_; }

    // Whether scale-offset rounded nothing in a chunk with this mask.
    bool is_exact(uint32_t mask) const { return !filters_.scale_offset.real || (mask & 1) != 0; }

private:
    bool encode_step(const FilterStep& step, bool exact, StoredChunk& chunk, Buffer& buffer);
    std::vector<FilterStep> steps_of(uint32_t mask) const;
    size_t decode_step(const FilterStep& step, const StoredChunk& chunk, unsigned char* to, size_t room);
    bool decode_to_first(const std::vector<FilterStep>& steps, StoredChunk& chunk);
    bool decode_first(const std::vector<FilterStep>& steps, const StoredChunk& chunk, unsigned char* values);
    bool can_fill(const std::vector<FilterStep>& steps, const StoredChunk& chunk) const;

    ChunkFilters filters_;
    size_t chunk_size_;
    Buffer buffers_[2];
    Buffer values_;
    std::optional<Deflater> deflater_;
    std::optional<Inflater> inflater_;
};

}  // namespace vak
