#include "tools/check_chunks.h"

#include <algorithm>
#include <string>
#include <vector>

#include "storage/found_layout.h"
#include "storage/storage.h"
#include "tools/bytes.h"
#include "tools/same_contents.h"

namespace vak {

namespace {

constexpr int32_t unreadable = -6999;

struct Element {
    int32_t type = 0;  // 0: none that the library stores
    size_t size = 0;
};

Element element_of(const Type& stored)
{
    const size_t size = H5Tget_size(stored.get());
    switch (H5Tget_class(stored.get())) {
        case H5T_INTEGER: return {integer_type, size > sizeof(int32_t) ? sizeof(int64_t) : sizeof(int32_t)};
        case H5T_FLOAT: return {real_type, size > sizeof(float) ? sizeof(double) : sizeof(float)};
        case H5T_STRING: return {stands_alone(stored) ? text_type : 0, size};
        default: return {};
    }
}

int32_t read_rows(hid_t group, const char* name, const Element& element, const std::vector<hsize_t>& dims,
                  hsize_t first, hsize_t n, Bytes& values)
{
    std::vector<hsize_t> count = dims, start(dims.size(), 0);
    count[0] = n;
    start[0] = first;
    size_t bytes = element.size;
    for (const hsize_t extent : count)
        if (__builtin_mul_overflow(bytes, extent, &bytes)) throw std::bad_alloc();
    values.resize(bytes);
    uint32_t flags = 0;
    int32_t params[2]{};
    return VAK_H5Dread(name, values.data(), element.type, element.size, dims.data(),
                       static_cast<int32_t>(dims.size()), count.data(), start.data(), hyperslab, group,
                       &flags, params);
}

int32_t read_through(hid_t group, const char* name, const Dataset& dataset, const Element& element)
{
    const std::vector<hsize_t> dims = extents_of(dataset);
    if (dims.empty() || std::ranges::find(dims, hsize_t{0}) != dims.end()) return 0;
    if (row_bytes_of(dims, element.size) > most_row_bytes) return 0;
    const hsize_t step = rows_at_once(dataset, dims, element.size);
    Bytes values;
    for (hsize_t at = 0; at < dims[0]; at += step) {
        const hsize_t n = std::min(step, dims[0] - at);
        if (const int32_t status = read_rows(group, name, element, dims, at, n, values)) return status;
    }
    return 0;
}

constexpr uint64_t layout_message = uint64_t{1} << 8;  // its number in an object header

// HDF5 crashes where it copies what has the layout of a dataset and is none.
bool is_damaged(hid_t group, const char* name)
{
    H5L_info2_t link;
    H5O_native_info_t info;
    if (H5Lget_info2(group, name, &link, H5P_DEFAULT) < 0) return true;
    if (link.type != H5L_TYPE_HARD) return false;
    const Object object(H5Oopen(group, name, H5P_DEFAULT));
    if (H5Oget_native_info(object.get(), &info, H5O_NATIVE_INFO_HDR) < 0) return true;
    return H5Iget_type(object.get()) != H5I_DATASET && (info.hdr.mesg.present & layout_message) != 0;
}

int32_t check_dataset(hid_t group, const char* name)
{
    const Dataset dataset(H5Dopen2(group, name, H5P_DEFAULT));
    if (!dataset.valid()) return 0;  // copying it will tell
    const FoundLayout layout(dataset.get());
    if (layout.is_usable && layout.filters == 0) return 0;
    const Type stored(H5Dget_type(dataset.get()));
    const Element element = element_of(stored);
    return element.type == 0 ? 0 : read_through(group, name, dataset, element);
}

}  // namespace

int32_t check_chunks(hid_t group)
{
    for (const std::string& name : names_in(group)) {
        if (is_damaged(group, name.c_str())) return unreadable;
        const bool is_section = name == "header" || name == "index" || name == "data";
        const Group section(is_section ? H5Gopen2(group, name.c_str(), H5P_DEFAULT) : H5I_INVALID_HID);
        const int32_t status =
            section.valid() ? check_chunks(section.get()) : check_dataset(group, name.c_str());
        if (status != 0) return status;
    }
    return 0;
}

}  // namespace vak
