#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "cli/frd_text.h"
#include "frd/reader.h"
#include "problem.h"
#include "support/temp_file.h"

using namespace vak::frd;
using namespace vak::test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const NodeValues two_nodes{{1, {0, 0, 0}}, {2, {1, 0.5, -2}}};

FrdText mesh() { return FrdText().head().nodes(two_nodes); }

class FrdReader : public testing::Test {
protected:
    Reader open(const std::string& text)
    {
        write_text(file.path(), text);
        return Reader(file.path());
    }

    // What the reader says when all blocks are passed over or, with read, when all values are taken.
    std::string problem(const std::string& text, bool read = true)
    {
        try {
            Reader reader = open(text);
            Mesh mesh;
            Values values;
            for (auto kind = reader.next(); kind != BlockKind::end; kind = reader.next()) {
                if (read && kind == BlockKind::nodes) reader.read_nodes(mesh);
                if (read && kind == BlockKind::elements) reader.read_elements(mesh);
                if (read && kind == BlockKind::result) reader.read_values(values);
            }
            return "";
        } catch (const vak::cli::Problem& problem) {
            const std::string what = problem.what();
            EXPECT_TRUE(what.starts_with(file.path())) << what;
            return what.substr(file.path().size());
        }
    }

    TempFile file{"run.frd"};
};

std::vector<std::string> names(const ResultHead& head)
{
    std::vector<std::string> found;
    for (const Component& component : head.components) found.push_back(component.name);
    return found;
}

// A file cut at the end of the given line.
std::string first_lines(const std::string& text, int lines)
{
    size_t end = 0;
    while (lines-- > 0) end = text.find('\n', end) + 1;
    return text.substr(0, end);
}

void append(std::string& bytes, const void* value, size_t size)
{
    bytes.append(static_cast<const char*>(value), size);
}
template <class T>
void append(std::string& bytes, T value)
{
    append(bytes, &value, sizeof value);
}

}  // namespace

TEST_F(FrdReader, the_user_lines_are_kept_as_they_are)
{
    Reader reader = open(mesh().end().text());
    reader.next();
    EXPECT_THAT(reader.description().user_lines, testing::Contains(std::string("Model: two nodes")));
    EXPECT_THAT(reader.description().user_lines, testing::Contains(std::string("MAT    1STEEL")));
}

TEST_F(FrdReader, nodes_are_read_in_both_formats)
{
    for (const auto format : {FrdText::ascii_short, FrdText::ascii_long}) {
        Reader reader = open(FrdText(format).head().nodes(two_nodes).end().text());
        Mesh mesh;
        ASSERT_EQ(reader.next(), BlockKind::nodes);
        reader.read_nodes(mesh);
        EXPECT_THAT(mesh.nodes, ElementsAre(1, 2));
        EXPECT_THAT(mesh.coordinates, ElementsAre(0, 0, 0, 1, 0.5F, -2));
        EXPECT_EQ(reader.next(), BlockKind::end);
    }
}

TEST_F(FrdReader, elements_are_gathered_by_their_type)
{
    for (const auto format : {FrdText::ascii_short, FrdText::ascii_long}) {
        FrdText text(format);
        std::vector<int> brick;
        for (int node = 101; node <= 120; ++node) brick.push_back(node);
        text.head().begin_elements(3).element(7, 4, 2, 1, brick).element(8, 11, 0, 1, {1, 2});
        text.element(9, 4, 2, 3, brick).end_block().end();
        Reader reader = open(text.text());
        Mesh mesh;
        ASSERT_EQ(reader.next(), BlockKind::elements);
        reader.read_elements(mesh);
        ASSERT_EQ(mesh.elements.size(), 2U);
        const ElementGroup& bricks = mesh.elements.at(4);
        EXPECT_THAT(bricks.ids, ElementsAre(7, 9));
        EXPECT_THAT(bricks.groups, ElementsAre(2, 2));
        EXPECT_THAT(bricks.materials, ElementsAre(1, 3));
        EXPECT_EQ(bricks.nodes.size(), 40U);
        EXPECT_EQ(bricks.nodes[19], 120);
        EXPECT_THAT(mesh.elements.at(11).nodes, ElementsAre(1, 2));
    }
}

