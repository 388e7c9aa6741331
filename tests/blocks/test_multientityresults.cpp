// Series of entity results: whole series through the usual entries, stored form, readers.
#include "blocks/multientityresults_test.h"

namespace vak::test {

namespace {

class MultiEntityResultsBlock : public BlockTest {};
class MultiEntityResultsInBothFamilies : public SeriesTest {};
INSTANTIATE_TEST_SUITE_P(, MultiEntityResultsInBothFamilies, both_families, family_name);

// What the attributes of the block alone tell.
MultiEntityResults header_of(const MultiEntityResults& written)
{
    MultiEntityResults expected = emptied(written);
    take_header(expected, written);
    return expected;
}

TEST_F(MultiEntityResultsBlock, is_stored_as_described)
{
    const auto block = MultiEntityResults::of_states(Family::current, 3);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "multistate/MODAL/multientityresults/NODE/DISPLACEMENT/SOLID3_set2/vakblock"), R"(
A block int32
A blocktype char[256]
A series char[256]
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
A nstate int32
D entid int32 [3] compact
D fid int32 [3] compact
D operator char[256] [2] compact
D weight float32 [3] compact
D indexident int32 [unlimited(3),2] chunked(1,2)
D indexval float32 [unlimited(3),2] chunked(1,2)
D res float32 [unlimited(3),3,2] chunked(1,3,2)
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 1050);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "multientityresults" + std::string(238, '\0'));
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "nstate"), 3);
    EXPECT_EQ(dataset_values<int32_t>(file, block.path() + "/indexident"), block.index.indexident);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/res"), block.res);
}

TEST_F(MultiEntityResultsBlock, legacy_block_is_stored_as_described)
{
    const auto block = MultiEntityResults::of_states(Family::legacy, 3);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "multistate/MODAL/multientityresults/NODE/DISPLACEMENT/SOLID3_set2"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/series char[256]
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
A header/nstate int32
G data
D data/entid int32 [3] compact
D data/fid int32 [3] compact
D data/operator char[256] [2] compact
D data/weight float32 [3] compact
D data/res float32 [unlimited(3),3,2] chunked(1,3,2)
G index
D index/indexident int32 [unlimited(3),2] chunked(1,2)
D index/indexval float32 [unlimited(3),2] chunked(1,2)
)");
}

TEST_P(MultiEntityResultsInBothFamilies, reads_back_what_was_written_and_gives_the_key)
{
    const auto written = series_of(3);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1050));
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
    EXPECT_EQ(block.found_params[0], 0);
}

TEST_P(MultiEntityResultsInBothFamilies, complex_values_have_a_key_and_an_extent_of_their_own)
{
    for (const int32_t ivsize : {16, 32}) {
        auto written = series_of(2, ivsize);
        written.set = ivsize;
        EXPECT_EQ(write(written), success);
        EXPECT_EQ(attribute_value<int32_t>(file, header(written), "block"), 1051);
        EXPECT_EQ(dataset_extents(file, data(written, "res")), (std::vector<int64_t>{2, 3, 2, 2}));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1051));
        EXPECT_EQ(listing(block), listing(written));
    }
}

// Bit 1024 means nothing here.
TEST_P(MultiEntityResultsInBothFamilies, value_size_code_gives_key_and_stored_size)
{
    struct Row {
        int32_t ivsize, key;
        std::string real;
    };
    for (const Row& row : {Row{4, 1050, "float32"}, Row{8, 1050, "float64"}, Row{16, 1051, "float32"},
                           Row{32, 1051, "float64"}, Row{12, 1050, "float32"}, Row{0, 1050, "float32"},
                           Row{1024 + 8, 1050, "float64"}, Row{1024 + 32, 1051, "float64"}}) {
        SCOPED_TRACE(row.ivsize);
        auto block = series_of(2, 16);
        block.ivsize = block.set = row.ivsize;
        EXPECT_EQ(write(block), success);
        for (const char* name : {"indexval ", "weight ", "res "})
            EXPECT_THAT(stored(block), testing::HasSubstr(name + row.real + " ["));
        EXPECT_EQ(attribute_value<int32_t>(file, header(block), "block"), row.key);
    }
}

