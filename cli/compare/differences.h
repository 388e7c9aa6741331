// What tells two blocks of one place apart. Entities are matched by their identifiers, in whatever order each
// file has them.
#pragma once

#include <string>
#include <vector>

#include "show/view.h"

namespace vak::compare {

// A line for each field that differs. Real values may differ by the tolerance times the largest magnitude
// that the first block's array has; 0 asks for the same values. How they are stored is not compared.
std::vector<std::string> differences(const show::BlockView& a, const show::BlockView& b, double tolerance);

}  // namespace vak::compare
