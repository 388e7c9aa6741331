#include <gtest/gtest.h>

#include <cmath>

#include "frd/fields.h"
#include "text/numbers.h"

using namespace vak::frd;
using namespace vak::text;

TEST(FrdFields, columns_behind_the_end_of_a_line_are_empty)
{
    EXPECT_EQ(columns("abcdef", 2, 3), "cde");
    EXPECT_EQ(columns("abcdef", 4, 10), "ef");
    EXPECT_EQ(columns("abcdef", 6, 1), "");
}

TEST(FrdFields, an_integer_may_have_blanks_around_it_and_nothing_else)
{
    EXPECT_EQ(integer("   12 "), 12);
    EXPECT_EQ(integer("-3"), -3);
    EXPECT_EQ(integer("    "), std::nullopt);
    EXPECT_EQ(integer("1 2"), std::nullopt);
    EXPECT_EQ(integer("1.0"), std::nullopt);
    EXPECT_EQ(integer("99999999999999999999"), std::nullopt);
}

TEST(FrdFields, reals_are_read_in_every_form_that_solvers_print)
{
    EXPECT_EQ(real(" 1.25000E+00"), 1.25F);
    EXPECT_EQ(real("-1.00000E-05"), -1.0e-5F);
    EXPECT_EQ(real("+2.5"), 2.5F);
    EXPECT_EQ(real(" 2.50000D+01"), 25.0F);
    EXPECT_EQ(real(" 1.00000-005"), 1.0e-5F);
    EXPECT_EQ(real("3"), 3.0F);
    EXPECT_TRUE(std::isnan(*real("         NAN")));
    EXPECT_EQ(real("        -inf"), -INFINITY);
}

TEST(FrdFields, the_nearest_single_precision_number_is_taken)
{
    EXPECT_EQ(real(" 1.00000E-01"), 0.1F);
    EXPECT_EQ(real(" 1.00000E-40"), 1.0e-40F);
    EXPECT_EQ(real("1.00000E-100"), 0.0F);
    EXPECT_EQ(real(" 3.40282E+38"), 3.40282e38F);
}

TEST(FrdFields, a_number_too_large_for_single_precision_is_no_number)
{
    EXPECT_EQ(real(" 1.00000E+39"), std::nullopt);
    EXPECT_EQ(real("1.00000E+100"), std::nullopt);
}

TEST(FrdFields, what_is_no_decimal_number_is_refused)
{
    for (const char* text :
         {"", "   ", "************", "1.0 2.0", "0x12", "1.0E", "1.0E+", "E5", "+-1", "--1", "1.2.3"})
        EXPECT_EQ(real(text), std::nullopt) << text;
}

class DataLine : public testing::Test {
protected:
    bool read(std::string_view body, size_t width)
    {
        values.clear();
        return data_line(body, width, id, values);
    }

    std::optional<int64_t> id;
    std::vector<float> values;
};

TEST_F(DataLine, values_need_no_blank_between_them)
{
    ASSERT_TRUE(read("    5-2.62585E+08-1.00000E+00", 5));
    EXPECT_EQ(id, 5);
    EXPECT_EQ(values, (std::vector<float>{-2.62585e8F, -1.0F}));
}

TEST_F(DataLine, an_identifier_may_outgrow_its_columns)
{
    ASSERT_TRUE(read("1234567 1.00000E+00-2.00000E+00", 5));
    EXPECT_EQ(id, 1234567);
    EXPECT_EQ(values, (std::vector<float>{1.0F, -2.0F}));
    ASSERT_TRUE(read("12345678901-1.00000E+00", 10));
    EXPECT_EQ(id, 12345678901);
}

TEST_F(DataLine, long_exponents_shift_what_follows)
{
    ASSERT_TRUE(read("         7-1.00000E-100 1.00000E+00", 10));
    EXPECT_EQ(id, 7);
    EXPECT_EQ(values, (std::vector<float>{-0.0F, 1.0F}));
    ASSERT_TRUE(read("         7 1.00000E+00-1.00000E-100", 10));
    EXPECT_EQ(values, (std::vector<float>{1.0F, -0.0F}));
}

TEST_F(DataLine, a_line_of_continuation_has_no_identifier)
{
    ASSERT_TRUE(read("           1.00000E+00-2.00000E+00", 10));
    EXPECT_EQ(id, std::nullopt);
    EXPECT_EQ(values.size(), 2U);
}

TEST_F(DataLine, a_line_that_lost_characters_is_refused)
{
    EXPECT_FALSE(read("         7 1.00000E+00 2.00000E+0", 10));
    EXPECT_FALSE(read("         7 1.00000E+00 2.000E+00", 10));
    EXPECT_FALSE(read("         7 1.0000?E+00 2.00000E+00", 10));
    EXPECT_FALSE(read("        7  1.00000E+0 2.00000E+00", 10));
}

TEST(IntegerLine, full_columns_need_no_blank_between_them)
{
    std::vector<int64_t> values;
    ASSERT_TRUE(integer_line("1234567890", 5, values));
    EXPECT_EQ(values, (std::vector<int64_t>{12345, 67890}));
}

TEST(IntegerLine, numbers_beside_the_columns_are_read_by_their_blanks)
{
    std::vector<int64_t> values;
    ASSERT_TRUE(integer_line(" 100000 100001", 5, values));
    EXPECT_EQ(values, (std::vector<int64_t>{100000, 100001}));
}

TEST(IntegerLine, columns_that_cut_a_number_are_not_taken)
{
    std::vector<int64_t> values;
    ASSERT_TRUE(integer_line("1 10000002", 5, values));
    EXPECT_EQ(values, (std::vector<int64_t>{1, 10000002}));
    EXPECT_FALSE(integer_line("    1    x", 5, values));
}
