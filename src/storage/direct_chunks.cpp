// What is moved chunk by chunk, and what is left to HDF5.
#include "storage/direct_chunks.h"

#include <bit>

#include "storage/chunk_moves.h"
#include "storage/element_copy.h"

namespace vak {
namespace {

// Below this the look at the dataset's layout costs more than HDF5's chunk cache.
constexpr size_t fewest_bytes_unfiltered = size_t{64} * 1024;

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

bool is_large(const ChunkTransfer& t)
{
    return elements_of(t.part.counts(), t.data_size).value_or(0) >= fewest_bytes_unfiltered / t.data_size;
}

// Without filters only whole chunks are worth the way: HDF5 writes parts of them where they are.
bool may_pay(const ChunkTransfer& t)
{
    if (t.list >= 0 && H5Pget_nfilters(t.list) > 0) return true;
    return t.part.mode == hyperslab && has_entry(t.maximum, H5S_UNLIMITED) && is_large(t);
}

// HDF5 finds its points itself, unless it could not read or must not write their chunks.
bool is_ours(const ChunkTransfer& t, const ChunkedDataset& chunks)
{
    if (!chunks.is_ours() || !forms_match(t, chunks)) return false;
    return t.part.mode != point_list || chunks.has_scale_offset();
}

Direct outcome(bool good) { return good ? Direct::done : Direct::failed; }

}  // namespace

bool must_stay_exact(const ChunkTransfer& t, const ChunkedDataset& chunks, const Extents& corner, bool all)
{
    bool grows = false;
    for (size_t i = 0; i < chunks.rank(); ++i) {
        if (t.maximum[i] != H5S_UNLIMITED) continue;
        if (corner[i] + chunks.chunk()[i] > chunks.extents()[i]) return true;
        grows = true;
    }
    const bool completed = grows && !t.is_new && chunks.was_exact();
    return !all && !completed;
}

Direct write_chunks(const ChunkTransfer& t, const void* data)
{
    if (!may_pay(t)) return Direct::left;
    ChunkedDataset chunks(t.dataset, t.extents);
    if (!is_ours(t, chunks)) return Direct::left;
    if (t.part.mode == point_list) return outcome(write_points(t, chunks, data));
    if (!chunks.is_filtered() && !takes_whole_chunks(t, chunks)) return Direct::left;
    return outcome(write_box(t, chunks, data));
}

Direct read_chunks(const ChunkTransfer& t, void* data)
{
    if (!may_pay(t)) return Direct::left;
    ChunkedDataset chunks(t.dataset, t.extents);
    if (!is_ours(t, chunks)) return Direct::left;
    return outcome(t.part.mode == point_list ? read_points(t, chunks, data) : read_box(t, chunks, data));
}

}  // namespace vak
