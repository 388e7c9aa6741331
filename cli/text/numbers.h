// Numbers in texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vak::text {

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }
inline bool is_sign(char c) { return c == '+' || c == '-'; }

// The given columns, counted from 0; columns behind the end of the line are missing from the result.
std::string_view columns(std::string_view line, size_t first, size_t count);

// Without the blanks at both ends.
std::string_view trimmed(std::string_view text);

// A number with blanks around it and nothing else. Reals are the nearest number of single precision, also of
// the forms 1.0D+01 and 1.0-101; one beyond its range is none.
std::optional<int64_t> integer(std::string_view field);
std::optional<float> real(std::string_view field);

}  // namespace vak::text
