#include "samples/attributes.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class AttributesBlock : public BlockTest {};
class AttributesInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, AttributesInBothFamilies, both_families, family_name);

constexpr int32_t key = 200;

int32_t everything(Family family) { return family == Family::legacy ? 2 : 1 + 2 + 8; }

// What the attributes of the block alone tell.
Attributes header_of(const Attributes& written)
{
    Attributes expected = emptied(written);
    expected.etyp = written.etyp;
    expected.nent = written.nent;
    expected.nuid = written.nuid;
    expected.length = written.length;
    expected.index.nindex = written.index.nindex;
    expected.index.indexic = written.index.indexic;
    return expected;
}

TEST_F(AttributesBlock, is_stored_as_described)
{
    const Attributes attributes;
    EXPECT_EQ(write(attributes), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/attributes/NODE/vakblock"), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A nent int32
A nuid int32
A length int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D entid int32 [4] compact
D title char[24] [4] compact
D uid int32 [4,3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, attributes.path(), "block"), 200);
    EXPECT_EQ(attribute_text(file, attributes.path(), "blocktype"),
              std::string("attributes") + std::string(246, '\0'));
    EXPECT_EQ(dataset_values<int32_t>(file, attributes.path() + "/uid"), attributes.uid);
}

TEST_F(AttributesBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(Attributes::of(Family::legacy)), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/attributes/NODE"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyp char[256]
A header/nent int32
A header/nuid int32
A header/nindex int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/entid int32 [4] compact
D data/title char[256] [4] compact
D data/uid int32 [4,3] compact
)");
}

TEST_P(AttributesInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Attributes>();
    EXPECT_EQ(write(written), success);
    auto attributes = emptied(written);
    EXPECT_EQ(read(attributes, everything(family())), success);
    EXPECT_EQ(listing(attributes), listing(written));
    EXPECT_EQ(attributes.found_flags, 0);
}

TEST_P(AttributesInBothFamilies, mode_1_reads_the_header_alone)
{
    const auto written = sample<Attributes>();
    EXPECT_EQ(write(written), success);
    auto attributes = emptied(written);
    EXPECT_EQ(read(attributes, 1), success);
    EXPECT_EQ(listing(attributes), listing(header_of(written)));
    EXPECT_EQ(attributes.found_flags, untouched);
    EXPECT_EQ(attributes.found_params[1], untouched);
}

TEST_F(AttributesBlock, mode_2_reads_the_index_values_alone)
{
    const Attributes written;
    EXPECT_EQ(write(written), success);
    Attributes attributes = emptied(written);
    attributes.index.nindex = 2;
    EXPECT_EQ(read(attributes, 2), success);
    Attributes expected = emptied(written);
    expected.index = written.index;
    expected.index.indexic = untouched;
    EXPECT_EQ(listing(attributes), listing(expected));
    EXPECT_EQ(attributes.found_flags, untouched);
}

TEST_F(AttributesBlock, mode_8_reads_the_entities_by_the_callers_counts)
{
    const Attributes written;
    EXPECT_EQ(write(written), success);
    Attributes attributes = emptied(written);
    attributes.nent = 4;
    attributes.nuid = 3;
    attributes.length = 24;
    EXPECT_EQ(read(attributes, 8), success);
    EXPECT_EQ(attributes.entid, written.entid);
    EXPECT_EQ(attributes.title, written.title);
    EXPECT_EQ(attributes.uid, written.uid);
    EXPECT_EQ(attributes.index.indexident, emptied(written).index.indexident);
    EXPECT_EQ(attributes.found_flags, 0);
}

TEST_F(AttributesBlock, mode_that_reads_nothing_gives_the_key)
{
    const Attributes written;
    EXPECT_EQ(write(written), success);
    for (const int32_t mode : {0, 4, 2, 2 + 4, 16}) {
        for (const int32_t nindex : {0, -1}) {
            Attributes attributes = emptied(written);
            attributes.index.nindex = nindex;
            EXPECT_EQ(read(attributes, mode), status(key));
            attributes.index.nindex = untouched;
            EXPECT_EQ(listing(attributes), listing(emptied(written)));
            EXPECT_EQ(attributes.found_flags, untouched);
        }
    }
}

