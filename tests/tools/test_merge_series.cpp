// Series of states of several domains joined into one series.
#include <gtest/gtest.h>

#include "frame/file_size_limit.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeSeries : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeSeries() : MergeTest(GetParam()) {}

    // Values: state * 100 + identifier + mark.
    MultiEntityResults series(std::vector<int32_t> ids, int32_t nstate, float mark = 0) const
    {
        auto r = MultiEntityResults::of_states(family(), nstate);
        r.zone.dmpswitch = 0;
        r.zone.fswitch = 0;
        r.ncoo = 1;
        r.nent = static_cast<int32_t>(ids.size());
        r.tables.ids = std::move(ids);
        r.tables.weight.assign(r.tables.ids.size(), 1);
        r.tables.op = padded("SUM");
        r.res.clear();
        for (int32_t state = 0; state < nstate; ++state)
            for (const int32_t id : r.tables.ids)
                r.res.push_back(static_cast<float>(100 * state + id) + mark);
        return r;
    }
    template <class S>
    std::vector<float> merged(const S& sample, const std::string& name) const
    {
        return dataset_values<float>(target(), sample.path() + data() + name);
    }
    template <class S>
    std::vector<int32_t> integers(const S& sample, const std::string& name) const
    {
        return dataset_values<int32_t>(target(), sample.path() + data() + name);
    }
    std::string index() const { return legacy() ? "/index/" : "/"; }
};

TEST_P(MergeSeries, of_the_same_states_are_joined_state_by_state)
{
    const auto first = series({3, 1}, 3), second = series({2, 3}, 3, 0.5F);
    EXPECT_EQ(first.write(add_domain()), 0);
    EXPECT_EQ(second.write(add_domain()), 0);
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{1, 2.5F, 3, 101, 102.5F, 103, 201, 202.5F, 203}));
    EXPECT_EQ(attribute_value<int32_t>(target(), first.path() + header(), "nstate"), 3);
    EXPECT_EQ(dataset_values<int32_t>(target(), first.path() + index() + "indexident"),
              first.index.indexident);
    EXPECT_THAT(printed().out, testing::HasSubstr("create 1 merged \"multientityresults\" block(s)\n"));
}

TEST_P(MergeSeries, are_joined_by_operators_in_every_state)
{
    auto first = series({1, 2}, 2), second = series({2}, 2);
    first.zone.dmpswitch = second.zone.dmpswitch = 1;
    EXPECT_EQ(first.write(add_domain()), 0);
    EXPECT_EQ(second.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(merged(first, "res"), (std::vector<float>{1, 4, 101, 204}));
    EXPECT_EQ(merged(first, "weight"), (std::vector<float>{1, 2}));
}

TEST_P(MergeSeries, written_by_appending_are_merged_as_well)
{
    const auto whole_series = series({1, 2}, 3);
    const hid_t domain = add_domain();
    for (int32_t state = 0; state < 3; ++state)
        EXPECT_EQ(whole_series.states(state, 1).write_at(domain, -1), 0);
    EXPECT_EQ(merge(), 0);
    // The first state appended lies behind a place that its call skipped.
    EXPECT_EQ(attribute_value<int32_t>(target(), whole_series.path() + header(), "nstate"),
              static_cast<int32_t>(dataset_extents(domain, whole_series.path() + data() + "res")[0]));
    EXPECT_EQ(merged(whole_series, "res"),
              dataset_values<float>(domain, whole_series.path() + data() + "res"));
}

TEST_P(MergeSeries, with_another_number_of_states_are_left_out_with_a_warning)
{
    const auto first = series({1}, 3), second = series({2}, 2);
    EXPECT_EQ(first.write(add_domain()), 0);
    EXPECT_EQ(second.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{1}));
    EXPECT_THAT(printed().err,
                testing::EndsWith("VAK WARNING file [1]: block key 1050 \"" + first.path() +
                                  "\" differs in number of states from file [0] and is left out\n"));
}

