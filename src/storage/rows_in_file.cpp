#include "storage/rows_in_file.h"

#include <functional>

#include "storage/chunk_presence.h"
#include "storage/hdf5_id.h"

namespace vak {

namespace {

// More rows than are written between two flushes; a file that claims as many is damaged otherwise.
constexpr int most_lookups = 65536;

bool grows_by_rows(std::span<const hsize_t> extents, std::span<const hsize_t> maximum)
{
    return !extents.empty() && maximum[0] == H5S_UNLIMITED && !has_entry(maximum.subspan(1), H5S_UNLIMITED) &&
           !has_entry(extents, 0);
}

bool has_chunk(hid_t dataset, hsize_t row) { return stored_bytes(dataset, {row}) > 0; }

// The rows of a chunk; 0 where chunks are not of whole rows, so that some of a row's may be there.
std::optional<hsize_t> rows_of_chunk(hid_t dataset, std::span<const hsize_t> extents)
{
    const Properties list(H5Dget_create_plist(dataset));
    const H5D_layout_t layout = H5Pget_layout(list.get());
    if (layout == H5D_LAYOUT_ERROR) return std::nullopt;
    if (layout != H5D_CHUNKED) return 0;
    Extents chunk{};
    if (H5Pget_chunk(list.get(), H5S_MAX_RANK, chunk.data()) < 0) return std::nullopt;
    const auto rest = extents.subspan(1);
    return std::equal(rest.begin(), rest.end(), chunk.begin() + 1, std::less_equal<>()) ? chunk[0] : 0;
}

// The end of the rows in the chunk at `row`, or in the next one.
std::optional<hsize_t> end_of_rows(hid_t dataset, hsize_t row, hsize_t step, hsize_t end)
{
    const Chunk next = end - row > step ? look_again(dataset, {row + step}) : Chunk::absent;
    if (next == Chunk::not_told) return std::nullopt;
    return row + std::min(end - row, (next == Chunk::there ? 2 : 1) * step);
}

std::optional<hsize_t> rows_up_to_last_chunk(hid_t dataset, std::span<const hsize_t> extents)
{
    const auto step = rows_of_chunk(dataset, extents);
    if (!step) return std::nullopt;
    if (*step == 0) return extents[0];
    hsize_t row = (extents[0] - 1) / *step * *step;
    for (int n = 0; n < most_lookups; ++n, row -= *step) {
        if (has_chunk(dataset, row)) return end_of_rows(dataset, row, *step, extents[0]);
        if (row == 0) break;
    }
    return look_again(dataset, {extents[0] - 1}) == Chunk::not_told ? std::nullopt
                                                                    : std::optional(extents[0]);
}

}  // namespace

hsize_t last_row(std::span<const hsize_t> extents, std::span<const hsize_t> maximum)
{
    return grows_by_rows(extents, maximum) ? extents[0] - 1 : 0;
}

std::optional<hsize_t> rows_in_file(hid_t dataset, std::span<const hsize_t> extents,
                                    std::span<const hsize_t> maximum)
{
    if (extents.empty()) return 0;
    if (!grows_by_rows(extents, maximum) || has_chunk(dataset, extents[0] - 1)) return extents[0];
    return rows_up_to_last_chunk(dataset, extents);
}

int extents_in_file(hid_t dataset, hid_t space, Extents& extents, Extents& maximum)
{
    const int rank = H5Sget_simple_extent_dims(space, extents.data(), maximum.data());
    if (rank < 1) return rank;
    const auto axes = static_cast<size_t>(rank);
    const auto rows = rows_in_file(dataset, {extents.data(), axes}, {maximum.data(), axes});
    extents[0] = rows.value_or(0);
    return rows ? rank : -1;
}

}  // namespace vak
