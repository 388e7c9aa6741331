// vak erase as a user calls it.
#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "cli/erase_test.h"
#include "store/catalogue.h"

using namespace vak::test;
using testing::HasSubstr;

namespace {

class Erase : public EraseTest {
protected:
    // Writes a state into a group below the model's.
    void write_nested(const std::string& group, int32_t k) const
    {
        const FileId opened = edit_file(file);
        const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "list");
        H5Pset_create_intermediate_group(parents, 1);
        const ObjectId at(H5Gcreate2(opened, ("post/" + group).c_str(), parents, H5P_DEFAULT, H5P_DEFAULT),
                          group);
        ASSERT_EQ(state(k).write(at), 0);
    }
    std::set<std::string> blocks() const
    {
        const auto opened = vak::store::File::open(file);
        std::set<std::string> paths;
        for (const auto& block : vak::store::catalogue(opened).blocks) paths.insert(block.path);
        return paths;
    }
    Said busy() const
    {
        return {.status = 2,
                .out = "",
                .err = "vak erase: " + file + ": another program has it open; nothing was changed\n"};
    }
};
INSTANTIATE_TEST_SUITE_P(, Erase, layouts, layout_name);

}  // namespace

TEST_P(Erase, states_behind_an_index_value_go)
{
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}), (Said{.status = 0, .out = "", .err = ""}));
    expect_cut_behind_state_2();
}

TEST_P(Erase, a_state_is_given_by_its_number)
{
    EXPECT_EQ(vak_says({"erase", file, "--state", "2"}), (Said{.status = 0, .out = "", .err = ""}));
    expect_cut_behind_state_2();
}

TEST_P(Erase, a_state_is_given_by_an_index_value)
{
    EXPECT_EQ(vak_says({"erase", file, "--state", "1.0e0"}).status, 0);
    EXPECT_EQ(series_states(), 1);  // state number 1 goes before time 1
    EXPECT_EQ(vak_says({"erase", file, "--state", "0.5"}).status, 0);
    EXPECT_EQ(series_states(), 1);
}

TEST_P(Erase, dry_run_names_what_would_go_and_changes_nothing)
{
    const std::string before = contents(file);
    EXPECT_EQ(
        vak_says({"erase", file, "--after", "30", "--dry-run"}),
        (Said{
            .status = 0, .out = series().path() + ": 1 of 4 states\n" + state(4).path() + "\n", .err = ""}));
    EXPECT_EQ(contents(file), before);
}

TEST_P(Erase, dry_run_names_exactly_what_then_goes)
{
    const std::string other = folder.file("other.h5");
    std::filesystem::copy_file(file, other);
    write_nested("run/deep", 3);
    write_nested("run/other", 1);
    {
        const FileId opened = edit_file(file);
        H5Lcreate_external("other.h5", "/post", opened, "post/linked", H5P_DEFAULT, H5P_DEFAULT);
    }
    const std::string elsewhere = contents(other);
    const auto before = blocks();
    const Said dry = vak_says({"erase", file, "--after", "20", "--dry-run"});
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}), (Said{.status = 0, .out = "", .err = ""}));
    std::set<std::string> gone, named;
    std::ranges::set_difference(before, blocks(), std::inserter(gone, gone.end()));
    std::istringstream lines(dry.out);
    for (std::string line; std::getline(lines, line);)
        if (line.find(": ") == std::string::npos) named.insert(line);
    EXPECT_EQ(named, gone);
    EXPECT_EQ(gone.size(), 3U);
    EXPECT_THAT(dry.out, HasSubstr(series().path() + ": 2 of 4 states\n"));
    EXPECT_THAT(dry.out, testing::Not(HasSubstr("linked")));
    EXPECT_EQ(contents(other), elsewhere);
    expect_cut_behind_state_2();
}

TEST_P(Erase, dry_run_names_a_series_of_which_nothing_stays)
{
    EXPECT_EQ(vak_says({"erase", file, "--after", "0", "--dry-run"}).out,
              series().path() + "\n" + state(1).path() + "\n" + state(2).path() + "\n" + state(3).path() +
                  "\n" + state(4).path() + "\n");
    EXPECT_EQ(vak_says({"erase", file, "--after", "40", "--dry-run"}),
              (Said{.status = 0, .out = "", .err = ""}));
}

TEST_P(Erase, a_state_in_a_deeper_group_is_given_by_its_number_and_goes)
{
    write_nested("run/deep", 7);
    EXPECT_EQ(vak_says({"erase", file, "--state", "7", "--dry-run"}),
              (Said{.status = 0, .out = "", .err = ""}));
    write_nested("run/deeper/still", 8);
    EXPECT_EQ(vak_says({"erase", file, "--state", "7", "--dry-run"}).out,
              "run/deeper/still/" + state(8).path() + "\n");
    EXPECT_EQ(vak_says({"erase", file, "--state", "7"}).status, 0);
    const FileId opened = read_file(file);
    EXPECT_TRUE(exists(opened, "post/run/deep"));
    EXPECT_FALSE(exists(opened, "post/run/deeper"));
}

TEST_P(Erase, file_that_another_program_writes_is_not_touched)
{
    const std::string before = contents(file);
    vak::store::File writing = vak::store::File::update(file);
    EXPECT_EQ(vak_says({"erase", file, "--after", "20", "--repack"}), busy());
    EXPECT_EQ(vak_says({"erase", file, "--after", "20", "--dry-run"}),
              (Said{.status = 2,
                    .out = "",
                    .err = "vak erase: " + file + ": cannot be opened: another program has it open\n"}));
    writing.close();
    EXPECT_EQ(contents(file), before);
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}).status, 0);
}

TEST_P(Erase, file_that_another_program_reads_is_not_touched)
{
    const std::string before = contents(file);
    vak::store::File reading = vak::store::File::open(file);
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}), busy());
    EXPECT_EQ(vak_says({"erase", file, "--after", "20", "--dry-run"}).status, 0);
    reading.close();
    EXPECT_EQ(contents(file), before);
}

TEST_P(Erase, file_that_another_program_has_locked_is_not_touched)
{
    const std::string before = contents(file);
    const int held = ::open(file.c_str(), O_RDONLY);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_EQ(vak_says({"erase", file, "--after", "20", "--repack"}), busy());
    EXPECT_EQ(contents(file), before);
    ::close(held);
}

TEST_P(Erase, what_cannot_be_done_is_told_in_one_line)
{
    EXPECT_EQ(vak_says({"erase", file}).err,
              "vak erase: say where to cut: either --after with index values or --state\n");
    EXPECT_EQ(vak_says({"erase", file, "--state", "77"}).err,
              "vak erase: no state has the number or the index value 77\n");
    EXPECT_EQ(vak_says({"erase", file, "--state", "x"}).err,
              "vak erase: \"x\" is no state: give its number or a value\n");
    const Said said = vak_says({"erase", folder.file("none"), "--after", "1"});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("none: cannot be opened: no such file\n"));
}
