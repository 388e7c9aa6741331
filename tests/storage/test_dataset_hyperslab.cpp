// Slabs of datasets: appended behind the present end, written and read in place.
#include <algorithm>
#include <limits>

#include "storage_test.h"

namespace vak::test {
namespace {

using DatasetHyperslab = StorageTest;

Access states(hsize_t count, hsize_t start = 0)
{
    return {.dims = {H5S_UNLIMITED, 2, 3}, .count = {count, 2, 3}, .start = {start, 0, 0}, .mode = hyperslab};
}

TEST_F(DatasetHyperslab, a_first_slab_makes_the_dataset_and_a_second_goes_behind_it)
{
    const auto values = numbers<float>(5000);
    Access first{.dims = {H5S_UNLIMITED},
                 .count = {2500},
                 .start = {0},
                 .mode = hyperslab,
                 .flags = 2,
                 .params = {0, 5}};
    Access second = first;
    EXPECT_EQ(write(std::vector<float>(values.begin(), values.begin() + 2500), first), done);
    EXPECT_EQ(first.dims, Dims{2500});
    EXPECT_EQ(first.start, Dims{0});
    EXPECT_EQ(layout(file, "/"), "\nD values float32 [unlimited(2500)] chunked(1) deflate(5)\n");
    EXPECT_EQ(write(std::vector<float>(values.begin() + 2500, values.end()), second), done);
    EXPECT_EQ(second.dims, Dims{5000});
    EXPECT_EQ(second.start, Dims{2500});
    EXPECT_EQ(layout(file, "/"), "\nD values float32 [unlimited(5000)] chunked(1) deflate(5)\n");
    EXPECT_EQ(dataset_values<float>(file, "values"), values);
}

TEST_F(DatasetHyperslab, states_are_appended_one_by_one)
{
    for (int32_t state = 0; state < 4; ++state) {
        Access access = states(1);
        EXPECT_EQ(write(numbers<int32_t>(6, 6 * state), access), done);
        EXPECT_EQ(access.dims, (Dims{static_cast<hsize_t>(state) + 1, 2, 3}));
    }
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [unlimited(4),2,3] chunked(1,2,3)\n");
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(24));
}

// Many values that do not stand side by side are taken from whole chunks.
TEST_F(DatasetHyperslab, scattered_values_of_chunks_without_filters_are_read)
{
    constexpr hsize_t states_written = 3, n = 200;
    Access all{.dims = {H5S_UNLIMITED, n, 2},
               .count = {states_written, n, 2},
               .start = {0, 0, 0},
               .mode = hyperslab};
    EXPECT_EQ(write(numbers<float>(states_written * n * 2), all), done);
    std::vector<double> second(states_written * n);
    EXPECT_EQ(read(second, {.dims = {states_written, n, 2},
                            .count = {states_written, n, 1},
                            .start = {0, 0, 1},
                            .mode = hyperslab}),
              done);
    for (size_t i = 0; i < second.size(); ++i) EXPECT_EQ(second[i], static_cast<double>(2 * i + 1));
}

TEST_F(DatasetHyperslab, skipped_places_hold_the_fill_value)
{
    EXPECT_EQ(write(numbers<int32_t>(6, 1), states(1)), done);
    Access behind = states(1, 1);
    EXPECT_EQ(write(numbers<int32_t>(6, 11), behind), done);
    EXPECT_EQ(behind.dims, (Dims{3, 2, 3}));
    EXPECT_EQ(behind.start, (Dims{2, 0, 0}));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"),
              (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 0, 0, 11, 12, 13, 14, 15, 16}));
}

TEST_F(DatasetHyperslab, skipped_places_of_a_scale_offset_dataset_hold_10000)
{
    Access access{
        .dims = {H5S_UNLIMITED, 8}, .count = {1, 8}, .start = {1, 0}, .mode = hyperslab, .flags = 64};
    EXPECT_EQ(write(numbers<int32_t>(8), access), done);
    EXPECT_EQ(access.dims, (Dims{2, 8}));
    auto expected = std::vector<int32_t>(8, 10000);
    for (int32_t i = 0; i < 8; ++i) expected.push_back(i);
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), expected);
}

