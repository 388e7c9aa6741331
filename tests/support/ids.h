// Identifiers that close themselves; the probe's own, so that it depends on HDF5 alone.
#pragma once

#include <hdf5.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace vak::test {

template <herr_t (*close_id)(hid_t)>
class Id {
public:
    Id(hid_t id, const std::string& what) : id_(id)
    {
        if (id_ < 0) throw std::runtime_error("cannot open " + what);
    }
    Id(Id&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
    Id(const Id&) = delete;
    Id& operator=(const Id&) = delete;
    Id& operator=(Id&&) = delete;
    ~Id()
    {
        if (id_ >= 0) close_id(id_);
    }
    operator hid_t() const { return id_; }

private:
    hid_t id_;
};

using FileId = Id<H5Fclose>;
using ObjectId = Id<H5Oclose>;
using AttributeId = Id<H5Aclose>;
using SpaceId = Id<H5Sclose>;
using TypeId = Id<H5Tclose>;
using PropertiesId = Id<H5Pclose>;

// Opens quietly: a missing object is told by the exception, not by HDF5's text.
template <class Open>
hid_t quietly(Open open)
{
    hid_t id = H5I_INVALID_HID;
    H5E_BEGIN_TRY { id = open(); }
    H5E_END_TRY
    return id;
}

inline FileId read_file(const std::string& name)
{
    return {quietly([&] { return H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT); }), name};
}

inline FileId edit_file(const std::string& name)
{
    return {quietly([&] { return H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT); }), name};
}

inline FileId create_file(const std::string& name)
{
    return {quietly([&] { return H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT); }), name};
}

inline ObjectId open_object(hid_t location, const std::string& path)
{
    return {quietly([&] { return H5Oopen(location, path.c_str(), H5P_DEFAULT); }), path};
}

inline AttributeId open_attribute(hid_t location, const std::string& object, const std::string& name)
{
    return {quietly([&] {
                return H5Aopen_by_name(location, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
            }),
            "attribute " + name + " of " + object};
}

}  // namespace vak::test
