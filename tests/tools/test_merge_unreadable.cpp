// What is in a domain file and cannot be read ends the merge: a target without it would look complete.
#include <gtest/gtest.h>

#include "tools/merge_failures.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeUnreadable : public MergeFailures {};

// What the catalogue lists nothing of would be missing in the target.
TEST_P(MergeUnreadable, key_of_a_block_is_told_with_its_path)
{
    const EntityResults r = results();
    add(r);
    const hid_t domain = add(r);
    {
        const ObjectId holder = open_object(domain, r.path() + header());
        EXPECT_GE(H5Adelete(holder, "block"), 0);
        const SpaceId space{H5Screate(H5S_SCALAR), "space"};
        const AttributeId attribute{
            H5Acreate2(holder, "block", H5T_IEEE_F32LE, space, H5P_DEFAULT, H5P_DEFAULT), "block"};
    }
    expect_failure(
        "VAK WARNING file [1]: \"" + r.path() + header() + "\" cannot be read\n" + reading("vakblock", 1),
        -1);
    EXPECT_EQ(layout(target(), "."), "\n");
}

TEST_P(MergeUnreadable, is_not_what_a_group_without_a_key_is)
{
    const EntityResults r = results();
    const hid_t domain = add(r);
    EXPECT_GE(H5Adelete_by_name(domain, (r.path() + header()).c_str(), "block", H5P_DEFAULT), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_FALSE(exists(target(), r.path()));
}

INSTANTIATE_TEST_SUITE_P(, MergeUnreadable, both_families, family_name);

}  // namespace
