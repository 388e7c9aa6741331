#include "storage/chunk_check.h"

#include <functional>
#include <numeric>
#include <optional>

#include "storage/chunk_length.h"
#include "storage/chunk_list.h"

namespace vak {

namespace {

constexpr double slack = 64 * 1024;
constexpr hsize_t most_for_hdf5 = hsize_t{1} << 20;
constexpr double largest_nominal = 0xFFFFFFFF;  // of HDF5

class Chunks {
public:
    Chunks(hid_t dataset_id, hid_t list, size_t dimensions, size_t element_size)
        : dataset(dataset_id), rank(dimensions), extent{}
    {
        known = H5Pget_chunk(list, static_cast<int>(rank), extent.data()) >= 0;
        const double nominal =
            std::accumulate(extent.begin(), extent.begin() + static_cast<std::ptrdiff_t>(rank),
                            static_cast<double>(element_size), std::multiplies<>());
        largest = nominal + nominal / 8 + slack;
        bytes_ = static_cast<size_t>(std::min(nominal, largest_nominal));
    }

    // From now on chunks are unpacked to see whether they are plausible.
    bool unpack(hid_t list)
    {
        length_.emplace(list, bytes_);
        return length_->is_known();
    }

    bool is_unpacking() const { return length_.has_value(); }

    Extents corner(const hsize_t* coordinates) const
    {
        Extents at{};
        for (size_t i = 0; i < rank; ++i) at[i] = coordinates[i] / extent[i] * extent[i];
        return at;
    }

    // A chunk that was never written has no size to ask for.
    bool plausible(const Extents& at)
    {
        hsize_t stored = 0;
        const bool written = H5Dget_chunk_storage_size(dataset, at.data(), &stored) >= 0;
        if (!written || stored == 0) return true;
        return static_cast<double>(stored) <= largest && (!length_ || has_right_length(at, stored));
    }

    hid_t dataset;
    size_t rank;
    Extents extent;
    bool known;  // HDF5 has told it

private:
    bool has_right_length(const Extents& at, hsize_t stored)
    {
        if (!fits_in_file(dataset, stored)) return false;
        unsigned char* bytes = stored_.room(stored);
        uint32_t mask = 0;
        return H5Dread_chunk(dataset, H5P_DEFAULT, at.data(), &mask, bytes) >= 0 &&
               length_->is_right({.bytes = bytes, .size = stored, .mask = mask});
    }

    double largest;  // bytes as stored
    size_t bytes_;   // when unpacked
    std::optional<ChunkLength> length_;
    Buffer stored_;
};

bool points_are_plausible(Chunks& chunks, const Part& part)
{
    Extents last = chunks.corner(part.point(0));
    bool good = chunks.plausible(last);
    for (hsize_t n = 1; good && n < part.count[0]; ++n) {
        const Extents at = chunks.corner(part.point(n));
        if (at != last) good = chunks.plausible(at);
        last = at;
    }
    return good;
}

// The next corner of the box in storage order; false behind the last.
bool advance(const Chunks& chunks, Extents& at, const Extents& first, const Extents& end)
{
    for (size_t i = chunks.rank; i-- > 0;) {
        at[i] += chunks.extent[i];
        if (at[i] < end[i]) return true;
        at[i] = first[i];
    }
    return false;
}

bool each_is_plausible(Chunks& chunks, const Extents& first, const Extents& end)
{
    Extents at = first;
    do {
        if (!chunks.plausible(at)) return false;
    } while (advance(chunks, at, first, end));
    return true;
}

// Where HDF5 itself would take for ever.
bool is_beyond_hdf5(const SparseChunks& sparse)
{
    return sparse.is_sparse && sparse.chunks > static_cast<double>(most_for_hdf5);
}

bool box_is_plausible(Chunks& chunks, const ChunkBox& box)
{
    const auto sparse = sparse_chunks(chunks.dataset, box);
    if (!sparse.is_sparse) return each_is_plausible(chunks, chunks.corner(box.first.data()), box.end);
    return sparse.is_known && !(chunks.is_unpacking() && is_beyond_hdf5(sparse)) &&
           std::ranges::all_of(sparse.corners, [&](const Extents& at) { return chunks.plausible(at); });
}

// Only then may there be more chunks than HDF5 can look for.
bool is_huge(const Part& part)
{
    return part.mode != point_list && elements_of(part.counts(), 1).value_or(0) > most_for_hdf5;
}

// The part as far as the dataset goes; where it is yet to grow there are no chunks.
std::optional<ChunkBox> box_of(const Chunks& chunks, const Part& part, std::span<const hsize_t> extents)
{
    ChunkBox box{.rank = chunks.rank, .chunk = chunks.extent};
    std::copy(extents.begin(), extents.end(), box.end.begin());
    if (part.mode == hyperslab) {
        std::copy(part.start, part.start + part.rank, box.first.begin());
        std::transform(part.start, part.start + part.rank, part.count, box.end.begin(), std::plus<>());
    }
    for (size_t i = 0; i < extents.size(); ++i) {
        if (box.first[i] >= extents[i]) return {};
        box.end[i] = std::min(box.end[i], extents[i]);
    }
    return box;
}

bool part_is_plausible(Chunks& chunks, const Part& part, std::span<const hsize_t> extents)
{
    if (part.mode == point_list) return points_are_plausible(chunks, part);
    const auto box = box_of(chunks, part, extents);
    return !box || box_is_plausible(chunks, *box);
}

// Of a dataset without filters.
bool is_within_reach(hid_t dataset, const Part& part, std::span<const hsize_t> extents)
{
    if (!is_huge(part)) return true;
    const Properties list(H5Dget_create_plist(dataset));
    if (H5Pget_layout(list.get()) != H5D_CHUNKED) return true;
    const Chunks chunks(dataset, list.get(), extents.size(), 1);
    const auto box = box_of(chunks, part, extents);
    return chunks.known && (!box || !is_beyond_hdf5(sparse_chunks(dataset, *box)));
}

}  // namespace

bool chunks_are_plausible(hid_t dataset, const FoundLayout& found, const Part& part,
                          std::span<const hsize_t> extents, size_t element_size)
{
    if (found.filters == 0) return true;
    Chunks chunks(dataset, found.list.get(), extents.size(), element_size);
    return chunks.known && part_is_plausible(chunks, part, extents);
}

bool chunks_are_sound(hid_t dataset, hid_t list, const Part& part, std::span<const hsize_t> extents)
{
    if (list < 0 || H5Pget_nfilters(list) == 0) return is_within_reach(dataset, part, extents);
    const Type type(H5Dget_type(dataset));
    Chunks chunks(dataset, list, extents.size(), H5Tget_size(type.get()));
    return chunks.known && chunks.unpack(list) && part_is_plausible(chunks, part, extents);
}

}  // namespace vak
