// vak list as a user calls it.
#include <gmock/gmock.h>
#include <hdf5.h>
#include <vak_sp.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/frd_text.h"
#include "cli/program.h"
#include "store/call.h"
#include "store/file.h"
#include "support/ids.h"

using namespace vak::test;
using testing::HasSubstr;
using testing::StartsWith;
using vak::store::call;
using vak::store::Int;

namespace {

class List : public testing::Test {
protected:
    // A file with results of state 3 in set 2.
    void make_current()
    {
        vak::store::File created = vak::store::File::create(file, "model");
        const int32_t no_parameters[2] = {}, state[2] = {5, 9};
        const float values[2] = {};
        call("writing", VAK_WRITE_FILEHEADER, created.root(), nullptr, nullptr);
        call("writing", VAK_WRITE_INDEX, created.root(), Int{1}, "TIME", nullptr, nullptr);
        const auto write = [&](int32_t nindex, int32_t state_number, int32_t set) {
            call("writing", VAK_WRITE_ENTITYRESULTS, created.root(), "NODE", Int{1}, "T", Int{1}, "", Int{-1},
                 "", Int{0}, Int{0}, Int{nindex}, Int{0}, state, values, state, Int{0}, nullptr, nullptr,
                 nullptr, values, Int{set}, Int{state_number}, Int{0}, no_parameters, Int{4});
        };
        write(1, 3, 2);
        write(2, -1, -1);
        created.close();
    }

    void make_legacy()
    {
        vak::store::File created = vak::store::File::create(file, "model");
        const int32_t no_parameters[2] = {}, state = 3;
        const float value[2] = {};
        call("writing", VAK1_WRITE_FILEHEADER, created.root(), nullptr, nullptr);
        call("writing", VAK1_WRITE_ENTITYRESULTS, created.root(), "NODE", Int{1}, "T", Int{1}, "", Int{-1},
             "", Int{0}, Int{0}, Int{1}, &state, value, &state, Int{0}, nullptr, nullptr, nullptr, value,
             Int{4}, Int{3}, Int{0}, no_parameters, Int{16});
        created.close();
    }

    TempFolder folder;
    std::string file = folder.file("run.h5");
};

}  // namespace

TEST_F(List, one_line_per_block_tells_key_type_state_set_and_path)
{
    make_current();
    EXPECT_EQ(vak_says({"list", file}),
              (Said{.status = 0,
                    .out = "     20  indices                     -     -  constant/indices/vakblock\n"
                           "   1000  entityresults               3     2  "
                           "singlestate/state000000000003/entityresults/NODE/T_set2/vakblock\n"
                           "   1000  entityresults             9/5     -  "
                           "singlestate/state000000000009/state000000000005/entityresults/NODE/T/vakblock\n"
                           "      1  vakheader                   -     -  vakheader\n",
                    .err = ""}));
}

TEST_F(List, json_is_one_document)
{
    make_current();
    const auto json = nlohmann::json::parse(vak_says({"list", "--json", file}).out);
    EXPECT_EQ(json["file"], file);
    EXPECT_EQ(json["layout"], "current");
    ASSERT_EQ(json["blocks"].size(), 4U);
    EXPECT_EQ(json["blocks"][1],
              (nlohmann::json{{"key", 1000},
                              {"type", "entityresults"},
                              {"state", 3},
                              {"set", 2},
                              {"path", "singlestate/state000000000003/entityresults/NODE/T_set2/vakblock"}}));
    EXPECT_EQ(json["blocks"][2]["state"], (nlohmann::json{9, 5}));
    EXPECT_TRUE(json["blocks"][0]["state"].is_null());
    EXPECT_TRUE(json["blocks"][0]["set"].is_null());
}

TEST_F(List, a_legacy_file_is_recognized)
{
    make_legacy();
    const std::string expected =
        "   1001  entityresults               3     4  "
        "singlestate/state000000000003/entityresults/NODE/T_set4\n"
        "      1  vakheader                   -     -  vakheader\n";
    EXPECT_EQ(vak_says({"list", file}), (Said{.status = 0, .out = expected, .err = ""}));
    EXPECT_EQ(vak_says({"list", "--legacy", file}).out, expected);
    EXPECT_EQ(nlohmann::json::parse(vak_says({"list", file, "--json"}).out)["layout"], "legacy");
}

