// Scale-offset chunks: the header that stands before the codes, and the walk over the values.
#include "storage/scale_offset.h"

#include <algorithm>
#include <cstring>

#include "storage/bit_packing.h"
#include "storage/scale_offset_integers.h"
#include "storage/scale_offset_reals.h"

namespace vak {
namespace {

// Bits of a code (4 bytes), size of the smallest value (1), the smallest value (8), unused (8).
constexpr size_t header_size = 21;

void put_number(uint64_t value, size_t size, unsigned char* to)
{
    for (size_t i = 0; i < size; ++i) to[i] = static_cast<unsigned char>(value >> 8 * i);
}

uint64_t get_number(const unsigned char* from, size_t size)
{
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i) value |= static_cast<uint64_t>(from[i]) << 8 * i;
    return value;
}

// The filter's size is one byte longer than whole bytes of codes need.
size_t packed_size(const ScaleOffset& form, unsigned bits) { return header_size + form.count * bits / 8 + 1; }

template <class Codes>
size_t pack(const ScaleOffset& form, const void* data, unsigned char* packed)
{
    const auto* values = static_cast<const typename Codes::Value*>(data);
    const auto codes = Codes::of(form, values);
    if (!codes) return 0;
    const size_t size = packed_size(form, codes->bits());
    std::memset(packed, 0, header_size);
    put_number(codes->bits(), 4, packed);
    packed[4] = 8;
    put_number(codes->stored_low(), 8, packed + 5);
    packed[size - 1] = 0;
    typename Codes::Code block[block_length];
    unsigned char* to = packed + header_size;
    for (size_t i = 0; i < form.count; i += block_length) {
        const size_t count = std::min(block_length, form.count - i);
        codes->encode(values + i, count, block);
        pack_block(block, count, codes->bits(), to);
        to += packed_bytes(count, codes->bits());
    }
    return size;
}

template <class Codes>
void unpack(const ScaleOffset& form, const Codes& codes, const unsigned char* from, void* data)
{
    auto* values = static_cast<typename Codes::Value*>(data);
    typename Codes::Code block[block_length];
    for (size_t i = 0; i < form.count; i += block_length) {
        const size_t count = std::min(block_length, form.count - i);
        unpack_block(from, count, codes.bits(), block);
        from += packed_bytes(count, codes.bits());
        codes.decode(block, count, values + i);
    }
}

// The filter does nothing when it is told to keep every bit of an integer.
bool keeps_all(const ScaleOffset& form)
{
    return !form.real && static_cast<size_t>(form.factor) == 8 * form.size;
}

bool copy_values(const ScaleOffset& form, const unsigned char* from, void* values)
{
    std::memcpy(values, from, form.count * form.size);
    return true;
}

}  // namespace

std::optional<ScaleOffset> scale_offset_form(const unsigned* values, size_t count)
{
    if (count != 20) return {};
    const bool real = values[3] == 1;
    const unsigned size = values[4];
    const bool known_class = real ? values[0] == 0 : values[3] == 0 && values[0] == 2 && values[5] == 1;
    if (!known_class || (size != 4 && size != 8) || values[6] != 0 || values[2] == 0) return {};
    ScaleOffset form{
        .real = real, .size = size, .count = values[2], .factor = static_cast<int32_t>(values[1])};
    if (!real) form.factor = std::max(form.factor, 0);
    if (!real && form.factor > static_cast<int32_t>(8 * size)) return {};
    form.fill_defined = values[7] == 1;
    form.fill = values[8] | (size == 8 ? static_cast<uint64_t>(values[9]) << 32 : 0);
    return form;
}

size_t scale_offset_limit(const ScaleOffset& form) { return header_size + form.count * form.size + 1; }

size_t pack_scale_offset(const ScaleOffset& form, const void* values, unsigned char* packed)
{
    if (form.real && form.size == 4) return pack<RealCodes<float>>(form, values, packed);
    if (form.real) return pack<RealCodes<double>>(form, values, packed);
    if (form.size == 4) return pack<IntegerCodes<int32_t>>(form, values, packed);
    return pack<IntegerCodes<int64_t>>(form, values, packed);
}

bool scale_offset_fits(const unsigned char* packed, size_t size, size_t count, size_t element_size)
{
    if (size < header_size) return false;
    const uint64_t bits = get_number(packed, 4);
    return bits < 8 * element_size && size - header_size >= packed_bytes(count, static_cast<unsigned>(bits));
}

bool can_unpack_scale_offset(const ScaleOffset& form, const unsigned char* packed, size_t size)
{
    if (keeps_all(form)) return size >= form.count * form.size;
    if (size < header_size) return false;
    const uint64_t bits = get_number(packed, 4);
    if (bits > 8 * form.size) return false;
    const auto code_bits = static_cast<unsigned>(bits);
    const size_t needed = header_size + packed_bytes(form.count, code_bits);
    if (bits == 8 * form.size) return size >= needed;
    // Another size is that of what stood here before, where its place was not written behind the new bytes.
    return size == needed || size == packed_size(form, code_bits);
}

bool is_one_value(const ScaleOffset& form, const unsigned char* packed)
{
    return !keeps_all(form) && get_number(packed, 4) == 0;
}

bool unpack_scale_offset(const ScaleOffset& form, const unsigned char* packed, size_t size, void* values)
{
    if (!can_unpack_scale_offset(form, packed, size)) return false;
    if (keeps_all(form)) return copy_values(form, packed, values);
    const auto bits = static_cast<unsigned>(get_number(packed, 4));
    const uint64_t low = get_number(packed + 5, std::min<size_t>(packed[4], 8));
    const unsigned char* from = packed + header_size;
    if (bits == 8 * form.size) return copy_values(form, from, values);
    if (form.real && form.size == 4) {
        unpack(form, RealCodes<float>(form, bits, low), from, values);
    } else if (form.real) {
        unpack(form, RealCodes<double>(form, bits, low), from, values);
    } else if (form.size == 4) {
        unpack(form, IntegerCodes<int32_t>(form, bits, low), from, values);
    } else {
        unpack(form, IntegerCodes<int64_t>(form, bits, low), from, values);
    }
    return true;
}

}  // namespace vak
