// Stored values read through plain HDF5.
#include "support/ids.h"
#include "support/probe.h"

namespace vak::test {

namespace {

template <class T>
hid_t memory_type();
template <>
hid_t memory_type<int32_t>()
{
    return H5T_NATIVE_INT32;
}
template <>
hid_t memory_type<int64_t>()
{
    return H5T_NATIVE_INT64;
}
template <>
hid_t memory_type<uint32_t>()
{
    return H5T_NATIVE_UINT32;
}
template <>
hid_t memory_type<float>()
{
    return H5T_NATIVE_FLOAT;
}
template <>
hid_t memory_type<double>()
{
    return H5T_NATIVE_DOUBLE;
}

size_t element_count(hid_t space) { return static_cast<size_t>(H5Sget_simple_extent_npoints(space)); }

void must(herr_t status, const std::string& what)
{
    if (status < 0) throw std::runtime_error("cannot read " + what);
}

std::vector<std::string> cut(const std::string& text, size_t length)
{
    std::vector<std::string> pieces;
    for (size_t at = 0; at < text.size(); at += length) pieces.push_back(text.substr(at, length));
    return pieces;
}

}  // namespace

template <class T>
std::vector<T> attribute_values(hid_t location, const std::string& object, const std::string& name)
{
    const AttributeId attribute = open_attribute(location, object, name);
    const SpaceId space(H5Aget_space(attribute), name);
    std::vector<T> values(element_count(space));
    must(H5Aread(attribute, memory_type<T>(), values.data()), name);
    return values;
}

template <class T>
std::vector<T> dataset_values(hid_t location, const std::string& path)
{
    const ObjectId dataset = open_object(location, path);
    const SpaceId space(H5Dget_space(dataset), path);
    std::vector<T> values(element_count(space));
    must(H5Dread(dataset, memory_type<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), path);
    return values;
}

template std::vector<int32_t> attribute_values<int32_t>(hid_t, const std::string&, const std::string&);
template std::vector<int64_t> attribute_values<int64_t>(hid_t, const std::string&, const std::string&);
template std::vector<uint32_t> attribute_values<uint32_t>(hid_t, const std::string&, const std::string&);
template std::vector<float> attribute_values<float>(hid_t, const std::string&, const std::string&);
template std::vector<double> attribute_values<double>(hid_t, const std::string&, const std::string&);
template std::vector<int32_t> dataset_values<int32_t>(hid_t, const std::string&);
template std::vector<int64_t> dataset_values<int64_t>(hid_t, const std::string&);
template std::vector<uint32_t> dataset_values<uint32_t>(hid_t, const std::string&);
template std::vector<float> dataset_values<float>(hid_t, const std::string&);
template std::vector<double> dataset_values<double>(hid_t, const std::string&);

std::vector<std::string> attribute_texts(hid_t location, const std::string& object, const std::string& name)
{
    const AttributeId attribute = open_attribute(location, object, name);
    const SpaceId space(H5Aget_space(attribute), name);
    const TypeId type(H5Aget_type(attribute), name);
    std::string text(element_count(space) * H5Tget_size(type), '\0');
    must(H5Aread(attribute, type, text.data()), name);
    return cut(text, H5Tget_size(type));
}

std::vector<std::string> dataset_texts(hid_t location, const std::string& path)
{
    const ObjectId dataset = open_object(location, path);
    const SpaceId space(H5Dget_space(dataset), path);
    const TypeId type(H5Dget_type(dataset), path);
    std::string text(element_count(space) * H5Tget_size(type), '\0');
    must(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), path);
    return cut(text, H5Tget_size(type));
}

std::string attribute_text(hid_t location, const std::string& object, const std::string& name)
{
    return attribute_texts(location, object, name).at(0);
}

std::vector<int64_t> dataset_extents(hid_t location, const std::string& path)
{
    const ObjectId dataset = open_object(location, path);
    const SpaceId space(H5Dget_space(dataset), path);
    std::vector<hsize_t> extents(static_cast<size_t>(H5Sget_simple_extent_ndims(space)));
    H5Sget_simple_extent_dims(space, extents.data(), nullptr);
    return {extents.begin(), extents.end()};
}

bool exists(hid_t location, const std::string& path)
{
    const hid_t id = quietly([&] { return H5Oopen(location, path.c_str(), H5P_DEFAULT); });
    return id >= 0 && H5Oclose(id) >= 0;
}

std::string padded(std::string_view text, size_t length)
{
    std::string field(text.substr(0, length));
    field.resize(length, ' ');
    return field;
}

std::string fields(const std::vector<std::string_view>& texts, size_t length)
{
    std::string all;
    for (const auto text : texts) all += padded(text, length);
    return all;
}

}  // namespace vak::test
