// The layout rules, and parts of datasets.
#include "storage/dataset_layout.h"

#include <functional>
#include <numeric>

namespace vak {

namespace {

constexpr hsize_t fewest_filtered = 8;
constexpr hsize_t shortest_chunk = 1000;
constexpr hsize_t longest_chunk = 2000;
constexpr hsize_t largest_chunk_bytes = 0xFFFFFFFF;  // of HDF5

}  // namespace

Filters filters_for(int32_t type, uint32_t flags, hsize_t elements)
{
    if (elements < fewest_filtered) return {};
    const auto asked = [flags](uint32_t bit) { return (flags & bit) != 0; };
    if (type == text_type) return {false, asked(shuffle_texts), asked(deflate_texts)};
    if (type == integer_type)
        return {asked(scale_offset_integers), asked(shuffle_integers), asked(deflate_integers)};
    return {asked(scale_offset_reals), asked(shuffle_reals), asked(deflate_reals)};
}

hsize_t chunk_extent(hsize_t maximum, int32_t along_unlimited)
{
    if (maximum == H5S_UNLIMITED) return static_cast<hsize_t>(std::max(along_unlimited, 1));
    if (maximum < shortest_chunk) return maximum;
    hsize_t best = shortest_chunk;
    for (hsize_t c = shortest_chunk; c <= std::min(maximum, longest_chunk); ++c)
        if (maximum % c < maximum % best) best = c;
    return best;
}

Extents growing_chunk(std::span<const hsize_t> maximum, int32_t along_unlimited)
{
    Extents chunk{};
    std::transform(maximum.begin(), maximum.end(), chunk.begin(),
                   [=](hsize_t extent) { return chunk_extent(extent, along_unlimited); });
    return chunk;
}

Extents filtered_chunk(std::span<const hsize_t> dims, size_t element_size)
{
    Extents chunk{};
    std::copy(dims.begin(), dims.end(), chunk.begin());
    const auto bytes = [&] {
        return std::accumulate(chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(dims.size()),
                               static_cast<double>(element_size), std::multiplies<>());
    };
    if (bytes() <= static_cast<double>(largest_chunk_bytes)) return chunk;
    // HDF5 would refuse the dataset, and with it the values. It is cut up as if it could grow, and the
    // longest extent then halved for as long as many dimensions still make the chunk too large.
    chunk = growing_chunk(dims, 1);
    while (bytes() > static_cast<double>(largest_chunk_bytes)) {
        hsize_t& longest = *std::max_element(chunk.begin(), chunk.end());
        longest = (longest + 1) / 2;
    }
    return chunk;
}

Part part_of(int32_t mode, const hsize_t* dims, int32_t rank, const hsize_t* count, const hsize_t* start)
{
    if (rank > 0 && (mode == hyperslab || mode == point_list)) return {mode, rank, count, start};
    return {whole_dataset, rank, dims, nullptr};
}

bool covers(const Part& part, std::span<const hsize_t> extents)
{
    if (part.mode == point_list) return false;
    if (part.mode == whole_dataset) return true;
    for (size_t i = 0; i < extents.size(); ++i)
        if (part.start[i] != 0 || part.count[i] != extents[i]) return false;
    return true;
}

bool in_runs(const Part& part, std::span<const hsize_t> extents)
{
    if (part.mode != hyperslab) return false;
    bool inside_run = false;
    for (size_t i = 1; i < part.counts().size(); ++i) {
        if (inside_run && part.count[i] != extents[i]) return false;
        inside_run = inside_run || part.count[i] > 1;
    }
    return true;
}

bool select(hid_t space, const Part& part)
{
    if (part.mode == point_list)
        return H5Sselect_elements(space, H5S_SELECT_SET, part.count[0], part.start) >= 0;
    return H5Sselect_hyperslab(space, H5S_SELECT_SET, part.start, nullptr, part.count, nullptr) >= 0;
}

Space memory_space_of(const Part& part)
{
    Extents extents;
    int rank = 0;
    for (const hsize_t count : part.counts())
        if (count > 1 || part.mode == point_list) extents[static_cast<size_t>(rank++)] = count;
    return Space(rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, extents.data(), nullptr));
}

}  // namespace vak
