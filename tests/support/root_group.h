// The group that VAK_OPEN gives, as a program begins and ends with it.
#pragma once

#include <hdf5.h>

#include <string>

#include "vak_sp.h"

namespace vak::test {

// Invalid when the call fails.
inline vak_id open_root(const std::string& name, int32_t option)
{
    const auto length = static_cast<int32_t>(name.size());
    const int32_t none = 0;
    vak_id group = H5I_INVALID_HID;
    int32_t ierr = 0;
    VAK_OPEN(name.data(), &length, "", &none, "", &none, &group, &none, &option, &ierr);
    return ierr == 0 ? group : H5I_INVALID_HID;
}

inline int32_t close_root(vak_id group)
{
    int32_t ierr = 0;
    VAK_CLOSE(&group, &ierr);
    return ierr;
}

}  // namespace vak::test
