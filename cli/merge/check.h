// Whether a merged file holds what its domains have.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "store/catalogue.h"
#include "store/file.h"

namespace vak::merge {

// The domain files, open, with what they hold.
struct Domains {
    std::vector<std::string> names;
    std::deque<store::File> files;
    std::vector<vak_id> roots;
    std::vector<store::Catalogue> catalogues;

    store::Layout layout() const { return catalogues.front().layout; }
};

// Opens the file anew. Every block of a domain must be there and be of the form that its reader wants. A
// merged one must list the entities of all domains, each once, and have the number of components, states and
// whatever else the lowest domain's has; a collector the entities of all domains' collectors; a block that is
// copied the attributes of the lowest domain's. With domain numbers, all elements must have one. A problem
// names the first block that has not.
void check_merged(const Domains& domains, const std::string& file, bool domain_numbers = false);

}  // namespace vak::merge
