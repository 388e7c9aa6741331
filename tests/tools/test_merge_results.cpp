// Results of several domains joined into one.
#include <gtest/gtest.h>

#include "samples/activflags.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "support/block_test.h"
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

TEST_P(MergeResults, each_component_has_its_own_operator)
{
    EntityResults first = domain({1, 2}, {1, 2, 3, 4, 10, 20, 30, 40});
    EntityResults second = domain({2, 3}, {100, 200, 300, 400, 5, 6, 7, 8});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"SUM", "MIN", "AVERAGE", "KEEP"});
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{1, 2, 3, 4, 110, 20, 165, 40, 5, 6, 7, 8}));
    EXPECT_EQ(dataset_texts(target(), first.path() + data() + "operator"),
              (std::vector<std::string>{padded("SUM"), padded("MIN"), padded("AVERAGE"), padded("KEEP")}));
}

TEST_P(MergeResults, both_parts_of_a_complex_value_follow_the_operator)
{
    EntityResults first = domain({1}, {1, -4, 3, 5}), second = domain({1}, {2, -7, 4, -6});
    for (EntityResults* r : {&first, &second}) {
        by_operators(*r, {"MIN", "MAX"});
        r->ivsize = 16;
    }
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{1, -7, 4, 5}));
    EXPECT_EQ(attribute_value<int32_t>(target(), first.path() + header(), "block"), 1001);
    EXPECT_EQ(dataset_extents(target(), first.path() + data() + "res"), (std::vector<int64_t>{1, 2, 2}));
}

TEST_P(MergeResults, a_mean_with_weights_that_cancel_is_the_plain_mean)
{
    EntityResults first = domain({1}, {10}), second = domain({1}, {20});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"AVERAGE"});
    first.tables.weight = {2};
    second.tables.weight = {-2};
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{15}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{0}));
}

// The operators join what several domains have; within one, an entity is one.
TEST_P(MergeResults, an_entity_twice_in_one_file_counts_once_with_its_last_row)
{
    for (const auto& [op, expected] : std::initializer_list<std::pair<const char*, float>>{
             {"SUM", 60.0F}, {"AVERAGE", 25.0F}, {"MIN", 20.0F}, {"MAX", 40.0F}, {"NONE", 20.0F}}) {
        SCOPED_TRACE(op);
        restart();
        EntityResults first = domain({2, 1, 1, 2}, {-9, 90, 10, 20}), second = domain({2, 3}, {40, 50});
        for (EntityResults* r : {&first, &second}) by_operators(*r, {op});
        first.tables.weight = {7, 7, 1, 3};
        second.tables.weight = {1, 1};
        first.write(add_domain());
        second.write(add_domain());

        EXPECT_EQ(merge(), 0);

        EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, expected, 50}));
        EXPECT_EQ(merged(first, "weight"), (std::vector<float>{1, 4, 1}));
        EXPECT_THAT(printed().err, testing::HasSubstr("lists an entity more than once, merged into one\n"));
    }
}

TEST_P(MergeResults, a_missing_weight_counts_one)
{
    EntityResults first = domain({1}, {10}), second = domain({1}, {20});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"AVERAGE"});
    first.tables.weight = {3};
    EXPECT_EQ(first.write(add_domain()), 0);
    const hid_t other = add_domain();
    EXPECT_EQ(second.write(other), 0);
    EXPECT_GE(H5Ldelete(other, (second.path() + data() + "weight").c_str(), H5P_DEFAULT), 0);

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(merged(first, "res"), (std::vector<float>{12.5F}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{4}));
}

TEST_P(MergeResults, a_mean_of_equal_values_is_that_value)
{
    EntityResults first = domain({1}, {0.1F}), second = domain({1}, {0.1F});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"AVERAGE"});
    first.tables.weight = {0.3F};
    second.tables.weight = {0.7F};
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{0.1F}));
}

TEST_P(MergeResults, operators_hold_with_a_first_domain_that_has_no_entities)
{
    EntityResults none = domain({}, {}), first = domain({1, 2}, {10, 20}), second = domain({2}, {5});
    for (EntityResults* r : {&none, &first, &second}) by_operators(*r, {"SUM"});
    EXPECT_EQ(none.write(add_domain()), 0);
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, 25}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{1, 2}));
}

TEST_P(MergeResults, without_dmpswitch_operators_do_not_matter)
{
    EntityResults first = domain({1}, {10}), second = domain({1}, {20});
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10}));
    EXPECT_FALSE(exists(target(), first.path() + data() + "operator"));
}

TEST_P(MergeResults, frames_follow_their_entities)
{
    EntityResults first = domain({3, 1}, {30, 10}), second = domain({3, 2}, {33, 20});
    first.tables.fid = {103, 101};
    second.tables.fid = {203, 202};
    merge_two(first, second);
    EXPECT_EQ(integers(first, "fid"), (std::vector<int32_t>{101, 202, 103}));
}

TEST_P(MergeResults, the_one_frame_is_that_of_the_lowest_file)
{
    EntityResults first = domain({1}, {10}), second = domain({2}, {20});
    first.zone.fswitch = second.zone.fswitch = 0;
    first.tables.fidglob = 7;
    second.tables.fidglob = 8;
    merge_two(first, second);
    EXPECT_EQ(integers(first, "fidglob"), (std::vector<int32_t>{7}));
}