TEST_F(DatasetHyperslab, a_count_of_0_does_nothing)
{
    std::vector<int32_t> none;
    EXPECT_EQ(write(none, states(0)), done);
    EXPECT_EQ(layout(file, "/"), "\n");
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), done);
    Access access = states(0);
    EXPECT_EQ(write(none, access), done);
    EXPECT_EQ(access.dims[0], H5S_UNLIMITED);
    EXPECT_EQ(read(none, {.name = "missing", .dims = {9}, .count = {0}, .start = {4}, .mode = hyperslab}),
              done);
}

TEST_F(DatasetHyperslab, a_slab_of_fixed_extents_is_written_into_its_place)
{
    Access whole{.dims = {4, 3}};
    EXPECT_EQ(write(std::vector<int32_t>(12, 0), whole), done);
    Access part{.dims = {99, 99}, .count = {2, 1}, .start = {1, 2}, .mode = hyperslab};
    EXPECT_EQ(write(std::vector<int32_t>{7, 8}, part), done);
    EXPECT_EQ(part.dims, (Dims{4, 3}));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"),
              (std::vector<int32_t>{0, 0, 0, 0, 0, 7, 0, 0, 8, 0, 0, 0}));
}

TEST_F(DatasetHyperslab, a_slab_may_make_a_dataset_of_fixed_extents)
{
    EXPECT_EQ(write(std::vector<int32_t>{1, 2},
                    {.dims = {2, 3}, .count = {1, 2}, .start = {1, 1}, .mode = hyperslab}),
              done);
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [2,3] compact\n");
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), (std::vector<int32_t>{0, 0, 0, 0, 1, 2}));
}

TEST_F(DatasetHyperslab, two_dimensions_may_grow_at_once)
{
    const Access access{
        .dims = {H5S_UNLIMITED, H5S_UNLIMITED}, .count = {2, 2}, .start = {0, 0}, .mode = hyperslab};
    Access first = access, second = access;
    EXPECT_EQ(write(std::vector<int32_t>{1, 2, 3, 4}, first), done);
    EXPECT_EQ(write(std::vector<int32_t>{5, 6, 7, 8}, second), done);
    EXPECT_EQ(second.dims, (Dims{4, 4}));
    EXPECT_EQ(second.start, (Dims{2, 2}));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"),
              (std::vector<int32_t>{1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 5, 6, 0, 0, 7, 8}));
}

TEST_F(DatasetHyperslab, a_growing_dataset_asked_for_with_fixed_extents_is_written_in_place)
{
    EXPECT_EQ(write(numbers<int32_t>(12), states(2)), done);
    EXPECT_EQ(write(numbers<int32_t>(6, 50),
                    {.dims = {2, 2, 3}, .count = {1, 2, 3}, .start = {1, 0, 0}, .mode = hyperslab}),
              done);
    EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{2, 2, 3}));
    EXPECT_EQ(dataset_values<int32_t>(file, "values")[6], 50);
}

TEST_F(DatasetHyperslab, texts_are_appended_too)
{
    const Access access{.dims = {H5S_UNLIMITED}, .count = {2}, .start = {0}, .mode = hyperslab};
    EXPECT_EQ(write("abcdef", 3, access), done);
    EXPECT_EQ(write("x y ", 2, access), done);
    EXPECT_EQ(dataset_texts(file, "values"), (std::vector<std::string>{"abc", "def", "x  ", "y  "}));
}

struct Slab {
    Dims count, start;
};