TEST_F(List, legacy_blocks_of_a_current_file_are_listed_when_asked_for)
{
    make_current();
    EXPECT_EQ(vak_says({"list", "--legacy", file}).out,
              "      1  vakheader                   -     -  vakheader\n");
}

TEST_F(List, a_group_behind_the_file_name_is_where_the_list_begins)
{
    make_current();
    EXPECT_EQ(vak_says({"list", file + "/post/constant"}).out,
              "     20  indices                     -     -  indices/vakblock\n");
}

TEST_F(List, a_file_without_a_model_group_is_listed_from_its_root)
{
    {
        const auto created = create_file(file);
        const vak_id root = created;
        call("writing", VAK_WRITE_FILEHEADER, &root, nullptr, nullptr);
    }
    EXPECT_EQ(vak_says({"list", file}).out, "      1  vakheader                   -     -  vakheader\n");
}

TEST_F(List, a_file_without_blocks_has_an_empty_list)
{
    create_file(file);
    EXPECT_EQ(vak_says({"list", file}), (Said{.status = 0, .out = "", .err = ""}));
    EXPECT_TRUE(nlohmann::json::parse(vak_says({"list", file, "--json"}).out)["blocks"].empty());
}

TEST_F(List, a_key_of_another_library_is_listed_as_unknown)
{
    make_current();
    {
        const auto opened = edit_file(file);
        const auto block = open_object(opened, "/post/constant/indices/vakblock");
        const auto attribute = open_attribute(block, ".", "block");
        const int32_t key = 4711;
        H5Awrite(attribute, H5T_NATIVE_INT32, &key);
    }
    EXPECT_THAT(vak_says({"list", file}).out, StartsWith("   4711  unknown  "));
}

TEST_F(List, a_file_that_cannot_be_read_is_told_in_one_line)
{
    EXPECT_EQ(
        vak_says({"list", file}),
        (Said{.status = 2, .out = "", .err = "vak list: " + file + ": cannot be opened: no such file\n"}));
    EXPECT_EQ(vak_says({"list", folder.path()}).err,
              "vak list: " + folder.path() + ": cannot be opened: it is a folder; name a file in it\n");
    write_text(file, "no HDF5");
    const Said said = vak_says({"list", file});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1);
    EXPECT_THAT(said.err, StartsWith("vak list: " + file +
                                     ": cannot be opened: it is damaged or no HDF5 file (VAK ERROR"));
}

TEST_F(List, a_group_that_is_not_there_is_told_in_one_line)
{
    make_current();
    const Said said = vak_says({"list", file + "/none"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
    EXPECT_THAT(said.err, HasSubstr("/none: cannot be opened: there is no such group"));
}

TEST_F(List, a_truncated_file_is_refused)
{
    make_current();
    write_text(file, contents(file).substr(0, 3000));
    const Said said = vak_says({"list", file});
    EXPECT_EQ(said.status, 2) << said;
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
}

TEST(ListUsage, missing_and_unknown_arguments_are_told_in_one_line)
{
    EXPECT_EQ(vak_says({"list"}).err, "vak list: FILE is required (vak list --help tells the usage)\n");
    const Said said = vak_says({"list", "a", "--colour"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(
        said.err,
        "vak list: The following argument was not expected: --colour (vak list --help tells the usage)\n");
}

TEST_F(List, output_that_cannot_be_written_is_a_failure)
{
    make_current();
    const pid_t child = fork();
    if (child == 0) {
        dup2(::open("/dev/full", O_WRONLY), 1);
        dup2(::open(folder.file("err").c_str(), O_WRONLY | O_CREAT, 0600), 2);
        execl(VAK_PROGRAM, "vak", "list", file.c_str(), nullptr);
        _exit(127);
    }
    EXPECT_EQ(finish(child, folder).status, 2);
    EXPECT_EQ(contents(folder.file("err")), "vak list: the output could not be written; is the disk full?\n");
}
