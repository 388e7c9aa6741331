// Attributes as they are read, and what is refused before it reaches the caller's memory.
#include "storage_test.h"

namespace vak::test {
namespace {

using AttributeRead = StorageTest;

Outcome failed(int32_t number, const std::string& values)
{
    return {-4000 - number, "VAK INTERNAL ERROR (" + std::to_string(number) +
                                ") in VAK_H5Aread - name, vak_type, data_size, error: " + values + "\n"};
}

TEST_F(AttributeRead, values_come_back_with_their_stored_size)
{
    const std::vector<double> reals{1, 2, 3, 4, 5, 6};
    const int32_t key = 300;
    EXPECT_EQ(write_attribute("block", &key, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("reals", reals.data(), 3, 8, 8, {2, 3}), done);
    reopen(H5F_ACC_RDONLY);
    int32_t found = 0;
    std::vector<double> values(6);
    EXPECT_EQ(read_attribute("block", &found, 2, 4), done);
    EXPECT_EQ(found, 300);
    EXPECT_EQ(stored_size, 4U);
    EXPECT_EQ(read_attribute("reals", values.data(), 3, 8, {2, 3}), done);
    EXPECT_EQ(values, reals);
    EXPECT_EQ(stored_size, 8U);
}

TEST_F(AttributeRead, an_extent_of_0_reads_nothing)
{
    stored_size = 77;
    EXPECT_EQ(read_attribute("none", nullptr, 2, 4, {0}), done);
    EXPECT_EQ(stored_size, 77U);
}

TEST_F(AttributeRead, a_text_stored_longer_than_it_was_comes_back_with_blanks)
{
    EXPECT_EQ(write_attribute("text", "0123456789", 1, 10, 12), done);
    std::string text(12, '?');
    EXPECT_EQ(read_attribute("text", text.data(), 1, 12), done);
    EXPECT_EQ(text, "0123456789  ");
    EXPECT_EQ(stored_size, 12U);
}

TEST_F(AttributeRead, texts_fill_the_callers_fields_at_their_places)
{
    EXPECT_EQ(write_attribute("texts", "abcABC", 1, 3, 3, {2}), done);
    std::string texts(10, '?');
    EXPECT_EQ(read_attribute("texts", texts.data(), 1, 5, {2}), done);
    EXPECT_EQ(texts, "abc  ABC  ");
}

TEST_F(AttributeRead, bytes_of_a_text_of_the_same_length_are_untouched)
{
    const std::string stored("ab\0cd\0\0\0", 8);
    EXPECT_EQ(write_attribute("text", stored.data(), 1, 8, 8), done);
    std::string text(8, '?');
    EXPECT_EQ(read_attribute("text", text.data(), 1, 8), done);
    EXPECT_EQ(text, stored);
}

TEST_F(AttributeRead, reals_change_their_size_either_way)
{
    const double wide = 0.5;
    const float single = 0.25F;
    EXPECT_EQ(write_attribute("wide", &wide, 3, 8, 8), done);
    EXPECT_EQ(write_attribute("single", &single, 3, 4, 4), done);
    float narrow = 0;
    double widened = 0;
    EXPECT_EQ(read_attribute("wide", &narrow, 3, 4), done);
    EXPECT_EQ(read_attribute("single", &widened, 3, 8), done);
    EXPECT_EQ(narrow, 0.5F);
    EXPECT_EQ(widened, 0.25);
}

TEST_F(AttributeRead, integers_are_widened)
{
    const int32_t value = -7;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    int64_t wide = 0;
    EXPECT_EQ(read_attribute("n", &wide, 2, 8), done);
    EXPECT_EQ(wide, -7);
}

TEST_F(AttributeRead, a_single_value_of_an_array_is_its_first)
{
    const std::vector<int32_t> values = numbers<int32_t>(1000, 11);
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {10, 100}), done);
    std::array<int32_t, 2> found{0, -1};
    EXPECT_EQ(read_attribute("n", found.data(), 2, 4), done);
    EXPECT_EQ(found, (std::array<int32_t, 2>{11, -1}));
    std::array<int64_t, 2> wide{0, -1};
    EXPECT_EQ(read_attribute("n", wide.data(), 2, 8), done);
    EXPECT_EQ(wide, (std::array<int64_t, 2>{11, -1}));
}

TEST_F(AttributeRead, without_a_place_for_the_values_the_field_is_only_checked)
{
    const std::vector<int32_t> values{1, 2, 3};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {3}), done);
    EXPECT_EQ(read_attribute("n", nullptr, 2, 4, {3}), done);
    EXPECT_EQ(read_attribute("n", nullptr, 2, 4), done);
    EXPECT_EQ(stored_size, 4U);
    EXPECT_EQ(read_attribute("n", nullptr, 2, 4, {4}), failed(30, "n 2 4 0"));
    EXPECT_EQ(read_attribute("missing", nullptr, 2, 4), failed(2, "missing 2 4 -1"));
}

