// Series of entity results that grow: by whole states, by slabs and points, through each of the three
// writers.
#include "samples/multientityresults.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

constexpr int32_t unset = -55;

class SeriesGrowth : public BothFamilies {
protected:
    MultiEntityResults series_of(int32_t nstate, int32_t ivsize = 4) const
    {
        return MultiEntityResults::of_states(family(), nstate, ivsize);
    }
    Result write_at(const MultiEntityResults& r, int32_t place)
    {
        return run([&] { return r.write_at(file, place); });
    }
    Result write_chosen(const MultiEntityResults& r, int32_t place, const SeriesPart& part)
    {
        return run([&] { return r.write_chosen(file, place, part); });
    }
    Result write_into(const MultiEntityResults& r, hid_t group, const SeriesPart& part)
    {
        states_then = unset;
        return run([&] { return r.write_into(group, part, states_then); });
    }
    ObjectId group(const std::string& name)
    {
        return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }
    // Below the block's group.
    std::string header() const { return legacy() ? "header" : "."; }
    std::string data(const std::string& name) const { return (legacy() ? "data/" : "") + name; }
    std::string index(const std::string& name) const { return (legacy() ? "index/" : "") + name; }
    std::vector<int64_t> extents(const std::string& block, const std::string& field) const
    {
        return dataset_extents(file, block + "/" + field);
    }
    bool has_state_count(const std::string& block) const
    {
        return H5Aexists_by_name(file, (block + "/" + header()).c_str(), "nstate", H5P_DEFAULT) > 0;
    }
    // Every reader gives the whole series.
    void expect_series(const MultiEntityResults& expected, const std::string& path)
    {
        const ObjectId block = open_object(file, path);
        const Result key = status(expected.ivsize == 16 || expected.ivsize == 32 ? 1051 : 1050);
        auto whole = emptied(expected), chosen = whole, parts = whole;
        EXPECT_EQ(run([&] { return whole.read(block, 2); }), key);
        EXPECT_EQ(run([&] { return chosen.read_chosen(block, 2, {}); }), key);
        EXPECT_EQ(run([&] { return parts.read_parts(block, {}); }), key);
        EXPECT_EQ(listing(whole), listing(expected));
        EXPECT_EQ(listing(chosen), listing(expected));
        EXPECT_EQ(listing(parts), listing(expected));
    }

    int32_t states_then = unset;
};
INSTANTIATE_TEST_SUITE_P(, SeriesGrowth, both_families, family_name);

const SeriesPart one_state{.mode = 1, .count = {1, 3, 2, 2}, .start = {0, 0, 0, 0}};

TEST_P(SeriesGrowth, states_appended_one_by_one_read_back_with_every_reader)
{
    for (const int32_t ivsize : {4, 8, 16, 32}) {
        auto all = series_of(5, ivsize);
        all.set = ivsize;
        for (int32_t state = 0; state < 5; ++state)
            EXPECT_EQ(write_chosen(all.states(state, 1), -1, one_state), success);
        EXPECT_FALSE(has_state_count(all.path()));
        expect_series(all, all.path());
    }
}

TEST_P(SeriesGrowth, place_above_0_appends_that_many_states_and_counts_them_all)
{
    const auto all = series_of(6);
    EXPECT_EQ(write_at(all.states(0, 3), 3), success);
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 3);
    EXPECT_EQ(write_at(all.states(3, 1), 1), success);
    EXPECT_EQ(write_at(all.states(4, 2), 2), success);
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 6);
    expect_series(all, all.path());
}

TEST_P(SeriesGrowth, chosen_entry_with_place_above_0_or_mode_0_is_the_usual_one)
{
    const auto all = series_of(3);
    EXPECT_EQ(write_chosen(all.states(0, 2), 2, {.mode = 7}), success);
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 2);
    EXPECT_EQ(write_chosen(all.states(2, 1), -1, {.mode = 0}), success);
    EXPECT_EQ(extents(all.path(), data("res")), (std::vector<int64_t>{4, 3, 2}));
}

