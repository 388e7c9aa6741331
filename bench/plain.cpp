#include "plain.h"

#include "duel.h"

#include <algorithm>

namespace plain {

using bench::must;

namespace {

constexpr hsize_t largest_compact = 24000;

hid_t text_type(size_t length)
{
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, length);
    H5Tset_strpad(type, H5T_STR_SPACEPAD);
    return type;
}

// The type in the file and in memory, to be closed.
hid_t type_of(const Field& f)
{
    switch (f.kind) {
        case Kind::text: return text_type(f.length);
        case Kind::integer: return H5Tcopy(H5T_NATIVE_INT32);
        case Kind::long_integer: return H5Tcopy(H5T_NATIVE_INT64);
        case Kind::real: break;
    }
    return H5Tcopy(H5T_NATIVE_FLOAT);
}

hsize_t elements_of(const Field& f)
{
    hsize_t n = 1;
    for (const hsize_t d : f.dims) n *= d;
    return n;
}

hid_t space_of(const Field& f)
{
    if (f.dims.empty()) return H5Screate(H5S_SCALAR);
    return H5Screate_simple(static_cast<int>(f.dims.size()), f.dims.data(), nullptr);
}

void set_filters(hid_t list, const Filters& filters)
{
    if (filters.digits >= 0) {
        const float fill = 10000;
        H5Pset_fill_value(list, H5T_NATIVE_FLOAT, &fill);
        H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, filters.digits);
    }
    if (filters.shuffle) H5Pset_shuffle(list);
    if (filters.deflate < 0) return;
    const auto level = static_cast<unsigned>(filters.deflate);
    H5Pset_filter(list, H5Z_FILTER_DEFLATE, H5Z_FLAG_MANDATORY, 1, &level);
}

hid_t creation_list(const Field& f, size_t element_size)
{
    const hid_t list = H5Pcreate(H5P_DATASET_CREATE);
    if (f.filters.any() && elements_of(f) >= 8) {
        H5Pset_chunk(list, static_cast<int>(f.dims.size()), f.dims.data());
        set_filters(list, f.filters);
    } else if (elements_of(f) * element_size <= largest_compact) {
        H5Pset_layout(list, H5D_COMPACT);
    }
    return list;
}

void write_attribute(hid_t group, const Field& f, hid_t type)
{
    const hid_t space = H5Screate(H5S_SCALAR);
    const hid_t attribute = H5Acreate2(group, f.name, type, space, H5P_DEFAULT, H5P_DEFAULT);
    must(H5Awrite(attribute, type, f.data), f.name);
    H5Aclose(attribute);
    H5Sclose(space);
}

void write_dataset(hid_t group, const Field& f, hid_t type)
{
    const hid_t space = space_of(f), list = creation_list(f, H5Tget_size(type));
    const hid_t dataset = H5Dcreate2(group, f.name, type, space, H5P_DEFAULT, list, H5P_DEFAULT);
    must(H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, f.data), f.name);
    H5Dclose(dataset);
    H5Pclose(list);
    H5Sclose(space);
}

void check_extents(hid_t dataset, const Field& f)
{
    const hid_t space = H5Dget_space(dataset);
    hsize_t dims[H5S_MAX_RANK];
    const int rank = H5Sget_simple_extent_dims(space, dims, nullptr);
    for (int i = 0; i < rank; ++i) must(dims[i] == f.dims[static_cast<size_t>(i)] ? 0 : -1, f.name);
    H5Sclose(space);
}

// What a reader tells its caller about the storage.
void ask_filters(hid_t dataset)
{
    const hid_t list = H5Dget_create_plist(dataset);
    const int n = H5Pget_nfilters(list);
    for (unsigned i = 0; i < static_cast<unsigned>(n); ++i) {
        unsigned flags = 0, values[20];
        size_t count = 20;
        must(H5Pget_filter2(list, i, &flags, &count, values, 0, nullptr, nullptr), "filters");
    }
    H5Pclose(list);
}

