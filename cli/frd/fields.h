// Lines of numbers in the fixed columns of a result file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vak::frd {

// A data line behind its key: an identifier of `width` columns, then values of 12 columns. Identifiers and
// exponents that outgrow their columns are understood. Appends the values; false when it is no such line.
bool data_line(std::string_view body, size_t width, std::optional<int64_t>& id, std::vector<float>& values);

// Integers of `width` columns each, or separated by blanks where the columns do not hold.
bool integer_line(std::string_view body, size_t width, std::vector<int64_t>& values);

}  // namespace vak::frd