TEST_F(AttributesBlock, mode_8_without_entities_leaves_the_filters_untouched)
{
    Attributes written;
    EXPECT_EQ(write(written), success);
    written.nent = 0;
    EXPECT_EQ(read(written, 8), success);
    EXPECT_EQ(written.found_flags, untouched);
}

TEST_F(AttributesBlock, legacy_pass_0_reads_the_index_values_as_well)
{
    const auto written = Attributes::of(Family::legacy);
    EXPECT_EQ(write(written), success);
    auto attributes = emptied(written);
    EXPECT_EQ(read(attributes, 0), success);
    auto expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(attributes), listing(expected));
    EXPECT_EQ(attributes.found_flags, untouched);
}

TEST_F(AttributesBlock, another_legacy_pass_is_refused_behind_the_header)
{
    const auto written = Attributes::of(Family::legacy);
    EXPECT_EQ(write(written), success);
    for (const int32_t ipass : {3, 8, -1}) {
        auto attributes = emptied(written);
        EXPECT_EQ(read(attributes, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 200 \n"));
        EXPECT_EQ(listing(attributes), listing(header_of(written)));
    }
}

TEST_F(AttributesBlock, missing_legacy_subgroup_is_named)
{
    const auto written = Attributes::of(Family::legacy);
    EXPECT_EQ(write(written), success);
    auto attributes = emptied(written);
    H5Ldelete(file, (written.path() + "/index").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(attributes, 0), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(read(attributes, 2), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(attributes.entid, written.entid);
    EXPECT_EQ(attributes.found_flags, untouched);
    H5Ldelete(file, (written.path() + "/data").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(attributes, 2), failure(-1, "VAK ERROR - data not found\n"));
    EXPECT_EQ(read(attributes, 1), success);
    H5Ldelete(file, (written.path() + "/header").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(attributes, 1), failure(-1, "VAK ERROR - header not found\n"));
}

TEST_F(AttributesBlock, legacy_index_group_is_looked_for_only_when_there_are_indices)
{
    auto written = Attributes::of(Family::legacy);
    written.index.nindex = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("G index\nG data\n"));
    H5Ldelete(file, (written.path() + "/index").c_str(), H5P_DEFAULT);
    auto attributes = emptied(written);
    EXPECT_EQ(read(attributes, 2), success);
    EXPECT_EQ(read(attributes, 0), success);
}

TEST_F(AttributesBlock, length_of_zero_or_less_has_no_titles)
{
    for (const int32_t length : {0, -1}) {
        Attributes written;
        written.etyp = padded("length " + std::to_string(length));
        written.length = length;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("title")));
        Attributes attributes = emptied(written);
        EXPECT_EQ(read(attributes, everything(Family::current)), success);
        EXPECT_EQ(attributes.title, emptied(written).title);
        EXPECT_EQ(attributes.uid, written.uid);
    }
}

TEST_P(AttributesInBothFamilies, nuid_of_zero_or_less_has_no_further_identifiers)
{
    for (const int32_t nuid : {0, -1}) {
        auto written = sample<Attributes>();
        written.etyp = padded("nuid " + std::to_string(nuid));
        written.nuid = nuid;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("uid int32 [")));
        auto attributes = emptied(written);
        EXPECT_EQ(read(attributes, everything(family())), success);
        EXPECT_EQ(attributes.uid, emptied(written).uid);
        EXPECT_EQ(attributes.title, written.title);
    }
}