TEST_F(AttributeRead, error_1_unknown_type_in_memory)
{
    double value = 0;
    Outcome expected = failed(1, "n 4 8 -1");
    expected.text = "VAK INTERNAL ERROR (3) in VAK_H5gettype - vak_type, data_size: 4 8\n" + expected.text;
    EXPECT_EQ(read_attribute("n", &value, 4, 8), expected);
}

TEST_F(AttributeRead, error_2_no_such_attribute)
{
    int32_t value = 4711;
    EXPECT_EQ(read_attribute("n", &value, 2, 4), failed(2, "n 2 4 -1"));
    EXPECT_EQ(value, 4711);
}

TEST_F(AttributeRead, error_3_another_class)
{
    const int32_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 4, 4), done);
    EXPECT_EQ(write_attribute("t", "text", 1, 4, 4), done);
    std::string text(4, '?');
    float real = 0;
    EXPECT_EQ(read_attribute("n", text.data(), 1, 4), failed(3, "n 1 4 0"));
    EXPECT_EQ(read_attribute("n", &real, 3, 4), failed(3, "n 3 4 0"));
    EXPECT_EQ(read_attribute("t", &real, 3, 4), failed(3, "t 3 4 3"));
}

TEST_F(AttributeRead, error_10_a_text_longer_than_the_callers_tells_its_length)
{
    EXPECT_EQ(write_attribute("text", padded("x").data(), 1, 256, 256), done);
    std::string text(100, '?');
    EXPECT_EQ(read_attribute("text", text.data(), 1, 100), failed(10, "text 1 100 256"));
    EXPECT_EQ(stored_size, 256U);
    EXPECT_EQ(text, std::string(100, '?'));
}

TEST_F(AttributeRead, error_11_a_stored_integer_wider_than_the_callers)
{
    const int64_t value = 1;
    EXPECT_EQ(write_attribute("n", &value, 2, 8, 8), done);
    int32_t narrow = 4711;
    EXPECT_EQ(read_attribute("n", &narrow, 2, 4), failed(11, "n 2 4 8"));
    EXPECT_EQ(narrow, 4711);
}

TEST_F(AttributeRead, error_20_another_rank)
{
    const std::vector<int32_t> values{1, 2, 3, 4};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2, 2}), done);
    std::vector<int32_t> found(4);
    EXPECT_EQ(read_attribute("n", found.data(), 2, 4, {4}), failed(20, "n 2 4 2"));
    EXPECT_EQ(read_attribute("n", found.data(), 2, 4, Dims(32, 1)), failed(20, "n 2 4 -1"));
    EXPECT_EQ(outcome([&] { return VAK_H5Aread("n", found.data(), 2, 4, nullptr, 1, file, &stored_size); }),
              failed(20, "n 2 4 -1"));
}

TEST_F(AttributeRead, error_30_another_extent_names_the_dimension)
{
    const std::vector<int32_t> values{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(write_attribute("n", values.data(), 2, 4, 4, {2, 3}), done);
    std::vector<int32_t> found(6);
    EXPECT_EQ(read_attribute("n", found.data(), 2, 4, {2, 2}), failed(30, "n 2 4 1"));
    EXPECT_EQ(read_attribute("n", found.data(), 2, 4, {3, 3}), failed(30, "n 2 4 0"));
}

}  // namespace
}  // namespace vak::test
