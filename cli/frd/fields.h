// Numbers and texts in the fixed columns of a result file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vak::frd {

// The given columns, counted from 0; columns behind the end of the line are missing from the result.
std::string_view columns(std::string_view line, size_t first, size_t count);

std::string_view trimmed(std::string_view text);

// A number with blanks around it and nothing else.
std::optional<int64_t> integer(std::string_view field);
std::optional<float> real(std::string_view field);

// A data line behind its key: an identifier of `width` columns, then values of 12 columns. Identifiers and
// exponents that outgrow their columns are understood. Appends the values; false when it is no such line.
bool data_line(std::string_view body, size_t width, std::optional<int64_t>& id, std::vector<float>& values);

// Integers of `width` columns each, or separated by blanks where the columns do not hold.
bool integer_line(std::string_view body, size_t width, std::vector<int64_t>& values);

}  // namespace vak::frd