TEST_P(AttributesInBothFamilies, number_of_entities_of_zero_or_less_has_no_arrays)
{
    for (const int32_t nent : {0, -1}) {
        auto written = sample<Attributes>();
        written.etyp = padded("nent " + std::to_string(nent));
        written.nent = nent;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("entid")));
        auto attributes = emptied(written);
        EXPECT_EQ(read(attributes, everything(family())), success);
        EXPECT_EQ(attributes.nent, nent);
        EXPECT_EQ(attributes.entid, emptied(written).entid);
    }
}

TEST_P(AttributesInBothFamilies, reals_lose_scale_offset_and_the_others_keep_it)
{
    auto written = sample<Attributes>();
    written.index = {8, 0, std::vector<int32_t>(8, 3), std::vector<float>(8, 0.1F)};
    written.nent = 8;
    written.nuid = 1;
    written.entid = written.uid = {8, 7, 6, 5, 4, 3, 2, 1};
    const size_t length = legacy() ? 256 : 24;
    written.title = std::string(8 * length, 't');
    written.flags = 255;
    written.params[0] = 3;
    written.params[1] = 9;
    EXPECT_EQ(write(written), success);
    const std::string index = legacy() ? "index/" : "", data = legacy() ? "data/" : "";
    const std::string integers = " scaleoffset(int,0) shuffle deflate(9) fill=10000\n";
    EXPECT_THAT(stored(written),
                testing::EndsWith("D " + index + "indexident int32 [8] chunked(8)" + integers +  //
                                  "D " + index + "indexval float32 [8] chunked(8) shuffle deflate(9)\n" +
                                  (legacy() ? "G data\n" : "") +                           //
                                  "D " + data + "entid int32 [8] chunked(8)" + integers +  //
                                  "D " + data + "title char[" + std::to_string(length) +
                                  "] [8] chunked(8) shuffle deflate(9)\n" +  //
                                  "D " + data + "uid int32 [8,1] chunked(8,1)" + integers));
    auto attributes = emptied(written);
    EXPECT_EQ(read(attributes, everything(family())), success);
    EXPECT_EQ(listing(attributes), listing(written));
    EXPECT_EQ(attributes.found_flags, 255 - 128);
    EXPECT_EQ(attributes.found_params[0], 0);
    EXPECT_EQ(attributes.found_params[1], 9);
}

TEST_F(AttributesBlock, swapped_block_of_another_size_is_refused_untouched)
{
    const Attributes first;
    EXPECT_EQ(write(first), success);
    Attributes larger;
    larger.etyp = padded("LARGER");
    larger.nent = 5;
    larger.entid = {1, 2, 3, 4, 5};
    larger.title = std::string(5 * 24, 'x');
    larger.uid = std::vector<int32_t>(15, 1);
    EXPECT_EQ(write(larger), success);
    Attributes attributes = emptied(first);
    EXPECT_EQ(read(attributes, 1), success);
    EXPECT_EQ(
        read(attributes, 8, larger.path()),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: entid 2 4 0\n"));
    EXPECT_EQ(listing(attributes), listing(header_of(first)));
}

TEST_F(AttributesBlock, longer_stored_titles_than_asked_for_are_refused)
{
    const Attributes written;
    EXPECT_EQ(write(written), success);
    Attributes attributes = emptied(written);
    EXPECT_EQ(read(attributes, 1), success);
    attributes.length = 23;
    EXPECT_EQ(
        read(attributes, 8),
        failure(
            -6010,
            "VAK INTERNAL ERROR (10) in VAK_H5Dread - name, vak_type, data_size, error: title 1 23 24\n"));
    EXPECT_EQ(attributes.title, emptied(written).title);
}

TEST_F(AttributesBlock, identifiers_are_another_kind)
{
    const Identifiers identifiers;
    EXPECT_EQ(write(identifiers), success);
    Attributes attributes = emptied(Attributes());
    EXPECT_EQ(read(attributes, 1, identifiers.path()),
              failure(-1, "VAK error - wrong block key 250, 200 expected\n"));
    EXPECT_EQ(listing(attributes), listing(emptied(Attributes())));
}

}  // namespace

}  // namespace vak::test
