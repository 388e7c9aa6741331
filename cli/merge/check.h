// Whether a merged file holds what its domains have.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "store/catalogue.h"
#include "store/file.h"

namespace vak::merge {

// Opens the file anew. Every block of a domain must be there. Elements and entity results must have as many
// entities as the domains together; other kinds at least as many as each domain's block and at most as many
// as their sum. A problem names the first block that has not.
void check_merged(const std::deque<store::File>& domains, const std::vector<store::Catalogue>& catalogues,
                  const std::string& file);

}  // namespace vak::merge
