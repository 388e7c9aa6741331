// Whole datasets: written, rewritten, read back and refused.
#include "storage_test.h"

namespace vak::test {
namespace {

using DatasetWhole = StorageTest;

TEST_F(DatasetWhole, numbers_and_texts_come_back_as_they_were_written)
{
    const auto integers = numbers<int32_t>(12, -3);
    const auto longs = numbers<int64_t>(3, int64_t{1} << 40);
    const auto reals = numbers<float>(6, 0.5F);
    EXPECT_EQ(write(integers, {.name = "i", .dims = {3, 4}}), done);
    EXPECT_EQ(write(longs, {.name = "l", .dims = {3}}), done);
    EXPECT_EQ(write(reals, {.name = "r", .dims = {1, 2, 3}}), done);
    EXPECT_EQ(write("abc def ghi ", 4, {.name = "t", .dims = {3}}), done);
    reopen(H5F_ACC_RDONLY);
    EXPECT_EQ(layout(file, "/"), R"(
D i int32 [3,4] compact
D l int64 [3] compact
D r float32 [1,2,3] compact
D t char[4] [3] compact
)");
    std::vector<int32_t> i(12);
    std::vector<int64_t> l(3);
    std::vector<float> r(6);
    std::string t(12, '?');
    EXPECT_EQ(read(i, {.name = "i", .dims = {3, 4}}), done);
    EXPECT_EQ(read(l, {.name = "l", .dims = {3}}), done);
    EXPECT_EQ(read(r, {.name = "r", .dims = {1, 2, 3}}), done);
    EXPECT_EQ(read(t, 4, {.name = "t", .dims = {3}}), done);
    EXPECT_EQ(i, integers);
    EXPECT_EQ(l, longs);
    EXPECT_EQ(r, reals);
    EXPECT_EQ(t, "abc def ghi ");
}

TEST_F(DatasetWhole, a_scalar_has_no_extents)
{
    std::vector<int32_t> value{7};
    EXPECT_EQ(write(value, {}), done);
    EXPECT_EQ(layout(file, "/"), "\nD values int32 compact\n");
    value = {0};
    EXPECT_EQ(read(value, {}), done);
    EXPECT_EQ(value, std::vector<int32_t>{7});
    value = {8};
    EXPECT_EQ(write(value, {.mode = hyperslab}), done);
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), std::vector<int32_t>{8});
}

TEST_F(DatasetWhole, an_extent_of_0_writes_and_reads_nothing)
{
    std::vector<float> none;
    EXPECT_EQ(write(none, {.dims = {0}}), done);
    EXPECT_EQ(write(none, {.dims = {5, 0}}), done);
    EXPECT_EQ(layout(file, "/"), "\n");
    EXPECT_EQ(read(none, {.dims = {0}}), done);
    EXPECT_EQ(read(none, {.dims = {5, 0}}), done);
}

TEST_F(DatasetWhole, an_unknown_mode_means_all_of_it)
{
    const auto values = numbers<int32_t>(4);
    EXPECT_EQ(write(values, {.dims = {4}, .mode = 7}), done);
    std::vector<int32_t> found(4);
    EXPECT_EQ(read(found, {.dims = {4}, .mode = -1}), done);
    EXPECT_EQ(found, values);
}

TEST_F(DatasetWhole, rewriting_replaces_the_values_in_place)
{
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {4}}), done);
    EXPECT_EQ(write(numbers<int32_t>(4, 10), {.dims = {4}, .flags = 1}), done);
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [4] compact\n");
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(4, 10));
}

TEST_F(DatasetWhole, reals_are_stored_and_read_in_either_size)
{
    const auto singles = numbers<float>(3, 0.5F);
    const auto doubles = numbers<double>(3, 0.25);
    EXPECT_EQ(write(singles, {.name = "wider", .dims = {3}, .vak_size = 8}), done);
    EXPECT_EQ(write(doubles, {.name = "narrower", .dims = {3}, .vak_size = 4}), done);
    EXPECT_EQ(layout(file, "/"), "\nD wider float64 [3] compact\nD narrower float32 [3] compact\n");
    std::vector<float> narrow(3);
    std::vector<double> wide(3);
    EXPECT_EQ(read(narrow, {.name = "wider", .dims = {3}}), done);
    EXPECT_EQ(read(wide, {.name = "narrower", .dims = {3}}), done);
    EXPECT_EQ(narrow, singles);
    EXPECT_EQ(wide, doubles);
}

