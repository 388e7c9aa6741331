#include "samples/elementresults.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

// The writer leaves the block's group open when it succeeds; the tests close it and count it.
class ElementResultsTest : public BlockTest {
protected:
    Result write(const ElementResults& r)
    {
        return run([&] {
            const int32_t ierr = r.write(file);
            if (ierr == 0) close_the_open_group();
            return ierr;
        });
    }

    void close_the_open_group() const
    {
        hid_t group = H5I_INVALID_HID;
        EXPECT_EQ(H5Fget_obj_count(file, H5F_OBJ_GROUP), 1);
        H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &group);
        EXPECT_GE(H5Gclose(group), 0);
        EXPECT_EQ(H5Fget_obj_count(file, H5F_OBJ_GROUP), 0);
    }
};

class ElementResultsBlock : public ElementResultsTest {};

class ElementResultsInBothFamilies : public ElementResultsTest, public testing::WithParamInterface<Family> {
protected:
    bool legacy() const { return GetParam() == Family::legacy; }
    ElementResults sample() const { return sample_of<ElementResults>(GetParam()); }
    ElementResults complex_sample() const { return ElementResults::complex_of(GetParam()); }
    std::string data(const ElementResults& r, const std::string& name) const
    {
        return r.path() + (legacy() ? "/data/" : "/") + name;
    }
    std::string header(const ElementResults& r) const { return r.path() + (legacy() ? "/header" : ""); }
};
INSTANTIATE_TEST_SUITE_P(, ElementResultsInBothFamilies, both_families, family_name);

// What the attributes of the block alone tell.
ElementResults header_of(const ElementResults& written)
{
    ElementResults expected = emptied(written);
    expected.etypelem = written.etypelem;
    expected.nele = written.nele;
    expected.etypvar = written.etypvar;
    expected.ncoo = written.ncoo;
    expected.numl = written.numl;
    expected.ndim = written.ndim;
    expected.zone = written.zone;
    expected.index.nindex = written.index.nindex;
    expected.index.indexic = written.index.indexic;
    return expected;
}

TEST_F(ElementResultsBlock, is_stored_as_described)
{
    const ElementResults block;
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/elementresults/HEXA 8/STRESS/SOLID3_set2/vakblock"),
              R"(
A block int32
A blocktype char[256]
A etypelem char[256]
A nele int32
A etypvar char[256]
A ncoo int32
A numl int32
A ndim int32
A etypzone char[256]
A zoneid int32
A etypframe char[256]
A fswitch int32
A dmpswitch int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D idele int32 [3] compact
D fid int32 [3] compact
D operator char[256] [2] compact
D weight float32 [3] compact
D eloc float32 [2,3] compact
D res float32 [3,2,2] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, block.path(), "block"), 1100);
    EXPECT_EQ(attribute_text(file, block.path(), "blocktype"), "elementresults" + std::string(242, '\0'));
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/eloc"), block.eloc);
    EXPECT_EQ(dataset_values<float>(file, block.path() + "/res"), block.res);
}

TEST_F(ElementResultsBlock, legacy_block_is_stored_as_described)
{
    const auto block = sample_of<ElementResults>(Family::legacy);
    EXPECT_EQ(write(block), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/elementresults/HEXA 8/STRESS/SOLID3_set2"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etypelem char[256]
A header/nele int32
A header/etypvar char[256]
A header/ncoo int32
A header/numl int32
A header/ndim int32
A header/etypzone char[256]
A header/zoneid int32
A header/etypframe char[256]
A header/fswitch int32
A header/dmpswitch int32
A header/nindex int32
A header/indexic int32
G index
D index/indexident int32 [2] compact
D index/indexval float32 [2] compact
G data
D data/idele int32 [3] compact
D data/fid int32 [3] compact
D data/operator char[256] [2] compact
D data/weight float32 [3] compact
D data/eloc float32 [2,3] compact
D data/res float32 [3,2,2] compact
)");
}

TEST_P(ElementResultsInBothFamilies, group_stays_open_after_success_and_closes_on_failure)
{
    auto block = sample();
    EXPECT_EQ(run([&] {
                  const int32_t ierr = block.write(file);
                  EXPECT_EQ(H5Fget_obj_count(file, H5F_OBJ_GROUP), 1);
                  hid_t group = H5I_INVALID_HID;
                  H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &group);
                  EXPECT_EQ(H5Iget_ref(group), 1);
                  EXPECT_TRUE(exists(group, legacy() ? "data/res" : "res"));
                  EXPECT_GE(H5Gclose(group), 0);
                  return ierr;
              }),
              success);
    block.zone.fswitch = 3;
    block.set = 5;
    EXPECT_EQ(write(block), status(-123));
    EXPECT_EQ(H5Fget_obj_count(file, H5F_OBJ_GROUP), 0);
}

TEST_P(ElementResultsInBothFamilies, reads_back_what_was_written_and_gives_the_key)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(listing(block), listing(written));
    EXPECT_EQ(block.found_flags, 0);
    EXPECT_EQ(block.found_params[0], 0);
    EXPECT_EQ(block.found_params[1], 0);
}

