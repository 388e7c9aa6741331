// vak show as a user calls it; result blocks, every field of both layouts.
#include <cmath>

#include "cli/frd_text.h"
#include "cli/show_test.h"
#include "samples/activflags.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "store/call.h"
#include "support/ids.h"

using namespace vak::test;
using testing::HasSubstr;
using vak::Family;

namespace {

using Samples = testing::Types<EntityResults, MultiEntityResults, ElementResults, MultiElementResults,
                               ActivFlags, MultiActivFlags>;

template <class Sample>
class ShowResults : public ShowSample<Sample> {
};
TYPED_TEST_SUITE(ShowResults, Samples);

// Two nodes with displacements and temperatures, imported.
class ShowRun : public Show {
protected:
    void SetUp() override
    {
        const NodeValues nodes{{1, {0, 0, 0}}, {7, {1, 0.5, -2}}};
        FrdText frd;
        frd.head().nodes(nodes).result("DISP", displacement, {{1, {1, 2, 3}}, {7, {4, -5, 6e-30}}},
                                       {0.25, 3, 1});
        frd.result_head("NDTEMP", temperature, 2, {0.25, 3, 1}).line(" -1         1         NaN");
        frd.line(" -1         7 2.50000E+01").line(" -3").end();
        write_text(folder.file("run.frd"), frd.text());
        ASSERT_EQ(vak_says({"import", folder.file("run.frd"), "-o", path}).status, 0);
    }
};

}  // namespace

TYPED_TEST(ShowResults, every_field_is_shown) { this->shows_all_fields(Family::current); }
TYPED_TEST(ShowResults, every_field_is_shown_in_the_legacy_layout) { this->shows_all_fields(Family::legacy); }

TEST_F(ShowRun, a_block_is_shown_with_attributes_shapes_first_values_and_extremes)
{
    EXPECT_EQ(
        text({"NODE/DISP/vakblock"}),
        R"(   1000  entityresults               3     -  singlestate/state000000000003/entityresults/NODE/DISP/vakblock
  etyp         "NODE"
  nent         2
  etypvar      "DISP"
  ncoo         3
  etypzone     ""
  zoneid       -1
  etypframe    "GLOBAL"
  fswitch      0
  dmpswitch    0
  nindex       1
  indexic      1
  fidglob      0
  indexident   int32[1]  3
  indexval     float32[1]  0.25
  entid        int32[2]  1 7
  res          float32[2][3]
    1 2 3
    4 -5 6e-30
    D1       min 1 at NODE 1, max 4 at NODE 7
    D2       min -5 at NODE 7, max 2 at NODE 1
    D3       min 6e-30 at NODE 7, max 3 at NODE 1
)");
}

TEST_F(ShowRun, without_a_pattern_every_block_is_shown_and_no_array_read)
{
    const json blocks = shown({});
    EXPECT_EQ(blocks.size(), json::parse(vak_says({"list", "--json", path}).out)["blocks"].size());
    for (const json& block : blocks)
        for (const json& array : block["arrays"]) {
            EXPECT_FALSE(array.contains("values")) << block["path"];
            EXPECT_FALSE(array.contains("first")) << block["path"];
            EXPECT_FALSE(array.contains("components")) << block["path"];
        }
    EXPECT_THAT(text({}), HasSubstr("  res          float32[2][3]\n"));
}

TEST_F(ShowRun, a_pattern_matches_whole_paths_and_a_word_matches_parts_of_them)
{
    EXPECT_EQ(shown({"*/NODE/DISP/vakblock"}).size(), 1U);
    EXPECT_EQ(shown({"*/entityresults/NODE/*"}).size(), 3U);
    EXPECT_EQ(vak_says({"show", path, "DISP/*"}).status, 2) << "no path begins like that";
    EXPECT_EQ(vak_says({"show", path, "state00000000000?"}).status, 2) << "no path is all of that";
}

TEST_F(ShowRun, what_is_no_number_is_counted)
{
    EXPECT_THAT(text({"NODE/NDTEMP"}), HasSubstr("    T        min 25 at NODE 7, max 25 at NODE 7, 1 NaN\n"));
    const json res = shown({"NODE/NDTEMP"})[0]["arrays"]["res"];
    EXPECT_EQ(res["values"], (json{"nan", 25.0}));
    EXPECT_EQ(res["components"][0]["nan"], 1);
}

TEST_F(ShowRun, numbers_have_as_many_digits_as_single_precision_needs)
{
    EXPECT_EQ(shown({"NODE/DISP"})[0]["arrays"]["res"]["values"].dump(), "[1.0,2.0,3.0,4.0,-5.0,6e-30]");
}

TEST_F(ShowRun, a_pattern_that_no_path_matches_is_told_in_one_line)
{
    EXPECT_EQ(vak_says({"show", path, "VELOCITY"}),
              (Said{.status = 2,
                    .out = "",
                    .err = "vak show: " + path + ": no block matches VELOCITY; vak list tells the paths\n"}));
}