// Every slab of a field of 4 states, 5 entities and 3 components agrees with the values picked one by one.
class SlabsRead : public StorageTest, public testing::WithParamInterface<uint32_t> {
protected:
    void expect_slab(const Slab& slab)
    {
        const Dims& n = slab.count;
        std::vector<float> found(n[0] * n[1] * n[2], -1);
        ASSERT_EQ(
            read(found, {.dims = {4, 5, 3}, .count = slab.count, .start = slab.start, .mode = hyperslab}),
            done);
        size_t place = 0;
        for (hsize_t i = slab.start[0]; i < slab.start[0] + n[0]; ++i)
            for (hsize_t j = slab.start[1]; j < slab.start[1] + n[1]; ++j)
                for (hsize_t k = slab.start[2]; k < slab.start[2] + n[2]; ++k)
                    ASSERT_EQ(found[place++], static_cast<float>((i * 5 + j) * 3 + k));
    }
};

TEST_P(SlabsRead, any_slab_reads_its_values)
{
    ASSERT_EQ(write(numbers<float>(60), {.dims = {H5S_UNLIMITED, 5, 3},
                                         .count = {4, 5, 3},
                                         .start = {0, 0, 0},
                                         .mode = hyperslab,
                                         .flags = GetParam(),
                                         .params = {0, 1}}),
              done);
    for (hsize_t i = 0; i < 4; ++i)
        for (hsize_t j = 0; j < 5; ++j)
            for (hsize_t k = 0; k < 3; ++k)
                for (const hsize_t n : {1, 2, 5})
                    expect_slab({{std::min(n, 4 - i), std::min(n, 5 - j), std::min(n, 3 - k)}, {i, j, k}});
}

INSTANTIATE_TEST_SUITE_P(PlainAndFiltered, SlabsRead, testing::Values(0U, 2U, 16U | 2U, 128U),
                         [](const auto& flags) { return "flags" + std::to_string(flags.param); });

TEST_F(DatasetHyperslab, a_long_history_and_a_long_state_read_the_same_past_the_chunk_cache)
{
    ASSERT_EQ(
        write(numbers<float>(300 * 20 * 3),
              {.dims = {H5S_UNLIMITED, 20, 3}, .count = {300, 20, 3}, .start = {0, 0, 0}, .mode = hyperslab}),
        done);
    std::vector<float> history(300 * 3), state(60), picked(20);
    const Dims extents{300, 20, 3};
    const auto read_shared = [&](std::vector<float>& found, Dims count, Dims start) {
        return outcome([&] {
            SharedIds ids;
            return VAK_H5Dread("values", found.data(), 3, 4, extents.data(), 3, count.data(), start.data(),
                               hyperslab, Location(file, false, &ids), nullptr, nullptr);
        });
    };
    EXPECT_EQ(read_shared(history, {300, 1, 3}, {0, 7, 0}), done);
    EXPECT_EQ(read_shared(state, {1, 20, 3}, {250, 0, 0}), done);
    EXPECT_EQ(read_shared(picked, {1, 20, 1}, {250, 0, 2}), done);
    EXPECT_EQ(history[0], 21.0F);
    EXPECT_EQ(history[899], (299 * 20 + 7) * 3 + 2.0F);
    EXPECT_EQ(state, numbers<float>(60, 250 * 60));
    EXPECT_EQ(picked[19], 250 * 60 + 59.0F);
}

TEST_F(DatasetHyperslab, writing_error_31_a_slab_beyond_fixed_extents)
{
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), done);
    EXPECT_EQ(
        write(numbers<int32_t>(6),
              {.dims = {H5S_UNLIMITED, 2, 3}, .count = {1, 2, 3}, .start = {0, 0, 1}, .mode = hyperslab}),
        not_written(-6031, 31, "values 2 4 4 1 2"));
    EXPECT_EQ(
        write(numbers<int32_t>(9),
              {.dims = {H5S_UNLIMITED, 3, 3}, .count = {1, 3, 3}, .start = {0, 0, 0}, .mode = hyperslab}),
        not_written(-6031, 31, "values 2 4 4 1 1"));
    EXPECT_EQ(write(numbers<int32_t>(3), {.dims = {H5S_UNLIMITED, 2, 3},
                                          .count = {1, 1, 3},
                                          .start = {0, static_cast<hsize_t>(-1), 0},
                                          .mode = hyperslab}),
              not_written(-6031, 31, "values 2 4 4 1 1"));
    EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{1, 2, 3}));
}

