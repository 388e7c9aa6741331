#include "storage/chunk_presence.h"

#include <vector>

#include "storage/hdf5_id.h"

namespace vak {

namespace {

constexpr size_t largest_element = 65536;

bool is_plain(hid_t type)
{
    const H5T_class_t type_class = H5Tget_class(type);
    const bool is_fixed_text = type_class == H5T_STRING && H5Tis_variable_str(type) == 0;
    return (type_class == H5T_INTEGER || type_class == H5T_FLOAT || is_fixed_text) &&
           H5Tget_size(type) <= largest_element;
}

// One value, which has the fill value where there is no chunk.
bool reads(hid_t dataset, const Extents& place)
{
    const Type type(H5Dget_type(dataset));
    if (!is_plain(type.get())) return false;
    std::vector<unsigned char> value(H5Tget_size(type.get()));
    const Space file(H5Dget_space(dataset));
    const Space memory(H5Screate(H5S_SCALAR));
    return H5Sselect_elements(file.get(), H5S_SELECT_SET, 1, place.data()) >= 0 &&
           H5Dread(dataset, type.get(), memory.get(), file.get(), H5P_DEFAULT, value.data()) >= 0;
}

}  // namespace

hsize_t stored_bytes(hid_t dataset, const Extents& place)
{
    hsize_t bytes = 0;
    return H5Dget_chunk_storage_size(dataset, place.data(), &bytes) < 0 ? 0 : bytes;
}

// A lookup that failed once may not fail again; one in a damaged list always does, and so does reading.
Chunk look_again(hid_t dataset, const Extents& place)
{
    if (stored_bytes(dataset, place) > 0) return Chunk::there;
    return reads(dataset, place) ? Chunk::absent : Chunk::not_told;
}

}  // namespace vak
