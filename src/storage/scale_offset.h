// The scale-offset form of a chunk, bit for bit that of HDF5's filter: each value becomes its distance from
// the smallest one, of floats in units of the last decimal kept, in as few bits as the largest distance
// needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vak {

struct ScaleOffset {
    bool real = false;   // floating point, otherwise signed integers; little-endian both
    size_t size = 0;     // bytes of a value, 4 or 8
    size_t count = 0;    // values of a chunk
    int32_t factor = 0;  // reals: decimals kept; integers: bits of each value, 0 for as many as needed
    bool fill_defined = false;
    uint64_t fill = 0;  // bit pattern of the fill value
};

// From the filter's values as HDF5 stores them with the dataset; nothing when the form is not one of these.
std::optional<ScaleOffset> scale_offset_form(const unsigned* values, size_t count);

// Room that pack_scale_offset may need.
size_t scale_offset_limit(const ScaleOffset& form);

// Gives the packed size, or 0 when the chunk must be stored as it is: the form would need as many bits as the
// type has (HDF5 1.14.5 writes such chunks but cannot read them), a value is infinite or not a number, or
// some value would come back further off than half a unit of the last kept decimal and the rounding of its
// type.
size_t pack_scale_offset(const ScaleOffset& form, const void* values, unsigned char* packed);

// Whether the bytes are a header and codes of so many values of so many bytes, as HDF5 reads them.
bool scale_offset_fits(const unsigned char* packed, size_t size, size_t count, size_t element_size);

// False: the bytes cannot be a chunk of this form.
bool can_unpack_scale_offset(const ScaleOffset& form, const unsigned char* packed, size_t size);

// Of such bytes: whether they are few and say that all values of the chunk are the same.
bool is_one_value(const ScaleOffset& form, const unsigned char* packed);

// Reads chunks of full precision as well. False: the bytes cannot be a chunk of this form.
bool unpack_scale_offset(const ScaleOffset& form, const unsigned char* packed, size_t size, void* values);

}  // namespace vak
