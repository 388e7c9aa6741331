// Reading attributes: class, size and shape are checked before anything reaches the caller's memory.
#include <cstdio>
#include <cstring>
#include <vector>

#include "storage/element_type.h"
#include "storage/shape.h"

namespace vak {

namespace {

constexpr hsize_t largest_own_buffer = hsize_t{64} << 20;

struct Request {
    const char* name;
    void* data;
    int32_t type;
    size_t data_size;
    std::span<const hsize_t> dims;
};

int32_t fail(const Request& r, int32_t number, int64_t error)
{
    std::fprintf(stderr,
                 "VAK INTERNAL ERROR (%d) in VAK_H5Aread - name, vak_type, data_size, error: %s %d %zu %d\n",
                 number, r.name, r.type, r.data_size, static_cast<int32_t>(error));
    return -4000 - number;
}

int32_t check_size(const Request& r, size_t stored)
{
    if (r.type == real_type || stored <= r.data_size) return 0;
    return fail(r, r.type == text_type ? 10 : 11, static_cast<int64_t>(stored));
}

int32_t check_shape(const Request& r, const Attribute& attribute)
{
    const Space space(H5Aget_space(attribute.get()));
    Extents extents;
    const int32_t rank = H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
    if (rank != static_cast<int32_t>(r.dims.size())) return fail(r, 20, rank);
    for (size_t i = 0; i < r.dims.size(); ++i)
        if (extents[i] != r.dims[i]) return fail(r, 30, static_cast<int64_t>(i));
    return 0;
}

int32_t read(const Request& r, const Attribute& attribute, hid_t memory_type, void* place)
{
    const herr_t status = H5Aread(attribute.get(), memory_type, place);
    return status < 0 ? fail(r, 999, status) : 0;
}

// A single value is asked for, whatever the shape of the attribute: its first element.
int32_t read_first(const Request& r, const Attribute& attribute, hid_t memory_type, size_t stored)
{
    const hsize_t n = H5Aget_storage_size(attribute.get()) / stored;
    if (n == 0 || n > largest_own_buffer / std::max(stored, r.data_size)) return fail(r, 999, -1);
    if (r.data == nullptr) return 0;
    if (n == 1) return read(r, attribute, memory_type, r.data);
    std::vector<char> all(n * r.data_size);
    const int32_t status = read(r, attribute, memory_type, all.data());
    if (status == 0) std::memcpy(r.data, all.data(), r.data_size);
    return status;
}

int32_t read_array(const Request& r, const Attribute& attribute, hid_t memory_type)
{
    if (const int32_t status = check_shape(r, attribute)) return status;
    if (!elements_of(r.dims, r.data_size)) return fail(r, 999, -1);
    return r.data == nullptr ? 0 : read(r, attribute, memory_type, r.data);
}

}  // namespace

int32_t VAK_H5Aread(const char* name, void* data, int32_t type, size_t data_size, const hsize_t* dims,
                    int32_t rank, const Location& location, size_t* stored_size)
{
    const bool known = known_shape(dims, rank);
    const Request r{name, data, type, data_size, shape(dims, known ? rank : 0)};
    int32_t type_class;
    hid_t number;
    if (!known) return fail(r, 20, -1);
    if (has_entry(r.dims, 0)) return 0;
    if (VAK_H5gettype(type, data_size, &type_class, &number) < 0) return fail(r, 1, -1);
    const Attribute attribute(H5Aopen(location.id, name, H5P_DEFAULT));
    if (!attribute.valid()) return fail(r, 2, -1);
    FoundType found(H5Aget_type(attribute.get()));
    if (found.type_class != type_class) return fail(r, 3, found.type_class);
    const size_t stored = *stored_size = found.size;
    if (const int32_t status = check_size(r, stored)) return status;
    const hid_t memory_type = memory_type_beside(found, type, number, data_size);
    return r.dims.empty() ? read_first(r, attribute, memory_type, stored)
                          : read_array(r, attribute, memory_type);
}

}  // namespace vak
