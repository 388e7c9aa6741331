#include "text/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace vak::text {

namespace {

bool is_exponent(char c) { return c == 'E' || c == 'e' || c == 'D' || c == 'd'; }

// The Fortran forms 1.0D+01 and 1.0-101, and values beyond the range of float.
std::optional<float> uncommon_real(std::string_view text)
{
    std::array<char, 64> plain{};
    size_t length = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (length + 2 >= plain.size()) return std::nullopt;
        if (!is_digit(c) && !is_sign(c) && !is_exponent(c) && c != '.') return std::nullopt;
        const bool bare_exponent = i > 0 && is_sign(c) && !is_exponent(text[i - 1]);
        if (bare_exponent) plain[length++] = 'E';
        plain[length++] = is_exponent(c) ? 'E' : c;
    }
    char* end = nullptr;
    const double value = std::strtod(plain.data(), &end);
    if (end != plain.data() + length || std::abs(value) > std::numeric_limits<float>::max())
        return std::nullopt;
    return static_cast<float>(value);
}

}  // namespace

std::string_view columns(std::string_view line, size_t first, size_t count)
{
    return first < line.size() ? line.substr(first, count) : std::string_view{};
}

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::optional<int64_t> integer(std::string_view field)
{
    const std::string_view text = trimmed(field);
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<float> real(std::string_view field)
{
    std::string_view text = trimmed(field);
    if (text.size() > 1 && text[0] == '+' && !is_sign(text[1])) text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    float value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc{} && end == text.data() + text.size()) return value;
    return is_digit(text.back()) ? uncommon_real(text) : std::nullopt;
}

}  // namespace vak::text