TEST_F(FrdReader, every_element_type_has_its_number_of_nodes)
{
    constexpr int nodes[] = {0, 8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3};
    FrdText text;
    text.head().begin_elements(12);
    for (int type = 1; type <= 12; ++type)
        text.element(type, type, 0, 1, std::vector<int>(static_cast<size_t>(nodes[type]), 5));
    Reader reader = open(text.end_block().end().text());
    Mesh mesh;
    reader.next();
    reader.read_elements(mesh);
    ASSERT_EQ(mesh.elements.size(), 12U);
    for (int type = 1; type <= 12; ++type)
        EXPECT_EQ(mesh.elements.at(type).nodes.size(), static_cast<size_t>(nodes[type])) << type;
}

TEST_F(FrdReader, a_material_may_be_told_by_its_name)
{
    FrdText text;
    text.head().line("    1UMAT    2ALUMINIUM").begin_elements(1);
    text.line(" -1         1   11    0ALUMI").line(" -2         1         2").end_block().end();
    Reader reader = open(text.text());
    Mesh mesh;
    reader.next();
    reader.read_elements(mesh);
    EXPECT_THAT(mesh.elements.at(11).materials, ElementsAre(2));
}

TEST_F(FrdReader, an_element_whose_identifier_outgrows_its_columns_is_read)
{
    FrdText text(FrdText::ascii_short);
    text.head().begin_elements(1).line(" -1123456   11    3    2").line(" -2    1    2").end_block().end();
    Reader reader = open(text.text());
    Mesh mesh;
    reader.next();
    reader.read_elements(mesh);
    EXPECT_THAT(mesh.elements.at(11).ids, ElementsAre(123456));
    EXPECT_THAT(mesh.elements.at(11).groups, ElementsAre(3));
}

TEST_F(FrdReader, the_number_of_elements_announced_says_nothing)
{
    FrdText text = mesh();
    text.begin_elements(1).element(1, 11, 0, 1, {1, 2}).element(2, 11, 0, 1, {1, 2}).end_block().end();
    EXPECT_EQ(problem(text.text()), "");
}

TEST_F(FrdReader, a_result_tells_value_analysis_and_step)
{
    Reader reader = open(mesh().result("NDTEMP", temperature, {{1, {20}}}, {0.125, 3, 1}).end().text());
    reader.next();
    ASSERT_EQ(reader.next(), BlockKind::result);
    const ResultHead& head = reader.result();
    EXPECT_EQ(head.name, "NDTEMP");
    EXPECT_EQ(head.value, 0.125F);
    EXPECT_EQ(head.step, 3);
    EXPECT_EQ(head.analysis, 1);
    EXPECT_EQ(head.announced, 1);
    EXPECT_THAT(reader.parameters(), ElementsAre("STEP                         3           3           1"));
}

