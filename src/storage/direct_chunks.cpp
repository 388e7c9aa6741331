// What is moved chunk by chunk, and what is left to HDF5.
#include "storage/direct_chunks.h"

#include <bit>

#include "storage/chunk_moves.h"
#include "storage/element_copy.h"

namespace vak {
namespace {

// Below these, on writing, the look at the dataset's layout costs more than HDF5's filters and its chunk
// cache.
constexpr size_t fewest_bytes_filtered = 2048;
constexpr size_t fewest_bytes_unfiltered = size_t{64} * 1024;

// Of what is read in parts: fewer values HDF5 reads as well one by one, and from larger chunks than these.
constexpr hsize_t fewest_scattered = 64;
constexpr size_t largest_scattered = size_t{1024} * 1024;
constexpr hsize_t fewest_of_huge = hsize_t{1} << 20;

// Whether both sides have elements that we can pass on, in the byte order of this machine.
bool forms_match(const ChunkTransfer& t, const ChunkedDataset& chunks)
{
    if constexpr (std::endian::native != std::endian::little) return false;
    const size_t stored_size = chunks.element_size();
    if (H5Tequal(t.memory_type, chunks.stored_type()) > 0) return true;
    if (t.type == text_type || !can_copy({t.type, t.data_size, stored_size})) return false;
    int32_t type_class = 0;
    hid_t native = H5I_INVALID_HID;
    VAK_H5gettype(t.type, stored_size, &type_class, &native);
    return H5Tequal(native, chunks.stored_type()) > 0;
}

// The first filter of the dataset, negative where there is none.
H5Z_filter_t first_filter(const ChunkTransfer& t)
{
    if (t.list < 0 || H5Pget_nfilters(t.list) < 1) return H5Z_FILTER_ERROR;
    unsigned flags = 0;
    size_t count = 0;
    return H5Pget_filter2(t.list, 0, &flags, &count, nullptr, 0, nullptr, nullptr);
}

bool reaches(std::span<const hsize_t> counts, size_t element_size, size_t bytes)
{
    return elements_of(counts, element_size).value_or(0) >= bytes / element_size;
}

// Scale-offset is never HDF5's, nor is what a full disk could take from the file. Of datasets without filters
// those that grow are chunked.
bool may_pay(const ChunkTransfer& t)
{
    const H5Z_filter_t filter = first_filter(t);
    if (filter == H5Z_FILTER_SCALEOFFSET || t.repacks) return true;
    if (filter >= 0) return reaches(t.extents, t.data_size, fewest_bytes_filtered);
    return t.part.mode != point_list && has_entry(t.maximum, H5S_UNLIMITED) &&
           reaches(t.part.counts(), t.data_size, fewest_bytes_unfiltered);
}

// HDF5 finds its points itself, unless it could not read or must not write their chunks.
// Without filters only whole chunks are worth writing: HDF5 moves parts of them from where they are.
bool writes(const ChunkTransfer& t, const ChunkedDataset& chunks)
{
    if (!chunks.is_ours() || !forms_match(t, chunks)) return false;
    if (t.part.mode == point_list) return chunks.has_scale_offset() || t.repacks;
    return chunks.is_filtered() || takes_whole_chunks(t, chunks);
}

bool is_scattered(const ChunkTransfer& t)
{
    return t.part.mode != whole_dataset && !in_runs(t.part, t.extents) &&
           elements_of(t.part.counts(), 1).value_or(0) >= fewest_scattered;
}

// Filtered chunks are unpacked here, since HDF5 takes what comes out of a filter for a chunk whatever its
// length. Chunks without filters HDF5 reads from where they stand, past its cache: value by value where they
// are not in runs, for which whole chunks are read instead.
// So they are where there are very many of them, most of which HDF5 would find to be absent one by one.
bool reads(const ChunkTransfer& t, const ChunkedDataset& chunks)
{
    if (!chunks.is_ours() || !forms_match(t, chunks)) return false;
    if (chunks.is_filtered()) return true;
    return chunks.chunk_bytes() <= largest_scattered && (is_scattered(t) || is_sparse(t, chunks));
}

// Whether it may have so many chunks that it matters how many there are.
bool is_huge(const ChunkTransfer& t)
{
    return t.part.mode != point_list && elements_of(t.part.counts(), 1).value_or(0) >= fewest_of_huge;
}

hid_t own_list(const ChunkTransfer& t) { return t.list_is_its_own ? t.list : H5I_INVALID_HID; }

Direct outcome(bool good) { return good ? Direct::done : Direct::failed; }

}  // namespace

Direct write_chunks(const ChunkTransfer& t, const void* data)
{
    if (!may_pay(t)) return Direct::left;
    ChunkedDataset chunks(t.dataset, own_list(t), t.extents);
    if (!writes(t, chunks)) return Direct::left;
    return outcome(t.part.mode == point_list ? write_points(t, chunks, data) : write_box(t, chunks, data));
}

Direct read_chunks(const ChunkTransfer& t, void* data)
{
    const bool may_pay = t.has_bare_chunks && (is_scattered(t) || is_huge(t));
    if (first_filter(t) < 0 && !may_pay) return Direct::left;
    ChunkedDataset chunks(t.dataset, own_list(t), t.extents);
    if (!reads(t, chunks)) return Direct::left;
    return outcome(t.part.mode == point_list ? read_points(t, chunks, data) : read_box(t, chunks, data));
}

}  // namespace vak
