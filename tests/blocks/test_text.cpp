#include "samples/text.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class TextInBothFamilies : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(, TextInBothFamilies, both_families, family_name);

class TextBlock : public BlockTest {};

Text legacy_text()
{
    Text text;
    text.family = Family::legacy;
    return text;
}

TEST_F(TextBlock, is_stored_as_described)
{
    const Text text;
    EXPECT_EQ(write(text), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/text/run log/vakblock"), R"(
A block int32
A blocktype char[256]
A nlines int32
A length int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D line char[80] [3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, text.path(), "block"), 40);
    EXPECT_EQ(attribute_text(file, text.path(), "blocktype"), std::string("text") + std::string(252, '\0'));
    EXPECT_EQ(dataset_texts(file, text.path() + "/line"),
              (std::vector{padded("started", 80), padded("", 80), padded("a last line, ended", 80)}));
}

TEST_F(TextBlock, legacy_text_is_stored_as_described)
{
    EXPECT_EQ(write(legacy_text()), success);
    EXPECT_EQ(layout(file, "constant/text/run log"), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyptext char[256]
A header/nlines int32
A header/length int32
G data
D data/line char[80] [3] compact
)");
    EXPECT_EQ(attribute_text(file, "constant/text/run log/header", "etyptext"), padded("run log"));
}

TEST_P(TextInBothFamilies, reads_back_what_was_written)
{
    const auto written = sample<Text>();
    EXPECT_EQ(write(written), success);
    auto text = emptied(written);
    EXPECT_EQ(read(text, legacy() ? 2 : 3), success);
    EXPECT_EQ(listing(text), listing(written));
    EXPECT_EQ(text.found_flags, 0);
}

TEST_F(TextBlock, mode_1_reads_the_counts_alone)
{
    const Text written;
    EXPECT_EQ(write(written), success);
    Text text = emptied(written);
    EXPECT_EQ(read(text, 1), success);
    Text expected = emptied(written);
    expected.nlines = 3;
    expected.length = 80;
    expected.index.nindex = 2;
    expected.index.indexic = 3;
    EXPECT_EQ(listing(text), listing(expected));
    EXPECT_EQ(text.found_flags, untouched);
    EXPECT_EQ(text.found_params[0], untouched);
}

TEST_F(TextBlock, mode_2_reads_the_arrays_by_the_callers_counts)
{
    const Text written;
    EXPECT_EQ(write(written), success);
    Text text = emptied(written);
    text.nlines = 3;
    text.length = 80;
    text.index.nindex = 2;
    EXPECT_EQ(read(text, 2), success);
    Text expected = written;
    expected.index.indexic = untouched;
    EXPECT_EQ(listing(text), listing(expected));
    EXPECT_EQ(text.found_flags, 0);
    EXPECT_EQ(text.found_params[1], 0);
}

TEST_F(TextBlock, mode_that_reads_nothing_gives_zero)
{
    const Text written;
    EXPECT_EQ(write(written), success);
    Text text = emptied(written);
    EXPECT_EQ(read(text, 0), success);
    EXPECT_EQ(read(text, 4), success);
    EXPECT_EQ(listing(text), listing(emptied(written)));
    EXPECT_EQ(text.found_flags, untouched);
}

TEST_F(TextBlock, mode_2_of_an_empty_text_leaves_the_filters_untouched)
{
    Text written;
    written.length = 0;
    written.index = {0, 3, {}, {}};
    EXPECT_EQ(write(written), success);
    EXPECT_EQ(read(written, 2), success);
    EXPECT_EQ(written.found_flags, untouched);
    EXPECT_EQ(written.found_params[0], untouched);
    EXPECT_EQ(written.found_params[1], untouched);
}

TEST_F(TextBlock, legacy_pass_1_reads_the_counts_alone)
{
    const Text written = legacy_text();
    EXPECT_EQ(write(written), success);
    Text text = emptied(written);
    EXPECT_EQ(read(text, 1), success);
    Text expected = written;
    expected.line = std::string(240, '?');
    EXPECT_EQ(listing(text), listing(expected));
    EXPECT_EQ(text.found_flags, untouched);
}

TEST_F(TextBlock, another_legacy_pass_is_refused_behind_the_counts)
{
    EXPECT_EQ(write(legacy_text()), success);
    for (const int32_t ipass : {0, 3, -1}) {
        Text text = emptied(legacy_text());
        EXPECT_EQ(read(text, ipass), failure(-3, "VAK INTERNAL ERROR reading block with key 40 \n"));
        EXPECT_EQ(text.nlines, 3);
        EXPECT_EQ(text.line, std::string(240, '?'));
    }
}

TEST_P(TextInBothFamilies, length_of_zero_or_less_has_no_lines)
{
    for (const int32_t length : {0, -1}) {
        auto written = sample<Text>();
        written.name = padded("empty " + std::to_string(length));
        written.length = length;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("line ")));
        auto text = emptied(written);
        EXPECT_EQ(read(text, legacy() ? 2 : 3), success);
        EXPECT_EQ(text.length, length);
        EXPECT_EQ(text.line, std::string(240, '?'));
    }
}

