// The shuffle filter: first bytes of all elements first, then all second bytes, and so on. Bytes that do not
// fill an element stay at the end.
#pragma once

#include <cstddef>

namespace vak {

void shuffle(const unsigned char* from, size_t size, size_t element_size, unsigned char* to);
void unshuffle(const unsigned char* from, size_t size, size_t element_size, unsigned char* to);

}  // namespace vak
