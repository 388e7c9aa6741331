// Scale-offset codes of signed integers: the distance from the smallest; nothing is lost.
#pragma once

#include <algorithm>
#include <limits>
#include <optional>

#include "storage/scale_offset_codes.h"

namespace vak {

template <class T>
class IntegerCodes {
public:
    using Value = T;
    using Code = CodeOf<T>;

    // The codes that the filter would give these values, unless they need as many bits as the type has.
    static std::optional<IntegerCodes> of(const ScaleOffset& form, const T* values);

    // As stored with a chunk.
    IntegerCodes(const ScaleOffset& form, unsigned bits, uint64_t low)
        : bits_(bits),
          low_(static_cast<Code>(low)),
          fill_(from_bits<T>(form.fill)),
          has_fill_(form.fill_defined)
    {
    }

    unsigned bits() const { return bits_; }
    uint64_t stored_low() const { return static_cast<uint64_t>(int64_t{static_cast<T>(low_)}); }

    void encode(const T* values, size_t count, Code* codes) const
    {
        for (size_t i = 0; i < count; ++i) codes[i] = static_cast<Code>(values[i]) - low_;
        if (!has_fill_) return;
        const Code mark = highest_code<Code>(bits_);
        for (size_t i = 0; i < count; ++i) codes[i] = values[i] == fill_ ? mark : codes[i];
    }

    void decode(const Code* codes, size_t count, T* values) const
    {
        for (size_t i = 0; i < count; ++i) values[i] = static_cast<T>(codes[i] + low_);
        if (!has_fill_) return;
        const Code mark = highest_code<Code>(bits_);
        for (size_t i = 0; i < count; ++i) values[i] = codes[i] == mark ? fill_ : values[i];
    }

private:
    unsigned bits_;
    Code low_;
    T fill_;
    bool has_fill_;
};

template <class T>
Extremes<T> extremes_beside_fill(const T* values, size_t count, T fill)
{
    constexpr T highest = std::numeric_limits<T>::max();
    constexpr T lowest = std::numeric_limits<T>::lowest();
    Extremes<T> found{.low = highest, .high = lowest, .has_fill = true};
    for (size_t i = 0; i < count; ++i) {
        found.low = std::min(found.low, values[i] == fill ? highest : values[i]);
        found.high = std::max(found.high, values[i] == fill ? lowest : values[i]);
    }
    if (found.low > found.high) found.low = found.high = 0;  // nothing but fill values
    return found;
}

template <class T>
Extremes<T> integer_extremes(const T* values, size_t count, bool fill_defined, T fill)
{
    Extremes<T> found{.low = values[0], .high = values[0]};
    T differing = 1;  // 0 as soon as a value equals the fill value
    for (size_t i = 0; i < count; ++i) {
        found.low = std::min(found.low, values[i]);
        found.high = std::max(found.high, values[i]);
        differing = static_cast<T>(differing & static_cast<T>(values[i] != fill));
    }
    return fill_defined && differing == 0 ? extremes_beside_fill(values, count, fill) : found;
}

template <class T>
std::optional<IntegerCodes<T>> IntegerCodes<T>::of(const ScaleOffset& form, const T* values)
{
    const auto found = integer_extremes(values, form.count, form.fill_defined, from_bits<T>(form.fill));
    const auto span = static_cast<Code>(static_cast<Code>(found.high) - static_cast<Code>(found.low));
    if (span > std::numeric_limits<Code>::max() - 2) return {};
    const unsigned needed = bits_for(uint64_t{span} + (form.fill_defined ? 2 : 1));
    const unsigned bits = form.factor > 0 ? static_cast<unsigned>(form.factor) : needed;
    if (bits < needed || bits >= 8 * sizeof(T)) return {};
    IntegerCodes codes(form, bits, static_cast<Code>(found.low));
    codes.has_fill_ = found.has_fill;
    return codes;
}

}  // namespace vak
