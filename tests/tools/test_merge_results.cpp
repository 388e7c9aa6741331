// Results of several domains joined into one.
#include <gtest/gtest.h>

#include "samples/activflags.h"
#include "samples/elementresults.h"
#include "tools/merge_results.h"

using namespace vak;
using namespace vak::test;

namespace {

TEST_P(MergeResults, of_an_entity_in_two_domains_the_lowest_file_stands)
{
    const EntityResults first = domain({3, 1, 2}, {30, 10, 20}), second = domain({4, 3}, {40, 33});
    first.write(add_domain());
    second.write(add_domain());

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(merged_ids(first), (std::vector<int32_t>{1, 2, 3, 4}));
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{10, 20, 30, 40}));
}

TEST_P(MergeResults, a_frame_for_all_that_is_an_attribute_stays_one)
{
    EntityResults r = domain({1}, {10});
    r.zone.fswitch = 0;
    const hid_t one = add_domain();
    EXPECT_EQ(r.write(one), 0);
    const std::string tables = r.path() + (legacy() ? "/data" : "");
    EXPECT_GE(H5Ldelete(one, (tables + "/fidglob").c_str(), H5P_DEFAULT), 0);
    {
        const ObjectId holder = open_object(one, tables);
        const SpaceId space{H5Screate(H5S_SCALAR), "space"};
        const AttributeId attribute{
            H5Acreate2(holder, "fidglob", H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT), "fidglob"};
        const int32_t frame = 77;
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &frame), 0);
    }
    EXPECT_EQ(merge(), 0) << printed();
    EntityResults read = r;
    EXPECT_EQ(read.read(open_object(target(), r.path()), 2), 1000);
    EXPECT_EQ(read.tables.fidglob, 77);
}

TEST_P(MergeResults, complex_values_stay_complex_at_every_real_size)
{
    for (const int32_t size : {4, 8, 0, -1}) {
        restart();
        real_size = size;
        EntityResults first = domain({1}, {1, 2}), second = domain({2}, {3, 4});
        first.ivsize = second.ivsize = 16;
        merge_two(first, second);
        EXPECT_EQ(attribute_value<int32_t>(target(), first.path() + header(), "block"), 1001);
        EXPECT_THAT(layout(target(), first.path()),
                    testing::HasSubstr(size == 8 ? "res float64 [2,1,2]" : "res float32 [2,1,2]"));
    }
}

TEST_P(MergeResults, of_a_real_size_that_there_is_not_are_refused)
{
    real_size = 5;
    EXPECT_EQ(domain({1}, {1}).write(add_domain()), 0);
    const int32_t status = merge();
    EXPECT_LT(status, 0);
    EXPECT_THAT(printed().err,
                testing::EndsWith("\nVAK ERROR writing \"entityresults\" block - error code = " +
                                  std::to_string(status) + "\n"));
}

// A block's place tells which one it is, whatever its name looks like.
TEST_P(MergeResults, with_names_like_numbers_and_commas_stay_apart)
{
    EntityResults first = domain({1}, {1}), second = domain({2}, {2});
    first.etypvar = padded("12,2,X");
    second.etypvar = padded("12");
    const EntityResults third = [&] {
        EntityResults r = second;
        r.etyp = padded("NODE,12");
        return r;
    }();
    for (int i = 0; i < 2; ++i) {
        const hid_t to = add_domain();
        for (const EntityResults& r : {first, second, third}) EXPECT_EQ(r.write(to), 0);
    }
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_THAT(printed().out, testing::HasSubstr("create 3 merged \"entityresults\" block(s)\n"));
    for (const EntityResults& r : {first, second, third}) EXPECT_EQ(merged(r, "res"), r.res);
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
