// HDF5 identifiers that close themselves.
#pragma once

#include <hdf5.h>

#include <utility>

namespace vak {

template <herr_t (*close_id)(hid_t)>
class Hdf5Id {
public:
    explicit Hdf5Id(hid_t id = H5I_INVALID_HID) : id_(id) {}
    Hdf5Id(Hdf5Id&& other) noexcept : id_(other.release()) {}
    Hdf5Id& operator=(Hdf5Id&& other) noexcept
    {
        std::swap(id_, other.id_);
        return *this;
    }
    Hdf5Id(const Hdf5Id&) = delete;
    Hdf5Id& operator=(const Hdf5Id&) = delete;
    ~Hdf5Id()
    {
        if (id_ >= 0) close_id(id_);
    }

    bool valid() const { return id_ >= 0; }
    hid_t get() const { return id_; }
    hid_t release() { return std::exchange(id_, H5I_INVALID_HID); }

    // Closes now, for callers that must know whether what was written reached the file.
    bool close()
    {
        const hid_t id = release();
        return id < 0 || close_id(id) >= 0;
    }

private:
    hid_t id_;
};

using File = Hdf5Id<H5Fclose>;
using Group = Hdf5Id<H5Gclose>;
using Dataset = Hdf5Id<H5Dclose>;
using Attribute = Hdf5Id<H5Aclose>;
using Space = Hdf5Id<H5Sclose>;
using Type = Hdf5Id<H5Tclose>;
using Properties = Hdf5Id<H5Pclose>;
using Object = Hdf5Id<H5Oclose>;

}  // namespace vak
