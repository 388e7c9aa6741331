// The eraser on blocks of single states, and what it says.
#include "tools/eraser_test.h"

#include <ctime>

#include "samples/parts.h"

namespace vak::test {

namespace {

using testing::HasSubstr;

class EraseStates : public EraserTest {
protected:
    static std::string name_of(int32_t number)
    {
        char text[32];
        std::snprintf(text, sizeof text, "singlestate/state%012d", number);
        return text;
    }
    std::string banner(const std::string& index) const
    {
        return "     +------------------------------------------------------+\n"
               "     |  VAK state eraser                                    |\n"
               "     +------------------------------------------------------+\n"
               "      Compiled\n"
               "      VAK Version : " +
               std::string(legacy() ? "1.2.0" : "2.2.14") +
               "\nVAK INFO - erase all data after index:" + index + "\n\n";
    }
    std::string version() const { return legacy() ? "1.2.0" : "2.2.14"; }
};
INSTANTIATE_TEST_SUITE_P(, EraseStates, both_families, family_name);

const std::string rule = " ----------------------------------------------------------------\n";

TEST_P(EraseStates, states_after_the_index_go_with_the_groups_that_become_empty)
{
    write_frame();
    write_states(4, 7);
    EXPECT_EQ(erase({5}), erased());
    EXPECT_TRUE(has(state(4).path()));
    EXPECT_TRUE(has(state(5).path()));
    EXPECT_FALSE(has(name_of(6)));
    EXPECT_FALSE(has(name_of(7)));
    auto kept = emptied(state(5));
    EXPECT_EQ(read(kept, 2), status(1000));
    EXPECT_EQ(listing(kept), listing(state(5)));
}

TEST_P(EraseStates, nothing_is_printed_at_verbose_0_but_the_set_warnings)
{
    write_frame();
    write_states(1, 2);
    EXPECT_EQ(erase({1}, 0), erased());
    EXPECT_EQ(erase({1}, -3), erased());
}

// Blocks of one key stand as the sorting leaves them.
TEST_P(EraseStates, whole_output_at_verbose_1_and_2)
{
    write_frame();
    write_states(1, 2);
    auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    const std::string listed_series = listed(s), first = listed(state(1)), second = listed(state(2));
    const std::string blocks =
        " Info    : 6 VAK blocks found\n"
        "\n Number of blocktypes NBlockTypes: 5\n" +
        rule + " BlockKey   :     1\n" + rule + "          0 :          5 (key     1) \"vakheader\"\n" +
        rule + " BlockKey   :    10\n" + rule + "          1 :          1 (key    10) \"" +
        constant_path("system") + "\"\n" + rule + " BlockKey   :    20\n" + rule +
        "          2 :          0 (key    20) \"" + constant_path("indices") + "\"\n" + rule +
        " BlockKey   :  1000\n" + rule + "          3 :          4 (key  1000) \"" + second +
        "\"\n          4 :          3 (key  1000) \"" + first + "\"\n" + rule + " BlockKey   :  1050\n" +
        rule + "          5 :          2 (key  1050) \"" + listed_series +
        "\"\nVAK INFO - compatibility check OK - VAK version: " + version() + "\n";
    const std::string end =
        "\nVAK INFO - 1 \"multientityresults\" blocks rewritten\n\nVAK state eraser successfully passed.\n\n";
    EXPECT_EQ(without_compile_time(erase({1, 1}, 1)),
              (Result{0,
                      {banner(" 1 1") + blocks + "VAK INFO - 1 singlestate blocks deleted\n" + end,
                       frame_warnings()}}));
    EXPECT_EQ(write(state(2)), success);
    s = series({2});
    EXPECT_EQ(write(s), success);
    std::string groups;
    std::string path = second;
    while (path.size() > name_of(2).size()) {
        path = path.substr(0, path.rfind('/'));
        groups += " group \"" + path + "\" deleted \n";
    }
    EXPECT_EQ(without_compile_time(erase({1}, 2)),
              (Result{0,
                      {banner(" 1") + blocks + " block \"" + second + "\" deleted \n" + groups +
                           "VAK INFO - 1 singlestate blocks deleted\n block \"" + listed_series +
                           "\" deleted \n" + end,
                       frame_warnings()}}));
}

TEST_P(EraseStates, nothing_to_erase_is_told_and_only_the_date_changes)
{
    write_frame();
    write_states(1, 2);
    const std::string before = layout(file, "singlestate");
    EXPECT_THAT(erase({2}, 1).output.out,
                testing::EndsWith("VAK INFO - 0 singlestate blocks deleted\n"
                                  "\nVAK INFO - 0 \"multientityresults\" blocks rewritten\n"
                                  "\nVAK state eraser successfully passed.\n\n"));
    EXPECT_EQ(layout(file, "singlestate"), before);
}

TEST_P(EraseStates, a_group_that_still_holds_another_block_stays)
{
    write_frame();
    write_states(5, 5);
    auto parts = sample<Parts>();
    parts.state = 5;
    parts.index.indexident = {1, 1};
    EXPECT_EQ(write(parts), success);
    EXPECT_EQ(erase({4}),
              (Result{0,
                      {"", frame_warnings().replace(frame_warnings().find("warning - blockkey 1:"), 0,
                                                    no_set(100, listed(parts)))}}));
    EXPECT_FALSE(has(name_of(5) + "/entityresults"));
    EXPECT_TRUE(has(parts.path()));
}

TEST_P(EraseStates, index_values_are_compared_entry_by_entry_over_the_shorter_list)
{
    struct Case {
        std::vector<int32_t> ident, index;
        bool stays;
    };
    const std::vector<Case> cases{{{4, 9}, {5, 1}, true},     {{5, 1}, {5, 1}, true},
                                  {{5, 2}, {5, 1}, false},    {{6, 0}, {5, 9}, false},
                                  {{5, 2}, {5}, true},        {{5, 2}, {5, 2, 7}, true},
                                  {{5, 3}, {5, 2, 7}, false}, {{-1, 0}, {0}, true},
                                  {{0, 0}, {-1}, false},      {{2147483647, 0}, {5}, false}};
    write_frame();
    for (const Case& c : cases) {
        auto results = state(8);
        results.index.indexident = c.ident;
        EXPECT_EQ(write(results), success);
        EXPECT_EQ(erase(c.index).ierr, 0);
        EXPECT_EQ(has(results.path()), c.stays) << listing(results);
        if (has("singlestate")) {
            EXPECT_GE(H5Ldelete(file, "singlestate", H5P_DEFAULT), 0);
        }
    }
}

TEST_P(EraseStates, no_index_and_a_negative_number_of_it_erase_nothing)
{
    write_frame();
    write_states(1, 2);
    EXPECT_EQ(erase({}), erased());
    const int32_t nindex = -4, verbose = 0;
    EXPECT_EQ(run([&] {
                  int32_t ierr = untouched;
                  (legacy() ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&file, &nindex, nullptr, &verbose, &ierr);
                  return ierr;
              }),
              erased());
    EXPECT_TRUE(has(state(2).path()));
}

TEST_P(EraseStates, blocks_without_index_values_stay)
{
    write_frame();
    auto constant = state(3);
    constant.index = {.nindex = 0, .indexic = 0, .indexident = {9}, .indexval = {9}};
    EXPECT_EQ(write(constant), success);
    EXPECT_EQ(erase({0}), erased());
    EXPECT_TRUE(has(constant.path()));
}

TEST_P(EraseStates, modification_date_and_time_become_the_present)
{
    write_frame();
    const auto now = [] {
        char text[32];
        const std::time_t t = std::time(nullptr);
        std::strftime(text, sizeof text, "%Y%m%d%H%M%S  ", std::localtime(&t));
        return std::string(text);
    };
    const std::string before = now();
    EXPECT_EQ(erase({1}), erased());
    auto system = emptied(sample<System>());
    EXPECT_EQ(read(system, 1), success);
    EXPECT_LE(before, system.mdate + system.mtime);
    EXPECT_LE(system.mdate + system.mtime, now());
    EXPECT_EQ(system.cdate, "20240229");
}

TEST_P(EraseStates, file_without_blocks_is_an_error)
{
    EXPECT_EQ(erase({1}), failure(-1, "\nVAK ERROR - no VAK blocks found - error code = -1\n"));
    EXPECT_EQ(erase(H5I_INVALID_HID, {1}),
              failure(-1, "\nVAK ERROR - no VAK blocks found - error code = -1\n"));
    EXPECT_EQ(without_compile_time(erase({1}, 1)),
              (Result{-1, {banner(" 1"), "\nVAK ERROR - no VAK blocks found - error code = -1\n"}}));
}

TEST_P(EraseStates, a_set_that_cannot_be_read_is_warned_of)
{
    write_frame();
    auto results = state(1);
    results.zone.etypzone = padded("ZONE_setX");
    results.zone.zoneid = results.set = -1;
    EXPECT_EQ(write(results), success);
    results.zone.etypzone = padded("ZONE_set99999999999999999999");
    EXPECT_EQ(write(results), success);
    const std::string at = "warning - blockkey 1:";
    const auto path = [&](const std::string& zone) {
        results.zone.etypzone = padded(zone);
        return no_set(1000, listed(results));
    };
    std::string expected = frame_warnings();
    expected.insert(expected.find(at), path("ZONE_set99999999999999999999") + path("ZONE_setX"));
    EXPECT_EQ(erase({1}), (Result{0, {"", expected}}));
}

TEST_P(EraseStates, missing_header_index_and_system_are_warned_of_and_the_work_goes_on)
{
    write_states(1, 2);
    EXPECT_EQ(erase({1}), (Result{0,
                                  {"",
                                   "\nVAK WARNING \"vakheader\" block not found\n"
                                   "\nVAK WARNING \"indices\" block not found\n"
                                   "\nVAK WARNING \"system\" block not found\n"}}));
    EXPECT_FALSE(has(name_of(2)));
}

TEST_P(EraseStates, several_headers_indices_and_systems_are_warned_of)
{
    write_frame();
    for (const char* name : {"vakheader", "constant"})
        EXPECT_GE(H5Ocopy(file, name, file, (std::string("more_") + name).c_str(), H5P_DEFAULT, H5P_DEFAULT),
                  0);
    const ObjectId more(H5Gcreate2(file, "more", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "more");
    EXPECT_GE(H5Lmove(file, "more_vakheader", file, "more/vakheader", H5P_DEFAULT, H5P_DEFAULT), 0);
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, 0);
    EXPECT_THAT(result.output.err, testing::EndsWith("VAK WARNING multiple \"vakheader\"s!\n"
                                                     "\nVAK WARNING multiple \"indices\" blocks\n"
                                                     "\nVAK WARNING multiple \"system\" blocks\n"));
}

TEST_P(EraseStates, file_of_another_generation_is_refused_and_stays_as_it_is)
{
    EXPECT_EQ(write(sample<System>()), success);
    write_states(1, 2);
    int32_t ierr = 0;
    (legacy() ? VAK_WRITE_FILEHEADER : VAK1_WRITE_FILEHEADER)(&file, nullptr, nullptr, &ierr);
    const std::string line =
        std::string("VAK ERROR - incompatible file - VAK version: ") + (legacy() ? "2.2.14" : "1.2.0") + "\n";
    EXPECT_EQ(erase({1}), failure(-1, no_set(10, constant_path("system")) + no_set(1, "vakheader") + line));
    EXPECT_TRUE(has(state(2).path()));
    EXPECT_EQ(attribute_text(file, constant_path("system"), "mdate"), "20240301");
}

TEST_P(EraseStates, header_that_cannot_be_read_ends_the_run)
{
    write_frame();
    write_states(1, 2);
    EXPECT_GE(H5Ldelete(file, "vakheader/vakheader", H5P_DEFAULT), 0);
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, -6002);
    EXPECT_THAT(result.output.err, testing::EndsWith("VAK ERROR reading header\n"));
    EXPECT_TRUE(has(state(2).path()));
}

TEST_P(EraseStates, index_block_that_cannot_be_read_ends_the_run)
{
    write_frame();
    write_states(1, 2);
    EXPECT_GE(H5Adelete_by_name(file, constant_path("indices").c_str(), "nindex", H5P_DEFAULT), 0);
    EXPECT_EQ(
        erase({1}),
        failure(-4002,
                frame_warnings() +
                    "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, error: nindex 2 4 "
                    "-1\n\nVAK ERROR reading \"indices\" block pass 1 - error code = -4002 \n"));
    EXPECT_TRUE(has(state(2).path()));
}

TEST_P(EraseStates, damaged_index_values_end_the_run_before_anything_is_changed)
{
    write_frame();
    write_states(1, 3);
    falsify_attribute(listed(state(3)), "nindex", 7);
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, -6030);
    EXPECT_THAT(
        result.output.err,
        testing::EndsWith("\nVAK ERROR reading \"entityresults\" block pass 1 - error code = -6030 \n"));
    for (int32_t k = 1; k <= 3; ++k) EXPECT_TRUE(has(state(k).path()));
    EXPECT_EQ(attribute_text(file, constant_path("system"), "mdate"), "20240301");
}

