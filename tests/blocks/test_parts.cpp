#include "samples/parts.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class PartsBlock : public BlockTest {};
class PartsInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, PartsInBothFamilies, both_families, family_name);

// Which argument of the reader gives everything is the same in both families.
constexpr int32_t everything = 3;

Parts legacy_parts() { return sample_of<Parts>(Family::legacy); }

// What the attributes alone tell.
Parts attributes_of(const Parts& written)
{
    Parts expected = emptied(written);
    expected.etyppart = written.etyppart;
    expected.npart = written.npart;
    expected.off = written.off;
    expected.length = written.length;
    expected.index.nindex = written.index.nindex;
    expected.index.indexic = written.index.indexic;
    return expected;
}

TEST_F(PartsBlock, is_stored_as_described)
{
    const Parts parts;
    EXPECT_EQ(write(parts), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/parts/SHELL PART/vakblock"), R"(
A block int32
A blocktype char[256]
A etyppart char[256]
A npart int32
A off int32
A length int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D pid int32 [3] compact
D title char[8] [3] compact
D mid int32 [3] compact
D mtyp int32 [3] compact
D pcol int32 [3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, parts.path(), "block"), 100);
    EXPECT_EQ(attribute_text(file, parts.path(), "blocktype"), std::string("parts") + std::string(251, '\0'));
    EXPECT_EQ(dataset_texts(file, parts.path() + "/title"),
              (std::vector<std::string>{"door    ", "roof    ", "wheel no"}));
    EXPECT_EQ(dataset_values<int32_t>(file, parts.path() + "/pcol"), parts.pcol);
}

TEST_F(PartsBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(legacy_parts()), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/parts/SHELL PART"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyppart char[256]
A header/npart int32
A header/off int32
A header/length int32
A header/nindex int32
A header/indexic int32
G data
D data/indexident int32 [2] compact
D data/indexval float32 [2] compact
D data/pid int32 [3] compact
D data/title char[8] [3] compact
D data/mid int32 [3] compact
D data/mtyp int32 [3] compact
D data/pcol int32 [3] compact
)");
}

TEST_P(PartsInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Parts>();
    EXPECT_EQ(write(written), success);
    auto parts = emptied(written);
    EXPECT_EQ(read(parts, everything), success);
    EXPECT_EQ(listing(parts), listing(written));
    EXPECT_EQ(parts.found_flags, 0);
}

TEST_P(PartsInBothFamilies, mode_1_reads_the_attributes_alone_with_the_number_of_parts)
{
    const auto written = sample<Parts>();
    EXPECT_EQ(write(written), success);
    auto parts = emptied(written);
    EXPECT_EQ(read(parts, 1), success);
    EXPECT_EQ(listing(parts), listing(attributes_of(written)));
    EXPECT_EQ(parts.found_flags, untouched);
    EXPECT_EQ(parts.found_params[0], untouched);
}

TEST_F(PartsBlock, mode_2_reads_the_arrays_by_the_callers_counts)
{
    const Parts written;
    EXPECT_EQ(write(written), success);
    Parts parts = attributes_of(written);
    parts.etyppart = padded("as it was");
    parts.index.indexic = untouched;
    EXPECT_EQ(read(parts, 2), success);
    Parts expected = written;
    expected.etyppart = padded("as it was");
    expected.index.indexic = untouched;
    EXPECT_EQ(listing(parts), listing(expected));
    EXPECT_EQ(parts.found_flags, 0);
}

TEST_F(PartsBlock, mode_that_reads_nothing_gives_zero)
{
    const Parts written;
    EXPECT_EQ(write(written), success);
    Parts parts = emptied(written);
    EXPECT_EQ(read(parts, 0), success);
    EXPECT_EQ(read(parts, 4), success);
    EXPECT_EQ(listing(parts), listing(emptied(written)));
    EXPECT_EQ(parts.found_flags, untouched);
}

TEST_F(PartsBlock, legacy_pass_0_reads_the_index_values_as_well)
{
    const Parts written = legacy_parts();
    EXPECT_EQ(write(written), success);
    Parts parts = emptied(written);
    EXPECT_EQ(read(parts, 0), success);
    Parts expected = attributes_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(parts), listing(expected));
    EXPECT_EQ(parts.found_flags, untouched);
}

TEST_F(PartsBlock, legacy_passes_2_and_3_are_the_same)
{
    const Parts written = legacy_parts();
    EXPECT_EQ(write(written), success);
    Parts parts = emptied(written);
    EXPECT_EQ(read(parts, 2), success);
    EXPECT_EQ(listing(parts), listing(written));
    EXPECT_EQ(parts.found_flags, 0);
}

