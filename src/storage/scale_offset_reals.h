// Scale-offset codes of floating point numbers: the distance from the smallest in units of the last decimal
// kept. The arithmetic repeats the filter's, operation by operation in the type of the values, since equal
// bits are wanted; what does not depend on the value is done once.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "storage/scale_offset_codes.h"

namespace vak {

template <class T>
class RealCodes {
public:
    using Value = T;
    using Code = CodeOf<T>;

    // The codes that the filter would give these values, unless some would not come back as they should.
    static std::optional<RealCodes> of(const ScaleOffset& form, const T* values);

    // As stored with a chunk.
    RealCodes(const ScaleOffset& form, unsigned bits, uint64_t low) : RealCodes(form)
    {
        bits_ = bits;
        low_ = from_bits<T>(low);
    }

    unsigned bits() const { return bits_; }
    uint64_t stored_low() const { return std::bit_cast<Code>(low_); }

    void encode(const T* values, size_t count, Code* codes) const;
    void decode(const Code* codes, size_t count, T* values) const;

private:
    explicit RealCodes(const ScaleOffset& form);
    bool sound() const { return std::isnormal(units_in_one_) && std::isfinite(near_fill_); }
    bool is_fill(T value) const { return std::abs(value - fill_) < near_fill_; }
    std::optional<Extremes<T>> extremes(const T* values, size_t count) const;
    std::optional<Extremes<T>> extremes_beside_fill(const T* values, size_t count) const;

    // The filter's arithmetic errs by up to 3.5 times the type's epsilon at the largest magnitude. Up to this
    // many units that is less than half a unit; beyond, more would be lost than was asked for.
    static constexpr T most_units = sizeof(T) == 4 ? T{0x1p20} : T{0x1p49};

    T units_in_one_;
    T near_fill_;           // what is closer to the fill value than this becomes the fill value
    T near_fill_extremes_;  // the same border as it is when the filter looks for the extremes
    T fill_;
    bool has_fill_;
    T low_ = 0;
    unsigned bits_ = 0;
};

template <class T>
RealCodes<T>::RealCodes(const ScaleOffset& form)
    : units_in_one_(std::pow(T{10}, static_cast<T>(form.factor))),
      near_fill_(std::pow(T{10}, -static_cast<T>(form.factor))),
      fill_(from_bits<T>(form.fill)),
      has_fill_(form.fill_defined)
{
    const double border = std::pow(10.0, -static_cast<double>(form.factor));
    near_fill_extremes_ = static_cast<T>(border);
    if (static_cast<double>(near_fill_extremes_) < border) {
        near_fill_extremes_ = std::nextafter(near_fill_extremes_, std::numeric_limits<T>::infinity());
    }
}

// The filter's lround of a value from 0 on, in a form that becomes vector code.
inline uint32_t rounded(float value)
{
    const auto whole = static_cast<int32_t>(value);
    return static_cast<uint32_t>(whole) + static_cast<uint32_t>(value - static_cast<float>(whole) >= 0.5F);
}

inline uint64_t rounded(double value)
{
    constexpr double shift = 0x1p52;  // brings the units of a double to its lowest bit
    const double shifted = value + shift;
    const uint64_t to_even = std::bit_cast<uint64_t>(shifted) - std::bit_cast<uint64_t>(shift);
    return to_even + static_cast<uint64_t>(value - (shifted - shift) == 0.5);
}

template <class T>
void RealCodes<T>::encode(const T* values, size_t count, Code* codes) const
{
    const T low = low_ * units_in_one_;
    if (!has_fill_) {
        for (size_t i = 0; i < count; ++i) codes[i] = rounded(values[i] * units_in_one_ - low);
        return;
    }
    const Code mark = highest_code<Code>(bits_);
    for (size_t i = 0; i < count; ++i) {
        const T value = is_fill(values[i]) ? low_ : values[i];
        const Code code = rounded(value * units_in_one_ - low);
        codes[i] = is_fill(values[i]) ? mark : code;
    }
}

template <class T>
void RealCodes<T>::decode(const Code* codes, size_t count, T* values) const
{
    using Signed = std::make_signed_t<Code>;
    for (size_t i = 0; i < count; ++i) {
        values[i] = static_cast<T>(static_cast<Signed>(codes[i])) / units_in_one_ + low_;
    }
    if (!has_fill_) return;
    const Code mark = highest_code<Code>(bits_);
    for (size_t i = 0; i < count; ++i) values[i] = codes[i] == mark ? fill_ : values[i];
}

// One look at every value, in lanes so that it becomes vector code.
template <class T>
struct RealScan {
    static constexpr size_t lanes = 32 / sizeof(T);

