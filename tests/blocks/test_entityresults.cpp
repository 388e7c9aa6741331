// Entity results through the public entries: whole blocks of one state.
#include "samples/entityresults.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class EntityResultsBlock : public BlockTest {};
class EntityResultsInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, EntityResultsInBothFamilies, both_families, family_name);

EntityResults legacy_results() { return sample_of<EntityResults>(Family::legacy); }

void take_header(EntityResults& to, const EntityResults& from)
{
    to.etyp = from.etyp;
    to.nent = from.nent;
    to.etypvar = from.etypvar;
    to.ncoo = from.ncoo;
    to.zone = from.zone;
    to.index.nindex = from.index.nindex;
    if (!from.legacy()) to.index.indexic = from.index.indexic;
}

// What the attributes of the block alone tell.
EntityResults header_of(const EntityResults& written)
{
    EntityResults expected = emptied(written);
    take_header(expected, written);
    return expected;
}

TEST_F(EntityResultsBlock, is_stored_as_described)
{
    const EntityResults block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(
        layout(file, "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/SOLID3_set2/vakblock"),
        R"(
A block int32
A blocktype char[256]
A etyp char[256]
A nent int32
A etypvar char[256]
A ncoo int32
A etypzone char[256]
A zoneid int32
A etypframe char[256]
A fswitch int32
A dmpswitch int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D entid int32 [3] compact
D fid int32 [3] compact
D operator char[256] [2] compact
D weight float32 [3] compact
D res float32 [3,2] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 1000);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "entityresults" + std::string(243, '\0'));
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "zoneid"), 3);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/res"), block.res);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/weight"), block.tables.weight);
    EXPECT_EQ(dataset_texts(file, block.path() + "/operator"),
              (std::vector{padded("SUM"), padded("AVERAGE")}));
}

TEST_F(EntityResultsBlock, legacy_block_is_stored_as_described)
{
    const EntityResults block = legacy_results();
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/SOLID3_set2"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyp char[256]
A header/nent int32
A header/etypvar char[256]
A header/ncoo int32
A header/etypzone char[256]
A header/zoneid int32
A header/etypframe char[256]
A header/fswitch int32
A header/dmpswitch int32
A header/nindex int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/entid int32 [3] compact
D data/fid int32 [3] compact
D data/operator char[256] [2] compact
D data/weight float32 [3] compact
D data/res float32 [3,2] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path() + "/header", "block"), 1000);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/data/res"), block.res);
}

TEST_F(EntityResultsBlock, complex_values_have_a_key_and_an_extent_of_their_own)
{
    const EntityResults block = EntityResults::complex_of(Family::current);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 1001);
    EXPECT_THAT(stored(block),
                testing::HasSubstr("\nD weight float32 [3] compact\nD res float32 [3,2,2] compact\n"));
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/res"), block.res);
}

TEST_P(EntityResultsInBothFamilies, reads_back_what_was_written_and_gives_the_key)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
    EXPECT_EQ(block.found_params[0], 0);
    EXPECT_EQ(block.found_params[1], 0);
}

TEST_P(EntityResultsInBothFamilies, complex_values_read_back)
{
    for (const int32_t ivsize : {16, 32}) {
        auto written = EntityResults::complex_of(family());
        written.ivsize = written.set = ivsize;
        EXPECT_EQ(write(written), success);
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1001));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(EntityResultsInBothFamilies, pass_1_reads_the_attributes_alone)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), status(1000));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
    EXPECT_EQ(block.found_params[0], untouched);
}

TEST_P(EntityResultsInBothFamilies, pass_0_reads_the_index_values_too_but_no_tables)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), status(1000));
    auto expected = header_of(written);
    expected.index.indexident = written.index.indexident;
    expected.index.indexval = written.index.indexval;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(EntityResultsInBothFamilies, another_pass_is_refused_and_reads_nothing)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    for (const int32_t pass : {-1, 3, 15}) {
        auto block = emptied(written);
        EXPECT_EQ(read(block, pass),
                  failure(-3, "VAK INTERNAL ERROR reading \"entityresults\" block - ipass = " +
                                  std::to_string(pass) + "\n"));
        EXPECT_EQ(listing(block), listing(emptied(written)));
    }
}

// Stored sizes and the key, for every value-size code.
TEST_P(EntityResultsInBothFamilies, value_size_code_gives_key_and_stored_size)
{
    struct Row {
        int32_t ivsize, key;
        std::string real;
    };
    for (const Row& row : {Row{4, 1000, "float32"}, Row{8, 1000, "float64"}, Row{16, 1001, "float32"},
                           Row{32, 1001, "float64"}, Row{12, 1000, "float32"}, Row{0, 1000, "float32"},
                           Row{-8, 1000, "float32"}, Row{1032, 1000, "float32"}}) {
        SCOPED_TRACE(row.ivsize);
        auto block = EntityResults::complex_of(family());
        block.ivsize = row.ivsize;
        block.state = row.ivsize & 0xffff;
        EXPECT_EQ(write(block), success);
        const std::string form = stored(block);
        EXPECT_THAT(form, testing::HasSubstr("indexval " + row.real + " [2]"));
        EXPECT_THAT(form, testing::HasSubstr("weight " + row.real + " [3]"));
        EXPECT_THAT(form, testing::HasSubstr("res " + row.real + (row.key == 1001 ? " [3,2,2]" : " [3,2]")));
        EXPECT_EQ(attribute_value<int32_t>(file, block.path() + (legacy() ? "/header" : ""), "block"),
                  row.key);
    }
}

