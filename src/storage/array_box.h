// Boxes inside row-major arrays, and copying one box into another a run of neighbouring elements at a time.
#pragma once

#include "storage/shape.h"

namespace vak {

// A box of an array, by the array's extents and the box's first element; how far it goes is told beside it.
struct BoxPlace {
    const hsize_t* array;
    const hsize_t* first;
};

inline size_t offset_in(const hsize_t* array, const hsize_t* place, size_t rank)
{
    size_t offset = 0;
    for (size_t i = 0; i < rank; ++i) offset = offset * array[i] + place[i];
    return offset;
}

// Whether a box of these counts is one run of elements in an array of these extents.
inline bool one_run(std::span<const hsize_t> counts, const hsize_t* array)
{
    bool inside = false;
    for (size_t i = 0; i < counts.size(); ++i) {
        if (inside && counts[i] != array[i]) return false;
        inside = inside || counts[i] > 1;
    }
    return true;
}

// Steps `place` to the next element of the box in storage order; false behind the last.
inline bool next_in_box(hsize_t* place, const hsize_t* counts, size_t rank)
{
    for (size_t i = rank; i-- > 0;) {
        if (++place[i] < counts[i]) return true;
        place[i] = 0;
    }
    return false;
}

// Calls run(offset in a, offset in b, length) for each run that the box has in both arrays.
template <class Run>
void for_each_run(std::span<const hsize_t> counts, const BoxPlace& a, const BoxPlace& b, Run run)
{
    size_t rank = counts.size();
    hsize_t length = 1;
    bool whole = true;
    while (rank > 0 && whole) {
        --rank;
        length *= counts[rank];
        whole = counts[rank] == a.array[rank] && counts[rank] == b.array[rank];
    }
    Extents place{};
    Extents in_a{};
    Extents in_b{};
    do {
        for (size_t i = 0; i < counts.size(); ++i) {
            in_a[i] = a.first[i] + place[i];
            in_b[i] = b.first[i] + place[i];
        }
        run(offset_in(a.array, in_a.data(), counts.size()), offset_in(b.array, in_b.data(), counts.size()),
            length);
    } while (next_in_box(place.data(), counts.data(), rank));
}

}  // namespace vak
