// Plain HDF5 as the judge of our chunks: datasets of one chunk, written and read by HDF5's own filters or
// chunk by chunk as stored bytes. Every step opens the dataset anew, so that nothing is answered from a
// cache.
#pragma once

#include <hdf5.h>

#include <string>
#include <type_traits>
#include <vector>

#include "support/ids.h"

namespace vak::test {

template <class T>
hid_t native_type()
{
    if constexpr (std::is_same_v<T, float>) return H5T_NATIVE_FLOAT;
    if constexpr (std::is_same_v<T, double>) return H5T_NATIVE_DOUBLE;
    if constexpr (std::is_same_v<T, int32_t>) return H5T_NATIVE_INT32;
    return H5T_NATIVE_INT64;
}

struct Recipe {
    bool scale_offset = true;
    int factor = 0;
    double fill = 10000;
    bool fill_defined = true;
    bool shuffle = false;
    int deflate = -1;  // level
};

struct ChunkBytes {
    std::vector<unsigned char> bytes;
    uint32_t mask = 0;

    bool operator==(const ChunkBytes&) const = default;
};

inline ObjectId open_dataset(hid_t file, const std::string& name) { return open_object(file, name); }

template <class T>
PropertiesId creation_list(const Recipe& recipe, hsize_t count)
{
    PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
    H5Pset_chunk(list, 1, &count);
    const T fill = static_cast<T>(recipe.fill);
    H5Pset_fill_value(list, native_type<T>(), recipe.fill_defined ? &fill : nullptr);
    // Not by H5Pset_scaleoffset, which has no negative factors.
    const unsigned form[] = {std::is_integral_v<T> ? H5Z_SO_INT : H5Z_SO_FLOAT_DSCALE,
                             static_cast<unsigned>(recipe.factor)};
    if (recipe.scale_offset) H5Pset_filter(list, H5Z_FILTER_SCALEOFFSET, H5Z_FLAG_OPTIONAL, 2, form);
    if (recipe.shuffle) H5Pset_shuffle(list);
    if (recipe.deflate >= 0) H5Pset_deflate(list, static_cast<unsigned>(recipe.deflate));
    return list;
}

template <class T>
void make_dataset(hid_t file, const std::string& name, const Recipe& recipe, hsize_t count)
{
    const SpaceId space(H5Screate_simple(1, &count, nullptr), "space");
    const auto list = creation_list<T>(recipe, count);
    const ObjectId dataset(
        H5Dcreate2(file, name.c_str(), native_type<T>(), space, H5P_DEFAULT, list, H5P_DEFAULT), name);
}

template <class T>
bool write_by_hdf5(hid_t file, const std::string& name, const std::vector<T>& values)
{
    const auto dataset = open_dataset(file, name);
    return H5Dwrite(dataset, native_type<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) >= 0;
}

// Empty when HDF5 cannot read it.
template <class T>
std::vector<T> read_by_hdf5(hid_t file, const std::string& name, size_t count)
{
    const auto dataset = open_dataset(file, name);
    std::vector<T> values(count);
    herr_t status = -1;
    H5E_BEGIN_TRY
    {
        status = H5Dread(dataset, native_type<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    }
    H5E_END_TRY
    return status < 0 ? std::vector<T>() : values;
}

inline ChunkBytes stored_chunk(hid_t file, const std::string& name)
{
    const auto dataset = open_dataset(file, name);
    const hsize_t origin[H5S_MAX_RANK] = {};
    hsize_t size = 0;
    H5Dget_chunk_storage_size(dataset, origin, &size);
    ChunkBytes chunk;
    chunk.bytes.resize(size);
    H5Dread_chunk(dataset, H5P_DEFAULT, origin, &chunk.mask, chunk.bytes.data());
    return chunk;
}

inline bool store_chunk(hid_t file, const std::string& name, const ChunkBytes& chunk)
{
    const auto dataset = open_dataset(file, name);
    const hsize_t origin[H5S_MAX_RANK] = {};
    return H5Dwrite_chunk(dataset, H5P_DEFAULT, chunk.mask, origin, chunk.bytes.size(), chunk.bytes.data()) >=
           0;
}

}  // namespace vak::test
