// The eraser on states in deeper groups, inside each other, and below a group that is not the file's root.
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

using testing::HasSubstr;

class EraseNested : public EraserTest {
protected:
    void SetUp() override
    {
        EraserTest::SetUp();
        write_frame();
    }
    ObjectId group(const std::string& path) const
    {
        const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "list");
        H5Pset_create_intermediate_group(parents, 1);
        if (!has(path)) H5Gclose(H5Gcreate2(file, path.c_str(), parents, H5P_DEFAULT, H5P_DEFAULT));
        return open_object(file, path);
    }
    // Below a group of the file; the paths that the block and its listing have there.
    template <class S>
    std::string write_below(const std::string& place, const S& s)
    {
        const ObjectId at = group(place);
        EXPECT_EQ(run([&] { return s.write(at); }), success);
        return place + "/" + s.path();
    }
    // A current block is a group in the group of its names, a legacy one that group itself.
    std::string around(const EntityResults& s) const
    {
        return legacy() ? s.path() : s.path().substr(0, s.path().rfind('/'));
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseNested, both_families, family_name);

TEST_P(EraseNested, states_in_deeper_groups_go_with_every_group_that_becomes_empty)
{
    const std::string kept = write_below("runs/first", state(1)),
                      gone = write_below("runs/second/deep", state(5));
    EXPECT_EQ(erase({3}), erased());
    EXPECT_TRUE(has(kept));
    EXPECT_FALSE(has("runs/second"));
    EXPECT_TRUE(has("runs"));
    EXPECT_EQ(erase({0}), erased());
    EXPECT_FALSE(has("runs"));
}

TEST_P(EraseNested, a_state_inside_another_stays_when_the_outer_goes)
{
    const auto outer = state(5);
    EXPECT_EQ(write(outer), success);
    const std::string inner = write_below(around(outer), state(1));
    EXPECT_EQ(erase({3}).ierr, 0);
    EXPECT_FALSE(has(listed(outer)));
    EXPECT_FALSE(has(data_of(outer, "res")));
    auto found = emptied(state(1));
    EXPECT_EQ(read(found, 2, inner), status(1000));
    EXPECT_EQ(listing(found), listing(state(1)));
    EXPECT_EQ(erase({0}).ierr, 0);
    EXPECT_FALSE(has("singlestate"));
}

TEST_P(EraseNested, a_state_inside_another_goes_and_the_outer_stays)
{
    const auto outer = state(1);
    EXPECT_EQ(write(outer), success);
    const std::string inner = write_below(around(outer), state(5));
    const std::string below = around(outer) + "/singlestate";
    EXPECT_TRUE(has(below));
    EXPECT_THAT(erase({3}, 2).output.out, HasSubstr(" group \"" + below + "\" deleted \n"));
    EXPECT_FALSE(has(below));
    auto found = emptied(outer);
    EXPECT_EQ(read(found, 2), status(1000));
    EXPECT_EQ(listing(found), listing(outer));
}

TEST_P(EraseNested, a_series_in_a_deeper_group_is_cut_there)
{
    const auto s = series({1, 5, 2});
    const std::string where = write_below("runs/first", s);
    EXPECT_EQ(erase({3}), erased());
    const auto expected = only(s, {0, 2});
    auto found = emptied(expected);
    EXPECT_EQ(read(found, 2, where), status(1050));
    EXPECT_EQ(listing(found), listing(expected));
    EXPECT_EQ(erase({0}), erased());
    EXPECT_FALSE(has("runs"));
}

TEST_P(EraseNested, several_blocks_of_a_state_go_and_the_group_goes_with_the_last)
{
    auto a = state(5), b = state(5), c = state(5);
    b.etypvar = padded("VELOCITY");
    c.zone.etypzone = padded("SHELL");
    for (const auto& s : {a, b, c, state(2)}) EXPECT_EQ(write(s), success);
    const std::string out = erase({3}, 2).output.out,
                      gone = " group \"singlestate/state000000000005\" deleted \n";
    EXPECT_THAT(out, HasSubstr("VAK INFO - 3 singlestate blocks deleted\n"));
    EXPECT_NE(out.find(gone), std::string::npos);
    EXPECT_EQ(out.find(gone), out.rfind(gone));
    EXPECT_THAT(out, testing::Not(HasSubstr(" group \"singlestate\" deleted \n")));
    EXPECT_TRUE(has(state(2).path()));
}

TEST_P(EraseNested, a_parent_that_holds_anything_else_stays)
{
    EXPECT_EQ(write(state(5)), success);
    const std::string parent = "singlestate/state000000000005";
    EXPECT_GE(H5Lcreate_soft("/nowhere", file, (parent + "/note").c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_EQ(erase({3}), erased());
    EXPECT_TRUE(has(parent));
    EXPECT_FALSE(has(parent + "/entityresults"));
}

TEST_P(EraseNested, only_what_is_below_the_given_group_goes)
{
    write_states(5, 5);
    const ObjectId model = group("model");
    write_below("model", state(5));
    const Result result = erase(model, {3});
    EXPECT_EQ(result, (Result{0,
                              {"",
                               "\nVAK WARNING \"vakheader\" block not found\n"
                               "\nVAK WARNING \"indices\" block not found\n"
                               "\nVAK WARNING \"system\" block not found\n"}}));
    EXPECT_TRUE(has("model"));
    EXPECT_FALSE(has("model/singlestate"));
    EXPECT_TRUE(has(state(5).path()));
}

}  // namespace

}  // namespace vak::test
