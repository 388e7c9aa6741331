// An array of integers of a block, past the library's readers, which look at the whole block.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/catalogue.h"
#include "store/file.h"

namespace vak::store {

// Fills the values. False unless the array has as many and HDF5 reads them as they are.
bool read_integers(const File& file, const std::string& block, Layout layout, const std::string& array,
                   std::vector<int32_t>& values);

}  // namespace vak::store