bool is_there(hid_t group, const Field& f)
{
    return (f.attribute ? H5Aexists(group, f.name) : H5Lexists(group, f.name, H5P_DEFAULT)) > 0;
}

// Of a field that was found; closes its type.
void check_type(hid_t found, hid_t type, const Field& f)
{
    must(H5Tget_class(found) == H5Tget_class(type) && H5Tget_size(found) <= H5Tget_size(type) ? 0 : -1,
         f.name);
    H5Tclose(found);
}

void read_attribute(hid_t group, const Field& f, hid_t type, Care care)
{
    const hid_t attribute = H5Aopen(group, f.name, H5P_DEFAULT);
    if (care == Care::asks) check_type(H5Aget_type(attribute), type, f);
    must(H5Aread(attribute, type, f.data), f.name);
    H5Aclose(attribute);
}

void read_dataset(hid_t group, const Field& f, hid_t type, Care care)
{
    const hid_t dataset = H5Dopen2(group, f.name, H5P_DEFAULT);
    if (care == Care::asks) check_type(H5Dget_type(dataset), type, f);
    check_extents(dataset, f);
    ask_filters(dataset);
    must(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, f.data), f.name);
    H5Dclose(dataset);
}

void read_carefully(hid_t group, const Field& f, Care care)
{
    if (care == Care::asks) must(is_there(group, f) ? 0 : -1, f.name);
    const hid_t type = type_of(f);
    f.attribute ? read_attribute(group, f, type, care) : read_dataset(group, f, type, care);
    H5Tclose(type);
}

hid_t memory_space(const Field& f, const Extents& count)
{
    return H5Screate_simple(static_cast<int>(f.dims.size()), count.data(), nullptr);
}

void write_selection(hid_t dataset, const Field& f, const Extents& count, const Extents& start)
{
    const hid_t type = type_of(f), space = H5Dget_space(dataset), memory = memory_space(f, count);
    H5Sselect_hyperslab(space, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr);
    must(H5Dwrite(dataset, type, memory, space, H5P_DEFAULT, f.data), f.name);
    H5Sclose(memory);
    H5Sclose(space);
    H5Tclose(type);
}

}  // namespace

Field attribute(const char* name, std::string& text)
{
    return {name, true, Kind::text, text.size(), {}, text.data(), {}};
}

Field attribute(const char* name, int32_t& value) { return {name, true, Kind::integer, 0, {}, &value, {}}; }

Field attribute(const char* name, int64_t& value)
{
    return {name, true, Kind::long_integer, 0, {}, &value, {}};
}

Field integers(const char* name, std::vector<hsize_t> dims, int32_t* data, Filters filters)
{
    return {name, false, Kind::integer, 0, std::move(dims), data, filters};
}

Field long_integers(const char* name, std::vector<hsize_t> dims, int64_t* data)
{
    return {name, false, Kind::long_integer, 0, std::move(dims), data, {}};
}

Field reals(const char* name, std::vector<hsize_t> dims, float* data, Filters filters)
{
    return {name, false, Kind::real, 0, std::move(dims), data, filters};
}

Field texts(const char* name, size_t length, hsize_t n, char* data, Filters filters)
{
    return {name, false, Kind::text, length, {n}, data, filters};
}

hid_t create_file(const std::string& name)
{
    const hid_t file = H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    must(file, "creating a file");
    return file;
}

hid_t open_file(const std::string& name)
{
    const hid_t file = H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
    must(file, "opening a file");
    return file;
}

void close_file(hid_t file) { must(H5Fclose(file), "closing a file"); }