TEST_P(TextInBothFamilies, number_of_lines_of_zero_or_less_has_no_lines)
{
    for (const int32_t nlines : {0, -1}) {
        auto written = sample<Text>();
        written.name = padded("empty " + std::to_string(nlines));
        written.nlines = nlines;
        EXPECT_EQ(write(written), success);
        EXPECT_THAT(stored(written), testing::Not(testing::HasSubstr("line ")));
        auto text = emptied(written);
        EXPECT_EQ(read(text, legacy() ? 2 : 3), success);
        EXPECT_EQ(text.nlines, nlines);
    }
}

TEST_P(TextInBothFamilies, lines_may_be_longer_than_other_texts)
{
    for (const size_t length : {1U, 255U, 256U, 257U, 5000U}) {
        auto written = sample<Text>();
        written.name = padded("of " + std::to_string(length));
        written.length = static_cast<int32_t>(length);
        written.line = fields({"a", std::string(length, 'x'), "c"}, length);
        EXPECT_EQ(write(written), success);
        auto text = emptied(written);
        EXPECT_EQ(read(text, legacy() ? 2 : 3), success);
        EXPECT_EQ(listing(text), listing(written));
    }
}

TEST_P(TextInBothFamilies, lines_are_stored_as_given)
{
    auto written = sample<Text>();
    written.line.replace(0, 10, std::string("up\0\0behind", 10));
    EXPECT_EQ(write(written), success);
    auto text = emptied(written);
    EXPECT_EQ(read(text, legacy() ? 2 : 3), success);
    EXPECT_EQ(text.line, written.line);
}

TEST_F(TextBlock, swapped_block_of_another_size_is_refused_untouched)
{
    const Text first;
    EXPECT_EQ(write(first), success);
    Text larger;
    larger.name = padded("larger");
    larger.nlines = 4;
    larger.line = std::string(4 * 80, 'x');
    EXPECT_EQ(write(larger), success);
    Text text = emptied(first);
    EXPECT_EQ(read(text, 1), success);
    text.index.nindex = 0;
    const std::string before = listing(text);
    EXPECT_EQ(
        read(text, 2, larger.path()),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: line 1 80 0\n"));
    EXPECT_EQ(listing(text), before);
    EXPECT_EQ(text.found_flags, untouched);
}

TEST_P(TextInBothFamilies, same_name_is_refused_and_another_is_not)
{
    auto text = sample<Text>();
    EXPECT_EQ(write(text), success);
    EXPECT_EQ(write(text),
              failure(-1, "VAK INTERNAL ERROR writing block key 40 - \"text\" already exists.\n"));
    text.name = padded("another");
    EXPECT_EQ(write(text), success);
}

TEST_F(TextBlock, stands_where_its_index_says)
{
    Text text;
    text.index = {0, 0, {}, {}};
    EXPECT_EQ(write(text), success);
    EXPECT_TRUE(exists(file, "constant/text/run log/vakblock"));
    EXPECT_THAT(stored(text), testing::Not(testing::HasSubstr("indexident")));
    text.index.nindex = -1;
    EXPECT_EQ(write(text), success);
    EXPECT_TRUE(exists(file, "multistate/text/run log/vakblock"));
    text.index = {2, 0, {5, 9}, {0, 0}};
    text.state = -1;
    EXPECT_EQ(write(text), success);
    EXPECT_TRUE(exists(file, "singlestate/state000000000009/state000000000005/text/run log/vakblock"));
}

TEST_F(TextBlock, only_index_values_lose_scale_offset)
{
    Text text;
    text.index = {9, 0, std::vector<int32_t>(9, 3), std::vector<float>(9, 0.1F)};
    text.nlines = 9;
    text.line = std::string(9 * 80, 'x');
    text.flags = 255;
    text.params[0] = 2;
    text.params[1] = 6;
    EXPECT_EQ(write(text), success);
    EXPECT_THAT(stored(text), testing::EndsWith(R"(
D indexident int32 [9] chunked(9) scaleoffset(int,0) shuffle deflate(6) fill=10000
D indexval float32 [9] chunked(9) shuffle deflate(6)
D line char[80] [9] chunked(9) shuffle deflate(6)
)"));
    Text copy = emptied(text);
    EXPECT_EQ(read(copy, 3), success);
    EXPECT_EQ(listing(copy), listing(text));
    EXPECT_EQ(copy.found_flags, 255 - 128);
    EXPECT_EQ(copy.found_params[0], 0);
    EXPECT_EQ(copy.found_params[1], 6);
}

TEST_F(TextBlock, index_values_take_the_real_size)
{
    Text text;
    text.real_size = 8;
    EXPECT_EQ(write(text), success);
    EXPECT_THAT(stored(text), testing::HasSubstr("D indexval float64 [2]"));
    Text copy = emptied(text);
    EXPECT_EQ(read(copy, 3), success);
    EXPECT_EQ(listing(copy), listing(text));
}

}  // namespace

}  // namespace vak::test
