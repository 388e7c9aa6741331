// Cuts a mesh into domains of about as many elements each, with few nodes between them.
#pragma once

#include <cstdint>
#include <vector>

#include "frd/records.h"

namespace vak::domains {

// The domain of each element, from 0; the elements in the order of the mesh: type by type. Every domain has
// an element. A problem when there are fewer elements than domains.
std::vector<int32_t> partition(const frd::Mesh& mesh, int32_t domains);

}  // namespace vak::domains
