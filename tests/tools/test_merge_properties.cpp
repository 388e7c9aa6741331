// Properties of several domains joined by entity.
#include <gtest/gtest.h>

#include "samples/properties.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

// The current family alone has these.
class MergeProperties : public MergeTest {
protected:
    MergeProperties() : MergeTest(Family::current) {}

    static constexpr const char* place = "constant/properties/SHELL/vakblock";

    static void put(hid_t domain, const PropertyTables& p)
    {
        const ObjectId group(open_or_create_group(domain, place).group.release(), place);
        EXPECT_EQ(p.write_into(group), 0);
    }
    static PropertyTables table(std::vector<int32_t> ids, int32_t mark)
    {
        PropertyTables p;
        p.nent = static_cast<int32_t>(ids.size());
        p.nbid = p.nbint = p.nbfloat = p.nbstring = 1;
        p.entid = std::move(ids);
        p.idparam.assign(p.entid.size(), mark);
        p.iparam.assign(p.entid.size(), -mark);
        p.fparam.assign(p.entid.size(), static_cast<float>(mark));
        p.cparam = std::string(p.entid.size() * 5, 'x');
        return p;
    }
};

TEST_F(MergeProperties, are_joined_by_entity)
{
    put(add_domain(), table({8, 6}, 1));
    put(add_domain(), table({6, 7}, 2));
    EXPECT_EQ(merge(1 + 4), 0);
    const std::string path = std::string(place) + "/";
    EXPECT_EQ(dataset_values<int32_t>(target(), path + "entid"), (std::vector<int32_t>{6, 7, 8}));
    EXPECT_EQ(dataset_values<int32_t>(target(), path + "idparam"), (std::vector<int32_t>{1, 2, 1}));
    EXPECT_EQ(dataset_values<int32_t>(target(), path + "iparam"), (std::vector<int32_t>{-1, -2, -1}));
    EXPECT_EQ(dataset_values<float>(target(), path + "fparam"), (std::vector<float>{1, 2, 1}));
    EXPECT_EQ(attribute_value<int32_t>(target(), place, "nent"), 3);
    EXPECT_THAT(printed().out, testing::HasSubstr(" target file: create 1 merged \"properties\" block(s)\n"));
}

TEST_F(MergeProperties, of_another_form_are_left_out_with_a_warning)
{
    put(add_domain(), table({8, 6}, 1));
    PropertyTables other = table({7, 9}, 2);
    other.nbint = 0;
    put(add_domain(), other);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(dataset_values<int32_t>(target(), std::string(place) + "/entid"), (std::vector<int32_t>{6, 8}));
    EXPECT_THAT(printed().err,
                testing::EndsWith("VAK WARNING file [1]: block key 500 \"" + std::string(place) +
                                  "\" differs in nbint from file [0] and is left out\n"));
}

}  // namespace
