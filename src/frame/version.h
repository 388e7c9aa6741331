// The versions of this library and of HDF5.
#pragma once

#include <cstdint>

namespace vak {

constexpr unsigned release[3] = {2, 2, 14};

struct Hdf5Version {
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
};

constexpr int32_t unfit_hdf5 = -998;
constexpr int32_t unknown_hdf5 = -999;

// Asks HDF5 for its version and whether it fits the one that this library is made for: 0 or one of the codes
// above.
int32_t check_hdf5(Hdf5Version& version);

}  // namespace vak
