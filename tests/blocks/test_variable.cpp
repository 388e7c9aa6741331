#include "samples/variable.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class VariableBlock : public BlockTest {};

// What the attributes of the block alone tell.
Variable header_of(const Variable& written)
{
    Variable expected = emptied(written);
    expected.varkey = written.varkey;
    expected.varclass = written.varclass;
    expected.varnam = written.varnam;
    expected.ncoo = written.ncoo;
    expected.rank = written.rank;
    expected.ndim = written.ndim;
    expected.tensor = written.tensor;
    expected.value_type = written.value_type;
    expected.lenb = written.lenb;
    expected.lend = written.lend;
    expected.lvmap = written.lvmap;
    expected.subslen = written.subslen;
    return expected;
}

TEST_F(VariableBlock, is_stored_as_described)
{
    const Variable block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "constant/variable/DISP/vakblock"), R"(
A block int32
A blocktype char[256]
A varkey char[256]
A varclass char[256]
A varnam char[256]
A ncoo int32
A rank int32
A ndim int32
A tensor int32
A type char[256]
A lenb int32
A lend int32
A lvmap int32
A subslen int32
D mbunit int32 [3] compact
D mdunit int32 [3] compact
D ubid int32 [3] compact
D ubexp float32 [3] compact
D udid int32 [1] compact
D udexp float32 [1] compact
D subscr char[1] [4] compact
D subscnt int32 [3] compact
D subsoffs int32 [3] compact
D vmap float32 [3,2] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 30);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "variable" + std::string(248, '\0'));
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "lenb"), 3);
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "lend"), 1);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/vmap"), block.vmap);
    EXPECT_EQ(dataset_texts(file, block.path() + "/subscr"), (std::vector<std::string>{"x", "y", "z", "z"}));
}

TEST_F(VariableBlock, mode_3_reads_back_what_was_written)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(VariableBlock, mode_1_reads_the_counts_and_mode_2_what_they_call_for)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 1), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(VariableBlock, another_mode_reads_nothing)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    for (const int32_t mode : {0, 4, -4}) {
        Variable block = emptied(written);
        EXPECT_EQ(read(block, mode), success);
        EXPECT_EQ(listing(block), listing(emptied(written)));
        EXPECT_EQ(block.found_flags, untouched);
    }
}

TEST_F(VariableBlock, without_subscripts_has_no_subscript_datasets)
{
    for (const int32_t subslen : {0, -2}) {
        Variable written;
        written.varkey = padded(std::to_string(subslen));
        written.subslen = subslen;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("subsc")));
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("subsoffs")));
        Variable block = emptied(written);
        EXPECT_EQ(read(block, 3), success);
        EXPECT_EQ(block.vmap, written.vmap);
        EXPECT_EQ(block.subscnt, emptied(written).subscnt);
    }
}

TEST_F(VariableBlock, without_a_map_or_without_a_rank_has_no_vmap)
{
    for (const auto& [lvmap, rank] : {std::pair{0, 1}, {-1, 2}, {1, 0}, {1, -1}}) {
        Variable written;
        written.varkey = padded(std::to_string(lvmap) + "." + std::to_string(rank));
        written.lvmap = lvmap;
        written.rank = rank;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("D vmap")));
        Variable block = emptied(written);
        EXPECT_EQ(read(block, 3), success);
        EXPECT_EQ(block.vmap, emptied(written).vmap);
    }
}

TEST_F(VariableBlock, map_has_an_extent_for_each_rank)
{
    Variable written;
    written.ncoo = 6;
    written.rank = 2;
    written.ndim = 3;
    written.lvmap = 5;
    written.subslen = 0;
    written.units.mbunit = written.units.mdunit = {0, 0, 0, 0, 0, 0};
    written.vmap.assign(54, 0.5F);
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("vmap float32 [6,3,3] compact\n"));
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(block.vmap, written.vmap);
}

TEST_F(VariableBlock, map_of_more_extents_than_can_be_stored_is_refused)
{
    for (const int32_t rank : {31, 32, 1000, 2147483647}) {  // with ncoo, 32 extents are one too many
        Variable written;
        written.varkey = padded(std::to_string(rank));
        written.ndim = 1;
        written.rank = rank;
        EXPECT_EQ(
            write(written),
            failure(-2040,
                    "VAK INTERNAL ERROR (40) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                    "error: vmap 3 4 4 0 -1\n"));
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("D vmap")));
    }
}

