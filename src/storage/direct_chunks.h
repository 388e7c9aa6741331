// Moving values between the caller's array and whole chunks of a dataset by our own hand.
//
// Filters cost most of the time where they are used, and HDF5's are slow; scale-offset moreover writes chunks
// that it cannot read back. So the chunks of filtered datasets are packed and unpacked here. Scale-offset
// rounds a value at most once: a chunk that is not yet complete, or is changed in part, is stored without it.
#pragma once

#include <functional>

#include "storage/dataset_layout.h"

namespace vak {

// Chunks that the file had before a call change before the dataset grows, so that no state is counted whose
// values are on their way.
enum class Chunks { all, present, added };

struct ChunkTransfer {
    hid_t dataset = H5I_INVALID_HID;
    hid_t list = H5I_INVALID_HID;  // of its creation; may be absent where there are no filters
    bool list_is_its_own = true;   // not the one with which it was made just now
    bool repacks = false;          // filtered chunks that the file had before this call
    Chunks which = Chunks::all;
    int32_t type = 0;  // type code
    size_t data_size = 0;
    hid_t memory_type = H5I_INVALID_HID;
    Part part{};
    bool has_bare_chunks = false;        // on reading: known to be chunked, without filters
    std::span<const hsize_t> extents{};  // of the dataset, as they are now
    std::span<const hsize_t> maximum{};  // what they can become
    std::span<const hsize_t> before{};   // what they were before this call: behind them there is no chunk yet

    bool is_new(const Extents& corner) const
    {
        return !std::equal(before.begin(), before.end(), corner.begin(), std::greater<>());
    }
    bool skips(const Extents& corner) const
    {
        return which != Chunks::all && (which == Chunks::added) != is_new(corner);
    }
};

enum class Direct {
    done,
    failed,
    left,  // nothing was moved: HDF5 does it as well or better, or only HDF5 can do it
};

Direct write_chunks(const ChunkTransfer& transfer, const void* data);
Direct read_chunks(const ChunkTransfer& transfer, void* data);

// Takes back what a dataset grew by: these are its extents again. HDF5 would pack the chunks at the new end
// anew, which scale-offset and a full disk may not survive; so they are put back as they were. False on
// failure.
bool shrink_dataset(hid_t dataset, std::span<const hsize_t> extents, std::span<const hsize_t> maximum);

// For that it is opened so that HDF5 holds its version of those chunks back.
hid_t open_to_shrink(hid_t location, const char* name);

}  // namespace vak
