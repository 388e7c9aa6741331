// The result that tells for each element the domain it came from.
#pragma once

#include <cstdint>
#include <vector>

#include "store/catalogue.h"
#include "store/file.h"

namespace vak::merge {

// Adds the number of the first domain to the numbers in a merged file, which count from 0. Numbers that were
// in the domain files before stay.
void shift_domain_numbers(const store::File& merged, const std::vector<store::Catalogue>& domains,
                          int32_t first);

}  // namespace vak::merge
