// The fixture of the tests of property tables.
#pragma once

#include "samples/properties.h"

#include "support/block_test.h"

namespace vak::test {

class PropertiesTest : public BlockTest {
protected:
    ObjectId group(const std::string& name)
    {
        return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }

    Result write_into(const PropertyTables& sample, hid_t group)
    {
        return run([&] { return sample.write_into(group); });
    }
};

constexpr int32_t every_table = 1 + 2 + 4 + 8;

}  // namespace vak::test
