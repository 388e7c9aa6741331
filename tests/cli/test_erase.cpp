// vak erase as a user calls it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>

#include <filesystem>

#include "cli/program.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "store/file.h"
#include "support/ids.h"

using namespace vak::test;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Erase : public testing::TestWithParam<vak::Family> {
protected:
    // Single states 1 to 4, at the times 0.5 to 2, and a series of as many; each index value ten times as
    // large.
    void SetUp() override
    {
        vak::store::File made = vak::store::File::create(file, "model");
        const hid_t root = *made.root();
        for (int32_t k = 1; k <= 4; ++k) {
            EntityResults s = state(k);
            ASSERT_EQ(s.write(root), 0);
        }
        auto all = series;
        all.family = GetParam();
        ASSERT_EQ(all.write(root), 0);
        made.close();
    }
    static EntityResults state(int32_t k)
    {
        EntityResults s = sample_of(GetParam());
        s.state = k;
        s.nent = 3;
        s.index = {
            .nindex = 1, .indexic = 0, .indexident = {10 * k}, .indexval = {0.5F * static_cast<float>(k)}};
        return s;
    }
    static EntityResults sample_of(vak::Family family)
    {
        EntityResults s;
        s.family = family;
        return s;
    }
    static MultiEntityResults make_series()
    {
        auto s = MultiEntityResults::of_states(vak::Family::current, 4);
        s.index = {.nindex = 1, .indexic = 0, .indexident = {10, 20, 30, 40}, .indexval = {0.5F, 1, 1.5F, 2}};
        return s;
    }
    bool has(int32_t k) const
    {
        const FileId opened = read_file(file);
        return exists(opened, "post/" + state(k).path());
    }
    int64_t series_states() const
    {
        auto s = series;
        s.family = GetParam();
        const FileId opened = read_file(file);
        return dataset_extents(opened, "post/" + s.path() + (s.legacy() ? "/data/res" : "/res")).at(0);
    }
    void expect_cut_behind_state_2() const
    {
        EXPECT_TRUE(has(2));
        EXPECT_FALSE(has(3));
        EXPECT_EQ(series_states(), 2);
    }

    TempFolder folder;
    std::string file = folder.file("run.h5");
    MultiEntityResults series = make_series();
};
INSTANTIATE_TEST_SUITE_P(, Erase, testing::Values(vak::Family::current, vak::Family::legacy),
                         [](const auto& family) {
                             return std::string(family.param == vak::Family::legacy ? "legacy" : "current");
                         });

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
    auto s = series;
    s.family = GetParam();
    EXPECT_EQ(vak_says({"erase", file, "--after", "30", "--dry-run"}),
              (Said{.status = 0, .out = s.path() + ": 1 of 4 states\n" + state(4).path() + "\n", .err = ""}));
    EXPECT_EQ(contents(file), before);
}

TEST_P(Erase, repacking_frees_the_space_and_keeps_the_rest)
{
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}).status, 0);
    const auto before = std::filesystem::file_size(file);
    const Said said = vak_says({"erase", file, "--after", "20", "--repack"});
    const auto after = std::filesystem::file_size(file);
    EXPECT_EQ(said, (Said{.status = 0,
                          .out = file + ": " + std::to_string(before - after) + " bytes freed\n",
                          .err = ""}));
    EXPECT_LT(after, before);
    {
        // Still one group under two names.
        const FileId opened = read_file(file);
        H5O_info2_t model, post;
        int order = 1;
        EXPECT_GE(H5Oget_info_by_name3(opened, "model", &model, H5O_INFO_BASIC, H5P_DEFAULT), 0);
        EXPECT_GE(H5Oget_info_by_name3(opened, "post", &post, H5O_INFO_BASIC, H5P_DEFAULT), 0);
        EXPECT_GE(H5Otoken_cmp(opened, &model.token, &post.token, &order), 0);
        EXPECT_EQ(order, 0);
    }
    expect_cut_behind_state_2();
}

TEST_P(Erase, file_that_another_program_has_open_is_not_touched)
{
    const std::string before = contents(file);
    const int held = ::open(file.c_str(), O_RDONLY);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_EQ(vak_says({"erase", file, "--after", "20", "--repack"}),
              (Said{.status = 2,
                    .out = "",
                    .err = "vak erase: " + file + ": another program has it open; nothing was changed\n"}));
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
