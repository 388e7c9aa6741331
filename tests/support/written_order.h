// The names in a group in the order in which they were written.
#pragma once

#include <hdf5.h>

#include <string>
#include <vector>

namespace vak::test {

std::vector<std::string> names_as_written(hid_t group);

}  // namespace vak::test
