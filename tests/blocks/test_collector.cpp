#include "samples/collector.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class CollectorBlock : public BlockTest {};
class CollectorInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, CollectorInBothFamilies, both_families, family_name);

// What the attributes of the block alone tell.
Collector header_of(const Collector& written)
{
    Collector expected = emptied(written);
    expected.etypcoll = written.etypcoll;
    expected.ncoll = written.ncoll;
    expected.ntyp = written.ntyp;
    expected.nenttot = written.nenttot;
    expected.index.nindex = written.index.nindex;
    expected.index.indexic = written.index.indexic;
    return expected;
}

TEST_F(CollectorBlock, is_stored_as_described)
{
    const Collector collector;
    EXPECT_EQ(write(collector), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/collector/SETS/vakblock"), R"(
A block int32
A blocktype char[256]
A etypcoll char[256]
A ncoll int32
A ntyp int32
A nenttot int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D idcoll int32 [2] compact
D etyp char[256] [3] compact
D nent int32 [2,3] compact
D entid int32 [6] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, collector.path(), "block"), 400);
    EXPECT_EQ(attribute_text(file, collector.path(), "blocktype"),
              std::string("collector") + std::string(247, '\0'));
    EXPECT_EQ(attribute_value<int32_t>(file, collector.path(), "nenttot"), 6);
    EXPECT_EQ(dataset_texts(file, collector.path() + "/etyp"),
              (std::vector{padded("NODE"), padded("SHELL"), padded("BEAM")}));
    EXPECT_EQ(dataset_values<int32_t>(file, collector.path() + "/entid"), collector.entid);
}

TEST_F(CollectorBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(sample_of<Collector>(Family::legacy)), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/collector/SETS"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etypcoll char[256]
A header/ncoll int32
A header/ntyp int32
A header/nenttot int32
A header/nindex int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/idcoll int32 [2] compact
D data/etyp char[256] [3] compact
D data/nent int32 [2,3] compact
D data/entid int32 [6] compact
)");
}

TEST_P(CollectorInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Collector>();
    EXPECT_EQ(write(written), success);
    auto collector = emptied(written);
    EXPECT_EQ(read(collector, 2), success);
    EXPECT_EQ(listing(collector), listing(written));
    EXPECT_EQ(collector.found_flags, 0);
}

TEST_P(CollectorInBothFamilies, pass_1_reads_the_header_alone)
{
    const auto written = sample<Collector>();
    EXPECT_EQ(write(written), success);
    auto collector = emptied(written);
    EXPECT_EQ(read(collector, 1), success);
    EXPECT_EQ(listing(collector), listing(header_of(written)));
    EXPECT_EQ(collector.found_flags, untouched);
}

TEST_P(CollectorInBothFamilies, pass_0_reads_the_index_values_as_well)
{
    const auto written = sample<Collector>();
    EXPECT_EQ(write(written), success);
    auto collector = emptied(written);
    EXPECT_EQ(read(collector, 0), success);
    auto expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(collector), listing(expected));
    EXPECT_EQ(collector.found_flags, untouched);
    EXPECT_EQ(collector.found_params[0], untouched);
}