TEST_P(SeriesGrowth, place_0_makes_a_series_without_states)
{
    const auto all = series_of(2);
    EXPECT_EQ(write_at(all, 0), success);
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 0);
    EXPECT_FALSE(exists(file, all.path() + "/" + data("res")));
    auto empty_series = emptied(all);
    EXPECT_EQ(read(empty_series, 2), status(1050));
    EXPECT_EQ(empty_series.nstate, 0);
    EXPECT_EQ(empty_series.tables.ids, all.tables.ids);
    EXPECT_EQ(write_at(all, 2), success);
    EXPECT_EQ(write_at(all, 0), success);
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 2);
    expect_series(all, all.path());
}

// The start is counted from the end, so that -1 leaves one row out; such rows hold the fill value.
TEST_P(SeriesGrowth, place_below_0_appends_one_state_behind_the_rows_that_it_skips)
{
    const auto all = series_of(2);
    EXPECT_EQ(write_at(all.states(0, 1), -1), success);
    EXPECT_EQ(extents(all.path(), data("res")), (std::vector<int64_t>{2, 3, 2}));
    EXPECT_EQ(write_at(all.states(1, 1), -3), success);
    EXPECT_EQ(extents(all.path(), data("res")), (std::vector<int64_t>{6, 3, 2}));
    EXPECT_FALSE(has_state_count(all.path()));
    auto found = MultiEntityResults::of_states(family(), 6);
    found.found_at = all.path();
    EXPECT_EQ(read(found, 2), status(1050));
    EXPECT_EQ(found.nstate, 6);
    for (const int32_t skipped : {0, 2, 3, 4}) {
        EXPECT_EQ(found.states(skipped, 1).res, std::vector<float>(6, 0));
        EXPECT_EQ(found.states(skipped, 1).index.indexident, std::vector<int32_t>(2, 0));
    }
    EXPECT_EQ(found.states(1, 1).res, all.states(0, 1).res);
    EXPECT_EQ(found.states(5, 1).res, all.states(1, 1).res);
    EXPECT_EQ(found.states(5, 1).index.indexval, all.states(1, 1).index.indexval);
}

// As a flush leaves them that was cut off after the extents were written.
TEST_P(SeriesGrowth, states_without_values_in_the_file_do_not_count)
{
    const auto all = series_of(4);
    EXPECT_EQ(write_at(all.states(0, 3), 3), success);
    const hsize_t counted[] = {6, 3, 2}, rows[] = {6, 2};
    EXPECT_GE(H5Dset_extent(open_object(file, all.path() + "/" + data("res")), counted), 0);
    for (const char* name : {"indexident", "indexval"})
        EXPECT_GE(H5Dset_extent(open_object(file, all.path() + "/" + index(name)), rows), 0);
    auto three = all.states(0, 3);
    expect_series(three, all.path());
    EXPECT_EQ(write_at(all.states(3, 1), 1), success);
    expect_series(all, all.path());
    EXPECT_EQ(attribute_value<int32_t>(file, all.path() + "/" + header(), "nstate"), 4);
}

TEST_P(SeriesGrowth, skipped_rows_of_scale_offset_values_hold_its_fill_value)
{
    auto all = series_of(1);
    all.nent = 8;
    all.tables.ids = all.tables.fid = {1, 2, 3, 4, 5, 6, 7, 8};
    all.tables.weight = some_values(8);
    all.res = some_values(16);
    all.flags = 128;
    all.params[0] = 2;
    EXPECT_EQ(write_at(all, -1), success);
    std::vector<float> expected(16, 10000);
    expected.insert(expected.end(), all.res.begin(), all.res.end());
    EXPECT_EQ(dataset_values<float>(file, all.path() + "/" + data("res")), expected);
}

TEST_P(SeriesGrowth, attributes_and_tables_are_written_once)
{
    auto all = series_of(2);
    EXPECT_EQ(write_at(all.states(0, 1), 1), success);
    H5Adelete_by_name(file, (all.path() + "/" + header()).c_str(), "etypframe", H5P_DEFAULT);
    auto later = all.states(1, 1);
    later.tables.ids = {0, 0, 0};
    later.zone.fswitch = 9;
    EXPECT_EQ(write_at(later, 1), success);
    EXPECT_EQ(H5Aexists_by_name(file, (all.path() + "/" + header()).c_str(), "etypframe", H5P_DEFAULT), 0);
    EXPECT_EQ(dataset_values<int32_t>(file, all.path() + "/" + data("entid")), all.tables.ids);
}