TEST_P(EntityResultsInBothFamilies, one_frame_for_all_is_a_scalar_dataset)
{
    auto written = sample<EntityResults>();
    written.zone.fswitch = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("fidglob int32 compact\n"));
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("fid int32")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(EntityResultsInBothFamilies, one_frame_for_all_may_be_an_attribute)
{
    auto written = sample<EntityResults>();
    written.zone.fswitch = 0;
    EXPECT_EQ(write(written), success);
    const std::string holder = written.path() + (legacy() ? "/data" : "");
    {
        const ObjectId group = open_object(file, holder);
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const AttributeId attribute(
            H5Acreate2(group, "fidglob", H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT), "fidglob");
        const int32_t frame = 77;
        H5Awrite(attribute, H5T_NATIVE_INT32, &frame);
    }
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(block.tables.fidglob, 77);
}

TEST_P(EntityResultsInBothFamilies, missing_frame_is_left_untouched)
{
    auto written = sample<EntityResults>();
    written.zone.fswitch = 0;
    EXPECT_EQ(write(written), success);
    H5Ldelete(file, (written.path() + (legacy() ? "/data" : "") + "/fidglob").c_str(), H5P_DEFAULT);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(block.tables.fidglob, untouched);
    EXPECT_EQ(block.res, written.res);
}

TEST_P(EntityResultsInBothFamilies, another_frame_switch_ends_the_write_behind_entid)
{
    for (const int32_t fswitch : {2, -1}) {
        auto written = sample<EntityResults>();
        written.zone.fswitch = fswitch;
        written.set = fswitch + 10;
        EXPECT_EQ(write(written), status(-123));
        const std::string form = stored(written);
        EXPECT_THAT(form, testing::HasSubstr("fswitch int32"));
        EXPECT_THAT(form, testing::HasSubstr("entid int32 [3]"));
        for (const char* name : {"fidglob", "fid int32", "operator", "weight", "res"})
            EXPECT_THAT(form, testing::Not(testing::HasSubstr(name)));
    }
}

