// Attributes as the catalogue reads them: one that is missing or of another kind is no error and prints
// nothing.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "storage/hdf5_id.h"

namespace vak {

// The first of the attributes that the object has; invalid when it has none of them.
Attribute first_attribute(hid_t object, std::span<const char* const> names);

// The first element, whatever the shape: an integer of at most 4 bytes, or a text of fixed length with all
// its padding.
std::optional<int32_t> integer_of(const Attribute& attribute);
std::optional<std::string> text_of(const Attribute& attribute);

}  // namespace vak
