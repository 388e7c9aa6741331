// Domain files that lie or are damaged: the fixture of the tests that make them.
#pragma once

#include <string>
#include <vector>

#include "samples/entityresults.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

namespace vak::test {

class MergeFailures : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeFailures() : MergeTest(GetParam()) {}

    template <class S>
    hid_t add(const S& sample)
    {
        const hid_t domain = add_domain();
        put_header(domain);
        EXPECT_GE(sample.write(domain), 0);
        return domain;
    }
    EntityResults results() const
    {
        auto r = sample_of<EntityResults>(family());
        r.zone.dmpswitch = 0;
        return r;
    }

    void set_attribute(hid_t domain, const std::string& block, const std::string& name, int32_t value) const
    {
        const ObjectId holder = open_object(domain, block + header());
        const AttributeId attribute = open_attribute(holder, ".", name);
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &value), 0);
    }
    void remove(hid_t domain, const std::string& dataset) const
    {
        EXPECT_GE(H5Ldelete(domain, dataset.c_str(), H5P_DEFAULT), 0);
    }
    // Puts an empty array of that type and shape in the place of a dataset.
    void replace(hid_t domain, const std::string& dataset, hid_t type, const std::vector<hsize_t>& extents,
                 hid_t creation = H5P_DEFAULT) const
    {
        remove(domain, dataset);
        const SpaceId space{H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr),
                            "space"};
        const ObjectId made{
            H5Dcreate2(domain, dataset.c_str(), type, space, H5P_DEFAULT, creation, H5P_DEFAULT), dataset};
    }

    // The merge ends with a line for that step and tells of no success.
    void expect_failure(const std::string& step, int32_t expected)
    {
        const int32_t status = merge(1 + 4);
        EXPECT_EQ(status, expected) << printed();
        EXPECT_THAT(printed().err,
                    testing::EndsWith(step + std::to_string(status) +
                                      (step.find("reading") != std::string::npos ? " \n" : "\n")));
        EXPECT_THAT(printed().out, testing::Not(testing::HasSubstr("successfully")));
    }
    static std::string reading(const std::string& type, int32_t pass = 2)
    {
        return "\nVAK ERROR reading \"" + type + "\" block pass " + std::to_string(pass) + " - error code = ";
    }
    static std::string writing(const std::string& type)
    {
        return "\nVAK ERROR writing \"" + type + "\" block - error code = ";
    }
};

}  // namespace vak::test
