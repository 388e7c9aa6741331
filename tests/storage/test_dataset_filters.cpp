// Filters of new datasets, and what is reported of those found.
#include <cmath>
#include <fstream>

#include "storage_test.h"

namespace vak::test {
namespace {

using DatasetFilters = StorageTest;

TEST_F(DatasetFilters, seven_elements_are_not_filtered_and_eight_are)
{
    EXPECT_EQ(write(numbers<int32_t>(7), {.name = "seven", .dims = {7}, .flags = 1, .params = {0, 6}}), done);
    EXPECT_EQ(write(numbers<int32_t>(8), {.name = "eight", .dims = {8}, .flags = 1, .params = {0, 6}}), done);
    EXPECT_EQ(layout(file, "/"), "\nD seven int32 [7] compact\nD eight int32 [8] chunked(8) deflate(6)\n");
}

TEST_F(DatasetFilters, parameters_that_are_not_given_are_0_and_those_not_wanted_are_not_told)
{
    const auto values = numbers<int32_t>(8);
    hsize_t dims[] = {8};
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dwrite("i", values.data(), integer_type, 4, 4, dims, 1, nullptr, nullptr,
                                      whole_dataset, file, 1, nullptr);
              }),
              done);
    EXPECT_EQ(layout(file, "/"), "\nD i int32 [8] chunked(8) deflate(0)\n");
    std::vector<int32_t> found(8, -1);
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dread("i", found.data(), integer_type, 4, dims, 1, nullptr, nullptr,
                                     whole_dataset, file, nullptr, nullptr);
              }),
              done);
    EXPECT_EQ(found, values);
}

TEST_F(DatasetFilters, each_type_has_its_own_bits)
{
    constexpr uint32_t all = 255;
    EXPECT_EQ(write(numbers<int32_t>(8), {.name = "i", .dims = {8}, .flags = all, .params = {2, 3}}), done);
    EXPECT_EQ(write(numbers<float>(8), {.name = "r", .dims = {8}, .flags = all, .params = {2, 3}}), done);
    EXPECT_EQ(write("abcdefgh", 1, {.name = "t", .dims = {8}, .flags = all, .params = {2, 3}}), done);
    EXPECT_EQ(layout(file, "/"), R"(
D i int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(3) fill=10000
D r float32 [8] chunked(8) scaleoffset(float,2) shuffle deflate(3) fill=10000
D t char[1] [8] chunked(8) shuffle deflate(3)
)");
}

TEST_F(DatasetFilters, the_fill_value_has_the_stored_type)
{
    EXPECT_EQ(
        write(numbers<float>(8), {.name = "r", .dims = {8}, .flags = 128, .params = {1, 0}, .vak_size = 8}),
        done);
    EXPECT_EQ(write(numbers<int32_t>(8), {.name = "i", .dims = {8}, .flags = 64, .vak_size = 8}), done);
    EXPECT_EQ(layout(file, "/"), R"(
D r float64 [8] chunked(8) scaleoffset(float,1) fill=10000
D i int64 [8] chunked(8) scaleoffset(int,0) fill=10000
)");
}

TEST_F(DatasetFilters, bits_of_other_types_leave_a_dataset_compact)
{
    EXPECT_EQ(write(numbers<int32_t>(8), {.dims = {8}, .flags = 2 | 4 | 16 | 32 | 128, .params = {300, 12}}),
              done);
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [8] compact\n");
}

TEST_F(DatasetFilters, a_growing_dataset_counts_its_first_extents)
{
    Access access{.name = "few",
                  .dims = {H5S_UNLIMITED, 7},
                  .count = {1, 7},
                  .start = {0, 0},
                  .mode = hyperslab,
                  .flags = 8};
    Access skipping = access;
    skipping.name = "skipping";
    skipping.start[0] = 1;
    EXPECT_EQ(write(numbers<int32_t>(7), access), done);
    EXPECT_EQ(write(numbers<int32_t>(7), skipping), done);
    EXPECT_EQ(layout(file, "/"), R"(
D few int32 [unlimited(1),7] chunked(1,7)
D skipping int32 [unlimited(2),7] chunked(1,7) shuffle
)");
}

struct Case {
    const char* name;
    uint32_t flags;
};

class EveryFilter : public StorageTest, public testing::WithParamInterface<Case> {};

TEST_P(EveryFilter, integers_come_back_and_their_filters_are_reported)
{
    auto values = numbers<int32_t>(1000, -500);
    values[17] = 123456789;
    const uint32_t flags = GetParam().flags;
    EXPECT_EQ(write(values, {.dims = {10, 100}, .flags = flags, .params = {3, 7}}), done);
    std::vector<int32_t> found(1000);
    EXPECT_EQ(read(found, {.dims = {10, 100}}), done);
    EXPECT_EQ(found, values);
    EXPECT_EQ(found_flags, flags & (1 | 8 | 64));
    EXPECT_EQ(found_params, (std::array<int32_t, 2>{0, (flags & 1) != 0 ? 7 : 0}));
}