    RealScan(const T* values, size_t count, T fill)
    {
        std::fill_n(low, lanes, values[0]);
        std::fill_n(high, lanes, values[0]);
        std::fill_n(closest, lanes, std::numeric_limits<T>::infinity());
        const size_t whole = count / lanes * lanes;
        for (size_t i = 0; i < whole; i += lanes) {
            for (size_t lane = 0; lane < lanes; ++lane) look(values[i + lane], fill, lane);
        }
        for (size_t i = whole; i < count; ++i) look(values[i], fill, 0);
        for (size_t lane = 1; lane < lanes; ++lane) {
            low[0] = std::min(low[0], low[lane]);
            high[0] = std::max(high[0], high[lane]);
            closest[0] = std::min(closest[0], closest[lane]);
            odd[0] += odd[lane];
        }
    }

    void look(T value, T fill, size_t lane)
    {
        const T distance = std::abs(value - fill);
        low[lane] = value < low[lane] ? value : low[lane];
        high[lane] = value > high[lane] ? value : high[lane];
        closest[lane] = distance < closest[lane] ? distance : closest[lane];
        odd[lane] += value - value;  // 0, or not a number once a value is not finite
    }

    bool finite() const { return odd[0] == 0; }

    T low[lanes], high[lanes], closest[lanes], odd[lanes] = {};
};

// The slower look at a chunk that holds fill values or their neighbours. Nothing: the form would move a value
// by more than half a unit, or the filter's two borders disagree about one.
template <class T>
std::optional<Extremes<T>> RealCodes<T>::extremes_beside_fill(const T* values, size_t count) const
{
    constexpr T infinity = std::numeric_limits<T>::infinity();
    Extremes<T> found{.low = infinity, .high = -infinity, .has_fill = true};
    for (size_t i = 0; i < count; ++i) {
        const T distance = std::abs(values[i] - fill_);
        const bool fills = distance < near_fill_;
        if (fills != (distance < near_fill_extremes_)) return {};
        if (fills && distance > near_fill_ / 2) return {};
        if (fills) continue;
        found.low = std::min(found.low, values[i]);
        found.high = std::max(found.high, values[i]);
    }
    if (found.low > found.high) found.low = found.high = 0;  // nothing but fill values
    return found;
}

template <class T>
std::optional<Extremes<T>> RealCodes<T>::extremes(const T* values, size_t count) const
{
    const RealScan<T> scan(values, count, fill_);
    if (!scan.finite()) return {};
    const bool fill_met = scan.closest[0] < std::max(near_fill_, near_fill_extremes_);
    if (has_fill_ && fill_met) return extremes_beside_fill(values, count);
    return Extremes<T>{.low = scan.low[0], .high = scan.high[0]};
}

// Of 0 and -0, which are equal, the filter keeps the one that comes first.
template <class T>
T first_zero(const T* values, size_t count)
{
    const T* zero = std::find(values, values + count, T{0});
    return zero == values + count ? T{0} : *zero;
}

template <class T>
std::optional<RealCodes<T>> RealCodes<T>::of(const ScaleOffset& form, const T* values)
{
    RealCodes codes(form);
    if (!codes.sound()) return {};
    const auto found = codes.extremes(values, form.count);
    if (!found) return {};
    const T units = codes.units_in_one_;
    if (!(std::max(std::abs(found->low), std::abs(found->high)) * units < most_units)) return {};
    const Code span = rounded(found->high * units - found->low * units);
    if (!std::isfinite(static_cast<T>(span) / units + found->low)) return {};
    codes.bits_ = bits_for(uint64_t{span} + (form.fill_defined ? 2 : 1));
    codes.low_ = found->low == 0 ? first_zero(values, form.count) : found->low;
    codes.has_fill_ = found->has_fill;
    return codes;
}

}  // namespace vak
