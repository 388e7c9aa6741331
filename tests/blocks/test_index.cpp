#include "samples/indices.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class IndexBlock : public BlockTest {};
class IndexInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, IndexInBothFamilies, both_families, family_name);

Indices legacy_indices() { return sample_of<Indices>(Family::legacy); }

TEST_F(IndexBlock, is_stored_as_described)
{
    EXPECT_EQ(write(Indices()), success);
    EXPECT_EQ(layout(file, "constant/indices/vakblock"), R"(
A block int32
A blocktype char[256]
A nindex int32
A etypvar char[256]
)");
    EXPECT_EQ(attribute_value<int32_t>(file, "constant/indices/vakblock", "block"), 20);
    EXPECT_EQ(attribute_text(file, "constant/indices/vakblock", "blocktype"),
              std::string("indices") + std::string(249, '\0'));
}

TEST_F(IndexBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(legacy_indices()), success);
    EXPECT_EQ(layout(file, "constant/indices"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/nindex int32
G data
D data/etypindex char[256] [3] compact
D data/mbunit int32 [3] compact
D data/mdunit int32 [3] compact
D data/ubid int32 [3] compact
D data/ubexp float32 [3] compact
D data/udid int32 [1] compact
D data/udexp float32 [1] compact
)");
}

TEST_P(IndexInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Indices>();
    EXPECT_EQ(write(written), success);
    auto indices = emptied(written);
    EXPECT_EQ(read(indices, 2), success);
    EXPECT_EQ(listing(indices), listing(written));
}

TEST_P(IndexInBothFamilies, second_write_is_refused_and_leaves_the_first)
{
    const auto first = sample<Indices>();
    EXPECT_EQ(write(first), success);
    auto second = first;
    second.nindex = 1;
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 20 - \"indices\" already exists.\n"));
    auto indices = emptied(first);
    EXPECT_EQ(read(indices, 1), success);
    EXPECT_EQ(indices.nindex, 3);
}

TEST_P(IndexInBothFamilies, number_of_indices_is_stored_as_given)
{
    for (const int32_t nindex : {0, -1}) {
        auto written = sample<Indices>();
        written.nindex = nindex;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("\nD ")));
        auto indices = emptied(written);
        EXPECT_EQ(read(indices, 2), success);
        EXPECT_EQ(indices.nindex, nindex);
        EXPECT_EQ(indices.found_flags, untouched);
        H5Ldelete(file, "constant", H5P_DEFAULT);
    }
}

TEST_F(IndexBlock, legacy_pass_1_reads_the_number_alone)
{
    EXPECT_EQ(write(legacy_indices()), success);
    Indices indices = emptied(legacy_indices());
    EXPECT_EQ(read(indices, 1), success);
    Indices expected = emptied(legacy_indices());
    expected.nindex = 3;
    EXPECT_EQ(listing(indices), listing(expected));
    EXPECT_EQ(indices.found_flags, untouched);
}

TEST_F(IndexBlock, another_legacy_pass_is_refused_behind_the_number)
{
    EXPECT_EQ(write(legacy_indices()), success);
    for (const int32_t ipass : {0, 3, -1}) {
        Indices indices = emptied(legacy_indices());
        EXPECT_EQ(read(indices, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 20 \n"));
        EXPECT_EQ(indices.nindex, 3);
    }
}

TEST_F(IndexBlock, current_reader_has_a_single_pass)
{
    EXPECT_EQ(write(Indices()), success);
    for (const int32_t ignored : {0, 1, -1}) {
        Indices indices = emptied(Indices());
        EXPECT_EQ(read(indices, ignored), success);
        EXPECT_EQ(listing(indices), listing(Indices()));
    }
}

TEST_F(IndexBlock, legacy_index_without_units_contributes_nothing_to_the_lists)
{
    Indices written = legacy_indices();
    written.units.mbunit = {0, 3, 0};
    written.units.mdunit = {0, 0, 0};
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written),
                testing::EndsWith("D data/ubid int32 [3] compact\nD data/ubexp float32 [3] compact\n"));
    Indices indices = emptied(written);
    EXPECT_EQ(read(indices, 2), success);
    EXPECT_EQ(indices.units.ubid, written.units.ubid);
    EXPECT_EQ(indices.units.udid, emptied(written).units.udid);
}

TEST_F(IndexBlock, legacy_counts_of_units_may_be_read_without_the_lists)
{
    EXPECT_EQ(write(legacy_indices()), success);
    Indices indices = emptied(legacy_indices());
    indices.wants_arrays = false;
    EXPECT_EQ(read(indices, 2), success);
    EXPECT_EQ(indices.nindex, 3);
    EXPECT_EQ(indices.found_flags, 0);
}

TEST_F(IndexBlock, legacy_exponents_take_the_real_size_and_lose_scale_offset)
{
    Indices written = legacy_indices();
    written.nindex = 8;
    written.etypindex = std::string(8 * 256, 'i');
    written.units = {std::vector<int32_t>(8, 1), std::vector<int32_t>(8, 1),
                     std::vector<int32_t>(8, 3), {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F, 0.7F, 1e20F},
                     std::vector<int32_t>(8, 4), {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F, 0.7F, -1e20F}};
    written.real_size = 8;
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 1;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::EndsWith(R"(
D data/etypindex char[256] [8] chunked(8) shuffle deflate(1)
D data/mbunit int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(1) fill=10000
D data/mdunit int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(1) fill=10000
D data/ubid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(1) fill=10000
D data/ubexp float64 [8] chunked(8) shuffle deflate(1)
D data/udid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(1) fill=10000
D data/udexp float64 [8] chunked(8) shuffle deflate(1)
)"));
    Indices indices = emptied(written);
    EXPECT_EQ(read(indices, 2), success);
    EXPECT_EQ(listing(indices), listing(written));
    EXPECT_EQ(indices.found_flags, 255 - 128);
    EXPECT_EQ(indices.found_params[1], 1);
}

TEST_F(IndexBlock, missing_legacy_subgroup_is_named)
{
    EXPECT_EQ(write(legacy_indices()), success);
    Indices indices = emptied(legacy_indices());
    H5Ldelete(file, "constant/indices/data", H5P_DEFAULT);
    EXPECT_EQ(read(indices, 2), failure(-1, "VAK ERROR - data not found\n"));
    EXPECT_EQ(read(indices, 1), success);
    H5Ldelete(file, "constant/indices/header", H5P_DEFAULT);
    EXPECT_EQ(read(indices, 1), failure(-1, "VAK ERROR - header not found\n"));
}

}  // namespace

}  // namespace vak::test
