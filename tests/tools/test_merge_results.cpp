// Results of several domains joined into one.
#include <gtest/gtest.h>

#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

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

    std::vector<float> merged(const EntityResults& sample, const std::string& dataset) const
    {
        return dataset_values<float>(target(), sample.path() + section() + "/" + dataset);
    }
    std::vector<int32_t> merged_ids(const EntityResults& sample) const
    {
        return dataset_values<int32_t>(target(), sample.path() + section() + "/entid");
    }
    std::string section() const { return family() == Family::legacy ? "/data" : ""; }
};

TEST_P(MergeResults, of_an_entity_in_two_domains_the_lowest_file_stands)
{
    const EntityResults first = domain({3, 1, 2}, {30, 10, 20}), second = domain({4, 3}, {40, 33});
    first.write(add_domain());
    second.write(add_domain());

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(merged_ids(first), (std::vector<int32_t>{1, 2, 3, 4}));
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, 20, 30, 40}));
}

TEST_P(MergeResults, operators_join_the_components_of_shared_entities)
{
    for (const auto& [op, expected] : std::initializer_list<std::pair<const char*, float>>{
             {"SUM", 60.0F}, {"average", 25.0F}, {"MIN", 20.0F}, {"max", 40.0F}, {"NONE", 20.0F}}) {
        SCOPED_TRACE(op);
        restart();
        EntityResults first = domain({1, 2}, {10, 20}), second = domain({2, 3}, {40, 50});
        for (EntityResults* r : {&first, &second}) {
            r->zone.dmpswitch = 1;
            r->tables.op = padded(op);
        }
        first.tables.weight = {1, 3};
        second.tables.weight = {1, 1};
        first.write(add_domain());
        second.write(add_domain());

        EXPECT_EQ(merge(), 0);

        EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, expected, 50}));
        EXPECT_EQ(merged(first, "weight"), (std::vector<float>{1, 4, 1}));
    }
}

INSTANTIATE_TEST_SUITE_P(BothFamilies, MergeResults, testing::Values(Family::current, Family::legacy),
                         [](const auto& family) {
                             return family.param == Family::current ? "current" : "legacy";
                         });

}  // namespace
