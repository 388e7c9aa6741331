#include "samples/activflags.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class ActivFlagsBlock : public BlockTest {};
class ActivFlagsInBothFamilies : public BothFamilies {
protected:
    std::string header(const ActivFlags& a) const { return a.path() + (legacy() ? "/header" : ""); }
    std::string data(const ActivFlags& a, const std::string& name) const
    {
        return a.path() + (legacy() ? "/data/" : "/") + name;
    }
};
INSTANTIATE_TEST_SUITE_P(, ActivFlagsInBothFamilies, both_families, family_name);

// What the attributes of the block alone tell.
ActivFlags header_of(const ActivFlags& written)
{
    ActivFlags expected = emptied(written);
    expected.etyp = written.etyp;
    expected.nent = written.nent;
    expected.index.nindex = written.index.nindex;
    expected.index.indexic = written.index.indexic;
    return expected;
}

TEST_F(ActivFlagsBlock, is_stored_as_described)
{
    const ActivFlags block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/activflags/ELEMENT/vakblock"), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A nent int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D entid int32 [4] compact
D status int32 [4] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 2100);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "activflags" + std::string(246, '\0'));
    EXPECT_EQ(dataset_values<int32_t>(file, block.path() + "/status"), block.status);
}

TEST_F(ActivFlagsBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(sample_of<ActivFlags>(Family::legacy)), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/activflags/ELEMENT"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyp char[256]
A header/nent int32
A header/nindex int32
A header/indexic int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/entid int32 [4] compact
D data/status int32 [4] compact
)");
}

TEST_P(ActivFlagsInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
    EXPECT_EQ(block.found_params[1], 0);
}

TEST_P(ActivFlagsInBothFamilies, pass_1_reads_the_attributes_alone)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(ActivFlagsInBothFamilies, pass_0_reads_the_index_values_too)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), success);
    auto expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(ActivFlagsInBothFamilies, another_pass_is_refused)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    for (const int32_t pass : {-1, 3})
        EXPECT_EQ(read(block, pass), failure(-3, "VAK INTERNAL ERROR reading block with key 2100 \n"));
    EXPECT_EQ(listing(block), listing(emptied(written)));
}

TEST_P(ActivFlagsInBothFamilies, second_write_is_refused_and_leaves_the_first)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto second = written;
    second.status = {9, 9, 9, 9};
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 2100 - \"activflags\" already exists.\n"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(ActivFlagsInBothFamilies, without_index_values_the_block_is_constant)
{
    auto written = sample<ActivFlags>();
    written.index.nindex = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(
        exists(file, std::string("constant/activflags/ELEMENT") + (legacy() ? "/index" : "/vakblock")));
    for (const int32_t pass : {0, 2}) {
        auto block = emptied(written);
        EXPECT_EQ(read(block, pass), success);
        EXPECT_EQ(block.index.indexident, emptied(written).index.indexident);
    }
}

TEST_P(ActivFlagsInBothFamilies, index_of_minus_1_is_multistate)
{
    auto written = sample<ActivFlags>();
    written.index.nindex = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(
        exists(file, std::string("multistate/activflags/ELEMENT") + (legacy() ? "/data" : "/vakblock")));
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("indexident")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(block.status, written.status);
}

TEST_P(ActivFlagsInBothFamilies, negative_state_nests_the_states_of_the_index)
{
    auto written = sample<ActivFlags>();
    written.state = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(
        exists(file, std::string("singlestate/state000000000005/state000000000004/activflags/ELEMENT") +
                         (legacy() ? "/data" : "/vakblock")));
}

TEST_P(ActivFlagsInBothFamilies, value_size_is_that_of_the_stored_index_values)
{
    for (const auto& [ivsize, real] :
         {std::pair{0, "float32"}, {-8, "float32"}, {4, "float32"}, {8, "float64"}}) {
        auto written = sample<ActivFlags>();
        written.ivsize = ivsize;
        written.state = ivsize + 100;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::HasSubstr(std::string("indexval ") + real + " [2] compact\n"));
    }
}

// There are no complex codes here: the size is taken as it is.
TEST_P(ActivFlagsInBothFamilies, other_value_sizes_are_refused_by_the_storage_layer)
{
    auto written = sample<ActivFlags>();
    written.ivsize = 16;
    EXPECT_EQ(write(written),
              failure(-3002,
                      "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: 3 16\n"
                      "VAK INTERNAL ERROR (3) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: indexval 3 4 16 0 -1\n"));
}

TEST_P(ActivFlagsInBothFamilies, index_values_alone_are_kept_from_scale_offset)
{
    auto written = sample<ActivFlags>();
    written.nent = 9;
    written.entid = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    written.status = {0, 1, 0, 1, 1, 1, 0, 0, 1};
    written.index.nindex = 8;
    written.index.indexident.assign(8, 5);
    written.index.indexval = some_values(8);
    written.flags = 255;
    written.params[1] = 5;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("indexval float32 [8] chunked(8) shuffle deflate(5)\n"));
    for (const char* name :
         {"indexident int32 [8] chunked(8)", "entid int32 [9] chunked(9)", "status int32 [9] chunked(9)"})
        EXPECT_THAT(
            stored(written),
            testing::HasSubstr(name + std::string(" scaleoffset(int,0) shuffle deflate(5) fill=10000\n")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 2 + 8 + 16 + 64);
    EXPECT_EQ(block.found_params[1], 5);
}

TEST_P(ActivFlagsInBothFamilies, null_arrays_are_checked_and_not_delivered)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), success);
    EXPECT_EQ(listing(block), listing(header_of(written)));
    H5Ldelete(file, data(written, "status").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 2), failure(-6002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: status 2 4 -1\n"));
}

TEST_P(ActivFlagsInBothFamilies, no_group_is_reported)
{
    auto block = sample<ActivFlags>();
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 2); }),
              failure(-1, "VAK ERROR - header not found\n"));
}

// The order of these words is the one that this kind has.
TEST_P(ActivFlagsInBothFamilies, wrong_key_is_reported_before_a_wrong_pass)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    falsify_attribute(header(written), "block", 2150);
    auto block = emptied(written);
    for (const int32_t pass : {1, 4})
        EXPECT_EQ(read(block, pass), failure(-1, "VAK ERROR wrong - block key 2150, 2100 expected\n"));
}

TEST_P(ActivFlagsInBothFamilies, missing_key_is_reported)
{
    const auto written = sample<ActivFlags>();
    EXPECT_EQ(write(written), success);
    H5Adelete_by_name(file, header(written).c_str(), "block", H5P_DEFAULT);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

TEST_F(ActivFlagsBlock, missing_legacy_subgroups_are_reported)
{
    const auto written = sample_of<ActivFlags>(Family::legacy);
    for (const std::string section : {"data", "index", "header"}) {
        EXPECT_EQ(write(written), success);
        H5Ldelete(file, (written.path() + "/" + section).c_str(), H5P_DEFAULT);
        ActivFlags block = emptied(written);
        EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - " + section + " not found\n"));
        H5Ldelete(file, "singlestate", H5P_DEFAULT);
    }
}

}  // namespace

}  // namespace vak::test
