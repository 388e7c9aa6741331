// What is told when HDF5 refuses the guard that external links are followed with: nothing is followed without
// it.
#include "frame/frame_test.h"
#include "storage/refusal.h"
#include "support/failing_memory.h"

// clang-format off
MAY_REFUSE(herr_t, H5Pset_elink_cb, (hid_t l, H5L_elink_traverse_t f, void* d), (l, f, d))
// clang-format on

namespace vak::test {

class LinkGuard : public FrameTest {
protected:
    void TearDown() override
    {
        refused.clear();
        FrameTest::TearDown();
    }

    void expect_refused(int32_t ioflag, int32_t code, const std::string& name)
    {
        vak_id group = 4711;
        int32_t ierr = 4711;
        const int32_t length = -1;
        const Output output = call([&] { GetParam().h5gopen(&file, "a", &length, &ioflag, &group, &ierr); });
        EXPECT_EQ(ierr, code);
        EXPECT_EQ(group, -1);
        EXPECT_EQ(output, (Output{"", "VAK ERROR - vak_h5gopen - code " + std::to_string(code) + ", group " +
                                          name + "\n"}));
    }
};
IN_BOTH_FAMILIES(LinkGuard);

TEST_P(LinkGuard, that_cannot_be_set_is_told_by_every_way_of_opening)
{
    refused = "H5Pset_elink_cb";
    expect_refused(0, -8, "a");
    refused.clear();
    const ObjectId a(H5Gcreate2(file, "a", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "a");
    refused = "H5Pset_elink_cb";
    expect_refused(0, -8, "a");
    expect_refused(1, -20, "\"a\"");
    expect_refused(2, -20, "a");
}

TEST_P(LinkGuard, that_cannot_be_set_is_told_by_the_opening_of_a_file)
{
    const std::string name = made_file("run.h5");
    refused = "H5Pset_elink_cb";
    const Opened o = open(name, 2);
    EXPECT_EQ(o.ierr, -1);
    close_left_file(name);
    EXPECT_EQ(o.output,
              (Output{"", " VAK ERROR - vak_open - file " + name + " - Cannot open group \"post\".\n"}));
}

// In the middle of HDF5's way through the link.
TEST_P(LinkGuard, without_memory_to_look_at_the_target_nothing_is_opened_and_that_is_told)
{
    const std::string name = made_file("run.h5");
    H5Lcreate_external(name.c_str(), "/post", file, "link", H5P_DEFAULT, H5P_DEFAULT);
    for (const int32_t ioflag : {0, 1, 2}) {
        const int32_t length = 4;
        long allocation = 0;
        for (bool ran_out = true; ran_out; ++allocation) {
            vak_id group = 4711;
            int32_t ierr = 4711;
            const auto open = [&] { GetParam().h5gopen(&file, "link", &length, &ioflag, &group, &ierr); };
            const Output output = captured([&] { ran_out = runs_out_at(allocation, open); });
            SCOPED_TRACE(allocation);
            EXPECT_EQ(ierr < 0, ran_out);
            EXPECT_EQ(group == -1, ran_out);
            EXPECT_EQ(output.err.find("VAK ERROR - ") == 0, ran_out) << output;
            if (group >= 0) H5Gclose(group);
        }
        EXPECT_GT(allocation, 5);
    }
}

herr_t refuse_all(const char*, const char*, const char*, const char*, unsigned*, hid_t, void* asked)
{
    ++*static_cast<int*>(asked);
    return -1;
}

// call() looks whether the caller's own is there again.
TEST_P(LinkGuard, stands_in_for_what_the_caller_has_set_while_a_call_runs)
{
    const std::string name = made_file("run.h5");
    ASSERT_GE(H5Lcreate_external(name.c_str(), "/post", file, "link", H5P_DEFAULT, H5P_DEFAULT), 0);
    int asked = 0;
    ASSERT_GE(H5Pset_elink_cb(H5P_LINK_ACCESS_DEFAULT, refuse_all, &asked), 0);
    vak_id group = -1;
    int32_t ierr = 4711;
    const int32_t length = -1, ioflag = 1;
    EXPECT_EQ(call([&] { GetParam().h5gopen(&file, "link", &length, &ioflag, &group, &ierr); }, 1), Output());
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(asked, 0);
    H5Gclose(group);
    EXPECT_EQ(link_following(), (LinkFollowing{refuse_all, &asked}));
    H5Pset_elink_cb(H5P_LINK_ACCESS_DEFAULT, nullptr, nullptr);
}

}  // namespace vak::test