TEST_P(SeriesGrowth, block_without_entid_gets_its_attributes_with_the_next_call)
{
    auto all = series_of(2);
    all.zone.fswitch = 2;
    EXPECT_EQ(write_at(all.states(0, 1), 1), status(-123));
    H5Ldelete(file, (all.path() + "/" + data("entid")).c_str(), H5P_DEFAULT);
    all.zone.fswitch = 1;
    EXPECT_EQ(write_at(all, 2), success);
    expect_series(all, all.path());
}

TEST_P(SeriesGrowth, attribute_counts_where_states_store_nothing)
{
    auto all = series_of(2);
    all.nent = all.index.nindex = 0;
    EXPECT_EQ(write_at(all, 2), success);
    EXPECT_EQ(write_at(all, 3), success);
    auto found = emptied(all);
    EXPECT_EQ(read(found, 2), status(1050));
    EXPECT_EQ(found.nstate, 5);
}

TEST_P(SeriesGrowth, slabs_append_several_states_at_once)
{
    for (const int32_t ivsize : {4, 16}) {
        auto all = series_of(5, ivsize);
        all.set = ivsize;
        EXPECT_EQ(
            write_chosen(all.states(0, 2), -1, {.mode = 1, .count = {2, 3, 2, 2}, .start = {0, 0, 0, 0}}),
            success);
        EXPECT_EQ(
            write_chosen(all.states(2, 3), -9, {.mode = 1, .count = {3, 3, 2, 2}, .start = {0, 0, 0, 0}}),
            success);
        expect_series(all, all.path());
    }
}

TEST_P(SeriesGrowth, slab_may_hold_a_part_of_the_entities)
{
    auto part = series_of(1);
    part.res = {8, 9};
    EXPECT_EQ(write_chosen(part, -1, {.mode = 1, .count = {1, 1, 2}, .start = {0, 1, 0}}), success);
    EXPECT_EQ(extents(part.path(), data("res")), (std::vector<int64_t>{1, 3, 2}));
    EXPECT_EQ(dataset_values<float>(file, part.path() + "/" + data("res")),
              (std::vector<float>{0, 0, 8, 9, 0, 0}));
}

TEST_P(SeriesGrowth, slab_of_no_states_appends_nothing)
{
    const auto all = series_of(2);
    EXPECT_EQ(write_at(all, 2), success);
    EXPECT_EQ(write_chosen(all, -1, {.mode = 1, .count = {0, 3, 2}, .start = {0, 0, 0}}), success);
    EXPECT_EQ(write_chosen(all, -1, {.mode = 1, .count = {-4, 3, 2}, .start = {0, 0, 0}}), success);
    expect_series(all, all.path());
}

TEST_P(SeriesGrowth, slab_beyond_the_entities_is_refused_and_its_index_rows_give_way)
{
    auto all = series_of(3);
    EXPECT_EQ(write_at(all.states(0, 2), 2), success);
    EXPECT_EQ(write_chosen(all.states(2, 1), -1, {.mode = 1, .count = {1, 3, 2}, .start = {0, 1, 0}}),
              failure(-6031,
                      "VAK INTERNAL ERROR (31) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 4 4 1 1\n"));
    EXPECT_EQ(extents(all.path(), index("indexident")), (std::vector<int64_t>{3, 2}));
    expect_series(all.states(0, 2), all.path());
    EXPECT_EQ(write_chosen(all.states(2, 1), -1, one_state), success);
    expect_series(all, all.path());
}

TEST_P(SeriesGrowth, negative_start_is_refused)
{
    const auto all = series_of(2);
    EXPECT_EQ(write_at(all, 2), success);
    for (const int64_t start : {INT64_C(-1), INT64_MIN}) {
        const Result refused = write_chosen(all, -1, {.mode = 1, .count = {1, 3, 2}, .start = {start, 0, 0}});
        EXPECT_LT(refused.ierr, 0);
        EXPECT_THAT(refused.output.err, testing::StartsWith("VAK"));
    }
    expect_series(all, all.path());
}

