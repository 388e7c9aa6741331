// The walk as the tools use it.
#include "catalogue/walk.h"

#include "catalogue/catalogue_test.h"
#include "frame/exported.h"
#include "storage/refusal.h"

// clang-format off
MAY_REFUSE(herr_t, H5Pset_elink_cb, (hid_t l, H5L_elink_traverse_t f, void* d), (l, f, d))
// clang-format on

namespace vak::test {

class BlockWalk : public BothCatalogues {
protected:
    static Family family() { return GetParam().lookup == vak_lookup ? Family::current : Family::legacy; }
};
IN_BOTH_CATALOGUES(BlockWalk);

TEST_P(BlockWalk, lists_keys_and_paths)
{
    make("a", 10);
    make("b/c", 20);
    make_group(file, "vakheader");
    const Listing listing = list_blocks(family(), file);
    EXPECT_EQ(listing.status, 0);
    ASSERT_EQ(listing.blocks.size(), 3U);
    EXPECT_EQ(listing.blocks[0].key, 10);
    EXPECT_EQ(listing.blocks[0].path, block("a"));
    EXPECT_EQ(listing.blocks[1].key, 20);
    EXPECT_EQ(listing.blocks[1].path, block("b/c"));
    EXPECT_EQ(listing.blocks[2].key, 1);
    EXPECT_EQ(listing.blocks[2].path, "vakheader");
}

TEST_P(BlockWalk, without_the_guard_of_links_into_other_files_follows_none_and_is_incomplete)
{
    const QuietHdf5 quiet;
    make("a", 10);
    refused = "H5Pset_elink_cb";
    EXPECT_EQ(list_blocks(family(), file).status, 0);
    link_soft("/a", file, "soft");
    const Listing listing = list_blocks(family(), file);
    refused.clear();
    EXPECT_EQ(listing.status, 1);
    EXPECT_EQ(listing.blocks.size(), 1U);
}

TEST_P(BlockWalk, tells_a_bad_identifier)
{
    const Listing listing = list_blocks(family(), -1);
    EXPECT_EQ(listing.status, -1);
    EXPECT_TRUE(listing.blocks.empty());
}

TEST_P(BlockWalk, shows_each_block_with_its_group_and_a_header_without_one)
{
    make("a", 10);
    make_group(file, "vakheader");
    int blocks = 0, headers = 0;
    const auto visit = [&](const FoundBlock& found) {
        if (found.group < 0) return ++headers > 0;
        EXPECT_GT(H5Aexists(found.group, "block"), 0);
        return ++blocks > 0;
    };
    EXPECT_EQ(walk_blocks(family(), file, visit), 0);
    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(headers, 1);
}

TEST_P(BlockWalk, ends_when_the_visitor_says_so)
{
    for (const char* place : {"a", "b", "c/d"}) make(place, 10);
    int visited = 0;
    EXPECT_EQ(walk_blocks(family(), file, [&](const FoundBlock&) { return ++visited < 2; }), 0);
    EXPECT_EQ(visited, 2);
}

}  // namespace vak::test
