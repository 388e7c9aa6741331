// Attributes as they are created, rewritten and refused.
#include "storage_test.h"

namespace vak::test {
namespace {

using AttributeWrite = StorageTest;

Outcome failed(int32_t number, const std::string& values)
{
    return {-1000 - number, "VAK INTERNAL ERROR (" + std::to_string(number) +
                                ") in VAK_H5Awrite - name, vak_type, data_size, vak_size, error: " + values +
                                "\n"};
}

TEST_F(AttributeWrite, scalars_and_arrays_are_stored_little_endian_and_blank_padded)
{
    const int32_t key = 300;
    const int64_t large = int64_t{1} << 40;
    const float real = 1.5F;
    const std::vector<double> reals{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(write_attribute("block", &key, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("large", &large, 2, 8, 8), done);
    EXPECT_EQ(write_attribute("real", &real, 3, 4, 4), done);
    EXPECT_EQ(write_attribute("reals", reals.data(), 3, 8, 8, {2, 3}), done);
    EXPECT_EQ(write_attribute("title", "plate   ", 1, 8, 8), done);
    EXPECT_EQ(layout(file, "/"), R"(
A block int32
A large int64
A real float32
A reals float64 [2,3]
A title char[8]
)");
    EXPECT_EQ(attribute_value<int32_t>(file, "/", "block"), 300);
    EXPECT_EQ(attribute_value<int64_t>(file, "/", "large"), int64_t{1} << 40);
    EXPECT_EQ(attribute_values<double>(file, "/", "reals"), reals);
    EXPECT_EQ(attribute_text(file, "/", "title"), "plate   ");
}

TEST_F(AttributeWrite, an_extent_of_0_writes_nothing)
{
    EXPECT_EQ(write_attribute("empty", nullptr, 2, 4, 4, {0}), done);
    EXPECT_EQ(write_attribute("empty", nullptr, 99, 4, 4, {3, 0}), done);
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(AttributeWrite, texts_are_stored_as_they_are_zero_bytes_included)
{
    const std::string text("ab\0cd\0\0\0", 8);
    EXPECT_EQ(write_attribute("text", text.data(), 1, 8, 8), done);
    EXPECT_EQ(attribute_texts(file, "/", "text"), std::vector<std::string>{text});
}

TEST_F(AttributeWrite, a_stored_text_longer_than_the_callers_ends_in_blanks)
{
    EXPECT_EQ(write_attribute("text", "0123456789", 1, 10, 12), done);
    EXPECT_EQ(attribute_text(file, "/", "text"), "0123456789  ");
}

TEST_F(AttributeWrite, texts_of_an_array_keep_their_places_when_stored_longer)
{
    EXPECT_EQ(write_attribute("text", "abcABC", 1, 3, 5, {2}), done);
    EXPECT_EQ(attribute_texts(file, "/", "text"), (std::vector<std::string>{"abc  ", "ABC  "}));
}

TEST_F(AttributeWrite, reals_change_their_size_either_way)
{
    const float single = 0.5F;
    const double wide = 0.25;
    EXPECT_EQ(write_attribute("wider", &single, 3, 4, 8), done);
    EXPECT_EQ(write_attribute("narrower", &wide, 3, 8, 4), done);
    EXPECT_EQ(layout(file, "/"), R"(
A wider float64
A narrower float32
)");
    EXPECT_EQ(attribute_value<double>(file, "/", "wider"), 0.5);
    EXPECT_EQ(attribute_value<float>(file, "/", "narrower"), 0.25F);
}

TEST_F(AttributeWrite, integers_are_widened)
{
    const int32_t value = -7;
    EXPECT_EQ(write_attribute("wider", &value, 2, 4, 8), done);
    EXPECT_EQ(attribute_value<int64_t>(file, "/", "wider"), -7);
}

TEST_F(AttributeWrite, rewriting_replaces_the_value_in_place)
{
    int32_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("text", "old", 1, 3, 3), done);
    value = 2;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("text", "new", 1, 3, 3), done);
    EXPECT_EQ(layout(file, "/"), "\nA n int32\nA text char[3]\n");
    EXPECT_EQ(attribute_value<int32_t>(file, "/", "n"), 2);
    EXPECT_EQ(attribute_text(file, "/", "text"), "new");
}

TEST_F(AttributeWrite, rewriting_keeps_the_stored_length_of_texts)
{
    EXPECT_EQ(write_attribute("text", "0123456789", 1, 10, 10), done);
    EXPECT_EQ(write_attribute("text", "abc", 1, 3, 3), done);
    EXPECT_EQ(attribute_text(file, "/", "text"), "abc       ");
    EXPECT_EQ(write_attribute("text", "ABCDEFGHIJKL", 1, 12, 12), done);
    EXPECT_EQ(attribute_text(file, "/", "text"), "ABCDEFGHIJ");
}

TEST_F(AttributeWrite, a_scalar_goes_into_an_array_of_one)
{
    const int32_t value = 3;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4, {1, 1}), done);
    const int32_t other = 4;
    EXPECT_EQ(write_attribute("n", &other, 2, 4, 4), done);
    EXPECT_EQ(attribute_values<int32_t>(file, "/", "n"), std::vector<int32_t>{4});
}

TEST_F(AttributeWrite, with_a_new_object_and_shared_ids_the_result_is_the_same)
{
    const int32_t value = 3;
    EXPECT_EQ(outcome([&] {
                  SharedIds ids;
                  const Location location(file, true, &ids);
                  const int32_t first = VAK_H5Awrite("n", &value, 2, 4, 4, nullptr, 0, location);
                  const int32_t second = VAK_H5Awrite("a", "abc", 1, 3, 5, nullptr, 0, location);
                  return first + second + VAK_H5Awrite("b", "abcde", 1, 5, 5, nullptr, 0, location);
              }),
              done);
    EXPECT_EQ(layout(file, "/"), "\nA n int32\nA a char[5]\nA b char[5]\n");
    EXPECT_EQ(attribute_text(file, "/", "a"), "abc  ");
}

TEST_F(AttributeWrite, error_1_unknown_type_in_memory)
{
    const int32_t value = 1;
    const std::string type_text = "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: 2 5\n";
    Outcome expected = failed(1, "n 2 5 8 -1");
    expected.text = type_text + expected.text;
    EXPECT_EQ(write_attribute("n", &value, 2, 5, 8), expected);
}

TEST_F(AttributeWrite, error_2_unknown_stored_type)
{
    const int32_t value = 1;
    const std::string type_text = "VAK INTERNAL ERROR (1) in VAK_H5gettype - vak_type, data_size: 2 6\n";
    Outcome expected = failed(2, "n 2 4 6 -1");
    expected.text = type_text + expected.text;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 6), expected);
}

