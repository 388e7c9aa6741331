// Series of entity results read in parts: fields of states, histories of entities, points, single tables.
#include "blocks/multientityresults_test.h"

namespace vak::test {

namespace {

class PartsOfSeries : public SeriesTest {};
INSTANTIATE_TEST_SUITE_P(, PartsOfSeries, both_families, family_name);

TEST_P(PartsOfSeries, field_of_one_state_is_read_with_its_index_values)
{
    for (const int32_t ivsize : {4, 16}) {
        auto written = series_of(4, ivsize);
        written.set = ivsize;
        EXPECT_EQ(write(written), success);
        for (int32_t state = 0; state < 4; ++state) {
            const auto expected = written.states(state, 1);
            auto block = emptied(expected);
            EXPECT_EQ(read_chosen(block, 2, {.mode = 1, .count = {1, 3, 2, 2}, .start = {state, 0, 0, 0}}),
                      status(ivsize == 4 ? 1050 : 1051));
            EXPECT_EQ(block.nstate, 4);
            EXPECT_EQ(block.res, expected.res);
            EXPECT_EQ(block.index.indexident, expected.index.indexident);
            EXPECT_EQ(block.index.indexval, expected.index.indexval);
            EXPECT_EQ(block.tables.ids, written.tables.ids);
        }
    }
}

TEST_P(PartsOfSeries, history_of_one_entity_is_read_with_the_index_values_of_its_states)
{
    const auto written = series_of(5);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written.states(1, 3));
    block.res.resize(3);
    EXPECT_EQ(read_chosen(block, 2, {.mode = 1, .count = {3, 1, 1}, .start = {1, 2, 1}}), status(1050));
    EXPECT_EQ(block.res, (std::vector<float>{written.res[11], written.res[17], written.res[23]}));
    EXPECT_EQ(block.index.indexident, written.states(1, 3).index.indexident);
    EXPECT_EQ(block.index.indexval, written.states(1, 3).index.indexval);
}

// One damaged chunk, of one state and the first third of the entities, shows who reads it.
TEST_P(PartsOfSeries, field_and_history_are_read_without_the_rest)
{
    auto written = series_of(3);
    written.nent = 3000;
    written.tables.ids.assign(3000, 1);
    written.tables.fid.assign(3000, 2);
    written.tables.weight.assign(3000, 1);
    written.res = some_values(18000);
    written.flags = 2;
    written.params[1] = 1;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written),
                testing::HasSubstr("res float32 [unlimited(3),3000,2] chunked(1,1000,2) deflate(1)\n"));
    {
        const ObjectId res = open_object(file, data(written, "res"));
        const std::array<hsize_t, 3> chunk{1, 0, 0};
        EXPECT_GE(H5Dwrite_chunk(res, H5P_DEFAULT, 0, chunk.data(), 7, "damaged"), 0);
    }
    auto block = emptied(written);
    take_header(block, written);
    const auto field = [&](int64_t state) {
        return read_parts(block, {.mode = 1, .count = {1, 3000, 2}, .start = {state, 0, 0}, .what = 8}).ierr;
    };
    const auto history = [&](int64_t entity) {
        return read_parts(block, {.mode = 1, .count = {3, 1, 2}, .start = {0, entity, 0}, .what = 8}).ierr;
    };
    EXPECT_EQ(field(0), 1050);
    EXPECT_EQ(field(1), -6999);
    EXPECT_EQ(field(2), 1050);
    EXPECT_EQ(history(999), -6999);
    EXPECT_EQ(history(1000), 1050);
    EXPECT_EQ(history(2999), 1050);
    EXPECT_EQ(block.res[0], written.res[5998]);
    EXPECT_EQ(block.res[5], written.res[17999]);
}

TEST_P(PartsOfSeries, points_are_read_with_the_index_values_of_all_states)
{
    for (const int32_t ivsize : {4, 16}) {
        auto written = series_of(3, ivsize);
        written.set = ivsize;
        EXPECT_EQ(write(written), success);
        auto block = emptied(written);
        block.res = {0, 0};
        const std::vector<int64_t> at = ivsize == 4 ? std::vector<int64_t>{2, 2, 1, 0, 0, 1}
                                                    : std::vector<int64_t>{2, 2, 1, 0, 0, 0, 1, 1};
        EXPECT_EQ(read_chosen(block, 2, {.mode = 2, .count = {2}, .start = at}),
                  status(ivsize == 4 ? 1050 : 1051));
        const auto& w = written.res;
        EXPECT_EQ(block.res,
                  ivsize == 4 ? (std::vector<float>{w[17], w[1]}) : (std::vector<float>{w[34], w[3]}));
        EXPECT_EQ(block.index.indexident, written.index.indexident);
    }
}