TEST_P(MergeResults, domains_that_disagree_are_left_out_with_a_warning)
{
    const auto with = [&](auto change) {
        EntityResults r = domain({2}, {20, 21, 22, 23});
        change(r);
        return r;
    };
    const std::pair<EntityResults, const char*> others[] = {
        {with([](EntityResults& r) { r.ncoo = 2; }), "ncoo"},
        {with([](EntityResults& r) { r.zone.fswitch = 0; }), "fswitch"},
        {with([](EntityResults& r) { r.zone.dmpswitch = 1; }), "dmpswitch"},
        {with([](EntityResults& r) { r.ivsize = 16; }), "block"}};
    for (const auto& [other, what] : others) {
        restart();
        const EntityResults first = domain({1}, {10});
        merge_two(first, other);
        EXPECT_EQ(merged_ids(first), (std::vector<int32_t>{1}));
        EXPECT_THAT(printed().err,
                    testing::EndsWith(left_out(first, other.ivsize == 16 ? 1001 : 1000, what)));
    }
}

TEST_P(MergeResults, double_precision_of_one_domain_is_kept)
{
    EntityResults first = domain({1}, {10}), second = domain({2}, {20});
    second.ivsize = 8;
    merge_two(first, second);
    EXPECT_THAT(layout(target(), first.path()), testing::HasSubstr("res float64 [2,1]"));
    EXPECT_EQ(dataset_values<double>(target(), first.path() + data() + "res"), (std::vector<double>{10, 20}));
}

TEST_P(MergeResults, double_precision_values_keep_their_bits)
{
    const EntityResults first = [&] {
        EntityResults r = domain({1, 2}, {0, 0});
        r.ivsize = 8;
        return r;
    }();
    const hid_t one = add_domain();
    EXPECT_EQ(first.write(one), 0);
    const std::string path = first.path() + data() + "res";
    const std::vector<double> values{0.1, 1e300};
    {
        const ObjectId dataset = open_object(one, path);
        EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }
    EXPECT_EQ(domain({3}, {30}).write(add_domain()), 0);

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(dataset_values<double>(target(), path), (std::vector<double>{0.1, 1e300, 30}));
}

TEST_P(MergeResults, every_set_and_state_is_a_block_of_its_own)
{
    EntityResults first = domain({1}, {1}), set = first, state = first;
    set.set = 3;
    state.state = 13;
    const hid_t a = add_domain();
    for (const EntityResults& r : {first, set, state}) EXPECT_EQ(r.write(a), 0);
    EntityResults more = domain({2}, {2});
    EXPECT_EQ(more.write(add_domain()), 0);
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_THAT(printed().out, testing::HasSubstr("create 3 merged \"entityresults\" block(s)\n"));
    EXPECT_EQ(merged_ids(first), (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(merged_ids(set), (std::vector<int32_t>{1}));
    EXPECT_EQ(merged_ids(state), (std::vector<int32_t>{1}));
}

TEST_P(MergeResults, activation_flags_are_active_where_one_domain_is)
{
    auto first = sample_of<ActivFlags>(family()), second = first;
    first.entid = {1, 2, 3, 4};
    first.status = {0, 1, 0, 5};
    second.entid = {4, 3, 2, 5};
    second.status = {7, -1, 0, 0};
    EXPECT_EQ(first.write(add_domain()), 0);
    EXPECT_EQ(second.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(integers(first, "status"), (std::vector<int32_t>{0, 1, -1, 5, 0}));
}

TEST_P(MergeResults, element_results_keep_their_locations_together)
{
    auto first = sample_of<ElementResults>(family()), second = first;
    first.zone.dmpswitch = second.zone.dmpswitch = 0;
    first.zone.fswitch = second.zone.fswitch = 2;
    first.nele = second.nele = 2;
    first.tables.ids = {7, 5};
    second.tables.ids = {5, 6};
    first.tables.fid = {70, 71, 50, 51};
    second.tables.fid = {1, 2, 60, 61};
    first.res = {1, 2, 3, 4, 5, 6, 7, 8};
    second.res = {11, 12, 13, 14, 15, 16, 17, 18};
    for (const ElementResults& r : {first, second}) {
        const hid_t to = add_domain();
        EXPECT_EQ(r.write(to), 0);
        hid_t group = H5I_INVALID_HID;
        ASSERT_EQ(H5Fget_obj_ids(to, H5F_OBJ_GROUP, 1, &group), 1);
        H5Gclose(group);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(integers(first, "idele"), (std::vector<int32_t>{5, 6, 7}));
    EXPECT_EQ(integers(first, "fid"), (std::vector<int32_t>{50, 51, 60, 61, 70, 71}));
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{5, 6, 7, 8, 15, 16, 17, 18, 1, 2, 3, 4}));
    EXPECT_EQ(merged(first, "eloc"), first.eloc);
}

INSTANTIATE_TEST_SUITE_P(, MergeResults, both_families, family_name);

}  // namespace