TEST_P(ElementResultsInBothFamilies, complex_values_have_a_key_and_an_extent_of_their_own)
{
    for (const int32_t ivsize : {16, 32}) {
        auto written = complex_sample();
        written.ivsize = written.set = ivsize;
        EXPECT_EQ(write(written), success);
        EXPECT_EQ(attribute_value<int32_t>(file, header(written), "block"), 1101);
        EXPECT_EQ(dataset_extents(file, data(written, "res")), (std::vector<int64_t>{3, 2, 2, 2}));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1101));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(ElementResultsInBothFamilies, value_size_code_gives_key_and_stored_size)
{
    struct Row {
        int32_t ivsize, key;
        std::string real;
    };
    for (const Row& row : {Row{4, 1100, "float32"}, Row{8, 1100, "float64"}, Row{16, 1101, "float32"},
                           Row{32, 1101, "float64"}, Row{12, 1100, "float32"}, Row{1032, 1100, "float32"}}) {
        SCOPED_TRACE(row.ivsize);
        auto block = complex_sample();
        block.ivsize = block.state = row.ivsize;
        EXPECT_EQ(write(block), success);
        for (const char* name : {"indexval ", "weight ", "eloc ", "res "})
            EXPECT_THAT(stored(block), testing::HasSubstr(name + row.real + " ["));
        EXPECT_EQ(attribute_value<int32_t>(file, header(block), "block"), row.key);
    }
}

TEST_P(ElementResultsInBothFamilies, frame_switch_has_three_forms)
{
    for (const int32_t fswitch : {0, 1, 2}) {
        auto written = sample();
        if (fswitch == 2) written.take_frames_of_locations();
        written.zone.fswitch = written.set = fswitch;
        EXPECT_EQ(write(written), success);
        const std::string form = fswitch == 0   ? "fidglob int32 compact\n"
                                 : fswitch == 1 ? "fid int32 [3] compact\n"
                                                : "fid int32 [3,2] compact\n";
        EXPECT_THAT(stored(written), testing::HasSubstr(form));
        auto block = emptied(written);
        EXPECT_EQ(read(block, 2), status(1100));
        EXPECT_EQ(listing(block), listing(written));
    }
}

TEST_P(ElementResultsInBothFamilies, another_frame_switch_ends_the_write_behind_idele)
{
    for (const int32_t fswitch : {3, -1}) {
        auto written = sample();
        written.zone.fswitch = fswitch;
        written.set = fswitch + 10;
        EXPECT_EQ(write(written), status(-123));
        EXPECT_THAT(stored(written), testing::HasSubstr("idele int32 [3]"));
        for (const char* name : {"fidglob", "fid int32", "operator", "weight", "eloc", "res"})
            EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
    }
}

TEST_P(ElementResultsInBothFamilies, another_frame_switch_ends_the_read_behind_idele)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    falsify_attribute(header(written), "fswitch", 3);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(-123));
    EXPECT_EQ(block.tables.ids, written.tables.ids);
    EXPECT_EQ(block.eloc, emptied(written).eloc);
    EXPECT_EQ(block.index.indexident, emptied(written).index.indexident);
}

TEST_P(ElementResultsInBothFamilies, one_frame_for_all_may_be_an_attribute)
{
    auto written = sample();
    written.zone.fswitch = 0;
    EXPECT_EQ(write(written), success);
    {
        const ObjectId group = open_object(file, written.path() + (legacy() ? "/data" : ""));
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const AttributeId attribute(
            H5Acreate2(group, "fidglob", H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT), "fidglob");
        const int32_t frame = 77;
        H5Awrite(attribute, H5T_NATIVE_INT32, &frame);
    }
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(block.tables.fidglob, 77);
}

TEST_P(ElementResultsInBothFamilies, pass_1_reads_the_attributes_alone)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), status(1100));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(ElementResultsInBothFamilies, pass_0_reads_the_index_values_too)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), status(1100));
    auto expected = header_of(written);
    expected.index = written.index;
    EXPECT_EQ(listing(block), listing(expected));
    EXPECT_EQ(block.found_flags, untouched);
}

TEST_P(ElementResultsInBothFamilies, another_pass_is_refused)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    for (const int32_t pass : {-1, 3})
        EXPECT_EQ(read(block, pass), failure(-3, "VAK INTERNAL ERROR reading block with key 1100 or 1101\n"));
    EXPECT_EQ(listing(block), listing(emptied(written)));
}

