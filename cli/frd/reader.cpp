// The walk over the blocks of a result file and their heads; what they hold is read in data.cpp.
#include "frd/reader.h"

#include <algorithm>
#include <limits>

#include "text/numbers.h"

namespace vak::frd {

using text::columns;
using text::integer;
using text::real;
using text::trimmed;

Reader::Reader(const std::string& path) : lines_(path)
{
    const bool is_frd = lines_.next() && trimmed(lines_.text()).starts_with("1C");
    if (lines_.text().starts_with("%%MatrixMarket"))
        lines_.fail("this is a matrix; say of which kind its block is to be, with --matrix");
    if (!is_frd)
        lines_.fail("this is no result file of CalculiX (.frd): it does not begin with a record 1C", 1);
    lines_.put_back();
}

void Reader::need_line(const char* missing)
{
    if (!lines_.next())
        lines_.fail(std::string("the file ends before ") + missing + "; let the solver write it again");
}

std::string_view Reader::need_record(const char* key, const char* missing)
{
    need_line(missing);
    if (!lines_.text().starts_with(key)) lines_.fail(std::string(missing) + " expected; the file is damaged");
    return lines_.text();
}

// An integer field of a head; blank is 0.
int32_t Reader::column_number(std::string_view field, const char* what) const
{
    const auto number = trimmed(field).empty() ? 0 : integer(field);
    if (!number || *number < 0 || *number > std::numeric_limits<int32_t>::max())
        lines_.fail(std::string(what) + " cannot be read; the file is damaged");
    return static_cast<int32_t>(*number);
}

// The heads 2C, 3C and 100C have the number of records and the format in the same columns.
void Reader::open_block()
{
    const std::string_view text = lines_.text();
    const int32_t format = column_number(columns(text, 73, 7), "the format");
    if (format > 3) lines_.fail("unknown format " + std::to_string(format) + "; known are 0 to 3");
    format_ = static_cast<Format>(format);
    const std::string_view announced = columns(text, 24, 12);
    announced_ = trimmed(announced).empty() ? -1 : column_number(announced, "the number of records");
    if (binary() && announced_ < 0) lines_.fail("a binary block without its number of records");
    block_line_ = lines_.number();
    taken_ = 0;
    inside_ = true;
    record_ahead_ = false;
}

BlockKind Reader::next()
{
    if (inside_) skip();
    parameters_.clear();
    for (;;) {
        need_line("its last record (9999)");
        const std::string_view text = trimmed(lines_.text());
        if (text.empty()) continue;
        if (text.starts_with("100C")) return kind_ = result_head();
        if (text == "9999") return kind_ = end_of_file();
        const std::string_view key = text.substr(0, 2), rest = text.substr(std::min<size_t>(2, text.size()));
        if (key == "1C") {
            description_.title = trimmed(rest);
        } else if (key == "1U") {
            description_.user_lines.emplace_back(rest);
        } else if (key == "1P") {
            parameters_.emplace_back(rest);
        } else if (key == "2C" || key == "3C") {
            open_block();
            return kind_ = key == "2C" ? BlockKind::nodes : BlockKind::elements;
        } else {
            lines_.fail("unknown record; the file is damaged or no ASCII result file");
        }
    }
}

BlockKind Reader::end_of_file()
{
    while (lines_.next())
        if (!lines_.text().empty()) lines_.fail("text behind the last record (9999)");
    return BlockKind::end;
}

BlockKind Reader::result_head()
{
    kind_ = BlockKind::result;
    open_block();
    const std::string_view head = lines_.text();
    const std::string_view value_field = columns(head, 12, 12);
    const auto value = trimmed(value_field).empty() ? 0.0F : real(value_field);
    if (!value) lines_.fail("the value (time, frequency) cannot be read; the file is damaged");
    result_ = {};
    result_.line = block_line_;
    result_.value = *value;
    result_.announced = announced_;
    result_.analysis = column_number(columns(head, 56, 2), "the analysis type");
    result_.step = column_number(columns(head, 58, 5), "the step number");

    const std::string_view text = need_record(" -4", "the name of the result (-4)");
    result_.name = trimmed(columns(text, 5, 8));
    if (result_.name.empty()) lines_.fail("a result without a name; the file is damaged");
    if (column_number(columns(text, 18, 5), "the kind of the result") > 1)
        lines_.fail("values by material or element are not supported; write this result at the nodes");
    for (int32_t left = column_number(columns(text, 13, 5), "the number of components"); left > 0; --left)
        component_line();
    keep_stored_components();
    return BlockKind::result;
}

void Reader::component_line()
{
    const std::string_view text = need_record(" -5", "a component (-5)");
    result_.components.push_back(
        {.name = std::string(trimmed(columns(text, 5, 8))),
         .type = column_number(columns(text, 18, 5), "the component's type"),
         .row = column_number(columns(text, 23, 5), "the component's row"),
         .column = column_number(columns(text, 28, 5), "the component's column"),
         .calculated = column_number(columns(text, 33, 5), "the component's source") == 1});
}

// A component to be calculated (ALL of a displacement) is announced, but as a rule the records do not
// hold it: the first one tells.
void Reader::keep_stored_components()
{
    auto& components = result_.components;
    if (!binary() && next_record()) {
        record_ahead_ = true;
        --taken_;
        if (values_.size() == components.size()) return;
    }
    std::erase_if(components, [](const Component& c) { return c.calculated; });
    if (record_ahead_ && values_.size() != components.size())
        fail_record("a node with " + std::to_string(values_.size()) + " values, " +
                    std::to_string(components.size()) + " components are announced; the file is damaged");
}

}  // namespace vak::frd
