#include "storage/fletcher32.h"

#include <algorithm>
#include <cstdint>

namespace vak {
namespace {

constexpr uint32_t folded(uint32_t sum) { return (sum & 0xFFFF) + (sum >> 16); }

// Both sums of numbers of 16 bits, higher byte first; a byte left over is the higher one of a last number.
uint32_t checksum(const unsigned char* bytes, size_t size)
{
    constexpr size_t most_without_overflow = 2 * 360;
    uint32_t sum = 0;
    uint32_t sum_of_sums = 0;
    for (size_t first = 0; first < size; first += most_without_overflow) {
        const size_t end = std::min(size, first + most_without_overflow);
        for (size_t i = first; i < end; i += 2) {
            sum += static_cast<uint32_t>(bytes[i]) << 8 | (i + 1 < size ? bytes[i + 1] : 0U);
            sum_of_sums += sum;
        }
        sum = folded(sum);
        sum_of_sums = folded(sum_of_sums);
    }
    return folded(sum_of_sums) << 16 | folded(sum);
}

constexpr uint32_t with_swapped_bytes(uint32_t sum) { return (sum & 0xFF00FF) << 8 | (sum >> 8 & 0xFF00FF); }

}  // namespace

bool checksum_holds(const unsigned char* bytes, size_t size)
{
    if (size <= checksum_size) return false;
    const unsigned char* end = bytes + size - checksum_size;
    uint32_t stored = 0;
    for (size_t i = checksum_size; i-- > 0;) stored = stored << 8 | end[i];
    const uint32_t sum = checksum(bytes, size - checksum_size);
    return stored == sum || stored == with_swapped_bytes(sum);
}

}  // namespace vak
