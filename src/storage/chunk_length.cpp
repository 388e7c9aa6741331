#include "storage/chunk_length.h"

#include <algorithm>

#include "storage/bit_packing.h"
#include "storage/fletcher32.h"
#include "storage/shuffle.h"

namespace vak {
namespace {

constexpr size_t most_parameters = 20;  // those of scale-offset
constexpr size_t largest_claimed = size_t{64} << 20;

}  // namespace

ChunkLength::ChunkLength(hid_t creation_list, size_t chunk_bytes)
    : chunk_bytes_(chunk_bytes), longest_(largest_stored(chunk_bytes))
{
    const int number = H5Pget_nfilters(creation_list);
    for (int i = 0; i < number; ++i) {
        const auto step = step_of(creation_list, static_cast<unsigned>(i));
        if (!step) return;
        steps_.push_back(*step);
    }
    is_known_ = number >= 0;
}

std::optional<ChunkLength::Step> ChunkLength::step_of(hid_t list, unsigned index)
{
    unsigned flags = 0;
    unsigned values[most_parameters] = {};
    size_t count = most_parameters;
    Step step{.id = H5Pget_filter2(list, index, &flags, &count, values, 0, nullptr, nullptr)};
    switch (step.id) {
        case H5Z_FILTER_DEFLATE:
        case H5Z_FILTER_FLETCHER32: return step;
        case H5Z_FILTER_SHUFFLE: step.size = values[0]; return step;
        case H5Z_FILTER_SCALEOFFSET:
            step.count = values[2];
            step.size = values[4];
            step.keeps_all = values[0] == H5Z_SO_INT && values[1] == 8 * step.size;
            return step;
        default: return {};
    }
}

bool ChunkLength::inflate(StoredChunk& chunk, Buffer& to)
{
    const size_t room = std::min(longest_, largest_inflated(chunk.size));
    unsigned char* bytes = to.room(room);
    chunk.size = inflater_.inflate(chunk.bytes, chunk.size, bytes, room);
    chunk.bytes = bytes;
    return chunk.size > 0;
}

// Scale-offset is undone in length only; behind it only a shuffle makes sense.
bool ChunkLength::undo(const Step& step, StoredChunk& chunk, Buffer& to)
{
    if (step.id == H5Z_FILTER_SCALEOFFSET && step.keeps_all) return true;
    if (chunk.bytes == nullptr) return step.id == H5Z_FILTER_SHUFFLE;
    if (step.id == H5Z_FILTER_DEFLATE) return inflate(chunk, to);
    if (step.id == H5Z_FILTER_SHUFFLE) {
        if (step.size == 0) return false;
        unsigned char* bytes = to.room(chunk.size);
        unshuffle(chunk.bytes, chunk.size, static_cast<unsigned>(step.size), bytes);
        chunk.bytes = bytes;
        return true;
    }
    if (step.id == H5Z_FILTER_FLETCHER32) {
        if (!checksum_holds(chunk.bytes, chunk.size)) return false;
        chunk.size -= checksum_size;
        return true;
    }
    constexpr size_t largest = 8;
    if (step.size > largest || !scale_offset_fits(chunk.bytes, chunk.size, step.count, step.size))
        return false;
    chunk.bytes = nullptr;
    chunk.size = step.count * step.size;
    return true;
}

// HDF5 takes the memory of a whole chunk, which scale-offset can claim by a few bytes.
bool ChunkLength::is_right(const StoredChunk& stored)
{
    if (chunk_bytes_ > largest_claimed && chunk_bytes_ > largest_inflated(stored.size)) return false;
    StoredChunk chunk = stored;
    for (size_t i = steps_.size(); i-- > 0;) {
        if ((stored.mask >> i & 1) != 0) continue;
        Buffer& to = buffers_[0].holds(chunk.bytes) ? buffers_[1] : buffers_[0];
        if (!undo(steps_[i], chunk, to)) return false;
    }
    return chunk.size == chunk_bytes_;
}

}  // namespace vak
