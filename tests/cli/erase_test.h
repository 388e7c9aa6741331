// The fixture of the tests of vak erase: a file with four states, in both layouts.
#pragma once

#include <gmock/gmock.h>

#include "cli/program.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "store/file.h"
#include "support/ids.h"

namespace vak::test {

class EraseTest : public testing::TestWithParam<Family> {
protected:
    // Single states 1 to 4, at the times 0.5 to 2, and a series of as many; each index value ten times as
    // large.
    void SetUp() override
    {
        store::File made = store::File::create(file, "model");
        const hid_t root = *made.root();
        for (int32_t k = 1; k <= 4; ++k) ASSERT_EQ(state(k).write(root), 0);
        ASSERT_EQ(series().write(root), 0);
        made.close();
    }
    static EntityResults state(int32_t k)
    {
        EntityResults s;
        s.family = GetParam();
        s.state = k;
        s.nent = 3;
        s.index = {
            .nindex = 1, .indexic = 0, .indexident = {10 * k}, .indexval = {0.5F * static_cast<float>(k)}};
        return s;
    }
    static MultiEntityResults series()
    {
        auto s = MultiEntityResults::of_states(GetParam(), 4);
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
        const FileId opened = read_file(file);
        const auto s = series();
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
};

inline const auto layouts = testing::Values(Family::current, Family::legacy);
inline const auto layout_name = [](const auto& family) {
    return std::string(family.param == Family::legacy ? "legacy" : "current");
};

}  // namespace vak::test
