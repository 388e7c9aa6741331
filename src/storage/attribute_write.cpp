// Writing attributes: created when missing, else rewritten in place when class and shape agree.
#include <cstdio>

#include "storage/element_type.h"
#include "storage/shape.h"

namespace vak {

namespace {

struct Value {
    const char* name;
    const void* data;
    int32_t type;
    size_t data_size;
    size_t vak_size;
    std::span<const hsize_t> dims;
    hid_t object;
    SharedIds& ids;
    int32_t type_class;
    hid_t memory_type;
};

int32_t fail(const Value& v, int32_t number, int64_t error)
{
    std::fprintf(
        stderr,
        "VAK INTERNAL ERROR (%d) in VAK_H5Awrite - name, vak_type, data_size, vak_size, error: %s %d %zu %zu %d\n",
        number, v.name, v.type, v.data_size, v.vak_size, static_cast<int32_t>(error));
    return -1000 - number;
}

int32_t write(const Value& v, Attribute attribute, hid_t memory_type)
{
    const herr_t written = H5Awrite(attribute.get(), memory_type, v.data);
    if (written < 0) return fail(v, 999, written);
    return attribute.close() ? 0 : fail(v, 999, -1);
}

int32_t create(const Value& v)
{
    const Space own(v.dims.empty()
                        ? H5I_INVALID_HID
                        : H5Screate_simple(static_cast<int>(v.dims.size()), v.dims.data(), nullptr));
    const hid_t space = v.dims.empty() ? v.ids.scalar() : own.get();
    if (space < 0) return fail(v, 40, space);
    const hid_t memory_type = v.type == text_type ? v.ids.text(v.data_size) : v.memory_type;
    const hid_t type = stored_type(v.type, v.vak_size, v.ids);
    Attribute attribute(H5Acreate2(v.object, v.name, type, space, H5P_DEFAULT, H5P_DEFAULT));
    if (!attribute.valid()) return fail(v, 100, attribute.get());
    const int32_t status = write(v, std::move(attribute), memory_type);
    if (status != 0) H5Adelete(v.object, v.name);  // it would read as zeros
    return status;
}

int32_t check_shape(const Value& v, const Attribute& attribute)
{
    const Space space(H5Aget_space(attribute.get()));
    const int32_t rank = H5Sget_simple_extent_ndims(space.get());
    if (rank != static_cast<int32_t>(v.dims.size())) return fail(v, 20, rank);
    Extents extents;
    H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
    for (size_t i = 0; i < v.dims.size(); ++i)
        if (extents[i] != v.dims[i]) return fail(v, 30, static_cast<int64_t>(i));
    return 0;
}

int32_t rewrite(const Value& v)
{
    Attribute attribute(H5Aopen(v.object, v.name, H5P_DEFAULT));
    if (!attribute.valid()) return fail(v, 100, attribute.get());
    FoundType found(H5Aget_type(attribute.get()));
    if (found.type_class != v.type_class) return fail(v, 10, found.type_class);
    // A single value goes into any shape of one element; more would take what stands behind it in memory.
    if (v.dims.empty() && H5Aget_storage_size(attribute.get()) != found.size) return fail(v, 999, -1);
    if (!v.dims.empty())
        if (const int32_t status = check_shape(v, attribute)) return status;
    const hid_t memory_type = memory_type_beside(found, v.type, v.memory_type, v.data_size);
    return write(v, std::move(attribute), memory_type);
}

}  // namespace

int32_t VAK_H5Awrite(const char* name, const void* data, int32_t type, size_t data_size, size_t vak_size,
                     const hsize_t* dims, int32_t rank, const Location& location)
{
    SharedIds own;
    const bool known = known_shape(dims, rank);
    Value v{name,        data,
            type,        data_size,
            vak_size,    shape(dims, known ? rank : 0),
            location.id, location.shared ? *location.shared : own,
            0,           0};
    hid_t unused;
    if (!known) return fail(v, 40, -1);
    if (has_entry(v.dims, 0)) return 0;
    if (VAK_H5gettype(type, data_size, &v.type_class, &v.memory_type) < 0) return fail(v, 1, -1);
    if (VAK_H5gettype(type, vak_size, &v.type_class, &unused) < 0) return fail(v, 2, -1);
    if (type != real_type && vak_size < data_size) return fail(v, 3, 0);
    if (data == nullptr || !elements_of(v.dims, std::max(data_size, vak_size))) return fail(v, 999, -1);
    return !location.is_new && H5Aexists(v.object, name) > 0 ? rewrite(v) : create(v);
}

}  // namespace vak
