// The bracket around every exported call.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <cstdio>
#include <new>

#include "frame/guarded_links.h"

namespace vak {

// Keeps HDF5's own error text off standard error, where only our line belongs, and restores
// the caller's setting, whichever of HDF5's two forms it has.
class QuietHdf5 {
public:
    QuietHdf5() noexcept
    {
        H5Eauto_is_v2(H5E_DEFAULT, &is_v2_);
        if (is_v2_) {
            H5Eget_auto2(H5E_DEFAULT, &print2_, &data_);
            H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
        } else {
            H5Eget_auto1(&print1_, &data_);
            H5Eset_auto1(nullptr, nullptr);
        }
    }
    ~QuietHdf5()
    {
        if (is_v2_)
            H5Eset_auto2(H5E_DEFAULT, print2_, data_);
        else
            H5Eset_auto1(print1_, data_);
    }
    QuietHdf5(const QuietHdf5&) = delete;
    QuietHdf5& operator=(const QuietHdf5&) = delete;

private:
    unsigned is_v2_ = 1;
    H5E_auto2_t print2_ = nullptr;
    H5E_auto1_t print1_ = nullptr;
    void* data_ = nullptr;
};

// Runs the body of an exported routine and gives its status; nothing is thrown past it.
template <class Body>
int32_t exported(Body body) noexcept
{
    const QuietHdf5 quiet;
    const GuardedDefault guard;
    try {
        return body();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "VAK ERROR - out of memory\n");
        return -1;
    }
}

}  // namespace vak
