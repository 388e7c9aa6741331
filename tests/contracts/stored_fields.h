// The attributes and datasets that a block is stored as, and odd objects in their place.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/ids.h"

namespace vak::test {

// How a field was stored before anything stood in its place.
struct Field {
    std::string group, name;
    bool is_attribute = false;
    H5T_class_t type_class = H5T_NO_CLASS;
    size_t size = 0;
    std::vector<hsize_t> extents;
};

inline std::ostream& operator<<(std::ostream& stream, const Field& field) { return stream << field.name; }

// Every field of a block, in its subgroups too.
std::vector<Field> fields_of(hid_t block);

void remove_field(hid_t block, const Field& field);

TypeId text_type_of(size_t length, H5T_str_t padding = H5T_STR_NULLTERM);
SpaceId array_space(const std::vector<hsize_t>& extents);

}  // namespace vak::test
