// Shuffling in loops of known element size, which become vector code.
#include "storage/shuffle.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace vak {
namespace {

// Rows are filled side by side only as far as the nearest cache holds them together.
constexpr size_t piece = 4096;

template <class Size>
void shuffle_elements(const unsigned char* from, size_t count, Size size, unsigned char* to)
{
    for (size_t first = 0; first < count; first += piece) {
        const size_t end = std::min(count, first + piece);
        for (size_t byte = 0; byte < size; ++byte) {
            unsigned char* row = to + byte * count;
            for (size_t i = first; i < end; ++i) row[i] = from[i * size + byte];
        }
    }
}

template <class Size>
void unshuffle_elements(const unsigned char* from, size_t count, Size size, unsigned char* to)
{
    for (size_t i = 0; i < count; ++i) {
        for (size_t byte = 0; byte < size; ++byte) to[i * size + byte] = from[byte * count + i];
    }
}

template <class Loop>
void with_known_size(size_t size, Loop loop)
{
    if (size == 4) return loop(std::integral_constant<size_t, 4>());
    if (size == 8) return loop(std::integral_constant<size_t, 8>());
    loop(size);
}

void copy_rest(const unsigned char* from, size_t size, size_t element_size, unsigned char* to)
{
    const size_t rest = size % element_size;
    std::memcpy(to + size - rest, from + size - rest, rest);
}

}  // namespace

void shuffle(const unsigned char* from, size_t size, size_t element_size, unsigned char* to)
{
    with_known_size(element_size, [&](auto s) { shuffle_elements(from, size / element_size, s, to); });
    copy_rest(from, size, element_size, to);
}

void unshuffle(const unsigned char* from, size_t size, size_t element_size, unsigned char* to)
{
    with_known_size(element_size, [&](auto s) { unshuffle_elements(from, size / element_size, s, to); });
    copy_rest(from, size, element_size, to);
}

}  // namespace vak