TEST_F(DatasetWhole, integers_are_widened)
{
    EXPECT_EQ(write(std::vector<int32_t>{-1, 2}, {.dims = {2}, .vak_size = 8}), done);
    EXPECT_EQ(dataset_values<int64_t>(file, "values"), (std::vector<int64_t>{-1, 2}));
    std::vector<int64_t> wide(2);
    EXPECT_EQ(write(std::vector<int32_t>{3, -4}, {.name = "narrow", .dims = {2}}), done);
    EXPECT_EQ(read(wide, {.name = "narrow", .dims = {2}}), done);
    EXPECT_EQ(wide, (std::vector<int64_t>{3, -4}));
}

TEST_F(DatasetWhole, texts_keep_their_places_in_fields_of_another_length)
{
    EXPECT_EQ(write("abcABC", 3, {.dims = {2}, .vak_size = 5}), done);
    EXPECT_EQ(dataset_texts(file, "values"), (std::vector<std::string>{"abc  ", "ABC  "}));
    std::string found(14, '?');
    EXPECT_EQ(read(found, 7, {.dims = {2}}), done);
    EXPECT_EQ(found, "abc    ABC    ");
    EXPECT_EQ(write("xyXY", 2, {.dims = {2}}), done);
    EXPECT_EQ(dataset_texts(file, "values"), (std::vector<std::string>{"xy   ", "XY   "}));
}

TEST_F(DatasetWhole, texts_are_stored_as_given_zero_bytes_included)
{
    const std::string text("a\0b\0\0 \0\0", 8);
    EXPECT_EQ(write(text, 4, {.dims = {2}}), done);
    std::string found(8, '?');
    EXPECT_EQ(read(found, 4, {.dims = {2}}), done);
    EXPECT_EQ(found, text);
}

TEST_F(DatasetWhole, a_single_value_of_an_array_is_its_first)
{
    EXPECT_EQ(write(numbers<int32_t>(1000, 11), {.dims = {10, 100}}), done);
    std::vector<int32_t> found{0, -1};
    EXPECT_EQ(read(found, {}), done);
    EXPECT_EQ(found, (std::vector<int32_t>{11, -1}));
    EXPECT_EQ(write("abcABC", 3, {.name = "t", .dims = {2}}), done);
    std::string text(6, '?');
    EXPECT_EQ(read(text, 4, {.name = "t"}), done);
    EXPECT_EQ(text, "abc ??");
}

TEST_F(DatasetWhole, without_a_place_for_the_values_the_field_is_only_checked)
{
    EXPECT_EQ(write(numbers<int32_t>(8), {.dims = {8}, .flags = 9, .params = {0, 4}}), done);
    EXPECT_EQ(read_values(nullptr, 2, 4, {.dims = {8}}), done);
    EXPECT_EQ(found_flags, 9U);
    EXPECT_EQ(read_values(nullptr, 2, 4, {.dims = {7}}).code, -6030);
}

TEST_F(DatasetWhole, a_new_object_is_not_asked_for_the_name)
{
    const std::vector<int32_t> values{1};
    hsize_t extent = 1;
    EXPECT_EQ(outcome([&] {
                  SharedIds ids;
                  const Location location(file, true, &ids);
                  const std::array<uint32_t, 2> params{};
                  return VAK_H5Dwrite("a", values.data(), 2, 4, 4, &extent, 1, nullptr, nullptr, 0, location,
                                      0, params.data()) +
                         VAK_H5Dwrite("b", values.data(), 2, 4, 4, &extent, 1, nullptr, nullptr, 0, location,
                                      0, params.data());
              }),
              done);
    EXPECT_EQ(layout(file, "/"), "\nD a int32 [1] compact\nD b int32 [1] compact\n");
}

// ---- Refused on writing ----

TEST_F(DatasetWhole, writing_error_0_no_extents_given)
{
    const int32_t value = 1;
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dwrite("n", &value, 2, 4, 4, nullptr, 1, nullptr, nullptr, 0, file, 0,
                                      nullptr);
              }),
              not_written(-3000, 0, "n 2 4 4 0 -3000"));
}