TEST_P(EntityResultsInBothFamilies, another_frame_switch_ends_the_read_behind_entid)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    falsify_attribute(written.path() + (legacy() ? "/header" : ""), "fswitch", 7);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(-123));
    EXPECT_EQ(block.tables.ids, written.tables.ids);
    EXPECT_EQ(block.tables.fid, emptied(written).tables.fid);
    EXPECT_EQ(block.res, emptied(written).res);
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(EntityResultsInBothFamilies, operators_and_weights_come_with_the_merge_switch_alone)
{
    for (const int32_t dmpswitch : {0, 2}) {
        auto written = sample<EntityResults>();
        written.zone.dmpswitch = dmpswitch;
        written.set = dmpswitch;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("operator")));
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("weight")));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1000));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(EntityResultsInBothFamilies, reals_are_never_scale_offset_compressed)
{
    auto written = sample<EntityResults>();
    written.nent = 10;
    written.index.nindex = 8;
    written.index.indexident.assign(8, 3);
    written.index.indexval = some_values(8);
    written.tables.ids = written.tables.fid = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    written.tables.weight = some_values(10);
    written.res = some_values(20);
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 6;
    EXPECT_EQ(write(written), success);
    const std::string form = stored(written);
    for (const char* real : {"indexval float32 [8] chunked(8)", "weight float32 [10] chunked(10)",
                             "res float32 [10,2] chunked(10,2)"})
        EXPECT_THAT(form, testing::HasSubstr(real + std::string(" shuffle deflate(6)\n")));
    for (const char* ints : {"indexident int32 [8] chunked(8)", "entid int32 [10] chunked(10)"})
        EXPECT_THAT(form, testing::HasSubstr(
                              ints + std::string(" scaleoffset(int,0) shuffle deflate(6) fill=10000\n")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 2 + 8 + 16 + 64);
    EXPECT_EQ(block.found_params[0], 0);
    EXPECT_EQ(block.found_params[1], 6);
}

TEST_P(EntityResultsInBothFamilies, without_index_values_the_block_is_constant)
{
    auto written = sample<EntityResults>();
    written.index.nindex = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(exists(file, legacy() ? "constant/entityresults/NODE/DISPLACEMENT/SOLID3_set2/index"
                                      : "constant/entityresults/NODE/DISPLACEMENT/SOLID3_set2/vakblock"));
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("indexident")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(block.res, written.res);
    EXPECT_EQ(block.index.indexident, emptied(written).index.indexident);
}

TEST_P(EntityResultsInBothFamilies, negative_counts_are_lengths_of_0)
{
    auto written = sample<EntityResults>();
    written.nent = -3;
    written.index.nindex = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(written.path(), testing::StartsWith("multistate/entityresults"));
    for (const char* name : {"indexident", "entid", "fid ", "weight", "D res", "data/res"})
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(block.nent, -3);
    EXPECT_EQ(block.index.nindex, -1);
}

TEST_P(EntityResultsInBothFamilies, negative_state_nests_the_states_of_the_index)
{
    auto written = sample<EntityResults>();
    written.state = -1;
    EXPECT_EQ(write(written), success);
    const std::string end = legacy() ? "" : "/vakblock";
    written.found_at =
        "singlestate/state000000000005/state000000000004/entityresults/NODE/DISPLACEMENT/SOLID3_set2" + end;
    EXPECT_TRUE(exists(file, written.found_at));
    EXPECT_EQ(read(written, 2), status(1000));
}

TEST_P(EntityResultsInBothFamilies, zone_and_set_below_0_are_left_out_of_the_path)
{
    auto written = sample<EntityResults>();
    written.zone.zoneid = -1;
    written.set = -1;
    written.etypvar = padded(" ");
    EXPECT_EQ(write(written), success);
    written.found_at =
        std::string("singlestate/state000000000012/entityresults/NODE/SOLID") + (legacy() ? "" : "/vakblock");
    auto block = written;
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(EntityResultsInBothFamilies, second_write_replaces_the_first)
{
    auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    written.res = some_values(6, -100.0F);
    written.tables.fid = {1, 2, 3};
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(EntityResultsInBothFamilies, second_write_of_another_shape_is_refused)
{
    auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    auto second = written;
    second.nent = 2;
    EXPECT_EQ(write(second),
              failure(-6030,
                      "VAK INTERNAL ERROR (30) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, "
                      "mode, error: entid 2 4 4 0 0\n"));
    EXPECT_EQ(dataset_values<float>(file, written.path() + (legacy() ? "/data/res" : "/res")), written.res);
}

TEST_P(EntityResultsInBothFamilies, null_arrays_are_checked_and_not_delivered)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), status(1000));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, 0);
    H5Ldelete(file, (written.path() + (legacy() ? "/data/weight" : "/weight")).c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 2), failure(-6002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: weight 3 4 -1\n"));
}

TEST_P(EntityResultsInBothFamilies, no_group_is_reported)
{
    auto block = sample<EntityResults>();
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 2); }),
              failure(-1, "VAK ERROR - header not found\n"));
}

TEST_P(EntityResultsInBothFamilies, wrong_key_is_reported_before_a_wrong_pass)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    falsify_attribute(written.path() + (legacy() ? "/header" : ""), "block", 1100);
    auto block = emptied(written);
    for (const int32_t pass : {2, 7})
        EXPECT_EQ(read(block, pass),
                  failure(-1, "VAK ERROR - wrong block key 1100, 1000 or 1001 expected\n"));
}

TEST_P(EntityResultsInBothFamilies, missing_key_is_reported)
{
    const auto written = sample<EntityResults>();
    EXPECT_EQ(write(written), success);
    H5Adelete_by_name(file, (written.path() + (legacy() ? "/header" : "")).c_str(), "block", H5P_DEFAULT);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

TEST_P(EntityResultsInBothFamilies, file_that_is_none_gives_the_status_of_opening)
{
    const auto block = sample<EntityResults>();
    const Result result = run([&] { return block.write(H5I_INVALID_HID); });
    EXPECT_LT(result.ierr, 0);
    EXPECT_THAT(result.output.err, testing::StartsWith("VAK"));
}

TEST_F(EntityResultsBlock, missing_legacy_subgroups_are_reported)
{
    const EntityResults written = legacy_results();
    for (const std::string section : {"data", "index", "header"}) {
        EXPECT_EQ(write(written), success);
        H5Ldelete(file, (written.path() + "/" + section).c_str(), H5P_DEFAULT);
        EntityResults block = emptied(written);
        EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - " + section + " not found\n"));
        H5Ldelete(file, "singlestate", H5P_DEFAULT);
    }
}

TEST_F(EntityResultsBlock, legacy_subgroup_that_cannot_be_had_is_reported)
{
    const EntityResults block = legacy_results();
    const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "properties");
    H5Pset_create_intermediate_group(parents, 1);
    H5Gclose(H5Gcreate2(file, block.path().c_str(), parents, H5P_DEFAULT, H5P_DEFAULT));
    H5Lcreate_soft("/nowhere", file, (block.path() + "/index").c_str(), H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(write(block), failure(-1, "VAK ERROR writing block key 1000\n"));
    EXPECT_TRUE(exists(file, block.path() + "/header"));
    EXPECT_FALSE(exists(file, block.path() + "/data"));
}

}  // namespace

}  // namespace vak::test
