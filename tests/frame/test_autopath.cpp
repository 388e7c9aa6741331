// VAK_OPENAUTOPATH: the group at the place that state, names, index and set make.
#include "frame/frame_test.h"

namespace vak::test {

class AutoPath : public FrameTest {
protected:
    struct Place {
        int32_t name_flags = 0;
        int32_t ioflag = 0;
        int32_t nstate = 0;
        std::vector<int32_t> states = {};
        int32_t state = -1;
        std::array<const char*, 5> names = {};
        int32_t index = -1;
        int32_t set = -1;
    };
    struct Result {
        std::string path;  // of the group opened
        int32_t ierr = 4711;
        Output output = {};

        bool operator==(const Result&) const = default;
    };

    Result at(const Place& p) { return at(file, p); }

    Result at(vak_id location, const Place& p)
    {
        vak_id group = 4711;
        Result r;
        r.output = captured([&] {
            GetParam().openautopath(&location, &p.name_flags, nullptr, &p.ioflag, &p.nstate, p.states.data(),
                                    &p.state, p.names[0], p.names[1], p.names[2], p.names[3], p.names[4],
                                    &p.index, &p.set, &group, &r.ierr);
        });
        if (r.ierr < 0) {
            EXPECT_EQ(group, -1);
        } else {
            r.path = path_of(group);
            H5Gclose(group);
        }
        return r;
    }

    bool is_legacy() const { return std::string(GetParam().family) == "legacy"; }

    // The legacy family has one level less, and so creates one group less.
    Result created(const std::string& path, int32_t levels) const
    {
        return {is_legacy() ? path : path + "/vakblock", is_legacy() ? levels : levels + 1};
    }
    Result found(const std::string& path) const { return {is_legacy() ? path : path + "/vakblock", 0}; }

    void expect_missing(const Result& r) const { EXPECT_EQ(r, (Result{"", -1})) << r.path; }
};
IN_BOTH_FAMILIES(AutoPath);

TEST_P(AutoPath, group_of_a_block_is_created_and_found_again)
{
    Place p{.name_flags = 3,
            .nstate = 1,
            .state = 12,
            .names = {"NODE    ", "DISPLACEMENT"},
            .index = 3,
            .set = 2};
    const std::string path = "/singlestate/state000000000012/NODE/DISPLACEMENT3_set2";
    EXPECT_EQ(at(p), created(path, 4));
    for (const int32_t ioflag : {0, 1, 2}) {
        p.ioflag = ioflag;
        EXPECT_EQ(at(p), found(path));
    }
}

TEST_P(AutoPath, path_starts_at_the_location)
{
    const ObjectId model(H5Gcreate2(file, "model", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "model");
    EXPECT_EQ(at(model, {}), created("/model/constant", 1));
}

TEST_P(AutoPath, bits_of_the_flags_select_the_names_in_order)
{
    const std::array<const char*, 5> names = {"A", "B", "C", "D", "E"};
    const std::pair<int32_t, const char*> expected[] = {{0, ""},
                                                        {1, "/A"},
                                                        {2, "/B"},
                                                        {4, "/C"},
                                                        {8, "/D"},
                                                        {16, "/E"},
                                                        {21, "/A/C/E"},
                                                        {31, "/A/B/C/D/E"},
                                                        {32 + 2, "/B"},
                                                        {-1, "/A/B/C/D/E"},
                                                        {-2147483647 - 1, ""}};
    for (const auto& [flags, path] : expected) {
        const Result r = at({.name_flags = flags, .names = names});
        EXPECT_EQ(r.path, found(std::string("/constant") + path).path) << flags;
    }
}

TEST_P(AutoPath, names_not_selected_may_be_null)
{
    EXPECT_EQ(at({.name_flags = 2, .names = {nullptr, "B"}}), created("/constant/B", 2));
    EXPECT_EQ(at({.name_flags = 31, .names = {nullptr, "B"}}), found("/constant/B"));
}

TEST_P(AutoPath, name_of_blanks_adds_no_level)
{
    EXPECT_EQ(at({.name_flags = 7, .names = {"A", "      ", "C"}}), created("/constant/A/C", 3));
}

TEST_P(AutoPath, name_without_a_terminator_is_cut_to_256)
{
    const std::vector<char> name(300, 'n');
    EXPECT_EQ(at({.name_flags = 1, .names = {name.data()}}),
              created("/constant/" + std::string(256, 'n'), 2));
}

TEST_P(AutoPath, several_states_are_nested)
{
    EXPECT_EQ(at({.name_flags = 1, .nstate = 2, .states = {5, 9}, .state = -1, .names = {"NODE"}}),
              created("/singlestate/state000000000009/state000000000005/NODE", 4));
}

TEST_P(AutoPath, number_of_states_alone_selects_the_prefix)
{
    EXPECT_EQ(at({.nstate = 0, .state = 7}), created("/constant", 1));
    EXPECT_EQ(at({.nstate = -1, .state = 7}), created("/multistate", 1));
    EXPECT_EQ(at({.nstate = -5, .state = 7}), created("/singlestate", 1));
}

TEST_P(AutoPath, index_and_set_of_0_are_part_of_the_name)
{
    EXPECT_EQ(at({.name_flags = 1, .names = {"NAME"}, .index = 0, .set = 0}),
              created("/constant/NAME0_set0", 2));
}

TEST_P(AutoPath, block_that_is_not_there_is_minus_1_without_a_line)
{
    for (const int32_t ioflag : {1, 2})
        expect_missing(at({.name_flags = 1, .ioflag = ioflag, .names = {"NODE"}}));
    at({});
    for (const int32_t ioflag : {1, 2})
        expect_missing(at({.name_flags = 1, .ioflag = ioflag, .names = {"NODE"}}));
    EXPECT_FALSE(exists(file, "constant/NODE"));
}

TEST_P(AutoPath, failures_are_told_by_the_group_opener)
{
    const std::string path = is_legacy() ? "constant" : "constant/vakblock";
    EXPECT_EQ(at(-1, {}),
              (Result{"", -10, {"", "VAK ERROR - vak_h5gopen - code -10, group " + path + "\n"}}));
    EXPECT_EQ(at({.ioflag = 7}), (Result{"", -30, {"", "VAK ERROR - vak_h5gopen - invalid ioflag 7\n"}}));
}

TEST_P(AutoPath, identifiers_are_kept_in_order)
{
    vak_id group = 4711;
    int32_t ierr = 4711;
    const int32_t none = -1, zero = 0;
    EXPECT_EQ(call(
                  [&] {
                      GetParam().openautopath(&file, &zero, nullptr, &zero, &zero, nullptr, &none, nullptr,
                                              nullptr, nullptr, nullptr, nullptr, &none, &none, &group,
                                              &ierr);
                  },
                  1),
              nothing_printed);
    H5Gclose(group);
}

}  // namespace vak::test
