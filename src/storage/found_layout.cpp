#include "storage/found_layout.h"

namespace vak {

namespace {

// Types of the messages in an object header, which the file format fixes.
constexpr uint64_t external_files_message = uint64_t{1} << 7;
constexpr uint64_t filters_message = uint64_t{1} << 11;

// What is asked of contiguous, chunked and compact datasets in turn. A virtual dataset says no to each, as
// others do before anything is written.
H5D_layout_t layout_with_storage(hid_t dataset, hsize_t row, bool& has_row)
{
    const hsize_t place[H5S_MAX_RANK] = {row};
    const hsize_t origin[H5S_MAX_RANK] = {};
    hsize_t chunk_bytes = 0;
    if (H5Dget_offset(dataset) != HADDR_UNDEF) return H5D_CONTIGUOUS;
    const bool is_chunked = H5Dget_chunk_storage_size(dataset, place, &chunk_bytes) >= 0;
    has_row = chunk_bytes > 0;
    if (is_chunked || (row > 0 && H5Dget_chunk_storage_size(dataset, origin, &chunk_bytes) >= 0))
        return H5D_CHUNKED;
    return H5Dget_storage_size(dataset) > 0 ? H5D_COMPACT : H5D_LAYOUT_ERROR;
}

// The layout of a dataset that has neither filters nor values elsewhere, asked at a tenth of the price of its
// creation list; an error where this cannot be told.
H5D_layout_t plain_layout(hid_t dataset, hsize_t row, bool& has_row)
{
    H5O_native_info_t info;
    if (H5Oget_native_info(dataset, &info, H5O_NATIVE_INFO_HDR) < 0) return H5D_LAYOUT_ERROR;
    const uint64_t in_the_way = info.hdr.mesg.present & (external_files_message | filters_message);
    return in_the_way == 0 ? layout_with_storage(dataset, row, has_row) : H5D_LAYOUT_ERROR;
}

bool known_filter(H5Z_filter_t filter)
{
    return filter == H5Z_FILTER_SCALEOFFSET || filter == H5Z_FILTER_SHUFFLE || filter == H5Z_FILTER_DEFLATE ||
           filter == H5Z_FILTER_FLETCHER32;
}

bool known_filters(hid_t list, int number)
{
    for (int i = 0; i < number; ++i) {
        unsigned flags = 0;
        size_t values = 0;
        const auto place = static_cast<unsigned>(i);
        if (!known_filter(H5Pget_filter2(list, place, &flags, &values, nullptr, 0, nullptr, nullptr)))
            return false;
    }
    return true;
}

}  // namespace

FoundLayout::FoundLayout(hid_t dataset, hsize_t row)
{
    const H5D_layout_t plain = plain_layout(dataset, row, has_row);
    has_bare_chunks = plain == H5D_CHUNKED;
    if (plain != H5D_LAYOUT_ERROR) return;
    list = Properties(H5Dget_create_plist(dataset));
    filters = H5Pget_nfilters(list.get());
    const H5D_layout_t layout = H5Pget_layout(list.get());
    has_bare_chunks = layout == H5D_CHUNKED && filters == 0;
    is_usable = layout != H5D_LAYOUT_ERROR && layout != H5D_VIRTUAL &&
                H5Pget_external_count(list.get()) == 0 && filters >= 0 && known_filters(list.get(), filters);
}

}  // namespace vak