TEST_P(EveryFilter, reals_come_back_within_half_a_unit_and_their_filters_are_reported)
{
    std::vector<double> values(1000);
    for (size_t i = 0; i < values.size(); ++i) values[i] = std::sin(static_cast<double>(i)) * 100;
    const uint32_t flags = GetParam().flags;
    EXPECT_EQ(write(values, {.dims = {1000}, .flags = flags, .params = {3, 7}}), done);
    std::vector<double> found(1000);
    EXPECT_EQ(read(found, {.dims = {1000}}), done);
    const double tolerance = (flags & 128) != 0 ? 0.5001e-3 : 0;
    for (size_t i = 0; i < values.size(); ++i) EXPECT_NEAR(found[i], values[i], tolerance);
    EXPECT_EQ(found_flags, flags & (2 | 16 | 128));
    EXPECT_EQ(found_params, (std::array<int32_t, 2>{(flags & 128) != 0 ? 3 : 0, (flags & 2) != 0 ? 7 : 0}));
}

TEST_P(EveryFilter, texts_come_back_and_their_filters_are_reported)
{
    std::string values;
    for (int i = 0; i < 100; ++i) values += padded("line " + std::to_string(i), 12);
    const uint32_t flags = GetParam().flags;
    EXPECT_EQ(write(values, 12, {.dims = {100}, .flags = flags, .params = {3, 7}}), done);
    std::string found(values.size(), '?');
    EXPECT_EQ(read(found, 12, {.dims = {100}}), done);
    EXPECT_EQ(found, values);
    EXPECT_EQ(found_flags, flags & (4 | 32));
    EXPECT_EQ(found_params, (std::array<int32_t, 2>{0, (flags & 4) != 0 ? 7 : 0}));
}

INSTANTIATE_TEST_SUITE_P(All, EveryFilter,
                         testing::Values(Case{"none", 0}, Case{"deflate", 1 | 2 | 4},
                                         Case{"shuffle", 8 | 16 | 32}, Case{"shuffle_deflate", 63},
                                         Case{"scale_offset", 192}, Case{"scale_offset_deflate", 192 | 7},
                                         Case{"all", 255}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(DatasetFilters, integers_written_with_64_8_1_report_73)
{
    EXPECT_EQ(write(numbers<int32_t>(20), {.dims = {20}, .flags = 64 | 8 | 1, .params = {0, 9}}), done);
    std::vector<int32_t> found(20);
    EXPECT_EQ(read(found, {.dims = {20}}), done);
    EXPECT_EQ(found_flags, 73U);
}

TEST_F(DatasetFilters, reports_are_added_to_what_was_found_before)
{
    EXPECT_EQ(write(numbers<int32_t>(20), {.name = "i", .dims = {20}, .flags = 1, .params = {0, 2}}), done);
    EXPECT_EQ(write(numbers<float>(20), {.name = "r", .dims = {20}, .flags = 128 | 2, .params = {4, 1}}),
              done);
    std::vector<int32_t> i(20);
    std::vector<float> r(20);
    const hsize_t extent = 20;
    uint32_t flags = 32;
    std::array<int32_t, 2> params{5, 0};
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dread("i", i.data(), 2, 4, &extent, 1, nullptr, nullptr, 0, file, &flags,
                                     params.data()) +
                         VAK_H5Dread("r", r.data(), 3, 4, &extent, 1, nullptr, nullptr, 0, file, &flags,
                                     params.data());
              }),
              done);
    EXPECT_EQ(flags, 32U | 1U | 2U | 128U);
    EXPECT_EQ(params, (std::array<int32_t, 2>{5, 2}));
}

TEST_F(DatasetFilters, the_limits_of_level_and_factor_are_accepted)
{
    EXPECT_EQ(write(numbers<float>(8), {.name = "zero", .dims = {8}, .flags = 2 | 128, .params = {0, 0}}),
              done);
    EXPECT_EQ(
        write(std::vector<float>(8, 0), {.name = "most", .dims = {8}, .flags = 2 | 128, .params = {256, 9}}),
        done);
    EXPECT_EQ(layout(file, "/"), R"(
D zero float32 [8] chunked(8) scaleoffset(float,0) deflate(0) fill=10000
D most float32 [8] chunked(8) scaleoffset(float,256) deflate(9) fill=10000
)");
}

