// Elements from the caller's form to the stored one and back, as HDF5 would convert them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vak {

// Sizes of an element on both sides; different ones are for numbers of 4 and 8 bytes.
struct ElementForm {
    int32_t type = 0;  // type code
    size_t from = 0;
    size_t to = 0;
};

bool can_copy(const ElementForm& form);
void copy_elements(const ElementForm& form, const unsigned char* from, unsigned char* to, size_t count);

// So many copies of one element, as it is.
void repeat_element(const unsigned char* element, size_t size, unsigned char* to, size_t count);

}  // namespace vak
