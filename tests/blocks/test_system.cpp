#include "samples/system.h"

#include "samples/text.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

class SystemBlock : public BlockTest {};
class SystemInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, SystemInBothFamilies, both_families, family_name);

// What the texts and counts alone tell.
System header_of(const System& written)
{
    System expected = emptied(written);
    expected.title = written.title;
    expected.sys = written.sys;
    expected.solver_name = written.solver_name;
    expected.solver_vers = written.solver_vers;
    expected.cdate = written.cdate;
    expected.ctime = written.ctime;
    expected.mdate = written.mdate;
    expected.mtime = written.mtime;
    expected.nbunit = written.nbunit;
    expected.ndunit = written.ndunit;
    return expected;
}

TEST_F(SystemBlock, is_stored_as_described)
{
    EXPECT_EQ(write(System()), success);
    EXPECT_EQ(layout(file, "constant/system/vakblock"), R"(
A block int32
A blocktype char[256]
A title char[256]
A sys char[256]
A solver_name char[256]
A solver_vers char[256]
A cdate char[8]
A ctime char[8]
A mdate char[8]
A mtime char[8]
A nbunit int32
A ndunit int32
D ubid int32 [2] compact
D ubtyp char[256] [2] compact
D ubnam char[256] [2] compact
D ubshift float32 [2] compact
D ubcon float32 [2] compact
D udid int32 [3] compact
D udnam char[256] [3] compact
D udscal float32 [3] compact
D ndbunit int32 [3] compact
D udbid int32 [3] compact
D udbexp float32 [3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, "constant/system/vakblock", "block"), 10);
    EXPECT_EQ(attribute_text(file, "constant/system/vakblock", "blocktype"),
              std::string("system") + std::string(250, '\0'));
    EXPECT_EQ(attribute_text(file, "constant/system/vakblock", "cdate"), "20240229");
}

TEST_F(SystemBlock, legacy_block_is_stored_as_described)
{
    EXPECT_EQ(write(sample_of<System>(Family::legacy)), success);
    EXPECT_EQ(layout(file, "constant/system"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/title char[256]
A header/sys char[256]
A header/solver_name char[256]
A header/solver_vers char[256]
A header/cdate char[8]
A header/ctime char[8]
A header/mdate char[8]
A header/mtime char[8]
A header/nbunit int32
A header/ndunit int32
G data
D data/ubid int32 [2] compact
D data/ubtyp char[256] [2] compact
D data/ubnam char[256] [2] compact
D data/ubshift float32 [2] compact
D data/ubcon float32 [2] compact
D data/udid int32 [3] compact
D data/udnam char[256] [3] compact
D data/udscal float32 [3] compact
D data/ndbunit int32 [3] compact
D data/udbid int32 [3] compact
D data/udbexp float32 [3] compact
)");
}

TEST_P(SystemInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<System>();
    EXPECT_EQ(write(written), success);
    auto system = emptied(written);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(listing(system), listing(written));
    EXPECT_EQ(system.found_flags, 0);
}

TEST_P(SystemInBothFamilies, pass_1_reads_texts_and_counts_alone)
{
    const auto written = sample<System>();
    EXPECT_EQ(write(written), success);
    auto system = emptied(written);
    EXPECT_EQ(read(system, 1), success);
    EXPECT_EQ(listing(system), listing(header_of(written)));
    EXPECT_EQ(system.found_flags, untouched);
    EXPECT_EQ(system.found_params[0], untouched);
}

TEST_P(SystemInBothFamilies, another_pass_is_refused_behind_texts_and_counts)
{
    const auto written = sample<System>();
    EXPECT_EQ(write(written), success);
    for (const int32_t ipass : {0, 3, -1}) {
        auto system = emptied(written);
        EXPECT_EQ(read(system, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 10 \n"));
        EXPECT_EQ(listing(system), listing(header_of(written)));
    }
}

TEST_P(SystemInBothFamilies, second_write_is_refused_and_leaves_the_first)
{
    const auto first = sample<System>();
    EXPECT_EQ(write(first), success);
    auto second = first;
    second.title = padded("another");
    EXPECT_EQ(write(second),
              failure(-1, "VAK INTERNAL ERROR writing block key 10 - \"system\" already exists.\n"));
    auto system = emptied(first);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(listing(system), listing(first));
}

TEST_P(SystemInBothFamilies, float_size_8_stores_doubles_and_gives_floats)
{
    auto written = sample<System>();
    written.real_size = 8;
    EXPECT_EQ(write(written), success);
    for (const char* name : {"ubshift", "ubcon", "udscal", "udbexp"})
        EXPECT_THAT(stored(written), testing::HasSubstr(std::string(name) + " float64 ["));
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("float32")));
    auto system = emptied(written);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(listing(system), listing(written));
}

TEST_P(SystemInBothFamilies, unit_tables_may_be_empty)
{
    auto written = sample<System>();
    written.ndunit = 0;
    written.nbunit = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("\nD ")));
    auto system = emptied(written);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(system.ndunit, 0);
    EXPECT_EQ(system.nbunit, -1);
    EXPECT_EQ(system.udbid, emptied(written).udbid);
    EXPECT_EQ(system.found_flags, untouched);
}