TEST_P(MultiEntityResultsInBothFamilies, values_alone_of_all_reals_may_be_scale_offset_compressed)
{
    auto written = series_of(2);
    written.nent = 8;
    written.tables.ids = written.tables.fid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.tables.weight = some_values(8);
    written.index.nindex = 8;
    written.index.indexident.assign(16, 4);
    written.index.indexval = some_values(16);
    written.res = some_values(32);
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 6;
    EXPECT_EQ(write(written), success);
    for (const char* real :
         {"weight float32 [8] chunked(8)", "indexval float32 [unlimited(2),8] chunked(1,8)"})
        EXPECT_THAT(stored(written), testing::HasSubstr(real + std::string(" shuffle deflate(6)\n")));
    EXPECT_THAT(stored(written), testing::HasSubstr("res float32 [unlimited(2),8,2] chunked(1,8,2) "
                                                    "scaleoffset(float,2) shuffle deflate(6) fill=10000\n"));
    EXPECT_THAT(
        stored(written),
        testing::HasSubstr("entid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000\n"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1050));
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 1 + 2 + 8 + 16 + 64 + 128);
    EXPECT_EQ(block.found_params[0], 2);
    EXPECT_EQ(block.found_params[1], 6);
}

TEST_P(MultiEntityResultsInBothFamilies, chunk_size_setting_is_the_number_of_states_in_a_chunk)
{
    const int32_t two = 2, one = 1;
    const auto written = series_of(5);
    VAK_SET_CHUNK_SIZE(&two);
    EXPECT_EQ(write(written), success);
    VAK_SET_CHUNK_SIZE(&one);
    EXPECT_THAT(stored(written), testing::HasSubstr("res float32 [unlimited(5),3,2] chunked(2,3,2)\n"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1050));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(MultiEntityResultsInBothFamilies, frame_switch_has_two_forms)
{
    auto written = series_of(2);
    written.zone.fswitch = 0;
    written.zone.dmpswitch = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::HasSubstr("fidglob int32 compact\n"));
    for (const char* name : {"fid int32", "operator", "weight"})
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1050));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(MultiEntityResultsInBothFamilies, another_frame_switch_ends_the_write_behind_the_attributes_and_entid)
{
    auto written = series_of(2);
    written.zone.fswitch = 2;
    EXPECT_EQ(write(written), status(-123));
    EXPECT_THAT(stored(written), testing::HasSubstr("nindex int32"));
    EXPECT_THAT(stored(written), testing::HasSubstr("entid int32 [3]"));
    for (const char* name : {"fid int32", "operator", "indexident", "res", "nstate"})
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), status(1050));
    EXPECT_EQ(block.nstate, 0);
    EXPECT_EQ(read_parts(block, {.what = 4}), status(-123));
}

TEST_P(MultiEntityResultsInBothFamilies, pass_1_reads_the_attributes_alone)
{
    const auto written = series_of(3);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), status(1050));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(MultiEntityResultsInBothFamilies, pass_0_reads_the_index_values_of_all_states_too)
{
    const auto written = series_of(3);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), status(1050));
    auto expected = header_of(written);
    expected.index = written.index;
    expected.index.indexic = untouched;
    block.index.indexic = untouched;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(MultiEntityResultsInBothFamilies, another_pass_is_refused_and_reads_nothing)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    for (const int32_t pass : {-1, 3, 15}) {
        const Result refused = failure(
            -3, "VAK INTERNAL ERROR reading \"multientityresults\" block - ipass = " + std::to_string(pass) +
                    "\n");
        auto block = emptied(written);
        EXPECT_EQ(read(block, pass), refused);
        EXPECT_EQ(read_chosen(block, pass, {}), refused);
        EXPECT_EQ(listing(block), listing(emptied(written)));
    }
}