TEST_F(AttributeWrite, error_3_integers_and_texts_are_not_narrowed)
{
    const int64_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 8, 4), failed(3, "n 2 8 4 0"));
    EXPECT_EQ(write_attribute("t", "abcd", 1, 4, 3), failed(3, "t 1 4 3 0"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(AttributeWrite, error_10_another_class_leaves_the_attribute_unchanged)
{
    const int32_t value = 5;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("n", "text", 1, 4, 4), failed(10, "n 1 4 4 0"));
    EXPECT_EQ(attribute_value<int32_t>(file, "/", "n"), 5);
    EXPECT_EQ(write_attribute("t", "text", 1, 4, 4), done);
    EXPECT_EQ(write_attribute("t", &value, 2, 4, 4), failed(10, "t 2 4 4 3"));
}

TEST_F(AttributeWrite, error_20_another_rank)
{
    const std::vector<int32_t> values{1, 2, 3, 4};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {4}), done);
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2, 2}), failed(20, "n 2 4 4 1"));
}

TEST_F(AttributeWrite, error_30_another_extent_names_the_dimension)
{
    const std::vector<int32_t> values{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2, 3}), done);
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2, 2}), failed(30, "n 2 4 4 1"));
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {1, 3}), failed(30, "n 2 4 4 0"));
    EXPECT_EQ(attribute_values<int32_t>(file, "/", "n"), values);
}

TEST_F(AttributeWrite, error_40_a_rank_that_no_space_can_have)
{
    const int32_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4, Dims(32, 1)), failed(40, "n 2 4 4 -1"));
    EXPECT_EQ(outcome([&] { return VAK_H5Awrite("n", &value, 2, 4, 4, nullptr, -1, file); }),
              failed(40, "n 2 4 4 -1"));
    EXPECT_EQ(outcome([&] { return VAK_H5Awrite("n", &value, 2, 4, 4, nullptr, 1, file); }),
              failed(40, "n 2 4 4 -1"));
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4, Dims(31, 1)), done);
}

TEST_F(AttributeWrite, error_100_an_attribute_that_hdf5_does_not_make)
{
    const std::vector<int32_t> too_many(20000);
    EXPECT_EQ(write_attribute("n", too_many.data(), 2, 4, 4, {20000}), failed(100, "n 2 4 4 -1"));
    EXPECT_EQ(write_attribute("long", "a", 1, 1, size_t{1} << 32), failed(100, "long 1 1 4294967296 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(AttributeWrite, error_100_an_attribute_that_exists_on_an_object_said_to_be_new)
{
    const int32_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    EXPECT_EQ(outcome([&] {
                  return VAK_H5Awrite("n", &value, 2, 4, 4, nullptr, 0, Location(file, true, nullptr));
              }),
              failed(100, "n 2 4 4 -1"));
}

TEST_F(AttributeWrite, error_999_a_file_that_is_only_read)
{
    const int32_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    reopen(H5F_ACC_RDONLY);
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), failed(999, "n 2 4 4 -1"));
}

TEST_F(AttributeWrite, error_999_no_data_or_an_impossible_number_of_it)
{
    const int32_t value = 1;
    EXPECT_EQ(write_attribute("n", nullptr, 2, 4, 4), failed(999, "n 2 4 4 -1"));
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4, {static_cast<hsize_t>(-1)}), failed(999, "n 2 4 4 -1"));
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4, {hsize_t{1} << 31, hsize_t{1} << 31, 4}),
              failed(999, "n 2 4 4 -1"));
    EXPECT_EQ(write_attribute("t", "", 1, 0, 0), failed(999, "t 1 0 0 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(AttributeWrite, error_999_a_single_value_for_an_array)
{
    const std::vector<int32_t> values{1, 2, 3};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {3}), done);
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4), failed(999, "n 2 4 4 -1"));
    EXPECT_EQ(attribute_values<int32_t>(file, "/", "n"), values);
}

}  // namespace
}  // namespace vak::test
