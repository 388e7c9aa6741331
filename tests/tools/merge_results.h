// Results of several domains: the fixture of the tests that join them.
#pragma once

#include <string>
#include <vector>

#include "samples/entityresults.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

namespace vak::test {

class MergeResults : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeResults() : MergeTest(GetParam()) {}

    // Entities 1, 2, 3 in the first domain, 3, 4 in the second: 3 lies between them.
    EntityResults domain(std::vector<int32_t> ids, std::vector<float> values) const
    {
        EntityResults r;
        r.family = family();
        r.ncoo = 1;
        r.zone.dmpswitch = 0;
        r.nent = static_cast<int32_t>(ids.size());
        r.tables.ids = std::move(ids);
        r.tables.weight.assign(static_cast<size_t>(r.nent), 1.0F);
        r.tables.fid.assign(static_cast<size_t>(r.nent), 0);
        r.res = std::move(values);
        return r;
    }

    template <class S>
    std::vector<float> merged(const S& sample, const std::string& dataset) const
    {
        return dataset_values<float>(target(), sample.path() + data() + dataset);
    }
    template <class S>
    std::vector<int32_t> integers(const S& sample, const std::string& dataset) const
    {
        return dataset_values<int32_t>(target(), sample.path() + data() + dataset);
    }
    std::vector<int32_t> merged_ids(const EntityResults& sample) const { return integers(sample, "entid"); }

    // Shared entities are joined by operators, one for each component.
    static void by_operators(EntityResults& r, const std::vector<std::string_view>& operators)
    {
        r.zone.dmpswitch = 1;
        r.ncoo = static_cast<int32_t>(operators.size());
        r.tables.op = fields(operators);
    }
    void merge_two(const EntityResults& first, const EntityResults& second)
    {
        EXPECT_EQ(first.write(add_domain()), 0);
        EXPECT_EQ(second.write(add_domain()), 0);
        EXPECT_EQ(merge(), 0);
    }
    // A block of the second file that is kept out.
    std::string left_out(const EntityResults& r, int32_t key, const std::string& what) const
    {
        return "VAK WARNING file [1]: block key " + std::to_string(key) + " \"" + r.path() +
               "\" differs in " + what + " from file [0] and is left out\n";
    }
};

}  // namespace vak::test