TEST_P(MultiEntityResultsInBothFamilies, chosen_mode_0_reads_everything)
{
    const auto written = series_of(3, 16);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read_chosen(block, 2, {}), status(1051));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(MultiEntityResultsInBothFamilies, series_of_another_length_than_the_caller_knows_is_refused)
{
    const auto written = series_of(3);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    take_header(block, written);
    block.nstate = 2;
    EXPECT_EQ(
        read_parts(block, {.what = 2}),
        failure(
            -6030,
            "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: indexident 2 4 0\n"));
    EXPECT_EQ(
        read_parts(block, {.what = 8}),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: res 3 4 0\n"));
}

TEST_P(MultiEntityResultsInBothFamilies, null_arrays_are_checked_and_not_delivered)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), status(1050));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, 0);
    H5Ldelete(file, index(written, "indexval").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 0), failure(-6002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: indexval 3 4 -1\n"));
}

TEST_P(MultiEntityResultsInBothFamilies, names_of_blanks_and_negative_numbers_add_nothing_to_the_path)
{
    auto written = series_of(1);
    written.series = written.etypvar = padded(" ");
    written.zone.zoneid = written.set = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(exists(
        file, std::string("multistate/multientityresults/NODE/SOLID/") + (legacy() ? "data" : "vakblock")));
}

TEST_P(MultiEntityResultsInBothFamilies, no_group_is_reported)
{
    auto block = series_of(1);
    const hid_t none = H5I_INVALID_HID;
    const Result missing = failure(-1, "VAK ERROR - header not found\n");
    EXPECT_EQ(run([&] { return block.read(none, 2); }), missing);
    EXPECT_EQ(run([&] { return block.read_chosen(none, 2, {}); }), missing);
    EXPECT_EQ(run([&] { return block.read_parts(none, {}); }), missing);
}

TEST_P(MultiEntityResultsInBothFamilies, wrong_key_is_reported_before_a_wrong_pass)
{
    const auto written = series_of(1);
    EXPECT_EQ(write(written), success);
    falsify_attribute(header(written), "block", 1000);
    const Result wrong = failure(-1, "VAK ERROR - wrong block key 1000, 1050 or 1051 expected\n");
    auto block = emptied(written);
    for (const int32_t pass : {2, 7}) {
        EXPECT_EQ(read(block, pass), wrong);
        EXPECT_EQ(read_chosen(block, pass, {}), wrong);
    }
    EXPECT_EQ(read_parts(block, {}), wrong);
}

TEST_P(MultiEntityResultsInBothFamilies, missing_key_is_reported)
{
    const auto written = series_of(1);
    EXPECT_EQ(write(written), success);
    H5Adelete_by_name(file, header(written).c_str(), "block", H5P_DEFAULT);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

TEST_F(MultiEntityResultsBlock, missing_legacy_subgroups_are_reported)
{
    const auto written = MultiEntityResults::of_states(Family::legacy, 2);
    for (const std::string section : {"data", "index", "header"}) {
        EXPECT_EQ(write(written), success);
        H5Ldelete(file, (written.path() + "/" + section).c_str(), H5P_DEFAULT);
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - " + section + " not found\n"));
        H5Ldelete(file, "multistate", H5P_DEFAULT);
    }
}

TEST_F(MultiEntityResultsBlock, legacy_subgroup_that_cannot_be_had_is_reported)
{
    const auto block = MultiEntityResults::of_states(Family::legacy, 1, 16);
    const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "properties");
    H5Pset_create_intermediate_group(parents, 1);
    H5Gclose(H5Gcreate2(file, block.path().c_str(), parents, H5P_DEFAULT, H5P_DEFAULT));
    H5Lcreate_soft("/nowhere", file, (block.path() + "/header").c_str(), H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(write(block), failure(-1, "VAK ERROR writing block key 1051\n"));
}

}  // namespace

}  // namespace vak::test
