// Sorting and searching through permutations: the data stay where they are.
#include <cstring>
#include <utility>

#include "vak_sp.h"

namespace vak {

namespace {

// Positions are 64 bits wide, so that the middle of a range never wraps.
struct Range {
    int64_t lo, hi;
    int64_t middle() const { return (lo + hi) / 2; }
    int64_t length() const { return hi - lo; }
};

struct Halves {
    Range left, right;
};

// Moves what is above the pivot, the value in the middle, behind what is below it.
template <class Below>
Halves partition(int32_t* perm, Range range, const Below& below)
{
    const int32_t pivot = perm[range.middle()];
    int64_t i = range.lo, j = range.hi;
    do {
        while (below(perm[i], pivot)) ++i;
        while (below(pivot, perm[j])) --j;
        if (i <= j) std::swap(perm[i++], perm[j--]);
    } while (i <= j);
    return {{range.lo, j}, {i, range.hi}};
}

// The halves are independent of each other, so their order does not matter to the result; sorting the smaller
// one first keeps the stack at 31 levels whatever the data.
template <class Below>
void quicksort(int32_t* perm, Range range, const Below& below)
{
    while (range.lo < range.hi) {
        const auto [left, right] = partition(perm, range, below);
        const bool left_is_smaller = left.length() < right.length();
        quicksort(perm, left_is_smaller ? left : right, below);
        range = left_is_smaller ? right : left;
    }
}

// The position whose element has order 0 to the key; order(element) is negative for a key below it.
template <class Order>
int32_t search(const int32_t* perm, Range range, const Order& order)
{
    while (range.lo <= range.hi) {
        const int64_t middle = range.middle();
        const auto found = order(perm == nullptr ? middle : perm[middle]);
        if (found == 0) return static_cast<int32_t>(middle);
        if (found < 0)
            range.hi = middle - 1;
        else
            range.lo = middle + 1;
    }
    return -1;
}

// One block of fields of equal length.
struct Fields {
    const char* first;
    int32_t length;
    const char* operator[](int64_t element) const { return first + element * length; }
};

int32_t three_way(int32_t a, int32_t b) { return a < b ? -1 : static_cast<int32_t>(a > b); }

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void vak_iquicksort(const int32_t* values, int32_t* perm, int32_t lo, int32_t hi)
{
    const auto below = [=](int32_t a, int32_t b) { return values[a] < values[b]; };
    vak::quicksort(perm, {lo, hi}, below);
}

void vak_jquicksort(const int32_t* values, int32_t* perm, int32_t lo, int32_t hi)
{
    vak_iquicksort(values, perm, lo, hi);
}

void vak_cquicksort(const char* fields, int32_t* perm, int32_t lo, int32_t hi, int32_t len)
{
    const vak::Fields field{fields, len};
    const auto below = [=](int32_t a, int32_t b) { return VAK_strncmp(field[a], field[b], len) < 0; };
    vak::quicksort(perm, {lo, hi}, below);
}

void vak_cpquicksort(const char* const* strings, int32_t* perm, int32_t lo, int32_t hi)
{
    const auto below = [=](int32_t a, int32_t b) { return std::strcmp(strings[a], strings[b]) < 0; };
    vak::quicksort(perm, {lo, hi}, below);
}

void vak_ibsearch(int32_t key, const int32_t* values, const int32_t* perm, int32_t lo, int32_t hi, int32_t* pos)
{
    const auto order = [=](int64_t element) { return vak::three_way(key, values[element]); };
    *pos = vak::search(perm, {lo, hi}, order);
}

void vak_jbsearch(int32_t key, const int32_t* values, const int32_t* perm, int32_t lo, int32_t hi, int32_t* pos)
{
    vak_ibsearch(key, values, perm, lo, hi, pos);
}

void vak_cbsearch(
    const char* key, const char* fields, const int32_t* perm, int32_t lo, int32_t hi, int32_t len, int32_t* pos)
{
    const vak::Fields field{fields, len};
    const auto order = [=](int64_t element) { return VAK_strncmp(key, field[element], len); };
    *pos = vak::search(perm, {lo, hi}, order);
}

void vak_cpbsearch(
    const char* key, const char* pool, const int64_t* offsets, int32_t lo, int32_t hi, int32_t* pos)
{
    const auto order = [=](int64_t k) { return std::strcmp(key, pool + (offsets == nullptr ? k : offsets[k])); };
    *pos = vak::search(nullptr, {lo, hi}, order);
}