TEST_F(DatasetWhole, writing_error_1_an_unlimited_extent_needs_a_part)
{
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {H5S_UNLIMITED, 2}}),
              not_written(-3000, 1, "values 2 4 4 0 -3000"));
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {H5S_UNLIMITED, 2}, .mode = 5}),
              not_written(-3000, 1, "values 2 4 4 5 -3000"));
}

TEST_F(DatasetWhole, writing_error_2_unknown_type_in_memory)
{
    Outcome expected = not_written(-3001, 2, "values 3 2 4 0 -1");
    expected.text = "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: 3 2\n" + expected.text;
    Access access{.dims = {2}, .vak_size = 4};
    EXPECT_EQ(write_values("", 3, 2, access), expected);
}

TEST_F(DatasetWhole, writing_error_3_unknown_stored_type)
{
    Outcome expected = not_written(-3002, 3, "values 2 4 16 0 -1");
    expected.text = "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: 2 16\n" + expected.text;
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}, .vak_size = 16}), expected);
}

TEST_F(DatasetWhole, writing_error_4_integers_and_texts_are_not_narrowed)
{
    EXPECT_EQ(write(numbers<int64_t>(2), {.dims = {2}, .vak_size = 4}),
              not_written(-3003, 4, "values 2 8 4 0 0"));
    EXPECT_EQ(write("abcd", 4, {.dims = {1}, .vak_size = 3}), not_written(-3003, 4, "values 1 4 3 0 0"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DatasetWhole, writing_error_10_another_class_leaves_the_values)
{
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}}), done);
    EXPECT_EQ(write(numbers<float>(2, 5), {.dims = {2}}), not_written(-3010, 10, "values 3 4 4 0 0"));
    EXPECT_EQ(write("ab", 1, {.dims = {2}}), not_written(-3010, 10, "values 1 1 1 0 0"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(2));
}

TEST_F(DatasetWhole, writing_error_10_something_else_under_the_name)
{
    H5Gclose(H5Gcreate2(file, "group", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    H5Lcreate_soft("/nowhere", file, "dangling", H5P_DEFAULT, H5P_DEFAULT);
    const auto values = numbers<int32_t>(2);
    EXPECT_EQ(write(values, {.name = "group", .dims = {2}}), not_written(-3010, 10, "group 2 4 4 0 -1"));
    EXPECT_EQ(write(values, {.name = "dangling", .dims = {2}}),
              not_written(-3010, 10, "dangling 2 4 4 0 -1"));
}

TEST_F(DatasetWhole, writing_error_20_another_rank)
{
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {4}}), done);
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {2, 2}}), not_written(-3020, 20, "values 2 4 4 0 1"));
    EXPECT_EQ(write(numbers<int32_t>(1), {}), not_written(-3020, 20, "values 2 4 4 0 1"));
}

TEST_F(DatasetWhole, writing_error_30_another_extent_writes_nothing)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {2, 3}}), done);
    EXPECT_EQ(write(numbers<int32_t>(8, 50), {.dims = {2, 4}}), not_written(-6030, 30, "values 2 4 4 0 1"));
    EXPECT_EQ(write(numbers<int32_t>(3, 50), {.dims = {1, 3}}), not_written(-6030, 30, "values 2 4 4 0 0"));
    EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(6));
}

TEST_F(DatasetWhole, writing_error_40_a_rank_that_no_space_can_have)
{
    EXPECT_EQ(write(numbers<int32_t>(1), {.dims = Dims(32, 1)}), not_written(-2040, 40, "values 2 4 4 0 -1"));
    const int32_t value = 1;
    hsize_t extent = 1;
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dwrite("n", &value, 2, 4, 4, &extent, -1, nullptr, nullptr, 0, file, 0,
                                      nullptr);
              }),
              not_written(-2040, 40, "n 2 4 4 0 -1"));
    EXPECT_EQ(write(numbers<int32_t>(1), {.dims = Dims(31, 1)}), done);
}

TEST_F(DatasetWhole, writing_error_50_a_text_length_that_the_file_cannot_say)
{
    EXPECT_EQ(write("ab", 1, {.dims = {2}, .vak_size = size_t{1} << 32}),
              not_written(-2050, 50, "values 1 1 4294967296 0 -1"));
}

