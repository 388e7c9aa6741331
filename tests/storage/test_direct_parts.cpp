// Slabs and points in scaled datasets: nothing beside them is rounded again.
#include <algorithm>
#include <cmath>

#include "direct_chunks_test.h"

namespace vak::test {
namespace {

TEST_F(DirectChunks, parts_of_a_scaled_dataset_never_round_what_stands_beside_them)
{
    auto values = random_reals(1000, 9);
    const Access access{.dims = {1000}, .flags = scaled | deflated, .params = {3, 6}};
    EXPECT_EQ(write(values, Access(access)), done);
    auto expected = plainly_read<double>(1000);
    for (hsize_t round = 0; round < 20; ++round) {
        const auto part = random_reals(10, 1e3);
        const hsize_t start = round * 37;
        Access slab{.dims = {1000}, .count = {10}, .start = {start}, .mode = hyperslab};
        EXPECT_EQ(write(part, slab), done);
        std::copy(part.begin(), part.end(), expected.begin() + static_cast<std::ptrdiff_t>(start));
    }
    EXPECT_EQ(plainly_read<double>(1000), expected);
    EXPECT_EQ(read_again<double>(access, 1000), expected);
}

TEST_F(DirectChunks, a_scaled_dataset_that_begins_with_a_part_is_fill_values_elsewhere)
{
    const std::vector<double> part{1.23456, 7, HUGE_VAL, -2};
    EXPECT_EQ(write(part, {.dims = {20, 10},
                           .count = {2, 2},
                           .start = {5, 3},
                           .mode = hyperslab,
                           .flags = scaled,
                           .params = {2, 0}}),
              done);
    std::vector<double> expected(200, 10000);
    expected[53] = part[0];
    expected[54] = part[1];
    expected[63] = part[2];
    expected[64] = part[3];
    EXPECT_EQ(plainly_read<double>(200), expected);
    EXPECT_EQ(read_again<double>({.dims = {20, 10}}, 200), expected);
}

TEST_F(DirectChunks, points_of_a_scaled_dataset_reach_it_unharmed_and_the_last_of_two_counts)
{
    EXPECT_EQ(write(std::vector<float>(1000, 1.5F), {.dims = {10, 100}, .flags = scaled, .params = {2, 0}}),
              done);
    const std::vector<float> points{HUGE_VALF, 2.25F, 3.125F, 4.5F};
    const Dims places{9, 99, 0, 0, 5, 50, 0, 0};
    EXPECT_EQ(write(points, {.dims = {10, 100}, .count = {4}, .start = places, .mode = point_list}), done);
    std::vector<float> expected(1000, 1.5F);
    expected[999] = HUGE_VALF;
    expected[550] = 3.125F;
    expected[0] = 4.5F;
    EXPECT_EQ(plainly_read<float>(1000), expected);
    EXPECT_EQ(read_again<float>({.dims = {10, 100}, .count = {4}, .start = places, .mode = point_list}, 4),
              (std::vector<float>{HUGE_VALF, 4.5F, 3.125F, 4.5F}));
}

TEST_F(DirectChunks, of_many_points_at_one_place_the_last_counts)
{
    Dims places;
    for (hsize_t i = 0; i < 300; ++i) places.push_back(i * 7 % 10);
    Access a{.dims = {20}, .count = {300}, .start = places, .mode = point_list, .flags = scaled};
    EXPECT_EQ(write(numbers<int32_t>(300), a), done);
    auto expected = std::vector<int32_t>(20, 10000);
    for (size_t i = 0; i < 300; ++i) expected[places[i]] = static_cast<int32_t>(i);
    EXPECT_EQ(plainly_read<int32_t>(20), expected);
}

TEST_F(DirectChunks, points_in_many_chunks_find_their_places_in_any_order)
{
    Access a{.dims = {H5S_UNLIMITED, 3000}, .count = {3, 3000}, .start = {0, 0}, .mode = hyperslab};
    a.flags = scaled;
    a.params = {2, 0};
    EXPECT_EQ(write(spread<double>(9000), a), done);
    const auto stored = plainly_read<double>(9000);
    const Access points{
        .dims = {3, 3000}, .count = {4}, .start = {2, 2500, 0, 0, 1, 1999, 1, 2000}, .mode = point_list};
    EXPECT_EQ(read_again<double>(points, 4),
              (std::vector<double>{stored[8500], stored[0], stored[4999], stored[5000]}));
}

}  // namespace
}  // namespace vak::test