TEST_P(SystemInBothFamilies, derived_units_without_components_have_no_component_lists)
{
    auto written = sample<System>();
    written.ndbunit = {0, 0, 0};
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::EndsWith("ndbunit int32 [3] compact\n"));
    auto system = emptied(written);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(system.udbexp, emptied(written).udbexp);
}

TEST_P(SystemInBothFamilies, arrays_that_are_not_wanted_are_checked_all_the_same)
{
    const auto written = sample<System>();
    EXPECT_EQ(write(written), success);
    auto system = emptied(written);
    system.wants_arrays = false;
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(listing(system), listing(header_of(written)));
    EXPECT_EQ(system.found_flags, 0);
    H5Ldelete(file, (written.path() + (legacy() ? "/data" : "") + "/udbexp").c_str(), H5P_DEFAULT);
    EXPECT_EQ(
        read(system, 2),
        failure(-6002,
                "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, error: udbexp 3 4 -1\n"));
}

TEST_P(SystemInBothFamilies, negative_number_of_components_is_an_error_and_never_nothing)
{
    auto system = sample<System>();
    system.ndbunit = {2, -1, 1};
    const Result result = write(system);
    EXPECT_LT(result.ierr, 0);
    EXPECT_THAT(result.output.err, testing::StartsWith("VAK INTERNAL ERROR ("));
    EXPECT_THAT(
        result.output.err,
        testing::HasSubstr("in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: udbid "));
}

TEST_P(SystemInBothFamilies, stored_counts_that_the_arrays_do_not_have_are_refused)
{
    const auto written = sample<System>();
    EXPECT_EQ(write(written), success);
    auto system = emptied(written);
    const std::string data = written.path() + (legacy() ? "/data" : "");
    for (const std::vector<int32_t>& hostile :
         {std::vector<int32_t>{2, 1, 1}, {2147483647, 2147483647, 2147483647}, {2, -1, 2}}) {
        falsify_dataset(data + "/ndbunit", hostile);
        EXPECT_EQ(
            read(system, 2),
            failure(
                -6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: udbid 2 4 0\n"));
        EXPECT_EQ(system.udbid, emptied(written).udbid);
    }
    falsify_attribute(written.path() + (legacy() ? "/header" : ""), "nbunit", 2147483647);
    EXPECT_EQ(
        read(system, 2),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: ubid 2 4 0\n"));
}

TEST_P(SystemInBothFamilies, unit_factors_are_never_stored_with_loss)
{
    auto written = sample<System>();
    written.nbunit = 8;
    written.ubid = {1, 2, 3, 4, 5, 6, 7, 8};
    written.ubtyp = written.ubnam = std::string(8 * 256, 'u');
    written.ubshift = written.ubcon = {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F, 0.7F, 1e20F};
    written.flags = 255;
    written.params[0] = 2;
    written.params[1] = 6;
    EXPECT_EQ(write(written), success);
    std::string expected = R"(
D @ubid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(6) fill=10000
D @ubtyp char[256] [8] chunked(8) shuffle deflate(6)
D @ubnam char[256] [8] chunked(8) shuffle deflate(6)
D @ubshift float32 [8] chunked(8) shuffle deflate(6)
D @ubcon float32 [8] chunked(8) shuffle deflate(6)
D @udid int32 [3] compact
)";
    for (size_t at; (at = expected.find('@')) != std::string::npos;)
        expected.replace(at, 1, legacy() ? "data/" : "");
    EXPECT_THAT(stored(written), testing::HasSubstr(expected));
    auto system = emptied(written);
    EXPECT_EQ(read(system, 2), success);
    EXPECT_EQ(listing(system), listing(written));
    EXPECT_EQ(system.found_flags, 255 - 128);
    EXPECT_EQ(system.found_params[0], 0);
    EXPECT_EQ(system.found_params[1], 6);
}

TEST_P(SystemInBothFamilies, texts_end_at_a_zero_byte_and_are_filled_with_zeros)
{
    auto written = sample<System>();
    written.title.replace(0, 8, std::string("ab\0junk\0", 8));
    EXPECT_EQ(write(written), success);
    EXPECT_EQ(attribute_text(file, written.path() + (legacy() ? "/header" : ""), "title"),
              std::string("ab") + std::string(254, '\0'));
}

TEST_P(SystemInBothFamilies, text_block_is_another_kind)
{
    const auto text = sample<Text>();
    EXPECT_EQ(write(text), success);
    auto system = emptied(sample<System>());
    EXPECT_EQ(read(system, 1, text.path()), failure(-1, "VAK ERROR - wrong block key 40, 10 expected\n"));
    EXPECT_EQ(listing(system), listing(emptied(sample<System>())));
}

TEST_F(SystemBlock, missing_legacy_subgroup_is_named)
{
    const auto written = sample_of<System>(Family::legacy);
    EXPECT_EQ(write(written), success);
    auto system = emptied(written);
    H5Ldelete(file, "constant/system/data", H5P_DEFAULT);
    EXPECT_EQ(read(system, 2), failure(-1, "VAK ERROR - data not found\n"));
    EXPECT_EQ(read(system, 1), success);
    H5Ldelete(file, "constant/system/header", H5P_DEFAULT);
    EXPECT_EQ(read(system, 1), failure(-1, "VAK ERROR - header not found\n"));
}

}  // namespace

}  // namespace vak::test
