#include "storage/chunk_check.h"

#include <functional>
#include <numeric>

namespace vak {

namespace {

constexpr double slack = 64 * 1024;

struct Chunks {
    hid_t dataset;
    size_t rank;
    Extents extent;
    bool known;      // HDF5 has told it
    double largest;  // bytes as stored

    Chunks(hid_t dataset_id, hid_t list, size_t dimensions, size_t element_size)
        : dataset(dataset_id), rank(dimensions), extent{}
    {
        known = H5Pget_chunk(list, static_cast<int>(rank), extent.data()) >= 0;
        const double nominal =
            std::accumulate(extent.begin(), extent.begin() + static_cast<std::ptrdiff_t>(rank),
                            static_cast<double>(element_size), std::multiplies<>());
        largest = nominal + nominal / 8 + slack;
    }

    Extents corner(const hsize_t* coordinates) const
    {
        Extents at{};
        for (size_t i = 0; i < rank; ++i) at[i] = coordinates[i] / extent[i] * extent[i];
        return at;
    }

    // A chunk that was never written has no size to ask for.
    bool plausible(const Extents& at) const
    {
        hsize_t stored = 0;
        const bool written = H5Dget_chunk_storage_size(dataset, at.data(), &stored) >= 0;
        return !written || static_cast<double>(stored) <= largest;
    }
};

bool points_are_plausible(const Chunks& chunks, const Part& part)
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

bool box_is_plausible(const Chunks& chunks, const Extents& first, const Extents& end)
{
    Extents at = first;
    do {
        if (!chunks.plausible(at)) return false;
    } while (advance(chunks, at, first, end));
    return true;
}

}  // namespace

bool chunks_are_plausible(hid_t dataset, const FoundLayout& found, const Part& part,
                          std::span<const hsize_t> extents, size_t element_size)
{
    if (found.filters == 0) return true;
    const Chunks chunks(dataset, found.list.get(), extents.size(), element_size);
    if (!chunks.known) return false;
    if (part.mode == point_list) return points_are_plausible(chunks, part);
    Extents start{};
    Extents end{};
    std::copy(extents.begin(), extents.end(), end.begin());
    if (part.mode == hyperslab) {
        std::copy(part.start, part.start + part.rank, start.begin());
        std::transform(part.start, part.start + part.rank, part.count, end.begin(), std::plus<>());
    }
    // Where the dataset is yet to grow there are no chunks.
    for (size_t i = 0; i < extents.size(); ++i) {
        if (start[i] >= extents[i]) return true;
        end[i] = std::min(end[i], extents[i]);
    }
    return box_is_plausible(chunks, chunks.corner(start.data()), end);
}

}  // namespace vak
