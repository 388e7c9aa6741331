// Whole chunks through H5Dread_chunk and H5Dwrite_chunk.
#include "storage/chunked_dataset.h"

#include <algorithm>
#include <cstring>

#include "storage/chunk_gap.h"
#include "storage/chunk_list.h"
#include "storage/chunk_presence.h"
#include "storage/chunk_rescue.h"
#include "storage/element_copy.h"
#include "storage/whole_flush.h"

namespace vak {
namespace {

constexpr hsize_t largest_chunk_bytes = 0xFFFFFFFF;  // of HDF5

}  // namespace

ChunkedDataset::ChunkedDataset(hid_t dataset, hid_t list, std::span<const hsize_t> extents)
    : dataset_(dataset), type_(H5Dget_type(dataset)), rank_(extents.size())
{
    std::copy(extents.begin(), extents.end(), extents_.begin());
    const Properties asked(list >= 0 ? H5I_INVALID_HID : H5Dget_create_plist(dataset));
    describe(list >= 0 ? list : asked.get());
}

void ChunkedDataset::describe(hid_t list)
{
    if (!type_.valid() || !take_layout(list)) return;
    take_fill_value(list);
    auto filters = chunk_filters(list, chunk_bytes_ / element_size_, element_size_);
    if (filters) codec_.emplace(std::move(*filters), chunk_bytes_);
}

bool ChunkedDataset::take_layout(hid_t list)
{
    if (rank_ == 0 || H5Pget_layout(list) != H5D_CHUNKED) return false;
    if (H5Pget_chunk(list, H5S_MAX_RANK, chunk_.data()) != static_cast<int>(rank_)) return false;
    element_size_ = H5Tget_size(type_.get());
    const auto elements = elements_of({chunk_.data(), rank_}, element_size_);
    if (!elements || *elements == 0 || *elements > largest_chunk_bytes / element_size_) return false;
    chunk_bytes_ = *elements * element_size_;
    return true;
}

void ChunkedDataset::take_fill_value(hid_t list)
{
    fill_value_.resize(element_size_);
    H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
    H5Pfill_value_defined(list, &defined);
    if (defined != H5D_FILL_VALUE_USER_DEFINED) return;  // HDF5's own is zero
    H5Pget_fill_value(list, type_.get(), fill_value_.data());
}

Extents ChunkedDataset::inside(const Extents& corner) const
{
    Extents counts{};
    for (size_t i = 0; i < rank_; ++i) counts[i] = std::min(chunk_[i], extents_[i] - corner[i]);
    return counts;
}

void ChunkedDataset::fill(unsigned char* values) const
{
    repeat_element(fill_value_.data(), element_size_, values, chunk_bytes_ / element_size_);
}

bool ChunkedDataset::read(const Extents& corner, unsigned char* values)
{
    was_exact_ = true;
    const size_t size = stored_bytes(dataset_, corner);
    // Without filters HDF5 tells the size that the chunk should have, but reads as much as the file notes.
    if (size == 0 || !is_filtered()) return read_by_hdf5(corner, values);
    if (!hold(corner, size)) return false;
    was_exact_ = codec_->is_exact(held_.mask);
    return codec_->decode(held_, values);
}

std::optional<ChunkValues> ChunkedDataset::values(const Extents& corner)
{
    if (!is_filtered()) {
        unsigned char* bytes = values_.room(chunk_bytes_);
        if (!read(corner, bytes)) return {};
        return ChunkValues{bytes, false};
    }
    const hsize_t size = stored_bytes(dataset_, corner);
    if (size > 0) return hold(corner, size) ? codec_->decode(held_) : std::nullopt;
    if (look_again(dataset_, corner) == Chunk::absent) return ChunkValues{fill_value_.data(), true};
    return {};
}

// Takes the chunk's bytes as they are stored; none where there is no such chunk.
bool ChunkedDataset::hold(const Extents& corner, size_t size)
{
    held_ = {};
    if (size == 0 || size > largest_stored(chunk_bytes_) || !fits_in_file(dataset_, size)) return false;
    unsigned char* bytes = stored_.room(size);
    uint32_t mask = 0;
    if (H5Dread_chunk(dataset_, H5P_DEFAULT, corner.data(), &mask, bytes) < 0) return false;
    held_ = {.bytes = bytes, .size = size, .mask = mask};
    held_corner_ = corner;
    return true;
}

// Where there is no chunk HDF5 gives fill values, and where it only could not find it, an error. The dataset
// may not have grown yet.
bool ChunkedDataset::read_by_hdf5(const Extents& corner, unsigned char* values) const
{
    fill(values);
    const Extents origin{};
    Extents counts = inside(corner);
    Extents present{};
    const Space file(H5Dget_space(dataset_));
    const Space memory(H5Screate_simple(static_cast<int>(rank_), chunk_.data(), nullptr));
    H5Sget_simple_extent_dims(file.get(), present.data(), nullptr);
    for (size_t i = 0; i < rank_; ++i) counts[i] = std::min(counts[i], present[i] - corner[i]);
    const auto select = [&](const Space& space, const Extents& start) {
        return H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start.data(), nullptr, counts.data(),
                                   nullptr) >= 0;
    };
    return select(file, corner) && select(memory, origin) &&
           H5Dread(dataset_, type_.get(), memory.get(), file.get(), H5P_DEFAULT, values) >= 0;
}

