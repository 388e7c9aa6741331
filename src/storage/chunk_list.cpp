#include "storage/chunk_list.h"

#include <new>

#include "storage/hdf5_id.h"

namespace vak {
namespace {

// Fewer are asked for within a second.
constexpr double fewest_to_list = 100000;

struct Listing {
    const ChunkBox& box;
    std::vector<Extents>& corners;
    bool out_of_memory = false;
};

int list_chunk(const hsize_t* corner, unsigned, haddr_t, hsize_t, void* data) noexcept
{
    auto* listing = static_cast<Listing*>(data);
    if (!listing->box.touches(corner)) return H5_ITER_CONT;
    try {
        Extents& at = listing->corners.emplace_back();
        std::copy_n(corner, listing->box.rank, at.begin());
        return H5_ITER_CONT;
    } catch (const std::bad_alloc&) {
        listing->out_of_memory = true;
        return H5_ITER_ERROR;
    }
}

}  // namespace

double ChunkBox::chunks() const
{
    double number = 1;
    for (size_t i = 0; i < rank; ++i)
        number *= static_cast<double>((end[i] - 1) / chunk[i] - first[i] / chunk[i] + 1);
    return number;
}

bool fits_in_file(hid_t dataset, hsize_t stored)
{
    constexpr hsize_t always_taken = hsize_t{1} << 20;
    if (stored <= always_taken) return true;
    const File file(H5Iget_file_id(dataset));
    hsize_t size = 0;
    return H5Fget_filesize(file.get(), &size) >= 0 && stored <= size;
}

// A damaged index may name any place.
bool ChunkBox::touches(const hsize_t* corner) const
{
    for (size_t i = 0; i < rank; ++i)
        if (corner[i] % chunk[i] != 0 || corner[i] >= end[i] || corner[i] < first[i] / chunk[i] * chunk[i])
            return false;
    return true;
}

SparseChunks sparse_chunks(hid_t dataset, const ChunkBox& box)
{
    SparseChunks found{.chunks = box.chunks()};
    if (found.chunks < fewest_to_list) return found;
    hsize_t stored = 0;
    found.is_known = H5Dget_num_chunks(dataset, H5S_ALL, &stored) >= 0;
    found.is_sparse = !found.is_known || static_cast<double>(stored) < found.chunks / 2;
    if (!found.is_known || !found.is_sparse) return found;
    Listing listing{box, found.corners};
    found.is_known = H5Dchunk_iter(dataset, H5P_DEFAULT, list_chunk, &listing) >= 0;
    if (listing.out_of_memory) throw std::bad_alloc();
    return found;
}

}  // namespace vak