TEST_P(EraseStates, count_far_beyond_what_is_stored_takes_no_memory)
{
    write_frame();
    write_states(1, 2);
    falsify_attribute(listed(state(2)), "nindex", 2147483647);
    EXPECT_EQ(erase({1}).ierr, -6030);
    falsify_attribute(listed(state(2)), "nindex", -2147483647);
    EXPECT_EQ(erase({1}), erased());
}

TEST_P(EraseStates, file_that_is_open_to_read_is_left_as_it_is_and_told)
{
    write_frame();
    write_states(1, 2);
    const std::string name = close_file();
    {
        const FileId reading = read_file(name);
        EXPECT_LT(erase(reading, {1}).ierr, 0);
    }
    const FileId again = read_file(name);
    EXPECT_TRUE(exists(again, state(2).path()));
}

TEST_P(EraseStates, blocks_of_another_file_are_never_erased)
{
    const std::string other = path("other.h5");
    {
        const FileId far = create_file(other);
        EXPECT_EQ(run([&] { return state(9).write(far); }), success);
        auto far_series = series({1, 9});
        EXPECT_EQ(run([&] { return far_series.write(far); }), success);
        EXPECT_EQ(run([&] { return sample<System>().write(far); }), success);
    }
    write_states(1, 2);
    EXPECT_GE(H5Lcreate_external(other.c_str(), "/", file, "linked", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_GE(H5Lcreate_external(other.c_str(), "/nothing", file, "nowhere", H5P_DEFAULT, H5P_DEFAULT), 0);
    const std::string before = layout(other, "/");
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, 0);
    EXPECT_THAT(result.output.err, HasSubstr("\nVAK WARNING \"system\" block not found\n"));
    EXPECT_FALSE(has(name_of(2)));
    EXPECT_TRUE(has("linked/" + state(9).path()));
    EXPECT_EQ(layout(other, "/"), before);
    const FileId far = read_file(other);
    EXPECT_EQ(attribute_text(far, constant_path("system"), "mdate"), "20240301");
}

TEST_P(EraseStates, block_under_two_paths_goes_under_both)
{
    write_frame();
    write_states(1, 2);
    const ObjectId more(H5Gcreate2(file, "more", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "more");
    EXPECT_GE(H5Lcreate_hard(file, state(2).path().c_str(), more, legacy() ? "block" : "vakblock",
                             H5P_DEFAULT, H5P_DEFAULT),
              0);
    EXPECT_GE(H5Lcreate_soft("/more", file, "again", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_EQ(erase({1}).ierr, 0);
    EXPECT_FALSE(has(name_of(2)));
    EXPECT_FALSE(has("more/vakblock"));
}

TEST_P(EraseStates, many_states_are_erased)
{
    write_frame();
    write_states(1, 200);
    EXPECT_THAT(erase({10}, 1).output.out, HasSubstr("VAK INFO - 190 singlestate blocks deleted\n"));
    for (int32_t k = 1; k <= 200; ++k) EXPECT_EQ(has(name_of(k)), k <= 10);
}

TEST_P(EraseStates, file_without_a_state_left_keeps_its_constant_blocks)
{
    write_frame();
    write_states(1, 3);
    EXPECT_EQ(erase({0}), erased());
    EXPECT_FALSE(has("singlestate"));
    EXPECT_TRUE(has("constant"));
}

// A walk that could not see everything would leave states of both sides in one file.
TEST_P(EraseStates, file_whose_blocks_cannot_all_be_listed_is_refused)
{
    write_frame();
    write_states(1, 2);
    std::string deep = "deep";
    for (int i = 0; i < 1100; ++i) deep += "/g";
    const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "list");
    H5Pset_create_intermediate_group(parents, 1);
    {
        const ObjectId group(H5Gcreate2(file, deep.c_str(), parents, H5P_DEFAULT, H5P_DEFAULT), deep);
    }
    EXPECT_EQ(erase({1}), failure(-1, "\nVAK ERROR - not all VAK blocks could be listed - error code = 1\n"));
    EXPECT_TRUE(has(state(2).path()));
}

}  // namespace

}  // namespace vak::test
