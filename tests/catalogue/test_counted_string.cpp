// VAK_strlen, VAK_strncmp, VAK_putc: character fields by their significant characters.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/temp_file.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

int32_t strlen_of(const std::string& field)
{
    return VAK_strlen(field.data(), static_cast<int32_t>(field.size()));
}

int32_t order_of(const char* a, const char* b, int32_t n) { return VAK_strncmp(a, b, n); }

}  // namespace

TEST(CountedString, length_of_blanks_is_0) { EXPECT_EQ(strlen_of("      "), 0); }

TEST(CountedString, length_never_exceeds_n)
{
    EXPECT_EQ(VAK_strlen("ABC", 2), 2);
    EXPECT_EQ(VAK_strlen("ABC", 3), 3);
}

TEST(CountedString, length_is_0_for_n_below_1_and_the_field_is_not_touched)
{
    EXPECT_EQ(VAK_strlen("ABC", 0), 0);
    EXPECT_EQ(VAK_strlen("ABC", -1), 0);
    EXPECT_EQ(VAK_strlen(nullptr, 0), 0);
    EXPECT_EQ(VAK_strlen(nullptr, INT32_MIN), 0);
}

TEST(CountedString, length_ends_at_the_first_zero_byte)
{
    EXPECT_EQ(strlen_of(std::string("AB\0CD", 5)), 2);
    EXPECT_EQ(strlen_of(std::string("AB  \0CD", 7)), 2);
    EXPECT_EQ(strlen_of(std::string("\0CD", 3)), 0);
}

TEST(CountedString, trailing_control_characters_do_not_count_but_leading_and_inner_ones_do)
{
    EXPECT_EQ(strlen_of("AB \t\r\n\x7f\x01"), 2);
    EXPECT_EQ(strlen_of("  AB"), 4);
    EXPECT_EQ(strlen_of("A \t B  "), 5);
    EXPECT_EQ(strlen_of("~!  "), 2);
}

TEST(CountedString, characters_beyond_ascii_are_not_graphic_in_any_locale)
{
    const std::string field = "AB\xe4\xf6\xfc";
    EXPECT_EQ(strlen_of(field), 2);
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    for (const char* locale : {"C.UTF-8", "en_US.ISO-8859-1", "de_DE.ISO-8859-1"}) {
        std::setlocale(LC_CTYPE, locale);
        EXPECT_EQ(strlen_of(field), 2) << locale;
    }
    std::setlocale(LC_CTYPE, before.c_str());
}

TEST(CountedString, trailing_blanks_do_not_order)
{
    EXPECT_EQ(order_of("AB   ", "AB\0xx", 5), 0);
    EXPECT_EQ(order_of("     ", "\0ABCD", 5), 0);
    EXPECT_EQ(order_of("AB\t\n ", "AB   ", 5), 0);
}

TEST(CountedString, a_beginning_of_the_other_comes_first_by_the_difference_of_the_lengths)
{
    EXPECT_EQ(order_of("AB   ", "ABCDE", 5), -3);
    EXPECT_EQ(order_of("ABCDE", "AB   ", 5), 3);
    EXPECT_EQ(order_of("     ", "A    ", 5), -1);
}

TEST(CountedString, the_first_different_character_decides_as_an_unsigned_byte)
{
    EXPECT_LT(order_of("ABZ", "ACA", 3), 0);
    EXPECT_GT(order_of("b  ", "Bzz", 3), 0);
    EXPECT_GT(order_of("\xe4z", "zz", 2), 0);
}

TEST(CountedString, what_stands_behind_n_or_a_zero_byte_does_not_order)
{
    EXPECT_EQ(order_of("ABC", "ABD", 2), 0);
    EXPECT_EQ(order_of("AB\0C", "AB\0D", 4), 0);
    EXPECT_EQ(order_of("A", "B", 0), 0);
    EXPECT_EQ(order_of("A", "B", -4), 0);
}

TEST(CountedString, putc_writes_the_significant_characters_and_gives_their_number)
{
    const TempFile file("text");
    FILE* stream = std::fopen(file.c_str(), "wb");
    EXPECT_EQ(VAK_putc("  NODE \0X", 9, stream), 6);
    EXPECT_EQ(VAK_putc("|    ", 5, stream), 1);
    EXPECT_EQ(VAK_putc("    ", 4, stream), 0);
    EXPECT_EQ(VAK_putc("lost", 0, stream), 0);
    EXPECT_EQ(std::fclose(stream), 0);
    std::stringstream written;
    written << std::ifstream(file.path(), std::ios::binary).rdbuf();
    EXPECT_EQ(written.str(), "  NODE|");
}

TEST(CountedString, putc_counts_only_what_the_stream_took)
{
    const TempFile file("text");
    std::ofstream(file.path()) << "text";
    FILE* stream = std::fopen(file.c_str(), "rb");
    EXPECT_EQ(VAK_putc("NODE", 4, stream), 0);
    std::fclose(stream);
}

}  // namespace vak::test