TEST_F(PartsBlock, another_legacy_pass_is_refused_behind_the_attributes)
{
    const Parts written = legacy_parts();
    EXPECT_EQ(write(written), success);
    for (const int32_t ipass : {4, -1}) {
        Parts parts = emptied(written);
        EXPECT_EQ(read(parts, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 100 \n"));
        EXPECT_EQ(listing(parts), listing(attributes_of(written)));
    }
}

TEST_P(PartsInBothFamilies, off_leaves_out_any_of_three_columns)
{
    for (int32_t off = 0; off < 8; ++off) {
        auto written = sample<Parts>();
        written.etyppart = padded("off " + std::to_string(off));
        written.off = off;
        EXPECT_EQ(write(written), success);
        const std::string data = written.path() + (legacy() ? "/data/" : "/");
        EXPECT_EQ(exists(file, data + "mid"), !(off & 1));
        EXPECT_EQ(exists(file, data + "mtyp"), !(off & 2));
        EXPECT_EQ(exists(file, data + "pcol"), !(off & 4));
        auto parts = emptied(written);
        EXPECT_EQ(read(parts, everything), success);
        auto expected = written;
        if (off & 1) empty(expected.mid);
        if (off & 2) empty(expected.mtyp);
        if (off & 4) empty(expected.pcol);
        EXPECT_EQ(listing(parts), listing(expected));
    }
}

TEST_P(PartsInBothFamilies, length_of_zero_or_less_has_no_titles)
{
    for (const int32_t length : {0, -5}) {
        auto written = sample<Parts>();
        written.etyppart = padded("length " + std::to_string(length));
        written.length = length;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("title")));
        auto parts = emptied(written);
        EXPECT_EQ(read(parts, everything), success);
        EXPECT_EQ(parts.title, std::string(24, '?'));
        EXPECT_EQ(parts.pid, written.pid);
    }
}

TEST_P(PartsInBothFamilies, off_7_and_length_0_leave_the_identifiers_alone)
{
    auto written = sample<Parts>();
    written.off = 7;
    written.length = 0;
    written.index.nindex = 0;
    EXPECT_EQ(write(written), success);
    const std::string expected = legacy() ? "D data/pid int32 [3] compact\n" : "D pid int32 [3] compact\n";
    EXPECT_THAT(stored(written), testing::EndsWith((legacy() ? "G data\n" : "A indexic int32\n") + expected));
}

TEST_P(PartsInBothFamilies, number_of_parts_of_zero_or_less_has_no_columns)
{
    for (const int32_t npart : {0, -1}) {
        auto written = sample<Parts>();
        written.etyppart = padded("npart " + std::to_string(npart));
        written.npart = npart;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("pid")));
        auto parts = emptied(written);
        EXPECT_EQ(read(parts, everything), success);
        EXPECT_EQ(parts.npart, npart);
        EXPECT_EQ(parts.pid, emptied(written).pid);
    }
}

TEST_P(PartsInBothFamilies, stands_where_its_index_says)
{
    auto parts = sample<Parts>();
    const std::string end = legacy() ? "" : "/vakblock";
    parts.index.nindex = 0;
    EXPECT_EQ(write(parts), success);
    EXPECT_TRUE(exists(file, "constant/parts/SHELL PART" + end));
    EXPECT_THAT(stored(parts), testing::Not(testing::HasSubstr("indexident")));
    parts.index.nindex = -1;
    EXPECT_EQ(write(parts), success);
    EXPECT_TRUE(exists(file, "multistate/parts/SHELL PART" + end));
    EXPECT_THAT(stored(parts), testing::Not(testing::HasSubstr("indexident")));
    parts.index.nindex = 2;
    parts.index.indexident = {5, 9};
    parts.state = -1;
    EXPECT_EQ(write(parts), success);
    EXPECT_TRUE(exists(file, "singlestate/state000000000009/state000000000005/parts/SHELL PART" + end));
}

TEST_P(PartsInBothFamilies, only_index_values_lose_scale_offset)
{
    auto written = sample<Parts>();
    written.index = {9, 0, std::vector<int32_t>(9, 3), std::vector<float>(9, 0.1F)};
    written.npart = 8;
    written.pid = written.mid = written.mtyp = written.pcol = {8, 7, 6, 5, 4, 3, 2, 1};
    written.title = std::string(64, 't');
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 6;
    EXPECT_EQ(write(written), success);
    std::string expected = R"(
D @indexident int32 [9] chunked(9) scaleoffset(int,0) shuffle deflate(6) fill=10000
D @indexval float32 [9] chunked(9) shuffle deflate(6)
D @pid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000
D @title char[8] [8] chunked(8) shuffle deflate(6)
D @mid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000
D @mtyp int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000
D @pcol int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000
)";
    for (size_t at; (at = expected.find('@')) != std::string::npos;)
        expected.replace(at, 1, legacy() ? "data/" : "");
    EXPECT_THAT(stored(written), testing::EndsWith(expected));
    auto parts = emptied(written);
    EXPECT_EQ(read(parts, everything), success);
    EXPECT_EQ(listing(parts), listing(written));
    EXPECT_EQ(parts.found_flags, 255 - 128);
    EXPECT_EQ(parts.found_params[0], 0);
    EXPECT_EQ(parts.found_params[1], 6);
}

TEST_F(PartsBlock, swapped_block_of_another_size_is_refused)
{
    const Parts first;
    EXPECT_EQ(write(first), success);
    auto larger = first;
    larger.etyppart = padded("LARGER");
    larger.npart = 4;
    larger.pid = larger.mid = larger.mtyp = larger.pcol = {1, 2, 3, 4};
    larger.title = std::string(32, 'x');
    EXPECT_EQ(write(larger), success);
    auto parts = emptied(first);
    EXPECT_EQ(read(parts, 1), success);
    const auto before = listing(parts);
    parts.index.nindex = 0;
    EXPECT_EQ(
        read(parts, 2, larger.path()),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: pid 2 4 0\n"));
    parts.index.nindex = 2;
    EXPECT_EQ(listing(parts), before);
}

}  // namespace

}  // namespace vak::test