TEST_F(FrdReader, a_component_that_the_records_do_not_hold_is_left_out)
{
    Reader reader = open(mesh().result("DISP", displacement, {{1, {1, 2, 3}}, {2, {4, 5, 6}}}).end().text());
    reader.next();
    reader.next();
    EXPECT_THAT(names(reader.result()), ElementsAre("D1", "D2", "D3"));
    Values values;
    reader.read_values(values);
    EXPECT_THAT(values.nodes, ElementsAre(1, 2));
    EXPECT_THAT(values.values, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(FrdReader, a_component_to_be_calculated_is_kept_where_the_records_hold_it)
{
    Reader reader = open(mesh().result("DISP", displacement, {{1, {1, 2, 2, 3}}}).end().text());
    reader.next();
    reader.next();
    EXPECT_THAT(names(reader.result()), ElementsAre("D1", "D2", "D3", "ALL"));
}

TEST_F(FrdReader, more_than_six_values_continue_on_further_lines)
{
    std::vector<FrdComponent> components;
    std::vector<double> numbers;
    for (int i = 1; i <= 14; ++i) {
        components.push_back({"SDV" + std::to_string(i), 1, i, 0});
        numbers.push_back(i);
    }
    Reader reader = open(mesh().result("SDV", components, {{1, numbers}, {2, numbers}}).end().text());
    reader.next();
    reader.next();
    Values values;
    reader.read_values(values);
    ASSERT_EQ(values.values.size(), 28U);
    EXPECT_EQ(values.values[13], 14);
    EXPECT_EQ(values.values[14], 1);
}

TEST_F(FrdReader, a_result_on_no_node_is_empty)
{
    Reader reader = open(mesh().result("DISP", displacement, {}).end().text());
    reader.next();
    ASSERT_EQ(reader.next(), BlockKind::result);
    EXPECT_EQ(reader.result().components.size(), 3U);
    Values values;
    reader.read_values(values);
    EXPECT_TRUE(values.nodes.empty());
    EXPECT_EQ(reader.next(), BlockKind::end);
}

TEST_F(FrdReader, a_block_that_is_not_read_is_passed_over)
{
    FrdText text = mesh();
    text.begin_elements(1).element(1, 11, 0, 1, {1, 2}).end_block();
    text.result("DISP", displacement, {{1, {1, 2, 3}}}).result("NDTEMP", temperature, {{1, {5}}});
    Reader reader = open(text.end().text());
    EXPECT_EQ(reader.next(), BlockKind::nodes);
    EXPECT_EQ(reader.next(), BlockKind::elements);
    EXPECT_EQ(reader.next(), BlockKind::result);
    EXPECT_EQ(reader.next(), BlockKind::result);
    EXPECT_EQ(reader.result().name, "NDTEMP");
    EXPECT_EQ(reader.next(), BlockKind::end);
}

TEST_F(FrdReader, line_ends_of_windows_are_understood)
{
    std::string text = mesh().result("NDTEMP", temperature, {{1, {5}}}).end().text();
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.insert(at, "\r");
    EXPECT_EQ(problem(text), "");
}

TEST_F(FrdReader, binary_blocks_are_read)
{
    std::string text = FrdText().head().text();
    text += "    2C                             2                                     3\n";
    for (int node = 1; node <= 2; ++node) {
        append(text, int32_t{node});
        for (double x : {0.5, 1.5, 2.5}) append(text, x * node);
    }
    text += "    3C                             1                                     2\n";
    for (int32_t number : {4, 11, 0, 2, 1, 2}) append(text, number);
    text += FrdText().result_head("DISP", displacement, 2, {}).text();
    text.replace(text.find(" 0    1           1\n"), 20, " 0    1           2\n");
    for (int node = 1; node <= 2; ++node) {
        append(text, int32_t{node});
        for (float x : {1.0F, 2.0F, 10.0F}) append(text, x * static_cast<float>(node));
    }
    text += " 9999\n";
    Reader reader = open(text);
    Mesh mesh;
    Values values;
    ASSERT_EQ(reader.next(), BlockKind::nodes);
    reader.read_nodes(mesh);
    ASSERT_EQ(reader.next(), BlockKind::elements);
    reader.read_elements(mesh);
    ASSERT_EQ(reader.next(), BlockKind::result);
    reader.read_values(values);
    EXPECT_EQ(reader.next(), BlockKind::end);
    EXPECT_THAT(mesh.coordinates, ElementsAre(0.5F, 1.5F, 2.5F, 1, 3, 5));
    EXPECT_THAT(mesh.elements.at(11).nodes, ElementsAre(1, 2));
    EXPECT_THAT(values.values, ElementsAre(1, 2, 10, 2, 4, 20));
    EXPECT_EQ(problem(text, false), "");
    EXPECT_THAT(problem(text.substr(0, text.size() - 20)),
                HasSubstr("the file ends within the binary block"));
}

TEST_F(FrdReader, a_file_that_cannot_be_opened_is_told_by_name)
{
    try {
        Reader reader(file.path());
        FAIL();
    } catch (const vak::cli::Problem& problem) {
        EXPECT_EQ(problem.what(), file.path() + ": cannot be read (No such file or directory)");
    }
}

TEST_F(FrdReader, another_kind_of_file_is_refused_at_its_first_line)
{
    const char* expected =
        ", line 1: this is no result file of CalculiX (.frd): it does not begin with a record 1C";
    EXPECT_EQ(problem("*HEADING\n"), expected);
    EXPECT_EQ(problem(""), expected);
    EXPECT_EQ(problem(std::string("\x89HDF\r\n\x1a\n\0\0\0", 11)), expected);
    EXPECT_EQ(problem("%%MatrixMarket matrix array real general\n"),
              ", line 1: this is a matrix; say of which kind its block is to be, with --matrix");
    EXPECT_THAT(problem(std::string(3 << 20, 'x')),
                HasSubstr("line 1: the line is too long for a text file"));
}

// Wherever a file ends too early, this is told with the line, whether the values are read or not.
TEST_F(FrdReader, a_file_cut_after_any_line_is_refused)
{
    FrdText text = mesh();
    text.begin_elements(1).element(1, 11, 0, 1, {1, 2}).end_block();
    text.result("DISP", displacement, {{1, {1, 2, 3}}, {2, {4, 5, 6}}}).end();
    const auto lines = static_cast<int>(std::count(text.text().begin(), text.text().end(), '\n'));
    for (int kept = 1; kept < lines; ++kept)
        for (const bool read : {true, false}) {
            const std::string what = problem(first_lines(text.text(), kept), read);
            EXPECT_THAT(what, HasSubstr(", line " + std::to_string(kept) + ": the file ends before")) << kept;
        }
}

TEST_F(FrdReader, a_file_cut_after_any_byte_is_refused)
{
    FrdText text = mesh();
    text.begin_elements(1).element(1, 11, 0, 1, {1, 2}).end_block();
    text.result("DISP", displacement, {{1, {1, 2, 3}}, {2, {4, 5, 6}}}).end();
    for (size_t kept = 0; kept + 1 < text.text().size(); ++kept)
        EXPECT_NE(problem(text.text().substr(0, kept)), "") << kept;
}

TEST_F(FrdReader, damaged_lines_are_told_by_number)
{
    const std::string sound =
        mesh().result("DISP", displacement, {{1, {1, 2, 3}}, {2, {4, 5, 6}}}).end().text();
    const auto damaged = [&](const char* from, const char* to) {
        std::string text = sound;
        const size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        text.replace(at, std::strlen(from), to);
        return problem(text);
    };
    EXPECT_EQ(damaged(" 5.00000E+00", " 5.0?000E+00"),
              ", line 22: the values cannot be read; the file is damaged");
    EXPECT_EQ(damaged(" 5.00000E+00", ""),
              ", line 22: a node of DISP with 2 values instead of 3; the file is damaged");
    EXPECT_EQ(damaged(" -1         1 1.0", " -7         1 1.0"),
              ", line 21: a record -1 or -3 expected; the file is damaged");
    EXPECT_EQ(damaged(" -1         2 4.0", " -1         0 4.0"),
              ", line 22: node number 0 is not in 1 to 2147483647");
    EXPECT_EQ(damaged(" -1         2 4.0", " -13000000000 4.0"),
              ", line 22: node number 3000000000 is not in 1 to 2147483647");
    EXPECT_EQ(damaged(" -4  DISP", " -5  DISP"),
              ", line 16: the name of the result (-4) expected; the file is damaged");
    EXPECT_EQ(damaged(" -5  D2", " -1  D2"), ", line 18: a component (-5) expected; the file is damaged");
    EXPECT_EQ(damaged(" -4  DISP        4", " -4  DISP        3"),
              ", line 20: a record -1 or -3 expected; the file is damaged");
    EXPECT_EQ(damaged("1.00000E+00           2  ", "1.00000E+00           9  "),
              ", line 23: the block of line 15 ends after 2 of 9 nodes; the file is damaged");
    EXPECT_EQ(damaged("    2C", "    5C"),
              ", line 10: unknown record; the file is damaged or no ASCII result file");
    EXPECT_EQ(damaged(" 9999", " 9999\n    1C"), ", line 25: text behind the last record (9999)");
    EXPECT_EQ(damaged("1.00000E+00           2  ", "x.00000E+00           2  "),
              ", line 15: the value (time, frequency) cannot be read; the file is damaged");
}

TEST_F(FrdReader, what_is_not_supported_is_said)
{
    std::string text = mesh().result("DISP", displacement, {{1, {1, 2, 3}}}).end().text();
    const size_t at = text.find("DISP        4    1");
    EXPECT_THAT(problem(std::string(text).replace(at, 18, "DISP        4    2")),
                HasSubstr("line 16: values by material or element are not supported"));
    text.replace(text.find("           1\n", text.find("100C")), 13, "           7\n");
    EXPECT_THAT(problem(text), HasSubstr("line 15: unknown format 7; known are 0 to 3"));
}

TEST_F(FrdReader, elements_that_cannot_be_are_refused)
{
    const auto with = [&](auto write) {
        FrdText text = mesh();
        text.begin_elements(1);
        write(text);
        return problem(text.end_block().end().text());
    };
    EXPECT_EQ(with([](FrdText& t) {
                  t.element(1, 13, 0, 1, {1, 2});
              }),
              ", line 15: unknown element type 13; known are 1 to 12");
    EXPECT_EQ(with([](FrdText& t) {
                  t.element(1, 11, 0, 1, {1, 2, 3});
              }),
              ", line 15: an element of type 11 with 3 nodes instead of 2; the file is damaged");
    EXPECT_EQ(with([](FrdText& t) {
                  t.element(1, 12, 0, 1, {1, 2});
              }),
              ", line 17: the element's nodes (-2) expected; the file is damaged");
    EXPECT_EQ(with([](FrdText& t) { t.line(" -1         1  x11    0    1"); }),
              ", line 15: the element cannot be read; the file is damaged");
}
