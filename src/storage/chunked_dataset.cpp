// Whole chunks through H5Dread_chunk and H5Dwrite_chunk.
#include "storage/chunked_dataset.h"

#include <algorithm>
#include <cstring>

namespace vak {
namespace {

constexpr hsize_t largest_chunk_bytes = 0xFFFFFFFF;  // of HDF5

// More than this no filter adds to a chunk; larger ones were made to harm.
size_t largest_stored(size_t chunk_bytes) { return chunk_bytes + chunk_bytes / 8 + size_t{64} * 1024; }

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
    size_t filled = element_size_;
    std::memcpy(values, fill_value_.data(), filled);
    while (filled < chunk_bytes_) {
        const size_t more = std::min(filled, chunk_bytes_ - filled);
        std::memcpy(values + filled, values, more);
        filled += more;
    }
}

// 0 when there is no such chunk, or HDF5 cannot tell.
size_t ChunkedDataset::stored_size(const Extents& corner) const
{
    hsize_t size = 0;
    return H5Dget_chunk_storage_size(dataset_, corner.data(), &size) < 0 ? 0 : size;
}

bool ChunkedDataset::read(const Extents& corner, unsigned char* values)
{
    was_exact_ = true;
    const size_t size = stored_size(corner);
    return size > 0 ? read_stored(corner, size, values) : read_by_hdf5(corner, values);
}

bool ChunkedDataset::read_stored(const Extents& corner, size_t size, unsigned char* values)
{
    if (size > largest_stored(chunk_bytes_)) return false;
    const bool as_it_is = !is_filtered() && size == chunk_bytes_;
    unsigned char* bytes = as_it_is ? values : stored_.room(size);
    StoredChunk chunk{.bytes = bytes, .size = size};
    if (H5Dread_chunk(dataset_, H5P_DEFAULT, corner.data(), &chunk.mask, bytes) < 0) return false;
    if (as_it_is) return true;
    was_exact_ = codec_->is_exact(chunk.mask);
    return codec_->decode(chunk, values);
}

// Where there is no chunk HDF5 gives fill values, and where it only could not find it, an error.
bool ChunkedDataset::read_by_hdf5(const Extents& corner, unsigned char* values) const
{
    fill(values);
    const Extents origin{};
    const Extents counts = inside(corner);
    const Space file(H5Dget_space(dataset_));
    const Space memory(H5Screate_simple(static_cast<int>(rank_), chunk_.data(), nullptr));
    const auto select = [&](const Space& space, const Extents& start) {
        return H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start.data(), nullptr, counts.data(),
                                   nullptr) >= 0;
    };
    return select(file, corner) && select(memory, origin) &&
           H5Dread(dataset_, type_.get(), memory.get(), file.get(), H5P_DEFAULT, values) >= 0;
}

bool ChunkedDataset::write(const Extents& corner, const unsigned char* values, bool exact, bool is_new)
{
    const auto chunk = codec_->encode(values, exact);
    if (!chunk) return false;
    const auto store = [&](size_t size) {
        return H5Dwrite_chunk(dataset_, H5P_DEFAULT, chunk->mask, corner.data(), size, chunk->bytes) >= 0;
    };
    // HDF5 notes the mask of a chunk only when it gives it a new place, for which the size must differ.
    const bool same_place = !is_new && is_filtered() && chunk->size > 1 && stored_size(corner) == chunk->size;
    if (same_place && !store(chunk->size - 1)) return false;
    last_masked_ = chunk->mask != 0 ? std::optional(corner) : std::nullopt;
    return store(chunk->size);
}

// HDF5 1.14.5 remembers the place of the chunk last written, but with the mask that it had before. Whoever
// has the dataset open besides us would read it by that mask, unless another chunk is looked up in between.
void ChunkedDataset::forget_last_chunk() const
{
    if (!last_masked_) return;
    Extents other{};
    for (size_t i = 0; i < rank_ && other == *last_masked_; ++i) {
        if (chunk_[i] <= extents_[i]) other[i] = chunk_[i];
    }
    stored_size(other);
}

}  // namespace vak