// Only the values themselves may lose digits.
TEST_P(ElementResultsInBothFamilies, values_alone_may_be_scale_offset_compressed)
{
    auto written = sample();
    written.nele = 8;
    written.numl = 4;
    written.index.nindex = 8;
    written.index.indexident.assign(8, 3);
    written.index.indexval = some_values(8);
    written.tables.ids = written.tables.fid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.tables.weight = some_values(8);
    written.eloc = some_values(12);
    written.res = some_values(64);
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 6;
    EXPECT_EQ(write(written), success);
    for (const char* real : {"indexval float32 [8] chunked(8)", "weight float32 [8] chunked(8)",
                             "eloc float32 [4,3] chunked(4,3)"})
        EXPECT_THAT(stored(written), testing::HasSubstr(real + std::string(" shuffle deflate(6)\n")));
    EXPECT_THAT(stored(written),
                testing::HasSubstr("res float32 [8,4,2] chunked(8,4,2) scaleoffset(float,2) shuffle "
                                   "deflate(6) fill=10000\n"));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(listing(block), listing(written));  // quarters survive two decimal digits
    EXPECT_EQ(block.found_flags, 1 + 2 + 8 + 16 + 64 + 128);
    EXPECT_EQ(block.found_params[0], 2);
    EXPECT_EQ(block.found_params[1], 6);
}

TEST_P(ElementResultsInBothFamilies, without_index_values_the_block_is_constant)
{
    auto written = sample();
    written.index.nindex = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(written.path(), testing::StartsWith("constant/elementresults"));
    EXPECT_TRUE(exists(file, written.path() + (legacy() ? "/index" : "")));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 0), status(1100));
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(block.res, written.res);
    EXPECT_EQ(block.index.indexident, emptied(written).index.indexident);
}

TEST_P(ElementResultsInBothFamilies, negative_counts_are_lengths_of_0)
{
    auto written = sample();
    written.nele = -1;
    written.numl = -2;
    EXPECT_EQ(write(written), success);
    for (const char* name : {"idele", "fid ", "weight", "eloc", "res "})
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr(name)));
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(block.nele, -1);
    EXPECT_EQ(block.numl, -2);
}

TEST_P(ElementResultsInBothFamilies, second_write_replaces_the_first)
{
    auto written = sample();
    EXPECT_EQ(write(written), success);
    written.res = some_values(12, -50);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(listing(block), listing(written));
}

TEST_P(ElementResultsInBothFamilies, names_of_blanks_and_negative_numbers_add_nothing_to_the_path)
{
    auto written = sample();
    written.zone.etypzone = padded("");
    written.zone.zoneid = -1;
    written.set = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_TRUE(exists(file, std::string("singlestate/state000000000012/elementresults/HEXA 8/STRESS/") +
                                 (legacy() ? "data" : "vakblock")));
}

TEST_P(ElementResultsInBothFamilies, null_arrays_are_checked_and_not_delivered)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    block.wants_arrays = false;
    EXPECT_EQ(read(block, 2), status(1100));
    EXPECT_EQ(listing(block), listing(header_of(written)));
    H5Ldelete(file, data(written, "eloc").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(block, 2), failure(-6002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, "
                                      "error: eloc 3 4 -1\n"));
}

TEST_P(ElementResultsInBothFamilies, no_group_is_reported)
{
    auto block = sample();
    EXPECT_EQ(run([&] { return block.read(H5I_INVALID_HID, 2); }),
              failure(-1, "VAK ERROR - header not found\n"));
}

TEST_P(ElementResultsInBothFamilies, wrong_key_is_reported_before_a_wrong_pass)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    falsify_attribute(header(written), "block", 1150);
    auto block = emptied(written);
    for (const int32_t pass : {0, 9})
        EXPECT_EQ(read(block, pass),
                  failure(-1, "VAK ERROR - wrong block key 1150, 1100 or 1101 expected\n"));
}

TEST_P(ElementResultsInBothFamilies, missing_key_is_reported)
{
    const auto written = sample();
    EXPECT_EQ(write(written), success);
    H5Adelete_by_name(file, header(written).c_str(), "block", H5P_DEFAULT);
    auto block = emptied(written);
    EXPECT_EQ(read(block, 1), failure(-4002,
                                      "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, "
                                      "error: block 2 4 -1\n"));
}

TEST_F(ElementResultsBlock, missing_legacy_subgroups_are_reported)
{
    const auto written = sample_of<ElementResults>(Family::legacy);
    for (const std::string section : {"data", "index", "header"}) {
        EXPECT_EQ(write(written), success);
        H5Ldelete(file, (written.path() + "/" + section).c_str(), H5P_DEFAULT);
        ElementResults block = emptied(written);
        EXPECT_EQ(read(block, 2), failure(-1, "VAK ERROR - " + section + " not found\n"));
        H5Ldelete(file, "singlestate", H5P_DEFAULT);
    }
}

TEST_F(ElementResultsBlock, legacy_subgroup_that_cannot_be_had_is_reported)
{
    auto block = ElementResults::complex_of(Family::legacy);
    const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "properties");
    H5Pset_create_intermediate_group(parents, 1);
    H5Gclose(H5Gcreate2(file, block.path().c_str(), parents, H5P_DEFAULT, H5P_DEFAULT));
    H5Lcreate_soft("/nowhere", file, (block.path() + "/data").c_str(), H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(write(block), failure(-1, "VAK ERROR writing block key 1101\n"));
}

}  // namespace

}  // namespace vak::test
