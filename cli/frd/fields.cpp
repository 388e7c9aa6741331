#include "frd/fields.h"

#include <algorithm>

#include "text/numbers.h"

namespace vak::frd {

using text::integer;
using text::is_digit;
using text::is_sign;
using text::real;
using text::trimmed;

namespace {

constexpr size_t value_width = 12;

bool has_leading_zero(std::string_view field) { return field.size() > 1 && field[0] == '0'; }

// Values that fill their columns exactly. What is left over before them is the identifier, which may
// have outgrown its columns; then it stands close to the first value.
bool fixed_values(std::string_view body, size_t width, std::optional<int64_t>& id, std::vector<float>& values)
{
    if (body.size() < width) return false;
    const size_t count = (body.size() - width) / value_width;
    const std::string_view head = body.substr(0, body.size() - count * value_width);
    id = integer(head);
    if (head.size() > width && (!id || head.back() == ' ')) return false;
    if (!id && !trimmed(head).empty()) return false;
    for (size_t i = 0; i < count; ++i) {
        const auto value = real(body.substr(head.size() + i * value_width, value_width));
        if (!value) return false;
        values.push_back(*value);
    }
    return true;
}

// One value as the solver prints it, sign d . ddddd E sign dd or ddd, at the front of the text; its length or
// 0.
size_t printed_value(std::string_view text)
{
    constexpr std::string_view pattern = "0.00000E+00";
    const size_t sign = !text.empty() && is_sign(text[0]) ? 1 : 0;
    if (text.size() < sign + pattern.size()) return 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = text[sign + i], like = pattern[i];
        if (is_digit(like) ? !is_digit(c) : is_sign(like) ? !is_sign(c) : c != like) return 0;
    }
    const size_t end = sign + pattern.size();
    return end < text.size() && is_digit(text[end]) ? end + 1 : end;
}

// Values one after the other, some of them wider than their columns because of a long exponent.
bool shifted_values(std::string_view body, std::optional<int64_t>& id, std::vector<float>& values)
{
    size_t at = std::min(body.find_first_not_of(' '), body.size());
    size_t end = at;
    while (end < body.size() && is_digit(body[end])) ++end;
    const bool has_id = end < body.size() && body[end] != '.';
    id = has_id ? integer(body.substr(at, end - at)) : std::nullopt;
    for (at = has_id ? end : at; at < body.size();) {
        at = std::min(body.find_first_not_of(' ', at), body.size());
        const size_t length = printed_value(body.substr(at));
        const auto value = real(body.substr(at, length));
        if (!value) return false;
        values.push_back(*value);
        at += length;
    }
    return true;
}

bool fixed_integers(std::string_view body, size_t width, std::vector<int64_t>& values)
{
    if (body.size() % width != 0) return false;
    for (size_t at = 0; at < body.size(); at += width) {
        const std::string_view field = body.substr(at, width);
        const auto value = integer(field);
        if (!value || field.back() == ' ' || has_leading_zero(trimmed(field))) return false;
        values.push_back(*value);
    }
    return true;
}

bool separated_integers(std::string_view body, std::vector<int64_t>& values)
{
    for (size_t at = body.find_first_not_of(' '); at < body.size();) {
        const size_t end = std::min(body.find(' ', at), body.size());
        const auto value = integer(body.substr(at, end - at));
        if (!value) return false;
        values.push_back(*value);
        at = body.find_first_not_of(' ', end);
    }
    return true;
}

}  // namespace

bool data_line(std::string_view body, size_t width, std::optional<int64_t>& id, std::vector<float>& values)
{
    const size_t before = values.size();
    if (fixed_values(body, width, id, values)) return true;
    values.resize(before);
    return shifted_values(body, id, values);
}

bool integer_line(std::string_view body, size_t width, std::vector<int64_t>& values)
{
    const size_t before = values.size();
    if (fixed_integers(body, width, values)) return true;
    values.resize(before);
    return separated_integers(body, values);
}

}  // namespace vak::frd
