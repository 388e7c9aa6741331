// The mesh as blocks: identifiers of the nodes, elements by type, parts, groups of elements.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "frd/records.h"
#include "store/file.h"

namespace vak::import {

// A part is what has one group and one material. Parts count from 1, by group and then material.
struct PartKey {
    int32_t group = 0, material = 0;
    auto operator<=>(const PartKey&) const = default;
};
std::map<PartKey, int32_t> part_numbers(const frd::Mesh& mesh);

// "STEEL", "STEEL, group 2"; a material without a name is "material 3".
std::string part_title(const frd::Description& description, const PartKey& part);

// "HE8" ... "BE3", the names that the solver's viewer gives the types 1 to 12, and their dimension in space.
const char* element_type_name(int32_t type);
int32_t element_dimension(int32_t type);

// Writes a mesh, which is a part of the whole one or all of it. Parts are numbered in the whole.
void write_mesh(const store::File& file, const frd::Mesh& mesh, const frd::Mesh& whole,
                const frd::Description& description);

}  // namespace vak::import