TEST_P(SeriesGrowth, more_states_than_can_be_counted_are_refused)
{
    const auto all = series_of(1);
    const Result refused = failure(-3, "VAK ERROR writing block key 1050\n");
    EXPECT_EQ(write_at(all, -2147483647 - 1), refused);
    EXPECT_EQ(write_chosen(all, -1, {.mode = 1, .count = {1, 3, 2}, .start = {INT64_MAX, 0, 0}}), refused);
    EXPECT_EQ(write_chosen(all, -1, {.mode = 1, .count = {INT64_MAX, 3, 2}, .start = {0, 0, 0}}), refused);
    EXPECT_FALSE(exists(file, all.path() + "/" + index("indexident")));
}

// The state axis grows to the largest coordinate, not one more, so that a point in that state lies behind it.
TEST_P(SeriesGrowth, points_along_the_state_axis_are_refused_before_anything_is_written)
{
    for (const int32_t ivsize : {4, 16}) {
        auto all = series_of(2, ivsize);
        all.set = ivsize;
        EXPECT_EQ(write_at(all, 2), success);
        const std::vector<int64_t> at = ivsize == 4 ? std::vector<int64_t>{1, 0, 0, 0, 1, 1}
                                                    : std::vector<int64_t>{1, 0, 0, 0, 0, 1, 1, 1};
        EXPECT_EQ(write_chosen(all, -1, {.mode = 2, .count = {2}, .start = at}),
                  failure(-3999,
                          "VAK INTERNAL ERROR (999) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, "
                          "mode, error: indexident 2 4 4 2 -1\n"));
        EXPECT_EQ(extents(all.path(), index("indexident")), (std::vector<int64_t>{3, 2}));
        EXPECT_EQ(extents(all.path(), data("res")).at(0), 2);
        expect_series(all, all.path());
    }
}

TEST_P(SeriesGrowth, points_of_states_without_index_values_are_refused_by_the_values)
{
    auto all = series_of(1);
    all.index.nindex = 0;
    EXPECT_EQ(write_chosen(all, -1, {.mode = 2, .count = {1}, .start = {0, 0, 0}}),
              failure(-3999,
                      "VAK INTERNAL ERROR (999) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 4 4 2 -1\n"));
    all.index.nindex = -1;
    EXPECT_EQ(write_chosen(all, -1, {.mode = 2, .count = {1}, .start = {-1, 0, 0}}).ierr, -3999);
}

TEST_P(SeriesGrowth, empty_list_of_points_writes_no_states)
{
    const auto all = series_of(1);
    for (const int64_t number : {INT64_C(0), INT64_C(-3)}) {
        EXPECT_EQ(write_chosen(all, -1, {.mode = 2, .count = {number}, .start = {}}), success);
        EXPECT_EQ(dataset_values<int32_t>(file, all.path() + "/" + data("entid")), all.tables.ids);
        EXPECT_FALSE(exists(file, all.path() + "/" + index("indexident")));
        EXPECT_FALSE(exists(file, all.path() + "/" + data("res")));
    }
}

TEST_P(SeriesGrowth, part_without_counts_or_starts_writes_no_states)
{
    const auto all = series_of(1);
    for (const int32_t mode : {1, 2}) {
        EXPECT_EQ(write_chosen(all, -1, {.mode = mode}), success);
        EXPECT_EQ(write_chosen(all, -1, {.mode = mode, .count = {}, .start = {0, 0, 0}}), success);
        EXPECT_FALSE(exists(file, all.path() + "/" + data("res")));
    }
    EXPECT_EQ(write_chosen(all, -1, {.mode = 1, .count = {1, 3, 2}}), success);
    EXPECT_FALSE(exists(file, all.path() + "/" + index("indexident")));
}

TEST_P(SeriesGrowth, another_mode_is_refused_behind_the_tables)
{
    const auto all = series_of(1);
    EXPECT_EQ(write_chosen(all, -1, {.mode = 3}),
              failure(-999, "VAK ERROR writing block multientityresults - invalid mode 3\n"));
    EXPECT_TRUE(exists(file, all.path() + "/" + data("entid")));
    EXPECT_FALSE(exists(file, all.path() + "/" + index("indexident")));
    const ObjectId block = group("block");
    EXPECT_EQ(write_into(all, block, {.mode = -1}),
              failure(-999, "VAK ERROR writing block multientityresults - invalid mode -1\n"));
    EXPECT_EQ(states_then, 0);
}

