// The legacy block of all variables of one entity type.
#include "samples/variables1.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class LegacyVariables : public BlockTest {};

// What the attributes of the block alone tell.
Variables1 header_of(const Variables1& written)
{
    Variables1 expected = emptied(written);
    expected.etypvar = written.etypvar;
    expected.idtrans = written.idtrans;
    expected.rank = written.rank;
    expected.ndim = written.ndim;
    expected.ncoo = written.ncoo;
    return expected;
}

TEST_F(LegacyVariables, are_stored_as_described)
{
    const Variables1 block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "constant/variables/NODE"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etypvar char[256]
A header/idtrans int32
A header/rank int32
A header/ndim int32
A header/ncoo int32
G data
D data/mbunit int32 [3] compact
D data/mdunit int32 [3] compact
D data/ubid int32 [3] compact
D data/ubexp float32 [3] compact
D data/udid int32 [1] compact
D data/udexp float32 [1] compact
D data/cname char[256] [3] compact
D data/cid int32 [3] compact
D data/comp int32 [3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path() + "/header", "block"), 30);
    EXPECT_EQ(attribute_text(file, block.path() + "/header", "blocktype"),
              "variables" + std::string(247, '\0'));
}

TEST_F(LegacyVariables, pass_2_reads_back_what_was_written)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    Variables1 block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(LegacyVariables, pass_1_reads_the_attributes_alone)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    Variables1 block = emptied(written);
    EXPECT_EQ(read(block, 1), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_F(LegacyVariables, another_pass_is_refused_behind_the_attributes)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    for (const int32_t pass : {0, 3, -1}) {
        Variables1 block = emptied(written);
        EXPECT_EQ(read(block, pass), failure(-3, "VAK INTERNAL ERROR reading block with key 30 \n"));
        EXPECT_EQ(listing(block), listing(header_of(written)));
    }
}

TEST_F(LegacyVariables, second_write_is_refused_and_leaves_the_first)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    Variables1 second;
    second.cid = {0, 0, 0};
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 30 - \"variables\" already exists.\n"));
    Variables1 block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
}

TEST_F(LegacyVariables, without_components_have_no_arrays)
{
    for (const int32_t ncoo : {0, -1}) {
        Variables1 written;
        written.etypvar = padded(std::to_string(ncoo));
        written.ncoo = ncoo;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("D ")));
        Variables1 block = emptied(written);
        EXPECT_EQ(read(block, 2), success);
        EXPECT_EQ(block.ncoo, ncoo);
    }
}

TEST_F(LegacyVariables, exponents_are_stored_exactly_and_in_the_size_asked_for)
{
    Variables1 written;
    written.units.mbunit = {8, 0, 0};
    written.units.ubid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.units.ubexp = std::vector<float>(8, 0.125F);
    written.flags = 255;
    written.params[1] = 3;
    written.real_size = 8;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("ubexp float64 [8] chunked(8) shuffle deflate(3)\n"));
    EXPECT_THAT(stored(written), testing::HasSubstr("udexp float64 [1] compact\n"));
    Variables1 block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 2 + 8 + 16 + 64);
    EXPECT_EQ(block.found_params[1], 3);
}

TEST_F(LegacyVariables, null_arrays_are_checked_and_not_delivered)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    Variables1 block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    falsify_dataset(written.path() + "/data/mbunit", {1, 1, 0});
    EXPECT_EQ(read(block, 2), failure(-6030,
                                      "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: ubid 2 4 0\n"));
    falsify_dataset(written.path() + "/data/mbunit", {-1, 4, 0});
    EXPECT_LT(read(block, 2).ierr, -6000);
}

TEST_F(LegacyVariables, no_group_and_a_wrong_or_missing_key_are_reported)
{
    const Variables1 written;
    EXPECT_EQ(write(written), success);
    Variables1 block = emptied(written);
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 2); }),
              failure(-1, "VAK ERROR - header not found\n"));
    falsify_attribute(written.path() + "/header", "block", 32);
    for (const int32_t pass : {2, 7})
        EXPECT_EQ(read(block, pass), failure(-1, "VAK ERROR - wrong block key 32, 30 expected\n"));
    H5Adelete_by_name(file, (written.path() + "/header").c_str(), "block", H5P_DEFAULT);
    EXPECT_EQ(read(block, 1), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

TEST_F(LegacyVariables, missing_subgroups_are_reported)
{
    const Variables1 written;
    for (const std::string section : {"data", "header"}) {
        EXPECT_EQ(write(written), success);
        H5Ldelete(file, (written.path() + "/" + section).c_str(), H5P_DEFAULT);
        Variables1 block = emptied(written);
        EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - " + section + " not found\n"));
        H5Ldelete(file, "constant", H5P_DEFAULT);
    }
}

}  // namespace

}  // namespace vak::test