TEST_P(MergeSeries, with_index_rows_of_a_failed_append_have_their_complete_states_merged)
{
    const auto first = series({1, 2}, 2);
    const hid_t domain = add_domain();
    EXPECT_EQ(first.write(domain), 0);
    {
        const ObjectId rows = open_object(domain, first.path() + index() + "indexident");
        const hsize_t more[] = {5, 2};
        EXPECT_GE(H5Dset_extent(rows, more), 0);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(merged(first, "res"), first.res);
    EXPECT_EQ(dataset_values<int32_t>(target(), first.path() + index() + "indexident"),
              first.index.indexident);
}

TEST_P(MergeSeries, of_a_domain_without_entities_take_nothing_away)
{
    const auto none = series({}, 2), some = series({4, 5}, 2);
    EXPECT_EQ(none.write(add_domain()), 0);
    EXPECT_EQ(some.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(integers(some, "entid"), (std::vector<int32_t>{4, 5}));
    EXPECT_EQ(merged(some, "res"), some.res);
}

TEST_P(MergeSeries, of_no_entities_at_all_keep_their_states)
{
    const auto none = series({}, 2);
    EXPECT_EQ(none.write(add_domain()), 0);
    EXPECT_EQ(none.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(attribute_value<int32_t>(target(), none.path() + header(), "nent"), 0);
    EXPECT_EQ(attribute_value<int32_t>(target(), none.path() + header(), "nstate"), 2);
    EXPECT_EQ(dataset_values<int32_t>(target(), none.path() + index() + "indexident"), none.index.indexident);
}

TEST_P(MergeSeries, of_activation_flags_are_joined)
{
    auto first = sample_of<MultiActivFlags>(family()), second = first;
    second.entid = {14, 15, 16, 17};
    second.status = {1, 1, 0, 1};
    first.status = {1, 0, 1, 0};
    for (const MultiActivFlags& start : {first, second}) {
        const hid_t domain = add_domain();
        EXPECT_EQ(start.write(domain), 0);
        EXPECT_EQ(start.next().write(domain), 0);
    }
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{11, 12, 13, 14, 15, 16, 17}));
    EXPECT_EQ(integers(first, "status"),
              (std::vector<int32_t>{1, 0, 1, 1, 1, 0, 1, 101, 100, 101, 100, 101, 100, 101}));
    EXPECT_THAT(printed().out, testing::HasSubstr("create 1 merged \"multiactivflags\" block(s)\n"));
}

TEST_P(MergeSeries, of_element_results_are_joined)
{
    auto first = sample_of<MultiElementResults>(family()), second = first;
    first.zone.dmpswitch = second.zone.dmpswitch = 0;
    second.tables.ids = {14, 13, 15};
    for (float& value : second.res) value += 0.25F;
    for (const MultiElementResults& start : {first, second}) {
        const hid_t domain = add_domain();
        EXPECT_GE(start.write(domain), 0);
        EXPECT_GE(start.next().write(domain), 0);
    }
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_EQ(integers(first, "idele"), (std::vector<int32_t>{11, 12, 13, 14, 15}));
    const std::vector<float> res = merged(first, "res");
    ASSERT_EQ(res.size(), 2U * 5 * 4);
    EXPECT_EQ((std::vector<float>{res.begin(), res.begin() + 12}), first.res);
    EXPECT_EQ((std::vector<float>{res.begin() + 12, res.begin() + 16}),
              (std::vector<float>{second.res.begin(), second.res.begin() + 4}));
    EXPECT_EQ(res[20], first.res[0] + 100);
    EXPECT_THAT(printed().out, testing::HasSubstr("create 1 merged \"multielementresults\" block(s)\n"));
}

// Larger than what is held at once, so that several slices follow each other.
TEST_P(MergeSeries, are_the_same_whatever_the_number_of_slices)
{
    constexpr int32_t n = 1500, ncoo = 1200, nstate = 10;
    constexpr size_t state_values = size_t{n} * ncoo;
    auto r = series({}, nstate);
    r.ncoo = ncoo;
    r.nent = n;
    r.tables.ids.resize(n);
    for (int32_t i = 0; i < n; ++i) r.tables.ids[static_cast<size_t>(i)] = n - i;
    r.res.resize(state_values * nstate);
    for (size_t i = 0; i < r.res.size(); ++i) r.res[i] = static_cast<float>(i % 16777213);
    EXPECT_EQ(r.write(add_domain()), 0);

    EXPECT_EQ(merge(1 + 4), 0) << printed();

    EXPECT_THAT(printed().out, testing::Not(testing::HasSubstr("VAK INFO")));
    const std::vector<float> res = merged(r, "res");
    ASSERT_EQ(res.size(), r.res.size());
    size_t wrong = 0;
    for (size_t state = 0; state < nstate; ++state)
        for (size_t row = 0; row < n; ++row)
            wrong += !std::equal(&res[state * state_values + row * ncoo],
                                 &res[state * state_values + row * ncoo] + ncoo,
                                 &r.res[state * state_values + (n - 1 - row) * ncoo]);
    EXPECT_EQ(wrong, 0U);
}

// As a flush leaves them that was cut off after the extents were written.
TEST_P(MergeSeries, of_a_file_with_states_without_values_are_those_with_values)
{
    const auto r = series({1, 2, 3}, 2);
    const hid_t domain = add_domain();
    EXPECT_EQ(r.write(domain), 0);
    const hsize_t extents[] = {4, 3, 1}, rows[] = {4, 2};
    EXPECT_GE(H5Dset_extent(open_object(domain, r.path() + data() + "res"), extents), 0);
    for (const char* const name : {"indexident", "indexval"})
        EXPECT_GE(H5Dset_extent(open_object(domain, r.path() + index() + name), rows), 0);

    EXPECT_EQ(merge(1), 0) << printed();

    EXPECT_EQ(merged(r, "res"), r.res);
    EXPECT_EQ(attribute_value<int32_t>(target(), r.path() + header(), "nstate"), 2);
}

// The extents, with a value in the last of the rows.
void grow(const ObjectId& array, const std::vector<hsize_t>& extents)
{
    EXPECT_GE(H5Dset_extent(array, extents.data()), 0);
    std::vector<hsize_t> last(extents.size(), 0);
    last[0] = extents[0] - 1;
    const Space all(H5Dget_space(array)), one(H5Screate(H5S_SCALAR));
    H5Sselect_elements(all.get(), H5S_SELECT_SET, 1, last.data());
    const int32_t value = 1;
    EXPECT_GE(H5Dwrite(array, H5T_NATIVE_INT32, one.get(), all.get(), H5P_DEFAULT, &value), 0);
}

// 1,000 states of 1.2 MB, two of which are stored; the disk is full before the first of them is.
TEST_P(MergeSeries, beyond_the_data_limit_are_told_to_be_merged_in_slices)
{
    constexpr int32_t n = 300000;
    auto r = series({}, 2);
    r.nent = n;
    r.tables.ids.resize(n);
    for (int32_t i = 0; i < n; ++i) r.tables.ids[static_cast<size_t>(i)] = i;
    r.res.assign(size_t{n} * 2, 0);
    const hid_t domain = add_domain();
    EXPECT_EQ(r.write(domain), 0);
    {
        grow(open_object(domain, r.path() + data() + "res"), {1000, n, 1});
        for (const char* const name : {"indexident", "indexval"})
            grow(open_object(domain, r.path() + index() + name), {1000, 2});
    }
    int32_t status = 0;
    {
        const FileSizeLimit limit(rlim_t{1} << 23);
        status = merge(1 + 4);
    }
    EXPECT_NE(status, 0);
    EXPECT_THAT(
        printed().out,
        testing::EndsWith(" VAK INFO - \"multientityresults\" data size limit of 1073741824 Byte exceeded -> "
                          "i/o + merge in blocks of 894 states - block: \"" +
                          r.path() + "\"\n"));
    EXPECT_THAT(printed().err,
                testing::EndsWith("\nVAK ERROR writing \"multientityresults\" block - error code = " +
                                  std::to_string(status) + "\n"));
}

INSTANTIATE_TEST_SUITE_P(, MergeSeries, both_families, family_name);

}  // namespace
