// Extents and counts of arrays, with arithmetic that cannot wrap.
#pragma once

#include <hdf5.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace vak {

constexpr int32_t max_rank = 31;

using Extents = std::array<hsize_t, H5S_MAX_RANK>;

inline bool known_rank(int32_t rank) { return rank >= 0 && rank <= max_rank; }

inline bool known_shape(const hsize_t* dims, int32_t rank)
{
    return known_rank(rank) && (rank == 0 || dims != nullptr);
}

inline std::span<const hsize_t> shape(const hsize_t* dims, int32_t rank)
{
    return {dims, static_cast<size_t>(rank)};
}

inline bool has_entry(std::span<const hsize_t> dims, hsize_t value)
{
    return std::find(dims.begin(), dims.end(), value) != dims.end();
}

// The number of elements; none when their bytes exceed what a signed 64-bit number holds, or have no size.
inline std::optional<hsize_t> elements_of(std::span<const hsize_t> dims, size_t element_size)
{
    if (has_entry(dims, 0)) return 0;
    constexpr auto largest = static_cast<hsize_t>(std::numeric_limits<int64_t>::max());
    if (element_size == 0 || element_size > largest) return std::nullopt;
    hsize_t room = largest / element_size;
    hsize_t n = 1;
    for (const hsize_t extent : dims) {
        if (extent > room) return std::nullopt;
        room /= extent;
        n *= extent;
    }
    return n;
}

// The sum; none when it wraps or exceeds what a signed 64-bit number holds.
inline std::optional<hsize_t> checked_sum(hsize_t a, hsize_t b)
{
    constexpr auto largest = static_cast<hsize_t>(std::numeric_limits<int64_t>::max());
    if (a > largest || b > largest - a) return std::nullopt;
    return a + b;
}

}  // namespace vak