TEST_P(CollectorInBothFamilies, another_pass_is_refused_behind_the_header)
{
    const auto written = sample<Collector>();
    EXPECT_EQ(write(written), success);
    for (const int32_t ipass : {3, -1}) {
        auto collector = emptied(written);
        EXPECT_EQ(read(collector, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 400 \n"));
        EXPECT_EQ(listing(collector), listing(header_of(written)));
    }
}

TEST_F(CollectorBlock, missing_legacy_subgroup_is_named)
{
    const auto written = sample_of<Collector>(Family::legacy);
    EXPECT_EQ(write(written), success);
    auto collector = emptied(written);
    H5Ldelete(file, (written.path() + "/index").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(collector, 0), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(read(collector, 2), failure(-1, "VAK ERROR - index not found\n"));
    EXPECT_EQ(collector.entid, written.entid);
    H5Ldelete(file, (written.path() + "/data").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(collector, 2), failure(-1, "VAK ERROR - data not found\n"));
    H5Ldelete(file, (written.path() + "/header").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(collector, 1), failure(-1, "VAK ERROR - header not found\n"));
}

TEST_P(CollectorInBothFamilies, negative_numbers_of_sets_or_types_give_a_total_of_zero)
{
    for (const auto& [ncoll, ntyp] : {std::pair{-2, 3}, {2, -3}, {-2, -3}, {0, 3}, {2, 0}}) {
        auto written = sample<Collector>();
        written.etypcoll = padded(std::to_string(ncoll) + " of " + std::to_string(ntyp));
        written.ncoll = ncoll;
        written.ntyp = ntyp;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("entid")));
        auto collector = emptied(written);
        EXPECT_EQ(read(collector, 2), success);
        EXPECT_EQ(collector.nenttot, 0);
        EXPECT_EQ(collector.ncoll, ncoll);
        EXPECT_EQ(collector.ntyp, ntyp);
        EXPECT_EQ(collector.nent, emptied(written).nent);
    }
}

TEST_P(CollectorInBothFamilies, total_beyond_what_can_be_stored_is_refused_before_anything_is_written)
{
    auto collector = sample<Collector>();
    collector.nent = {2147483647, 0, 0, 0, 0, 1};
    EXPECT_EQ(write(collector), failure(-3, "VAK ERROR writing block key 400\n"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_P(CollectorInBothFamilies, negative_number_of_entities_is_refused_before_anything_is_written)
{
    auto collector = sample<Collector>();
    collector.nent = {2, 0, -1, 0, 3, 0};
    EXPECT_EQ(write(collector), failure(-3, "VAK ERROR writing block key 400\n"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_P(CollectorInBothFamilies, total_that_the_identifiers_do_not_have_is_refused)
{
    const auto written = sample<Collector>();
    EXPECT_EQ(write(written), success);
    for (const int32_t hostile : {7, 2147483647}) {
        falsify_attribute(written.path() + (legacy() ? "/header" : ""), "nenttot", hostile);
        auto collector = emptied(written);
        EXPECT_EQ(
            read(collector, 2),
            failure(
                -6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: entid 2 4 0\n"));
        EXPECT_EQ(collector.entid, emptied(written).entid);
        EXPECT_EQ(collector.found_flags, untouched);
    }
}

TEST_P(CollectorInBothFamilies, stands_where_its_index_says)
{
    auto collector = sample<Collector>();
    const std::string end = legacy() ? "" : "/vakblock";
    collector.index.nindex = 0;
    EXPECT_EQ(write(collector), success);
    EXPECT_TRUE(exists(file, "constant/collector/SETS" + end));
    EXPECT_THAT(stored(collector), testing::Not(testing::HasSubstr("indexident")));
    collector.index.nindex = -1;
    EXPECT_EQ(write(collector), success);
    EXPECT_TRUE(exists(file, "multistate/collector/SETS" + end));
    collector.index.nindex = 2;
    collector.state = -1;
    EXPECT_EQ(write(collector), success);
    EXPECT_TRUE(exists(file, "singlestate/state000000000005/state000000000004/collector/SETS" + end));
}

TEST_P(CollectorInBothFamilies, reals_lose_scale_offset_and_the_others_keep_it)
{
    auto written = sample<Collector>();
    written.index = {8, 0, std::vector<int32_t>(8, 3), std::vector<float>(8, 0.1F)};
    written.ncoll = 1;
    written.ntyp = 8;
    written.idcoll = {1};
    written.etyp = std::string(8 * 256, 'e');
    written.nent = std::vector<int32_t>(8, 1);
    written.nenttot = 8;
    written.entid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.real_size = 8;
    written.flags = 255;
    written.params[0] = 3;
    written.params[1] = 2;
    EXPECT_EQ(write(written), success);
    const std::string index = legacy() ? "D index/" : "D ", data = legacy() ? "D data/" : "D ";
    const std::string integers = " scaleoffset(int,0) shuffle deflate(2) fill=10000\n";
    EXPECT_THAT(stored(written),
                testing::EndsWith(index + "indexident int32 [8] chunked(8)" + integers +            //
                                  index + "indexval float64 [8] chunked(8) shuffle deflate(2)\n" +  //
                                  (legacy() ? "G data\n" : "") +                                    //
                                  data + "idcoll int32 [1] compact\n" +                             //
                                  data + "etyp char[256] [8] chunked(8) shuffle deflate(2)\n" +     //
                                  data + "nent int32 [1,8] chunked(1,8)" + integers +               //
                                  data + "entid int32 [8] chunked(8)" + integers));
    auto collector = emptied(written);
    EXPECT_EQ(read(collector, 2), success);
    EXPECT_EQ(listing(collector), listing(written));
    EXPECT_EQ(collector.found_flags, 255 - 128);
    EXPECT_EQ(collector.found_params[0], 0);
    EXPECT_EQ(collector.found_params[1], 2);
}

}  // namespace

}  // namespace vak::test
