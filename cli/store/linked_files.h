// The other files that a file shows blocks of, by external links.
#pragma once

#include <vak_sp.h>

#include <string>
#include <vector>

namespace vak::store {

// The names of those that are not there (or are no regular files), as the links at the location and in the
// groups directly below it say them, each once.
std::vector<std::string> missing_files(vak_id location);

}  // namespace vak::store
