// The data of the blocks of a result file, record by record.
#include <algorithm>
#include <limits>

#include "frd/fields.h"
#include "frd/reader.h"
#include "text/numbers.h"

namespace vak::frd {

using text::columns;
using text::integer;
using text::trimmed;

int32_t nodes_per_element(int32_t type)
{
    constexpr int32_t nodes[] = {0, 8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3};
    return type >= 1 && type <= 12 ? nodes[type] : 0;
}

int32_t Reader::identifier(std::optional<int64_t> value, const char* what) const
{
    if (!value) fail_record(std::string("the ") + what + " number cannot be read; the file is damaged");
    if (*value < 1 || *value > std::numeric_limits<int32_t>::max())
        fail_record(std::string(what) + " number " + std::to_string(*value) + " is not in 1 to 2147483647");
    return static_cast<int32_t>(*value);
}

// Called when the last record is taken. The number of elements that the solver announces is that of
// the input, before shells and beams were expanded, so it says nothing.
void Reader::end_block()
{
    inside_ = false;
    if (kind_ != BlockKind::elements && announced_ >= 0 && taken_ != announced_)
        lines_.fail("the block of line " + std::to_string(block_line_) + " ends after " +
                    std::to_string(taken_) + " of " + std::to_string(announced_) +
                    " nodes; the file is damaged");
}

void Reader::skip()
{
    if (binary()) {
        Mesh mesh;
        if (kind_ == BlockKind::elements) return read_elements(mesh);
        while (next_record()) {
        }
        return;
    }
    taken_ += record_ahead_;
    for (;;) {
        need_line("the end of the block (-3)");
        const std::string_view key = lines_.text().substr(0, 3);
        if (key == " -3") return end_block();
        if (key == " -1")
            ++taken_;
        else if (key != " -2")
            lines_.fail("a record -1, -2 or -3 expected; the file is damaged");
    }
}

// Takes the next node with its values; false at the end of the block.
bool Reader::next_record()
{
    if (!inside_) return false;
    if (record_ahead_) {
        record_ahead_ = false;
    } else {
        const bool taken = binary()
                               ? next_binary_record(kind_ == BlockKind::nodes ? 3 : result_.components.size())
                               : next_ascii_record();
        if (!taken) {
            end_block();
            return false;
        }
    }
    ++taken_;
    return true;
}

bool Reader::next_ascii_record()
{
    need_line("the end of the block (-3)");
    if (lines_.text().starts_with(" -3")) return false;
    if (!lines_.text().starts_with(" -1")) lines_.fail("a record -1 or -3 expected; the file is damaged");
    record_line_ = lines_.number();
    values_.clear();
    if (!data_line(lines_.text().substr(3), id_width(), id_, values_))
        lines_.fail("the values cannot be read; the file is damaged");
    while (lines_.next()) {
        if (!lines_.text().starts_with(" -2")) {
            lines_.put_back();
            break;
        }
        std::optional<int64_t> none;
        if (!data_line(lines_.text().substr(3), id_width(), none, values_) || none)
            lines_.fail("the values cannot be read; the file is damaged");
    }
    return true;
}

template <class T>
T Reader::binary_value()
{
    T value{};
    if (!lines_.bytes(&value, sizeof value))
        lines_.fail("the file ends within the binary block of this line; let the solver write it again",
                    block_line_);
    return value;
}

bool Reader::next_binary_record(size_t reals)
{
    if (taken_ == announced_) return false;
    id_ = binary_value<int32_t>();
    values_.clear();
    for (size_t i = 0; i < reals; ++i)
        values_.push_back(format_ == Format::binary_float ? binary_value<float>()
                                                          : static_cast<float>(binary_value<double>()));
    return true;
}

void Reader::read_nodes(Mesh& mesh)
{
    while (next_record()) {
        if (values_.size() != 3) fail_record("a node needs three coordinates; the file is damaged");
        mesh.nodes.push_back(identifier(id_, "node"));
        mesh.coordinates.insert(mesh.coordinates.end(), values_.begin(), values_.end());
    }
}

void Reader::read_values(Values& out)
{
    out.nodes.clear();
    out.values.clear();
    while (next_record()) {
        if (values_.size() != result_.components.size())
            fail_record("a node of " + result_.name + " with " + std::to_string(values_.size()) +
                        " values instead of " + std::to_string(result_.components.size()) +
                        "; the file is damaged");
        out.nodes.push_back(identifier(id_, "node"));
        out.values.insert(out.values.end(), values_.begin(), values_.end());
    }
}

// Some versions of the solver write the beginning of the material's name instead of its number.
int32_t Reader::material_number(std::string_view text) const
{
    if (text.empty()) return 0;
    if (const auto number = integer(text)) return static_cast<int32_t>(*number);
    for (const std::string& line : description_.user_lines)
        if (line.starts_with("MAT") && columns(line, 8, 80).starts_with(text))
            return static_cast<int32_t>(integer(columns(line, 3, 5)).value_or(0));
    return 0;
}

void Reader::element_head(std::string_view body, int32_t& type)
{
    const size_t width = id_width();
    nodes_.clear();
    const bool outgrown = body.size() > width + 15;  // by the identifier; all columns are shifted then
    if (outgrown ? !integer_line(body, body.size() + 1, nodes_) || nodes_.size() != 4
                 : !integer_line(body.substr(0, width), width, nodes_) ||
                       !integer_line(columns(body, width, 10), 5, nodes_) || nodes_.size() != 3)
        lines_.fail("the element cannot be read; the file is damaged");
    material_ =
        outgrown ? static_cast<int32_t>(nodes_[3]) : material_number(trimmed(columns(body, width + 10, 5)));
    id_ = nodes_[0];
    type = static_cast<int32_t>(nodes_[1]);
    group_ = static_cast<int32_t>(nodes_[2]);
}

bool Reader::next_element(int32_t& type)
{
    need_line("the end of the block (-3)");
    if (lines_.text().starts_with(" -3")) return false;
    if (!lines_.text().starts_with(" -1")) lines_.fail("a record -1 or -3 expected; the file is damaged");
    record_line_ = lines_.number();
    element_head(lines_.text().substr(3), type);
    nodes_.clear();
    const auto count = static_cast<size_t>(nodes_per_element(type));
    while (nodes_.size() < count) {
        need_record(" -2", "the element's nodes (-2)");
        if (!integer_line(lines_.text().substr(3), id_width(), nodes_) || lines_.text().size() == 3)
            lines_.fail("the element's nodes cannot be read; the file is damaged");
    }
    return true;
}

bool Reader::next_binary_element(int32_t& type)
{
    if (taken_ == announced_) return false;
    id_ = binary_value<int32_t>();
    type = binary_value<int32_t>();
    group_ = binary_value<int32_t>();
    material_ = binary_value<int32_t>();
    nodes_.clear();
    for (int32_t i = 0; i < nodes_per_element(type); ++i) nodes_.push_back(binary_value<int32_t>());
    return true;
}

void Reader::read_elements(Mesh& mesh)
{
    int32_t type = 0;
    while (binary() ? next_binary_element(type) : next_element(type)) {
        ++taken_;
        const auto count = static_cast<size_t>(nodes_per_element(type));
        if (count == 0) fail_record("unknown element type " + std::to_string(type) + "; known are 1 to 12");
        if (nodes_.size() != count)
            fail_record("an element of type " + std::to_string(type) + " with " +
                        std::to_string(nodes_.size()) + " nodes instead of " + std::to_string(count) +
                        "; the file is damaged");
        ElementGroup& group = mesh.elements[type];
        group.ids.push_back(identifier(id_, "element"));
        group.groups.push_back(group_);
        group.materials.push_back(material_);
        for (const int64_t node : nodes_) group.nodes.push_back(identifier(node, "node"));
    }
    end_block();
}

}  // namespace vak::frd
