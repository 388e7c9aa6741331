// Lists of points of datasets.
#include "storage_test.h"

namespace vak::test {
namespace {

using DatasetPoints = StorageTest;

TEST_F(DatasetPoints, points_are_written_in_the_order_given)
{
    EXPECT_EQ(write(std::vector<int32_t>(6, 0), {.dims = {2, 3}}), done);
    EXPECT_EQ(write(std::vector<int32_t>{7, 8, 9},
                    {.dims = {2, 3}, .count = {3}, .start = {1, 2, 0, 0, 0, 1}, .mode = point_list}),
              done);
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), (std::vector<int32_t>{8, 9, 0, 0, 0, 7}));
}

TEST_F(DatasetPoints, points_are_read_in_the_order_given)
{
    EXPECT_EQ(write(numbers<float>(6), {.dims = {2, 3}}), done);
    std::vector<float> found(4);
    EXPECT_EQ(
        read(found, {.dims = {2, 3}, .count = {4}, .start = {1, 2, 0, 0, 1, 0, 0, 0}, .mode = point_list}),
        done);
    EXPECT_EQ(found, (std::vector<float>{5, 0, 3, 0}));
}

TEST_F(DatasetPoints, points_may_make_a_dataset_of_fixed_extents)
{
    EXPECT_EQ(write(std::vector<int32_t>{5}, {.dims = {4}, .count = {1}, .start = {2}, .mode = point_list}),
              done);
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), (std::vector<int32_t>{0, 0, 5, 0}));
}

TEST_F(DatasetPoints, points_of_filtered_chunks_are_found)
{
    EXPECT_EQ(write(numbers<int32_t>(40), {.dims = {H5S_UNLIMITED, 8},
                                           .count = {5, 8},
                                           .start = {0, 0},
                                           .mode = hyperslab,
                                           .flags = 9,
                                           .params = {0, 6}}),
              done);
    std::vector<int32_t> found(3);
    EXPECT_EQ(read(found, {.dims = {5, 8}, .count = {3}, .start = {4, 7, 0, 0, 4, 0}, .mode = point_list}),
              done);
    EXPECT_EQ(found, (std::vector<int32_t>{39, 0, 32}));
}

TEST_F(DatasetPoints, no_points_do_nothing)
{
    std::vector<int32_t> none;
    EXPECT_EQ(write(none, {.dims = {4}, .count = {0}, .start = {0}, .mode = point_list}), done);
    EXPECT_EQ(write(none, {.dims = {H5S_UNLIMITED}, .count = {0}, .start = {0}, .mode = point_list}), done);
    EXPECT_EQ(layout(file, "/"), "\n");
    EXPECT_EQ(read(none, {.dims = {4}, .count = {0}, .start = {0}, .mode = point_list}), done);
}

// The extent of a growing axis is the largest coordinate, so that this coordinate itself lies behind it.
TEST_F(DatasetPoints, a_new_growing_dataset_has_the_largest_coordinate_as_extent_and_refuses_the_point)
{
    Access access{.dims = {H5S_UNLIMITED, 2}, .count = {2}, .start = {3, 0, 1, 1}, .mode = point_list};
    EXPECT_EQ(write(std::vector<int32_t>{1, 2}, access), not_written(-3999, 999, "values 2 4 4 2 -1"));
    EXPECT_EQ(access.dims, (Dims{3, 2}));
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [unlimited(3),2] chunked(1,2)\n");
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), std::vector<int32_t>(6, 0));
}

