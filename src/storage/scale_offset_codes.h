// What the number forms of scale-offset have in common: codes of `bits` bits that count from the smallest
// value `low`; where the chunk has fill values, the highest code stands for them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "storage/scale_offset.h"

namespace vak {

template <class T>
using CodeOf = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

template <class T>
T from_bits(uint64_t bits)
{
    return std::bit_cast<T>(static_cast<CodeOf<T>>(bits));
}

template <class T>
struct Extremes {
    T low = 0;
    T high = 0;
    bool has_fill = false;
};

// Bits that tell so many codes apart.
inline unsigned bits_for(uint64_t codes)
{
    return codes <= 1 ? 0 : static_cast<unsigned>(std::bit_width(codes - 1));
}

template <class Code>
Code highest_code(unsigned bits)
{
    return static_cast<Code>((Code{1} << bits) - 1);
}

}  // namespace vak
