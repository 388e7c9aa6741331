// How many files may be open at once.
#pragma once

#include <cstddef>

namespace vak::store {

// Raises the limit as far as the system lets, when that is needed for so many files beside those that are
// always open. Gives how many may be open now.
size_t allow_open_files(size_t wanted);

}  // namespace vak::store
