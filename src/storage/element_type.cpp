// The element types that the library knows, and the identifiers that the fields of a call share.
#include "storage/element_type.h"

#include <cstdio>
#include <cstring>
#include <limits>

namespace vak {

namespace {

struct NumberType {
    int32_t type;
    size_t size;
    hid_t memory;
    hid_t stored;
};

// HDF5's predefined types are variables, known only once the library is open.
NumberType number_type(int32_t type, size_t size)
{
    if (type == integer_type && size == 4) return {type, size, H5T_NATIVE_INT, H5T_STD_I32LE};
    if (type == integer_type && size == 8) return {type, size, H5T_NATIVE_LLONG, H5T_STD_I64LE};
    if (type == real_type && size == 4) return {type, size, H5T_NATIVE_FLOAT, H5T_IEEE_F32LE};
    if (type == real_type && size == 8) return {type, size, H5T_NATIVE_DOUBLE, H5T_IEEE_F64LE};
    return {type, size, H5I_INVALID_HID, H5I_INVALID_HID};
}

// The file has 32 bits for the length of a text; HDF5 itself would cut off the rest.
Type blank_padded(hid_t base, size_t size)
{
    if (size > std::numeric_limits<uint32_t>::max()) return Type();
    Type text(H5Tcopy(base));
    if (H5Tset_size(text.get(), size) < 0 || H5Tset_strpad(text.get(), H5T_STR_SPACEPAD) < 0) return Type();
    return text;
}

// Links are met by a list of our own as by HDF5's default list, which may hold a guard.
bool follow_links_as_by_default(hid_t list)
{
    H5L_elink_traverse_t asked = nullptr;
    void* data = nullptr;
    H5Pget_elink_cb(H5P_LINK_ACCESS_DEFAULT, &asked, &data);
    return asked == nullptr || H5Pset_elink_cb(list, asked, data) >= 0;
}

template <class T>
int32_t store(void* place, T value)
{
    std::memcpy(place, &value, sizeof value);
    return 0;
}

}  // namespace

int32_t VAK_H5gettype(int32_t type, size_t size, int32_t* class_out, hid_t* type_out)
{
    if (type == text_type) {
        *class_out = H5T_STRING;
        *type_out = H5T_C_S1;
        return 0;
    }
    const NumberType number = number_type(type, size);
    if (number.memory >= 0) {
        *class_out = type == integer_type ? H5T_INTEGER : H5T_FLOAT;
        *type_out = number.memory;
        return 0;
    }
    if (type == integer_type)
        std::fprintf(stderr, "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: %d %zu\n", type,
                     size);
    else if (type == real_type)
        std::fprintf(stderr, "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: %d %zu\n", type,
                     size);
    else
        std::fprintf(stderr, "VAK INTERNAL ERROR (3) in VAK_H5gettype - vak_type, data_size: %d %zu\n", type,
                     size);
    return -1;
}

int32_t VAK_H5getfillvalue(int32_t type, size_t data_size, void* value_out)
{
    if (type == integer_type && data_size == 4) return store(value_out, int32_t{10000});
    if (type == integer_type && data_size == 8) return store(value_out, int64_t{10000});
    if (type == real_type && data_size == 4) return store(value_out, float{10000});
    if (type == real_type && data_size == 8) return store(value_out, double{10000});
    if (type == integer_type)
        std::fprintf(stderr, "VAK INTERNAL ERROR (1) in VAK_H5getfillvalue - vak_type, data_size: %d %zu\n",
                     type, data_size);
    else if (type == real_type)
        std::fprintf(stderr, "VAK INTERNAL ERROR (2) in VAK_H5getfillvalue - vak_type, data_size: %d %zu\n",
                     type, data_size);
    else
        std::fprintf(stderr, "VAK INTERNAL ERROR (3) in VAK_H5getfillvalue - vak_type, data_size: %d %zu\n",
                     type, data_size);
    return -1;
}

hid_t stored_type(int32_t type, size_t size, SharedIds& ids)
{
    return type == text_type ? ids.text(size) : number_type(type, size).stored;
}

FoundType::FoundType(hid_t type) : id(type), type_class(H5Tget_class(type)), size(H5Tget_size(type))
{
    if (type_class == H5T_STRING && H5Tis_variable_str(type) != 0) type_class = H5T_VLEN;
    if (size == 0) type_class = H5T_NO_CLASS;
}

hid_t memory_type_beside(FoundType& found, int32_t type, hid_t number, size_t data_size)
{
    if (type != text_type) return number;
    if (found.size != data_size) found.id = blank_padded(found.id.get(), data_size);
    return found.id.get();
}

hid_t SharedIds::scalar()
{
    if (!scalar_.valid()) scalar_ = Space(H5Screate(H5S_SCALAR));
    return scalar_.get();
}

hid_t SharedIds::text(size_t size)
{
    if (!texts_[newest_].type.valid() || texts_[newest_].size != size) newest_ = 1 - newest_;
    Text& text = texts_[newest_];
    if (!text.type.valid() || text.size != size) text = {blank_padded(H5T_C_S1, size), size};
    return text.type.get();
}

hid_t SharedIds::compact()
{
    if (compact_.valid()) return compact_.get();
    Properties list(H5Pcreate(H5P_DATASET_CREATE));
    if (list.valid() && H5Pset_layout(list.get(), H5D_COMPACT) >= 0) compact_ = std::move(list);
    return compact_.get();
}

hid_t SharedIds::uncached()
{
    if (uncached_.valid()) return uncached_.get();
    Properties list(H5Pcreate(H5P_DATASET_ACCESS));
    if (list.valid() && H5Pset_chunk_cache(list.get(), 0, 0, H5D_CHUNK_CACHE_W0_DEFAULT) >= 0 &&
        follow_links_as_by_default(list.get()))
        uncached_ = std::move(list);
    return uncached_.get();
}

}  // namespace vak
