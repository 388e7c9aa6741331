#include "tools/same_contents.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "storage/storage.h"

namespace vak {

namespace {

constexpr hsize_t piece_bytes = hsize_t{16} << 20;

struct Names {
    std::vector<std::string> all;
    bool out_of_memory = false;
};

herr_t add(void* names, const char* name) noexcept
{
    auto* found = static_cast<Names*>(names);
    try {
        found->all.emplace_back(name);
        return 0;
    } catch (const std::bad_alloc&) {
        found->out_of_memory = true;
        return 1;
    }
}

std::vector<std::string> sorted(Names&& names)
{
    if (names.out_of_memory) throw std::bad_alloc();
    std::ranges::sort(names.all);
    return std::move(names.all);
}

std::vector<std::string> attribute_names(hid_t object)
{
    Names names;
    hsize_t at = 0;
    const auto visit = [](hid_t, const char* name, const H5A_info_t*, void* found) {
        return add(found, name);
    };
    H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_NATIVE, &at, visit, &names);
    return sorted(std::move(names));
}

bool same_form(const Type& type_a, const Type& type_b, const Space& a, const Space& b)
{
    return H5Tequal(type_a.get(), type_b.get()) > 0 && H5Sextent_equal(a.get(), b.get()) > 0 &&
           stands_alone(type_a);
}

bool same_attribute(hid_t a, hid_t b, const char* name)
{
    const Attribute of_a(H5Aopen(a, name, H5P_DEFAULT)), of_b(H5Aopen(b, name, H5P_DEFAULT));
    const Type type_a(H5Aget_type(of_a.get())), type_b(H5Aget_type(of_b.get()));
    const Space space_a(H5Aget_space(of_a.get())), space_b(H5Aget_space(of_b.get()));
    if (!same_form(type_a, type_b, space_a, space_b)) return false;
    const hsize_t bytes = H5Aget_storage_size(of_a.get());
    if (bytes == 0) return true;
    std::vector<char> values_a(bytes), values_b(bytes);
    return H5Aread(of_a.get(), type_a.get(), values_a.data()) >= 0 &&
           H5Aread(of_b.get(), type_a.get(), values_b.data()) >= 0 && values_a == values_b;
}

bool same_attributes(hid_t a, hid_t b)
{
    const std::vector<std::string> names = attribute_names(a);
    return names == attribute_names(b) && std::ranges::all_of(names, [&](const std::string& name) {
               return same_attribute(a, b, name.c_str());
           });
}

// A dataset of which rows of the first extent are compared.
struct Rows {
    hid_t dataset, type;
    const Space* space;
    size_t row_bytes;
    std::vector<hsize_t> dims;
};

bool read_rows(const Rows& r, hsize_t first, hsize_t n, std::vector<char>& values)
{
    std::vector<hsize_t> start(r.dims.size(), 0), count = r.dims;
    start[0] = first;
    count[0] = n;
    const Space memory(H5Screate_simple(static_cast<int>(count.size()), count.data(), nullptr));
    values.resize(n * r.row_bytes);
    return H5Sselect_hyperslab(r.space->get(), H5S_SELECT_SET, start.data(), nullptr, count.data(),
                               nullptr) >= 0 &&
           H5Dread(r.dataset, r.type, memory.get(), r.space->get(), H5P_DEFAULT, values.data()) >= 0;
}

bool same_values(const Dataset& a, const Dataset& b, const Type& type, const Space& space)
{
    const std::vector<hsize_t> dims = extents_of(a);
    if (dims.empty()) return false;
    if (std::ranges::find(dims, hsize_t{0}) != dims.end()) return true;
    const size_t row = row_bytes_of(dims, H5Tget_size(type.get()));
    if (row > most_row_bytes) return false;
    const hsize_t step = std::max(rows_at_once(a, dims, H5Tget_size(type.get())),
                                  rows_at_once(b, dims, H5Tget_size(type.get())));
    const Rows of_a{a.get(), type.get(), &space, row, dims}, of_b{b.get(), type.get(), &space, row, dims};
    std::vector<char> values_a, values_b;
    for (hsize_t at = 0; at < dims[0]; at += step) {
        const hsize_t n = std::min(step, dims[0] - at);
        if (!read_rows(of_a, at, n, values_a) || !read_rows(of_b, at, n, values_b) || values_a != values_b)
            return false;
    }
    return true;
}

bool same_dataset(hid_t a, hid_t b, const char* name)
{
    SharedIds ids;
    const Dataset of_a(H5Dopen2(a, name, ids.uncached())), of_b(H5Dopen2(b, name, ids.uncached()));
    const Type type_a(H5Dget_type(of_a.get())), type_b(H5Dget_type(of_b.get()));
    const Space space_a(H5Dget_space(of_a.get())), space_b(H5Dget_space(of_b.get()));
    return same_form(type_a, type_b, space_a, space_b) && same_values(of_a, of_b, type_a, space_a);
}

bool same_object(hid_t a, hid_t b, const char* name, int depth)
{
    const Group of_a(H5Gopen2(a, name, H5P_DEFAULT)), of_b(H5Gopen2(b, name, H5P_DEFAULT));
    if (!of_a.valid() && !of_b.valid()) return same_dataset(a, b, name);
    return of_a.valid() && of_b.valid() && same_contents(of_a.get(), of_b.get(), depth);
}

}  // namespace

bool stands_alone(const Type& stored)
{
    return H5Tis_variable_str(stored.get()) == 0 && H5Tdetect_class(stored.get(), H5T_VLEN) == 0 &&
           H5Tdetect_class(stored.get(), H5T_REFERENCE) == 0;
}

std::vector<std::string> names_in(hid_t group)
{
    Names names;
    hsize_t at = 0;
    const auto visit = [](hid_t, const char* name, const H5L_info2_t*, void* found) {
        return add(found, name);
    };
    H5Literate2(group, H5_INDEX_NAME, H5_ITER_NATIVE, &at, visit, &names);
    return sorted(std::move(names));
}

std::vector<hsize_t> extents_of(const Dataset& dataset)
{
    const Space space(H5Dget_space(dataset.get()));
    std::vector<hsize_t> dims(static_cast<size_t>(std::max(H5Sget_simple_extent_ndims(space.get()), 0)));
    H5Sget_simple_extent_dims(space.get(), dims.data(), nullptr);
    return dims;
}

size_t row_bytes_of(const std::vector<hsize_t>& dims, size_t element)
{
    size_t bytes = element;
    for (size_t i = 1; i < dims.size(); ++i)
        if (__builtin_mul_overflow(bytes, dims[i], &bytes)) return std::numeric_limits<size_t>::max();
    return bytes;
}

hsize_t rows_at_once(const Dataset& dataset, const std::vector<hsize_t>& dims, size_t element)
{
    const Properties list(H5Dget_create_plist(dataset.get()));
    std::vector<hsize_t> chunk(dims.size(), 1);
    if (H5Pget_layout(list.get()) == H5D_CHUNKED)
        H5Pget_chunk(list.get(), static_cast<int>(chunk.size()), chunk.data());
    const hsize_t chunks = piece_bytes / std::max<size_t>(row_bytes_of(dims, element), 1) / chunk[0];
    return std::max<hsize_t>(chunks, 1) * chunk[0];
}

bool same_contents(hid_t a, hid_t b, int depth)
{
    if (depth == 0 || !same_attributes(a, b)) return false;
    const std::vector<std::string> names = names_in(a);
    return names == names_in(b) && std::ranges::all_of(names, [&](const std::string& name) {
               return same_object(a, b, name.c_str(), depth - 1);
           });
}

}  // namespace vak