TEST_F(DatasetFilters, fletcher32_of_another_writer_is_read_and_not_reported)
{
    const auto values = numbers<int32_t>(20);
    const hsize_t extent = 20;
    const Space space(H5Screate_simple(1, &extent, nullptr));
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(list.get(), 1, &extent);
    H5Pset_shuffle(list.get());
    H5Pset_fletcher32(list.get());
    Dataset dataset(
        H5Dcreate2(file, "values", H5T_STD_I32BE, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
    H5Dwrite(dataset.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    dataset.close();
    std::vector<int32_t> found(20);
    EXPECT_EQ(read(found, {.dims = {20}}), done);
    EXPECT_EQ(found, values);
    EXPECT_EQ(found_flags, 8U);
}

TEST_F(DatasetFilters, writing_error_130_a_scale_factor_above_256)
{
    EXPECT_EQ(write(numbers<float>(8), {.dims = {8}, .flags = 128, .params = {257, 0}}),
              not_written(-2130, 130, "values 3 4 4 0 257"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetFilters, writing_error_170_a_deflate_level_above_9)
{
    EXPECT_EQ(write(numbers<float>(8), {.dims = {8}, .flags = 2, .params = {0, 10}}),
              not_written(-2170, 170, "values 3 4 4 0 10"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

// A dataset of 8 numbers with a scale-offset filter of that kind, as no sound writer makes it.
void make_odd_scale_offset(hid_t file, hid_t type, H5Z_SO_scale_type_t kind)
{
    const hsize_t extent = 8;
    const Space space(H5Screate_simple(1, &extent, nullptr));
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(list.get(), 1, &extent);
    H5Pset_scaleoffset(list.get(), kind, 3);
    Dataset(H5Dcreate2(file, "values", type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
}

TEST_F(DatasetFilters, reading_error_40_integers_scaled_as_reals)
{
    make_odd_scale_offset(file, H5T_STD_I32LE, H5Z_SO_FLOAT_DSCALE);
    std::vector<int32_t> found(8);
    EXPECT_EQ(read(found, {.dims = {8}}), not_read(40, "values 2 4 0"));
}

TEST_F(DatasetFilters, reading_error_50_reals_scaled_as_integers)
{
    make_odd_scale_offset(file, H5T_IEEE_F32LE, H5Z_SO_INT);
    std::vector<float> found(8);
    EXPECT_EQ(read(found, {.dims = {8}}), not_read(50, "values 3 4 2"));
}

TEST_F(DatasetFilters, reading_error_50_reals_with_a_variable_exponent)
{
    make_odd_scale_offset(file, H5T_IEEE_F32LE, H5Z_SO_FLOAT_ESCALE);
    std::vector<float> found(8);
    EXPECT_EQ(read(found, {.dims = {8}}), not_read(50, "values 3 4 1"));
}

// Texts of a dataset whose only filter has a number that nobody uses, 305.
void make_foreign_filter(hid_t file)
{
    const hsize_t extent = 8;
    const Space space(H5Screate_simple(1, &extent, nullptr));
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(list.get(), 1, &extent);
    const std::array<unsigned, 2> values{0xA1B2C3D4, 0x51627384};
    H5Pset_filter(list.get(), 305, H5Z_FLAG_OPTIONAL, values.size(), values.data());
    SharedIds ids;
    Dataset(H5Dcreate2(file, "values", ids.text(4), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
}

TEST_F(DatasetFilters, reading_error_60_texts_with_scale_offset)
{
    make_foreign_filter(file);
    const std::string name = close_file();
    // HDF5 makes no such dataset, so the filter's number is changed in the file.
    std::fstream bytes(name, std::ios::in | std::ios::out | std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(bytes)), std::istreambuf_iterator<char>());
    const size_t values = all.find("\xD4\xC3\xB2\xA1");
    ASSERT_NE(values, std::string::npos);
    const size_t number = all.rfind(std::string("\x31\x01", 2), values);
    ASSERT_LT(values - number, 16U);
    bytes.seekp(static_cast<std::streamoff>(number));
    bytes.put(H5Z_FILTER_SCALEOFFSET);
    bytes.put(0);
    bytes.close();
    file = H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    std::string found(32, '?');
    EXPECT_EQ(read(found, 4, {.dims = {8}}),
              not_read(60, "values 1 4 " + std::to_string(static_cast<int>(0xA1B2C3D4))));
}

TEST_F(DatasetFilters, reading_error_999_a_filter_that_hdf5_does_not_bring)
{
    make_foreign_filter(file);
    std::string found(32, '?');
    EXPECT_EQ(read(found, 4, {.dims = {8}}), not_read(999, "values 1 4 -1"));
    EXPECT_EQ(write(std::string(32, 'a'), 4, {.dims = {8}}), not_written(-3999, 999, "values 1 4 4 0 -1"));
}

}  // namespace
}  // namespace vak::test
