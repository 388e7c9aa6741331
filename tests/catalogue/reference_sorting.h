// The sort and the search as they are defined, word by word, to compare with: recursion and all.
#pragma once

#include <cstdint>
#include <utility>

namespace vak::test {

// below(a, b) orders two element numbers.
template <class Below>
void reference_quicksort(int32_t* perm, int32_t lo, int32_t hi, Below below)
{
    if (hi < lo) return;
    int32_t i = lo;
    do {
        const int32_t first = i;
        const int32_t pivot = perm[(first + hi) / 2];
        int32_t j = hi;
        do {
            while (below(perm[i], pivot)) ++i;
            while (below(pivot, perm[j])) --j;
            if (i <= j) {
                std::swap(perm[i], perm[j]);
                ++i;
                --j;
            }
        } while (i <= j);
        if (first < j) reference_quicksort(perm, first, j, below);
    } while (i < hi);
}

// order(position) is negative where the key comes before what stands there.
template <class Order>
int32_t reference_search(int32_t lo, int32_t hi, Order order)
{
    int32_t pos = -1;
    if (lo > hi) return pos;
    while (lo <= hi) {
        const int32_t mid = (lo + hi) / 2;
        pos = mid;
        const int32_t found = order(mid);
        if (found == 0) return pos;
        if (found < 0)
            hi = mid - 1;
        else
            lo = mid + 1;
    }
    return -1;
}

}  // namespace vak::test