TEST_F(DatasetPoints, points_behind_the_present_end_grow_the_dataset_and_are_refused)
{
    EXPECT_EQ(write(numbers<int32_t>(4, 1),
                    {.dims = {H5S_UNLIMITED, 2}, .count = {2, 2}, .start = {0, 0}, .mode = hyperslab}),
              done);
    Access access{.dims = {H5S_UNLIMITED, 2}, .count = {2}, .start = {0, 0, 2, 1}, .mode = point_list};
    EXPECT_EQ(write(std::vector<int32_t>{8, 9}, access), not_written(-3999, 999, "values 2 4 4 2 -1"));
    EXPECT_EQ(access.start, (Dims{2, 0, 4, 1}));
    EXPECT_EQ(access.dims, (Dims{4, 2}));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), (std::vector<int32_t>{1, 2, 3, 4, 0, 0, 0, 0}));
}

TEST_F(DatasetPoints, the_first_state_is_never_overwritten_by_a_point_at_the_extent)
{
    EXPECT_EQ(write(numbers<int32_t>(2, 1),
                    {.dims = {H5S_UNLIMITED, 2}, .count = {1, 2}, .start = {0, 0}, .mode = hyperslab}),
              done);
    EXPECT_EQ(write(std::vector<int32_t>{9},
                    {.dims = {H5S_UNLIMITED, 2}, .count = {1}, .start = {0, 0}, .mode = point_list}),
              not_written(-3999, 999, "values 2 4 4 2 -1"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(2, 1));
}

TEST_F(DatasetPoints, extents_given_too_small_never_shrink_the_dataset)
{
    EXPECT_EQ(write(numbers<int32_t>(4, 1),
                    {.dims = {H5S_UNLIMITED, 2}, .count = {2, 2}, .start = {0, 0}, .mode = hyperslab}),
              done);
    EXPECT_EQ(write(std::vector<int32_t>{9},
                    {.dims = {H5S_UNLIMITED, 1}, .count = {1}, .start = {1, 0}, .mode = point_list})
                  .code,
              -3999);
    EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{3, 2}));
}

TEST_F(DatasetPoints, writing_error_32_a_point_beyond_fixed_extents)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {2, 3}}), done);
    EXPECT_EQ(write(std::vector<int32_t>{7, 8},
                    {.dims = {2, 3}, .count = {2}, .start = {0, 0, 0, 3}, .mode = point_list}),
              not_written(-6032, 32, "values 2 4 4 2 1"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(6));
}

TEST_F(DatasetPoints, writing_error_32_a_new_dataset_refuses_as_an_existing_one_does)
{
    EXPECT_EQ(write(std::vector<int32_t>{7}, {.dims = {4}, .count = {1}, .start = {4}, .mode = point_list}),
              not_written(-6032, 32, "values 2 4 4 2 0"));
    EXPECT_EQ(write(std::vector<int32_t>{7},
                    {.dims = {H5S_UNLIMITED, 4}, .count = {1}, .start = {0, 4}, .mode = point_list}),
              not_written(-6032, 32, "values 2 4 4 2 1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetPoints, writing_error_999_coordinates_that_wrap)
{
    EXPECT_EQ(
        write(
            std::vector<int32_t>{7},
            {.dims = {H5S_UNLIMITED}, .count = {1}, .start = {static_cast<hsize_t>(-1)}, .mode = point_list}),
        not_written(-3999, 999, "values 2 4 4 2 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetPoints, reading_error_32_a_point_beyond_the_extents)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {2, 3}}), done);
    std::vector<int32_t> found(2, -1);
    EXPECT_EQ(read(found, {.dims = {2, 3}, .count = {2}, .start = {0, 0, 2, 0}, .mode = point_list}),
              not_read(32, "values 2 4 0"));
    EXPECT_EQ(found, std::vector<int32_t>(2, -1));
}

TEST_F(DatasetPoints, reading_error_999_no_coordinates)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {6}}), done);
    std::vector<int32_t> found(2);
    hsize_t extent = 6;
    hsize_t number = 2;
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dread("values", found.data(), 2, 4, &extent, 1, &number, nullptr, 2, file,
                                     nullptr, nullptr);
              }),
              not_read(999, "values 2 4 -1"));
}

}  // namespace
}  // namespace vak::test