hid_t make_groups(hid_t file, const std::string& path)
{
    hid_t group = H5Gopen2(file, "/", H5P_DEFAULT);
    for (size_t begin = 0; begin < path.size();) {
        const size_t end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        const hid_t next = H5Lexists(group, name.c_str(), H5P_DEFAULT) > 0
                               ? H5Gopen2(group, name.c_str(), H5P_DEFAULT)
                               : H5Gcreate2(group, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        must(next, name.c_str());
        H5Gclose(group);
        group = next;
        begin = end + 1;
    }
    return group;
}

void write(hid_t group, const Field& f)
{
    const hid_t type = type_of(f);
    f.attribute ? write_attribute(group, f, type) : write_dataset(group, f, type);
    H5Tclose(type);
}

void rewrite(hid_t group, const Field& f)
{
    if (H5Aexists(group, f.name) <= 0) return write(group, f);
    const hid_t type = type_of(f), attribute = H5Aopen(group, f.name, H5P_DEFAULT);
    must(H5Awrite(attribute, type, f.data), f.name);
    H5Aclose(attribute);
    H5Tclose(type);
}

void read(hid_t group, const Field& f) { read_carefully(group, f, Care::knows); }

void write_block(hid_t file, const std::string& path, const std::vector<Field>& fields, Care care)
{
    const hid_t group = make_groups(file, path);
    for (const Field& f : fields) {
        if (care == Care::asks) must(is_there(group, f) ? -1 : 0, f.name);
        write(group, f);
    }
    H5Gclose(group);
}

void read_block(hid_t file, const std::string& path, const std::vector<Field>& fields, Care care)
{
    const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
    for (const Field& f : fields) read_carefully(group, f, care);
    H5Gclose(group);
}

void read_attributes(hid_t file, const std::string& path, const std::vector<Field>& fields, Care care)
{
    const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
    for (const Field& f : fields)
        if (f.attribute) read_carefully(group, f, care);
    H5Gclose(group);
}

void create_growing(hid_t group, const Field& f, const std::vector<hsize_t>& chunk)
{
    const hid_t type = type_of(f), list = H5Pcreate(H5P_DATASET_CREATE);
    const auto rank = static_cast<int>(f.dims.size());
    std::vector<hsize_t> dims = f.dims, maximum = f.dims;
    dims[0] = 0;
    maximum[0] = H5S_UNLIMITED;
    const hid_t space = H5Screate_simple(rank, dims.data(), maximum.data());
    H5Pset_chunk(list, rank, chunk.data());
    set_filters(list, f.filters);
    const hid_t dataset = H5Dcreate2(group, f.name, type, space, H5P_DEFAULT, list, H5P_DEFAULT);
    must(dataset, f.name);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Pclose(list);
    H5Tclose(type);
}

void append(hid_t group, const Field& f)
{
    const hid_t dataset = H5Dopen2(group, f.name, H5P_DEFAULT), old_space = H5Dget_space(dataset);
    Extents dims{}, start{}, count{};
    H5Sget_simple_extent_dims(old_space, dims.data(), nullptr);
    start[0] = dims[0]++;
    std::copy(f.dims.begin(), f.dims.end(), count.begin());
    count[0] = 1;
    must(H5Dset_extent(dataset, dims.data()), f.name);
    H5Sclose(old_space);
    write_selection(dataset, f, count, start);
    H5Dclose(dataset);
}

void write_all_but_values(hid_t group, const std::vector<Field>& fields)
{
    for (const Field& f : fields)
        if (&f != &fields.back()) write(group, f);
    const Field& values = fields.back();
    const hid_t type = type_of(values), space = space_of(values);
    const hid_t dataset = H5Dcreate2(group, values.name, type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    must(dataset, values.name);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Tclose(type);
}

void write_slab(hid_t group, const Field& f, const Extents& count, const Extents& start)
{
    const hid_t dataset = H5Dopen2(group, f.name, H5P_DEFAULT);
    write_selection(dataset, f, count, start);
    H5Dclose(dataset);
}

void read_slab(hid_t group, const Field& f, const Extents& count, const Extents& start)
{
    const hid_t dataset = H5Dopen2(group, f.name, H5P_DEFAULT), type = type_of(f);
    const hid_t space = H5Dget_space(dataset), memory = memory_space(f, count);
    ask_filters(dataset);
    H5Sselect_hyperslab(space, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr);
    must(H5Dread(dataset, type, memory, space, H5P_DEFAULT, f.data), f.name);
    H5Sclose(memory);
    H5Sclose(space);
    H5Tclose(type);
    H5Dclose(dataset);
}

}  // namespace plain