bool ChunkedDataset::store(const Extents& corner, const StoredChunk& chunk)
{
    last_masked_ = (chunk.mask | held_.mask) != 0 ? std::optional(corner) : std::nullopt;
    return H5Dwrite_chunk(dataset_, H5P_DEFAULT, chunk.mask, corner.data(), chunk.size, chunk.bytes) >= 0;
}

bool ChunkedDataset::write(const Extents& corner, const unsigned char* values, bool exact, bool is_new)
{
    const auto chunk = codec_->encode(values, exact);
    if (!chunk) return false;
    if (is_new || !is_filtered()) return store(corner, *chunk);
    if (held_.size == 0 || held_corner_ != corner) hold(corner, stored_bytes(dataset_, corner));
    const bool good = replace(corner, *chunk);
    held_ = {};
    return good;
}

// HDF5 gives up the place of a chunk before it writes the chunk at another one. If it cannot write there, the
// chunk is still looked for where anything may be put. So there must be room before; where it cannot be
// reserved, an unnamed dataset shows it.
bool ChunkedDataset::has_room(const StoredChunk& chunk) const
{
    if (const Room room = keep_room(dataset_, chunk.size); room != Room::unknown) return room == Room::kept;
    const hsize_t size = chunk.size;
    const Space space(H5Screate_simple(1, &size, nullptr));
    Dataset unnamed(H5Dcreate_anon(dataset_, H5T_NATIVE_UCHAR, space.get(), H5P_DEFAULT, H5P_DEFAULT));
    const bool good = unnamed.valid() && H5Dwrite(unnamed.get(), H5T_NATIVE_UCHAR, H5S_ALL, H5S_ALL,
                                                  H5P_DEFAULT, chunk.bytes) >= 0;
    return unnamed.close() && good;
}

// Where no checksum would tell that other bytes stand at the old place, it must not be written over.
bool ChunkedDataset::store_elsewhere(const Extents& corner, const StoredChunk& chunk)
{
    if (codec_->filters().has_checksum(held_.mask)) return store(corner, chunk);
    const ChunkGap gap(dataset_, chunk.size);
    return gap.valid() && store(corner, chunk);
}

// HDF5 notes the mask of a chunk only when it gives it a new place, for which the size must differ.
bool ChunkedDataset::move(const Extents& corner, const StoredChunk& chunk)
{
    const StoredChunk shorter{.bytes = chunk.bytes, .size = chunk.size - 1, .mask = chunk.mask};
    const bool same_size = chunk.size == held_.size && chunk.size > 1;
    return (!same_size || store_elsewhere(corner, shorter)) && store_elsewhere(corner, chunk);
}

// The place that a chunk gave up may be used by whatever is written next, the next chunk included. So the
// file must look for the chunk at its new place before. HDF5 may use part of it for the very chunk, so that
// flush should have nothing else to write.
bool ChunkedDataset::replace(const Extents& corner, const StoredChunk& chunk)
{
    if (held_.size == chunk.size && held_.mask == chunk.mask) {
        const bool good = store(corner, chunk);
        if (!good) store(corner, held_);
        return good;
    }
    if (held_.size == 0) return store(corner, chunk);
    is_flushed_ = is_flushed_ || flush_whole(dataset_, H5F_SCOPE_LOCAL);
    if (!is_flushed_ || !has_room(chunk)) return false;
    const bool has_moved = move(corner, chunk);
    if (has_moved && flush_whole(dataset_, H5F_SCOPE_LOCAL)) return true;
    shut_file(dataset_);
    put_back_old_chunk(dataset_, corner, held_, has_moved);
    return false;
}

// HDF5 1.14.5 remembers the place of the chunk last written, but with the mask that it had before. Whoever
// has the dataset open besides us would read it by that mask, unless another chunk is looked up in between.
void ChunkedDataset::finish() const
{
    if (!last_masked_) return;
    Extents other{};
    for (size_t i = 0; i < rank_ && other == *last_masked_; ++i) {
        if (chunk_[i] <= extents_[i]) other[i] = chunk_[i];
    }
    stored_bytes(dataset_, other);
}

}  // namespace vak
