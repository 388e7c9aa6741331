#include "storage/chunk_gap.h"

namespace vak {

// Pieces of that size, without names, so that they go when they are closed. They fill holes of the file
// first; of three that stand side by side the middle one is the gap.
ChunkGap::ChunkGap(hid_t location, hsize_t size)
{
    const Space space(H5Screate_simple(1, &size, nullptr));
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_alloc_time(list.get(), H5D_ALLOC_TIME_EARLY);
    H5Pset_fill_time(list.get(), H5D_FILL_TIME_NEVER);
    haddr_t last = HADDR_UNDEF;
    int adjacent = 0;
    for (size_t i = 0; i < pieces_.size() && adjacent < 2; ++i) {
        pieces_[i] =
            Dataset(H5Dcreate_anon(location, H5T_NATIVE_UCHAR, space.get(), list.get(), H5P_DEFAULT));
        const haddr_t place = H5Dget_offset(pieces_[i].get());
        if (place == HADDR_UNDEF) return;
        adjacent = place == last + size ? adjacent + 1 : 0;
        last = place;
        if (adjacent == 2) pieces_[i - 1].close();
    }
    is_valid_ = true;
}

}  // namespace vak