TEST_P(PartsOfSeries, states_and_points_that_are_not_there_are_reported)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    EXPECT_EQ(
        read_chosen(block, 0, {.mode = 1, .count = {2, 3, 2}, .start = {1, 0, 0}}),
        failure(
            -6031,
            "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, data_size, error: indexident 2 4 0\n"));
    take_header(block, written);
    EXPECT_EQ(
        read_parts(block, {.mode = 1, .count = {2, 3, 2}, .start = {1, 0, 0}, .what = 8}),
        failure(-6031,
                "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, data_size, error: res 3 4 0\n"));
    EXPECT_EQ(read_parts(block, {.mode = 1, .count = {1, 3, 2}, .start = {INT64_MAX, 0, 0}, .what = 8}).ierr,
              -6031);
    EXPECT_EQ(read_parts(block, {.mode = 1, .count = {1, 3, 2}, .start = {-1, 0, 0}, .what = 8}).ierr, -6031);
    EXPECT_EQ(
        read_parts(block, {.mode = 2, .count = {1}, .start = {2, 0, 0}, .what = 8}),
        failure(-6032,
                "VAK INTERNAL ERROR (32) in VAK_H5Dread - name, vak_type, data_size, error: res 3 4 0\n"));
    EXPECT_EQ(block.res, emptied(written).res);
}

TEST_P(PartsOfSeries, part_of_no_elements_reads_nothing)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    for (const SeriesPart& none :
         {SeriesPart{.mode = 1, .count = {0, 3, 2}, .start = {0, 0, 0}},
          SeriesPart{.mode = 1, .count = {-1, 3, 2}, .start = {0, 0, 0}},
          SeriesPart{.mode = 2, .count = {0}, .start = {}}, SeriesPart{.mode = 2, .count = {-7}, .start = {}},
          SeriesPart{.mode = 1}}) {
        auto block = emptied(written);
        EXPECT_EQ(read_chosen(block, 2, none), status(1050));
        EXPECT_EQ(block.res, emptied(written).res);
        EXPECT_EQ(block.tables.ids, written.tables.ids);
    }
}

TEST_P(PartsOfSeries, another_mode_is_refused_silently)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    for (const int32_t mode : {-1, 3}) {
        auto block = emptied(written);
        EXPECT_EQ(read_chosen(block, 2, {.mode = mode}), status(-999));
        EXPECT_EQ(block.index.indexident, written.index.indexident);
        EXPECT_EQ(block.res, emptied(written).res);
        EXPECT_EQ(read_chosen(block, 0, {.mode = mode}), status(1050));
    }
}

TEST_P(PartsOfSeries, each_bit_reads_its_part_alone)
{
    const auto written = series_of(2);
    EXPECT_EQ(write(written), success);
    auto block = emptied(written);
    auto expected = block;
    take_header(block, written);
    take_header(expected, written);
    for (const int32_t what : {2, 4, 8, 1}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(read_parts(block, {.what = what}), status(1050));
        EXPECT_EQ(block.found_flags, what == 8 || what == 1 ? 0 : untouched);
        if (what == 2) expected.index = written.index;
        if (what == 4) expected.tables = written.tables;
        if (what == 8) expected.res = written.res;
        EXPECT_EQ(listing(block), listing(expected));
    }
    EXPECT_EQ(read_parts(block, {.what = 0}), status(1050));
}

TEST_P(PartsOfSeries, data_size_is_that_of_the_values_alone)
{
    auto written = series_of(2, 8);
    EXPECT_EQ(write(written), success);
    std::vector<double> values(12, -1);
    auto block = emptied(written);
    EXPECT_EQ(read_parts(block, {.data_size = 8, .res = values.data()}), status(1050));
    EXPECT_EQ(values, std::vector<double>(written.res.begin(), written.res.end()));
    EXPECT_EQ(block.tables.weight, written.tables.weight);
    EXPECT_EQ(block.index.indexval, written.index.indexval);
}

}  // namespace

}  // namespace vak::test