TEST_F(ShowRun, a_damaged_block_is_told_in_one_line)
{
    {
        const auto file = edit_file(path);
        H5Ldelete(file, "/post/singlestate/state000000000003/entityresults/NODE/DISP/vakblock/res",
                  H5P_DEFAULT);
    }
    const Said said = vak_says({"show", path, "NODE/DISP"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
    EXPECT_THAT(
        said.err,
        HasSubstr("reading singlestate/state000000000003/entityresults/NODE/DISP/vakblock failed: VAK "));
}

TEST_F(ShowRun, counts_that_cannot_be_are_told_without_allocating)
{
    {
        const auto file = edit_file(path);
        const auto block =
            open_object(file, "/post/singlestate/state000000000003/entityresults/NODE/DISP/vakblock");
        const auto attribute = open_attribute(block, ".", "nent");
        const int32_t count = 2'000'000'000;
        H5Awrite(attribute, H5T_NATIVE_INT32, &count);
    }
    const Said said = vak_says({"show", path, "NODE/DISP"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
}

TEST_F(ShowRun, a_block_of_an_unknown_kind_is_shown_by_its_line)
{
    {
        const auto file = edit_file(path);
        const auto block = open_object(file, "/post/constant/indices/vakblock");
        const int32_t key = 4711;
        H5Awrite(open_attribute(block, ".", "block"), H5T_NATIVE_INT32, &key);
    }
    EXPECT_EQ(text({"indices"}), "   4711  unknown                     -     -  constant/indices/vakblock\n");
}

// script/demo stands on this check.
TEST_F(ShowRun, the_extremes_agree_with_the_text_of_the_result_file_and_a_changed_one_does_not)
{
    const std::string said = folder.file("shown.json");
    const auto checked = [&](const json& document) {
        write_text(said, document.dump());
        const std::string command = std::string("python3 ") + VAK_SOURCE + "/script/check_extremes.py " +
                                    folder.file("run.frd") + " " + said;
        return std::system((command + " >/dev/null 2>&1").c_str());
    };
    json document{{"blocks", shown({"*/NODE/DISP/*"})}};
    EXPECT_EQ(checked(document), 0);
    for (const char* changed : {"/value", "/entity"}) {
        json wrong = document;
        wrong[json::json_pointer("/blocks/0/arrays/res/components/1/minimum" + std::string(changed))] = 1;
        EXPECT_NE(checked(wrong), 0) << changed;
    }
    EXPECT_NE(checked({{"blocks", json::array()}}), 0);
}

TEST_F(Show, a_series_is_shown_with_the_states_of_the_extremes)
{
    const auto sample = MultiEntityResults::of_states(Family::current, 3);
    make([&](hid_t file) { ASSERT_EQ(sample.write(file), 0); });
    const json block = shown({"--all", "multientityresults"})[0];
    EXPECT_EQ(block["attributes"]["nstate"], 3);
    EXPECT_EQ(block["arrays"]["res"]["shape"], (json{3, 3, 2}));
    EXPECT_EQ(block["arrays"]["res"]["values"], json(sample.res));
    EXPECT_EQ(block["arrays"]["indexident"]["shape"], (json{3, 2}));
    EXPECT_EQ(block["arrays"]["indexident"]["values"], json(sample.index.indexident));
    EXPECT_EQ(block["arrays"]["res"]["components"][1]["maximum"],
              (json{{"value", 8.75}, {"state", 8}, {"entity", 13}}));
    const json arrays = shown({"multientityresults"})[0]["arrays"];
    EXPECT_EQ(arrays["res"]["first"], (json{0.25, 0.75, 1.25, 1.75, 2.25, 2.75}));
    EXPECT_EQ(arrays["indexident"]["values"], json(sample.index.indexident)) << "six values are all";
}

TEST_F(Show, a_complex_series_is_shown_by_real_and_imaginary_parts)
{
    const auto sample = MultiEntityResults::of_states(Family::legacy, 2, 16);
    make([&](hid_t file) { ASSERT_EQ(sample.write(file), 0); });
    const json block = shown({"--all", "multientityresults"})[0];
    EXPECT_EQ(block["key"], 1051);
    EXPECT_EQ(block["arrays"]["res"]["shape"], (json{2, 3, 2, 2}));
    EXPECT_EQ(block["arrays"]["res"]["values"], json(sample.res));
    EXPECT_EQ(block["arrays"]["res"]["components"][3]["name"], "2.im");
}

TEST_F(Show, frames_are_shown_as_the_switch_says)
{
    EntityResults sample;
    sample.zone.fswitch = 0;
    make([&](hid_t file) { ASSERT_EQ(sample.write(file), 0); });
    const json one_frame = shown({"entityresults"})[0];
    EXPECT_EQ(one_frame["attributes"]["fidglob"], 9);
    EXPECT_FALSE(one_frame["arrays"].contains("fid"));
    EXPECT_FALSE(shown({})[0]["attributes"].contains("fidglob"))
        << "it is a dataset, which is not read unasked";
}