TEST_F(DatasetHyperslab, writing_error_31_a_new_dataset_refuses_as_an_existing_one_does)
{
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {4}, .count = {2}, .start = {3}, .mode = hyperslab}),
              not_written(-6031, 31, "values 2 4 4 1 0"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetHyperslab, writing_error_80_a_chunk_that_hdf5_does_not_make)
{
    set_chunk_size(std::numeric_limits<int32_t>::max());
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), not_written(-2080, 80, "values 2 4 4 1 -1"));
    set_chunk_size(1);
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetHyperslab, writing_error_100_a_dataset_that_cannot_grow)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {1, 2, 3}}), done);
    EXPECT_EQ(write(numbers<int32_t>(6, 50), states(1)), not_written(-3100, 100, "values 2 4 4 1 -1"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(6));
}

TEST_F(DatasetHyperslab, writing_error_999_positions_that_wrap)
{
    EXPECT_EQ(write(numbers<int32_t>(6), states(1, static_cast<hsize_t>(-1))),
              not_written(-3999, 999, "values 2 4 4 1 -1"));
    EXPECT_EQ(write(numbers<int32_t>(6), states(1, hsize_t{1} << 62)),
              not_written(-3999, 999, "values 2 4 4 1 -1"));
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {H5S_UNLIMITED, 2},
                                          .count = {hsize_t{1} << 60, hsize_t{1} << 10},
                                          .start = {0, 0},
                                          .mode = hyperslab}),
              not_written(-3999, 999, "values 2 4 4 1 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetHyperslab, writing_error_999_no_count_or_start)
{
    const auto values = numbers<int32_t>(2);
    hsize_t extent = H5S_UNLIMITED;
    hsize_t number = 2;
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dwrite("n", values.data(), 2, 4, 4, &extent, 1, nullptr, nullptr, 1, file, 0,
                                      nullptr);
              }),
              not_written(-3999, 999, "n 2 4 4 1 -1"));
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dwrite("n", values.data(), 2, 4, 4, &extent, 1, &number, nullptr, 1, file, 0,
                                      nullptr);
              }),
              not_written(-3999, 999, "n 2 4 4 1 -1"));
}

TEST_F(DatasetHyperslab, reading_error_20_another_rank)
{
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), done);
    std::vector<int32_t> found(6);
    EXPECT_EQ(read(found, {.dims = {6}, .count = {6}, .start = {0}, .mode = hyperslab}),
              not_read(20, "values 2 4 3"));
}

TEST_F(DatasetHyperslab, reading_error_31_a_slab_beyond_the_extents)
{
    EXPECT_EQ(write(numbers<int32_t>(12), states(2)), done);
    std::vector<int32_t> found(12, -1);
    EXPECT_EQ(read(found, {.dims = {2, 2, 3}, .count = {2, 2, 3}, .start = {1, 0, 0}, .mode = hyperslab}),
              not_read(31, "values 2 4 0"));
    EXPECT_EQ(read(found, {.dims = {2, 2, 3}, .count = {1, 1, 4}, .start = {0, 0, 0}, .mode = hyperslab}),
              not_read(31, "values 2 4 2"));
    EXPECT_EQ(read(found, {.dims = {2, 2, 3},
                           .count = {1, 1, 3},
                           .start = {0, static_cast<hsize_t>(-1), 0},
                           .mode = hyperslab}),
              not_read(31, "values 2 4 1"));
    EXPECT_EQ(found, std::vector<int32_t>(12, -1));
}

}  // namespace
}  // namespace vak::test
