// The text of block paths and the counting of names, without a file.
#include "frame/paths.h"

#include <gtest/gtest.h>

#include <clocale>

namespace vak::test {

namespace {

std::string text(const BlockPath& place) { return path_text(Family::current, place); }

}  // namespace

TEST(PathText, constant_block_has_no_state)
{
    EXPECT_EQ(text({.nstate = 0}), "constant/vakblock");
    const int32_t states[] = {5};
    EXPECT_EQ(text({.nstate = 0, .states = states, .state = 7}), "constant/vakblock");
}

TEST(PathText, legacy_path_ends_without_a_level_of_its_own)
{
    EXPECT_EQ(path_text(Family::legacy, {.nstate = 0}), "constant");
    EXPECT_EQ(
        path_text(Family::legacy, {.nstate = 1, .state = 12, .names = {"NODE", "D"}, .index = 3, .set = 2}),
        "singlestate/state000000000012/NODE/D3_set2");
}

TEST(PathText, state_names_index_and_set_stand_in_this_order)
{
    EXPECT_EQ(
        text({.nstate = 1, .state = 12, .names = {"NODE      ", "DISPLACEMENT  "}, .index = 3, .set = 2}),
        "singlestate/state000000000012/NODE/DISPLACEMENT3_set2/vakblock");
}

TEST(PathText, multistate_block_has_no_state_level)
{
    const int32_t states[] = {5};
    EXPECT_EQ(text({.nstate = -1, .states = states, .state = 7, .names = {"NODE"}}),
              "multistate/NODE/vakblock");
}

TEST(PathText, other_negative_number_of_states_is_singlestate_without_a_state_level)
{
    for (const int32_t nstate : {-2, -5, -2147483647 - 1})
        EXPECT_EQ(text({.nstate = nstate, .state = 7, .names = {"NODE"}}), "singlestate/NODE/vakblock");
}

TEST(PathText, state_list_is_nested_from_its_last_entry_to_its_first)
{
    const int32_t states[] = {5, 9, 1};
    EXPECT_EQ(text({.nstate = 2, .states = states, .state = -1, .names = {"NODE"}}),
              "singlestate/state000000000009/state000000000005/NODE/vakblock");
    EXPECT_EQ(text({.nstate = 3, .states = states, .state = -7}),
              "singlestate/state000000000001/state000000000009/state000000000005/vakblock");
    EXPECT_EQ(text({.nstate = 1, .states = states, .state = -1}), "singlestate/state000000000005/vakblock");
}

TEST(PathText, single_state_takes_the_place_of_the_list)
{
    const int32_t states[] = {5, 9};
    EXPECT_EQ(text({.nstate = 2, .states = states, .state = 0}), "singlestate/state000000000000/vakblock");
    EXPECT_EQ(text({.nstate = 2, .state = 2147483647}), "singlestate/state002147483647/vakblock");
}

TEST(PathText, missing_state_list_adds_no_level)
{
    EXPECT_EQ(text({.nstate = 2, .states = nullptr, .state = -1}), "singlestate/vakblock");
}

TEST(PathText, negative_entries_of_the_list_keep_their_sign_within_12_characters)
{
    const int32_t states[] = {-5, -2147483647 - 1};
    EXPECT_EQ(text({.nstate = 2, .states = states, .state = -1}),
              "singlestate/state-02147483648/state-00000000005/vakblock");
}

TEST(PathText, list_of_many_states_is_written_whole)
{
    const std::vector<int32_t> states(5000, 1);
    const std::string path = text({.nstate = 5000, .states = states.data(), .state = -1});
    EXPECT_EQ(path.size(), std::string("singlestate/vakblock").size() + 5000 * 18);
}

TEST(PathText, index_and_set_are_appended_from_0_on)
{
    EXPECT_EQ(text({.nstate = 0, .names = {"NAME"}, .index = 0, .set = 0}), "constant/NAME0_set0/vakblock");
    EXPECT_EQ(text({.nstate = 0, .names = {"NAME"}, .index = 2147483647, .set = -1}),
              "constant/NAME2147483647/vakblock");
    EXPECT_EQ(text({.nstate = 0, .names = {"NAME"}, .index = -1, .set = 4}), "constant/NAME_set4/vakblock");
    EXPECT_EQ(text({.nstate = 0, .names = {"NAME"}, .index = -9, .set = -2147483647 - 1}),
              "constant/NAME/vakblock");
}

TEST(PathText, index_and_set_stand_behind_whatever_component_is_last)
{
    EXPECT_EQ(text({.nstate = 0, .index = 3, .set = 2}), "constant3_set2/vakblock");
    EXPECT_EQ(text({.nstate = 1, .state = 1, .index = 3}), "singlestate/state0000000000013/vakblock");
}

TEST(PathText, names_that_count_to_nothing_add_no_level)
{
    EXPECT_EQ(text({.nstate = 0, .names = {"", "A", "    ", nullptr, "B"}}), "constant/A/B/vakblock");
}

TEST(PathText, name_of_300_characters_is_cut_to_256)
{
    const std::string name(300, 'n');
    EXPECT_EQ(text({.nstate = 0, .names = {name.c_str()}}),
              "constant/" + std::string(256, 'n') + "/vakblock");
}

TEST(PathText, five_names_of_256_characters_stand_whole)
{
    const std::string name(256, 'n');
    const char* field = name.c_str();
    EXPECT_EQ(text({.nstate = 0, .names = {field, field, field, field, field}}).size(), 17U + 5 * 257);
}

TEST(Counted, text_ends_at_a_zero_byte_or_at_its_length)
{
    EXPECT_EQ(counted("abc"), "abc");
    EXPECT_EQ(counted("abc", 2), "ab");
    EXPECT_EQ(counted("abc\0def", 7), "abc");
    EXPECT_EQ(counted("abc", 0), "");
    EXPECT_EQ(counted(""), "");
    EXPECT_EQ(counted(nullptr), "");
}

TEST(Counted, field_of_256_characters_needs_no_terminator)
{
    const std::vector<char> field(256, 'x');  // the byte behind it belongs to nobody
    EXPECT_EQ(counted(field.data()).size(), 256U);
}

TEST(Counted, what_is_not_graphic_is_cut_at_the_end_alone)
{
    EXPECT_EQ(counted("  a b  "), "  a b");
    EXPECT_EQ(counted("a\t\n\r\v\f "), "a");
    EXPECT_EQ(counted("a\x01\x1F\x7F"), "a");
    EXPECT_EQ(counted(" \t\x7F"), "");
    EXPECT_EQ(counted("!~"), "!~");
}

TEST(Counted, characters_beyond_ascii_are_not_graphic_in_any_locale)
{
    for (const char* locale : {"C", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(counted("pi\xC3\xA8"
                          "ce"),
                  "pi\xC3\xA8"
                  "ce");
        EXPECT_EQ(counted("r\xE9sum\xE9"), "r\xE9sum");
        EXPECT_EQ(counted("\xFF\x80"), "");
    }
    std::setlocale(LC_ALL, "C");
}

TEST(CountedName, name_ends_at_a_zero_byte_and_loses_blanks_alone)
{
    EXPECT_EQ(counted_name("run.h5   ", 9), "run.h5");
    EXPECT_EQ(counted_name("run.h5", 3), "run");
    EXPECT_EQ(counted_name("run \0 more", 10), "run");
    EXPECT_EQ(counted_name(" a\xC3\xA9\t ", 6), " a\xC3\xA9\t");
    EXPECT_EQ(counted_name("    ", 4), "");
    EXPECT_EQ(counted_name("abc", 0), "");
    EXPECT_EQ(counted_name("abc", -1), "");
    EXPECT_EQ(counted_name(nullptr, 5), "");
}

}  // namespace vak::test
