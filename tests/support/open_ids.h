// What is open in this process: HDF5 identifiers and descriptors.
#pragma once

#include <cstdint>
#include <ostream>

#include "support/ids.h"

namespace vak::test {

// How many HDF5 identifiers of each class are in use.
struct OpenIds {
    int64_t objects = 0;  // files, groups, datasets, attributes, stored types
    int64_t spaces = 0;
    int64_t types = 0;
    int64_t properties = 0;
    int64_t error_stacks = 0;

    int64_t total() const { return objects + spaces + types + properties + error_stacks; }
    bool operator==(const OpenIds&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const OpenIds& ids);

// Counts from its making on. HDF5 tells no number for its own classes, but gives identifiers in ascending
// order, so those between the first and the next one are asked whether they are still valid.
class IdCounter {
public:
    IdCounter();
    OpenIds count() const;

private:
    OpenIds first_;  // identifiers here, not counts
};

size_t open_descriptors();

}  // namespace vak::test
