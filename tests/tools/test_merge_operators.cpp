// Values of an entity that several domains have, made one by operators and weights.
#include <gtest/gtest.h>

#include "samples/elementresults.h"
#include "tools/merge_results.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeOperators : public MergeResults {};

TEST_P(MergeOperators, operators_join_the_components_of_shared_entities)
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

TEST_P(MergeOperators, each_component_has_its_own_operator)
{
    EntityResults first = domain({1, 2}, {1, 2, 3, 4, 10, 20, 30, 40});
    EntityResults second = domain({2, 3}, {100, 200, 300, 400, 5, 6, 7, 8});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"SUM", "MIN", "AVERAGE", "KEEP"});
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{1, 2, 3, 4, 110, 20, 165, 40, 5, 6, 7, 8}));
    EXPECT_EQ(dataset_texts(target(), first.path() + data() + "operator"),
              (std::vector<std::string>{padded("SUM"), padded("MIN"), padded("AVERAGE"), padded("KEEP")}));
}

TEST_P(MergeOperators, both_parts_of_a_complex_value_follow_the_operator)
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

TEST_P(MergeOperators, a_mean_with_weights_that_cancel_is_the_plain_mean)
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
TEST_P(MergeOperators, an_entity_twice_in_one_file_counts_once_with_its_last_row)
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

TEST_P(MergeOperators, a_missing_weight_counts_one)
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

TEST_P(MergeOperators, weights_that_all_are_missing_count_one_each)
{
    EntityResults first = domain({1, 2}, {10, 1}), second = domain({1}, {20});
    for (EntityResults* r : {&first, &second}) {
        by_operators(*r, {"SUM"});
        const hid_t one = add_domain();
        EXPECT_EQ(r->write(one), 0);
        EXPECT_GE(H5Ldelete(one, (r->path() + data() + "weight").c_str(), H5P_DEFAULT), 0);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{30, 1}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{2, 1}));
}

TEST_P(MergeOperators, operators_that_the_switch_says_are_not_there_do_not_count)
{
    EntityResults first = domain({1}, {10}), second = domain({1}, {20});
    for (EntityResults* r : {&first, &second}) {
        by_operators(*r, {"SUM"});
        const hid_t one = add_domain();
        EXPECT_EQ(r->write(one), 0);
        const AttributeId attribute =
            open_attribute(open_object(one, r->path() + header()), ".", "dmpswitch");
        const int32_t none = 0;
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &none), 0);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10}));
    EXPECT_EQ(attribute_value<int32_t>(target(), first.path() + header(), "dmpswitch"), 0);
}

TEST_P(MergeOperators, a_mean_of_equal_values_is_that_value)
{
    EntityResults first = domain({1}, {0.1F}), second = domain({1}, {0.1F});
    for (EntityResults* r : {&first, &second}) by_operators(*r, {"AVERAGE"});
    first.tables.weight = {0.3F};
    second.tables.weight = {0.7F};
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{0.1F}));
}

TEST_P(MergeOperators, operators_hold_with_a_first_domain_that_has_no_entities)
{
    EntityResults none = domain({}, {}), first = domain({1, 2}, {10, 20}), second = domain({2}, {5});
    for (EntityResults* r : {&none, &first, &second}) by_operators(*r, {"SUM"});
    EXPECT_EQ(none.write(add_domain()), 0);
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, 25}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{1, 2}));
}

TEST_P(MergeOperators, without_dmpswitch_operators_do_not_matter)
{
    EntityResults first = domain({1}, {10}), second = domain({1}, {20});
    merge_two(first, second);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10}));
    EXPECT_FALSE(exists(target(), first.path() + data() + "operator"));
}

TEST_P(MergeOperators, element_results_are_joined_by_the_operator_of_each_component)
{
    auto first = sample_of<ElementResults>(family()), second = first;
    for (ElementResults* r : {&first, &second}) {
        r->zone.dmpswitch = 1;
        r->zone.fswitch = 0;
        r->nele = 2;
        r->tables.op = fields({"SUM", "AVERAGE"});
    }
    ASSERT_EQ(first.numl * first.ncoo, 4);
    first.tables.ids = {7, 5};
    second.tables.ids = {5, 6};
    first.tables.weight = {1, 1};
    second.tables.weight = {3, 2};
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
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{16, 10.5F, 20, 12.5F, 15, 16, 17, 18, 1, 2, 3, 4}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{4, 2, 1}));
}

INSTANTIATE_TEST_SUITE_P(, MergeOperators, both_families, family_name);

}  // namespace
