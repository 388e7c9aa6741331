// Blocks as the tests of the merger write them.
#pragma once

#include "samples/properties.h"
#include "support/block_test.h"

namespace vak::test {

// The element results writer leaves its group open.
template <class S>
void write_closed(const S& sample, hid_t file)
{
    EXPECT_GE(sample.write(file), 0);
    hid_t group = H5I_INVALID_HID;
    if (H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &group) == 1) H5Gclose(group);
}

// Where a listing finds it.
struct ListedProperties : PropertyTables {
    static std::string path() { return "properties/SHELL/vakblock"; }
    int32_t write(hid_t file) const { return write_into(open_or_create_group(file, path()).group.get()); }
};

}  // namespace vak::test
