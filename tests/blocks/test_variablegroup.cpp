#include "samples/variablegroup.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class VariableGroupBlock : public BlockTest {};

TEST_F(VariableGroupBlock, is_stored_as_described)
{
    const VariableGroup block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "constant/variablegroup/Mechanics/vakblock"), R"(
A block int32
A blocktype char[256]
A etypvar char[256]
A nvar int32
A ncoo int32
D cnt int32 [3] compact
D offs int32 [3] compact
D varkey char[256] [3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 32);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "variablegroup" + std::string(243, '\0'));
    EXPECT_EQ(dataset_texts(file, block.path() + "/varkey"),
              (std::vector{padded("DISP"), padded("STRESS"), padded("TEMP")}));
}

TEST_F(VariableGroupBlock, mode_3_reads_back_what_was_written)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(VariableGroupBlock, mode_1_reads_the_attributes_and_mode_2_the_arrays)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup block = emptied(written);
    EXPECT_EQ(read(block, 1), success);
    VariableGroup expected = emptied(written);
    expected.etypvar = written.etypvar;
    expected.nvar = 3;
    expected.ncoo = 10;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
}

TEST_F(VariableGroupBlock, another_mode_reads_nothing)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup block = emptied(written);
    EXPECT_EQ(read(block, 0), success);
    EXPECT_EQ(read(block, 4), success);
    EXPECT_EQ(listing(block), listing(emptied(written)));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_F(VariableGroupBlock, without_variables_has_no_arrays)
{
    for (const int32_t nvar : {0, -1}) {
        VariableGroup written;
        written.name = padded(std::to_string(nvar));
        written.nvar = nvar;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("D ")));
        VariableGroup block = emptied(written);
        EXPECT_EQ(read(block, 3), success);
        EXPECT_EQ(block.nvar, nvar);
        EXPECT_EQ(block.found_flags, untouched);
    }
}

TEST_F(VariableGroupBlock, second_write_is_refused_and_leaves_the_first)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup second;
    second.cnt = {0, 0, 0};
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 32 - \"variablegroup\" already exists.\n"));
    VariableGroup block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
}

TEST_F(VariableGroupBlock, filters_are_those_asked_for)
{
    VariableGroup written;
    written.nvar = 8;
    written.cnt = written.offs = {1, 2, 3, 4, 5, 6, 7, 8};
    written.varkey = fields({"a", "b", "c", "d", "e", "f", "g", "h"});
    written.flags = 1 + 4 + 64;
    written.params[1] = 9;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("varkey char[256] [8] chunked(8) deflate(9)\n"));
    VariableGroup block = emptied(written);
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 4 + 64);
    EXPECT_EQ(block.found_params[1], 9);
}

TEST_F(VariableGroupBlock, null_arrays_are_checked_and_not_delivered)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 3), success);
    EXPECT_EQ(block.cnt, emptied(written).cnt);
    falsify_attribute(written.path(), "nvar", 2);
    EXPECT_EQ(read(block, 3), failure(-6030,
                                      "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: cnt 2 4 0\n"));
}

TEST_F(VariableGroupBlock, no_group_and_a_wrong_or_missing_key_are_reported)
{
    const VariableGroup written;
    EXPECT_EQ(write(written), success);
    VariableGroup block = emptied(written);
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 3); }),
              failure(-1, "VAK ERROR - header not found\n"));
    falsify_attribute(written.path(), "block", 30);
    EXPECT_EQ(read(block, 3), failure(-1, "VAK ERROR - wrong block key 30, 32 expected\n"));
    H5Adelete_by_name(file, written.path().c_str(), "block", H5P_DEFAULT);
    EXPECT_EQ(read(block, 3), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

}  // namespace

}  // namespace vak::test