TEST_F(VariableBlock, without_components_counts_no_units)
{
    for (const int32_t ncoo : {0, -3}) {
        Variable written;
        written.varkey = padded(std::to_string(ncoo));
        written.ncoo = ncoo;
        EXPECT_EQ(write(written), success);
        Variable block = emptied(written);
        EXPECT_EQ(read(block, 3), success);
        EXPECT_EQ(block.lenb, 0);
        EXPECT_EQ(block.lend, 0);
        EXPECT_EQ(block.ncoo, ncoo);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("D ub")));
    }
}

TEST_F(VariableBlock, sums_that_no_count_can_hold_are_refused_before_anything_is_written)
{
    for (const std::vector<int32_t>& units :
         {std::vector<int32_t>{2147483647, 1, 0}, std::vector<int32_t>{5, -1, 0}}) {
        Variable base, derived;
        base.units.mbunit = derived.units.mdunit = units;
        for (const Variable& block : {base, derived})
            EXPECT_EQ(write(block), failure(-3, "VAK ERROR writing block key 30\n"));
        EXPECT_FALSE(exists(file, "constant"));
    }
}

TEST_F(VariableBlock, second_write_is_refused_and_leaves_the_first)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    Variable second;
    second.varnam = padded("other");
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 30 - \"variable\" already exists.\n"));
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
}

TEST_F(VariableBlock, key_may_be_a_plain_string_or_fill_its_field)
{
    Variable written;
    written.varkey = std::string("DISP") + '\0' + std::string(251, 'x');
    EXPECT_EQ(write(written), success);
    EXPECT_EQ(attribute_text(file, "constant/variable/DISP/vakblock", "varkey"),
              "DISP" + std::string(252, '\0'));
    written.varkey = std::string(256, 'v');
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(exists(file, "constant/variable/" + std::string(256, 'v') + "/vakblock"));
}

TEST_F(VariableBlock, reals_are_stored_exactly_and_in_the_size_asked_for)
{
    Variable written;
    written.ncoo = 8;
    written.units.mbunit = written.units.mdunit = {1, 1, 1, 1, 1, 1, 1, 1};
    written.units.ubid = written.units.udid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.units.ubexp = written.units.udexp = std::vector<float>(8, 0.125F);
    written.subslen = 8;
    written.subscr = "abcdefgh";
    written.subscnt = written.subsoffs = {0, 1, 2, 3, 4, 5, 6, 7};
    written.vmap = std::vector<float>(16, 1.5F);
    written.lenb = written.lend = 8;
    written.flags = 255;
    written.params[0] = 1;
    written.params[1] = 4;
    written.real_size = 8;
    EXPECT_EQ(write(written), success);
    for (const char* real :
         {"ubexp float64 [8] chunked(8)", "udexp float64 [8] chunked(8)", "vmap float64 [8,2] chunked(8,2)"})
        EXPECT_THAT(stored(written), testing::HasSubstr(real + std::string(" shuffle deflate(4)\n")));
    EXPECT_THAT(stored(written), testing::HasSubstr("subscr char[1] [8] chunked(8) shuffle deflate(4)\n"));
    EXPECT_THAT(
        stored(written),
        testing::HasSubstr("mbunit int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(4) fill=10000\n"));
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 2 + 4 + 8 + 16 + 32 + 64);
    EXPECT_EQ(block.found_params[0], 0);
    EXPECT_EQ(block.found_params[1], 4);
}

TEST_F(VariableBlock, null_arrays_are_checked_and_not_delivered)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    Variable block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    H5Ldelete(file, (written.path() + "/subsoffs").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 3), failure(-6002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: subsoffs 2 4 -1\n"));
}

TEST_F(VariableBlock, counts_that_are_not_those_of_the_arrays_are_refused)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    falsify_attribute(written.path(), "lenb", 2);
    Variable block = emptied(written);
    EXPECT_EQ(read(block, 3), failure(-6030,
                                      "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: ubid 2 4 0\n"));
}

TEST_F(VariableBlock, no_group_and_a_wrong_or_missing_key_are_reported)
{
    const Variable written;
    EXPECT_EQ(write(written), success);
    Variable block = emptied(written);
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 3); }),
              failure(-1, "VAK ERROR - header not found\n"));
    falsify_attribute(written.path(), "block", 32);
    EXPECT_EQ(read(block, 3), failure(-1, "VAK ERROR - wrong block key 32, 30 expected\n"));
    H5Adelete_by_name(file, written.path().c_str(), "block", H5P_DEFAULT);
    EXPECT_EQ(read(block, 3), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
    EXPECT_EQ(listing(block), listing(emptied(written)));
}

}  // namespace

}  // namespace vak::test