TEST_P(SeriesGrowth, lower_writer_hands_back_the_number_of_states)
{
    const auto all = series_of(7);
    const ObjectId block = group("block");
    EXPECT_EQ(write_into(all.states(0, 2), block, {.nstates = 2}), success);
    EXPECT_EQ(states_then, 2);
    EXPECT_EQ(attribute_value<int32_t>(block, header(), "nstate"), 2);
    EXPECT_EQ(write_into(all.states(2, 1), block, one_state), success);
    EXPECT_EQ(states_then, 3);
    EXPECT_EQ(attribute_value<int32_t>(block, header(), "nstate"), 2);
    EXPECT_EQ(write_into(all.states(3, 4), block, {.nstates = 4}), success);
    EXPECT_EQ(states_then, 7);
    EXPECT_EQ(attribute_value<int32_t>(block, header(), "nstate"), 7);
    EXPECT_EQ(write_into(all, block, {.mode = 2, .count = {0}, .start = {}}), success);
    EXPECT_EQ(states_then, 7);
    expect_series(all, "block");
}

TEST_P(SeriesGrowth, lower_writer_that_fails_hands_back_the_states_before_it)
{
    const auto all = series_of(2);
    const ObjectId block = group("block");
    EXPECT_EQ(write_into(all, block, {.nstates = 2}), success);
    auto large = all;
    large.nent = 4;
    large.res = some_values(16);
    EXPECT_EQ(write_into(large, block, {.nstates = 2}).ierr, -6031);
    EXPECT_EQ(states_then, 2);
    expect_series(all, "block");
}

TEST_P(SeriesGrowth, lower_writer_refuses_a_negative_number_of_states_before_a_missing_group)
{
    const auto all = series_of(1);
    for (const hid_t none : {hid_t{-1}, hid_t{file}}) {
        EXPECT_EQ(write_into(all, none, {.nstates = -1}),
                  failure(-999, "VAK ERROR writing block multientityresults\n"));
        EXPECT_EQ(states_then, 0);
    }
    EXPECT_EQ(write_into(all, -8, {}), failure(-8, "VAK ERROR writing block multientityresults\n"));
    EXPECT_EQ(states_then, 0);
    EXPECT_EQ(write_into(all, -8, {.mode = 1}), failure(-8, "VAK ERROR writing block multientityresults\n"));
    EXPECT_EQ(H5Aexists(file, "block"), 0);
}

TEST_P(SeriesGrowth, lower_writer_keeps_bit_1024_of_the_value_size_code)
{
    auto all = series_of(1);
    all.ivsize = 1024 + 8;
    const ObjectId block = group("block");
    EXPECT_EQ(write_into(all, block, {}), success);
    EXPECT_THAT(layout(block, "."), testing::HasSubstr("res float32 [unlimited(1),3,2]"));
}

TEST_P(SeriesGrowth, lower_writer_takes_values_of_8_bytes)
{
    auto all = series_of(2, 8);
    const ObjectId block = group("block");
    std::vector<double> values{0.1, 1e-9, 3, 4, 5, 6, 7, 8, 9, 1e300, 11, 12};
    EXPECT_EQ(write_into(all, block, {.data_size = 8, .nstates = 2, .res = values.data()}), success);
    EXPECT_EQ(dataset_values<double>(block, data("res")), values);
    EXPECT_EQ(dataset_values<float>(block, data("weight")), all.tables.weight);
    EXPECT_EQ(dataset_values<float>(block, index("indexval")), all.index.indexval);
    EXPECT_GT(H5Iis_valid(block), 0);
}

TEST_P(SeriesGrowth, file_that_is_none_gives_the_status_of_opening)
{
    const auto all = series_of(1);
    for (const int32_t place : {1, -1}) {
        const Result result = run([&] { return all.write_at(H5I_INVALID_HID, place); });
        EXPECT_LT(result.ierr, 0);
        EXPECT_THAT(result.output.err, testing::StartsWith("VAK"));
    }
}

TEST_P(SeriesGrowth, state_of_another_kind_of_values_is_refused)
{
    const auto all = series_of(2);
    EXPECT_EQ(write_at(all, 2), success);
    EXPECT_EQ(write_at(series_of(1, 16), 1).ierr, -3020);
    expect_series(all, all.path());
}

}  // namespace

}  // namespace vak::test