TEST_F(DatasetWhole, writing_error_190_a_file_that_is_only_read)
{
    reopen(H5F_ACC_RDONLY);
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}}), not_written(-2190, 190, "values 2 4 4 0 -1"));
}

TEST_F(DatasetWhole, writing_error_999_existing_values_in_a_file_that_is_only_read)
{
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}}), done);
    reopen(H5F_ACC_RDONLY);
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}}), not_written(-3999, 999, "values 2 4 4 0 -1"));
}

TEST_F(DatasetWhole, writing_error_999_no_data_or_an_impossible_number_of_it)
{
    const auto values = numbers<int32_t>(2);
    Access access{.dims = {2}};
    EXPECT_EQ(write_values(nullptr, 2, 4, access), not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(write(values, {.dims = {hsize_t{1} << 62}}), not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(write(values, {.dims = {hsize_t{1} << 32, hsize_t{1} << 32}}),
              not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(write(values, {.dims = {static_cast<hsize_t>(-2)}}),
              not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

// ---- Refused on reading ----

TEST_F(DatasetWhole, reading_error_1_unknown_type_in_memory)
{
    Outcome expected = not_read(1, "values 2 1 -1");
    expected.text = "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: 2 1\n" + expected.text;
    char place[2];
    EXPECT_EQ(read_values(place, 2, 1, {.dims = {2}}), expected);
}

TEST_F(DatasetWhole, reading_error_2_no_such_dataset)
{
    H5Gclose(H5Gcreate2(file, "group", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    H5Lcreate_soft("/nowhere", file, "dangling", H5P_DEFAULT, H5P_DEFAULT);
    std::vector<int32_t> found(2);
    EXPECT_EQ(read(found, {.dims = {2}}), not_read(2, "values 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "group", .dims = {2}}), not_read(2, "group 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "dangling", .dims = {2}}), not_read(2, "dangling 2 4 -1"));
}

TEST_F(DatasetWhole, reading_error_3_another_class)
{
    EXPECT_EQ(write(numbers<int32_t>(2), {.dims = {2}}), done);
    std::vector<float> found(2);
    EXPECT_EQ(read(found, {.dims = {2}}), not_read(3, "values 3 4 0"));
}

TEST_F(DatasetWhole, reading_error_10_a_text_longer_than_the_callers)
{
    EXPECT_EQ(write("abcABC", 3, {.dims = {2}}), done);
    std::string found(4, '?');
    EXPECT_EQ(read(found, 2, {.dims = {2}}), not_read(10, "values 1 2 3"));
    EXPECT_EQ(found, "????");
}

TEST_F(DatasetWhole, reading_error_11_a_stored_integer_wider_than_the_callers)
{
    EXPECT_EQ(write(numbers<int64_t>(2), {.dims = {2}}), done);
    std::vector<int32_t> found(2);
    EXPECT_EQ(read(found, {.dims = {2}}), not_read(11, "values 2 4 8"));
}

TEST_F(DatasetWhole, reading_error_20_another_rank)
{
    EXPECT_EQ(write(numbers<int32_t>(4), {.dims = {2, 2}}), done);
    std::vector<int32_t> found(4);
    EXPECT_EQ(read(found, {.dims = {4}}), not_read(20, "values 2 4 2"));
    EXPECT_EQ(read(found, {.dims = Dims(32, 1)}), not_read(20, "values 2 4 -1"));
}

TEST_F(DatasetWhole, reading_error_30_another_extent_names_the_dimension)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {2, 3}}), done);
    std::vector<int32_t> found(6, -1);
    EXPECT_EQ(read(found, {.dims = {2, 2}}), not_read(30, "values 2 4 1"));
    EXPECT_EQ(read(found, {.dims = {1, 3}}), not_read(30, "values 2 4 0"));
    EXPECT_EQ(found, std::vector<int32_t>(6, -1));
}

TEST_F(DatasetWhole, reading_error_999_no_extents_given)
{
    EXPECT_EQ(write(numbers<int32_t>(6), {.dims = {6}}), done);
    std::vector<int32_t> found(6);
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Dread("values", found.data(), 2, 4, nullptr, 1, nullptr, nullptr, 0, file,
                                     nullptr, nullptr);
              }),
              not_read(999, "values 2 4 -1"));
}

}  // namespace
}  // namespace vak::test
