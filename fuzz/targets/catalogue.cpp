// A damaged file is listed and searched, in both layouts.
#include <vak_sp.h>

#include <array>
#include <cstdlib>
#include <vector>

#include "support/input.h"

namespace vak::fuzz {

namespace {

using Lookup = decltype(&vak_lookup);
using Search = decltype(&VAK_SEARCHBLOCKS);

struct Criteria {
    std::array<std::array<char, 256>, 5> texts;
    std::array<int32_t, 4> numbers;
};

// Known by its name in the report.
[[noreturn, gnu::noinline]] void arrays_were_replaced() { std::abort(); }

// Two calls, the second with arrays of exactly the sizes that the first one told.
template <class List>
void count_and_collect(List list)
{
    const int32_t count = 0, collect = 1, quiet = 0;
    int32_t blocks = 0, status = 0;
    int64_t length = 0;
    list(&count, &quiet, nullptr, nullptr, &blocks, &length, nullptr, nullptr, nullptr, &status);
    if (status < 0 || blocks < 1) return;
    std::vector<int32_t> keys(static_cast<size_t>(blocks));
    std::vector<int64_t> offsets(keys.size() + 1);
    std::vector<char> paths(static_cast<size_t>(length));
    int32_t* own_keys = keys.data();
    int64_t* own_offsets = offsets.data();
    char* own_paths = paths.data();
    const int32_t capacity_then = blocks;
    const int64_t pool_then = length;
    int32_t capacity = blocks;
    int64_t pool = length;
    list(&collect, &quiet, &capacity, &pool, &blocks, &length, &own_keys, &own_offsets, &own_paths, &status);
    // What HDF5 finds in a damaged file may change from one look to the next.
    const bool same = blocks == capacity_then && length == pool_then;
    const bool moved = own_keys != keys.data() || own_offsets != offsets.data() || own_paths != paths.data();
    if (same && moved) arrays_were_replaced();
    if (own_keys != keys.data()) free(own_keys);
    if (own_offsets != offsets.data()) free(own_offsets);
    if (own_paths != paths.data()) free(own_paths);
}

// The library makes the arrays and prints the listing.
void collect_in_its_arrays(Lookup lookup, const vak_id* root)
{
    const int32_t collect = 1, loud = 1;
    int32_t capacity = 0, blocks = 0, status = 0;
    int64_t pool = 0, length = 0;
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;
    lookup(root, &collect, &loud, &capacity, &pool, &blocks, &length, &keys, &offsets, &paths, &status);
    free(keys);
    free(offsets);
    free(paths);
}

void search(Search routine, const vak_id* root, const Criteria& c)
{
    count_and_collect([&](auto... list) {
        routine(root, c.texts[0].data(), c.texts[1].data(), c.texts[2].data(), c.texts[3].data(),
                c.texts[4].data(), &c.numbers[0], &c.numbers[1], &c.numbers[2], &c.numbers[3], list...);
    });
}

Criteria no_criteria()
{
    Criteria c{};
    for (auto& text : c.texts) text.fill(' ');
    c.numbers = {-1, -1, -1, -2};
    return c;
}

// Which criteria apply is in the last bytes; their texts are those of the seeds.
Criteria criteria(uint64_t tail)
{
    Criteria c = no_criteria();
    const std::array<std::string, 5> texts{"entityresults", "MODAL", "NODE", "DISPLACEMENT", "SOLID"};
    const std::array<int32_t, 4> numbers{3, 12, 3, 2};
    for (size_t i = 0; i < texts.size(); ++i)
        if (tail >> i & 1) texts[i].copy(c.texts[i].data(), texts[i].size());
    for (size_t i = 0; i < numbers.size(); ++i)
        if (tail >> (5 + i) & 1) c.numbers[i] = numbers[i];
    return c;
}

}  // namespace

void try_input(Bytes input)
{
    const Criteria c = criteria(take_tail<uint64_t>(input));
    const Folder folder;
    const OpenFile file(put(folder, "file.h5", input), read_only);
    if (!file.valid()) return;
    for (const Lookup lookup : {vak_lookup, vak1_lookup}) {
        count_and_collect([&](auto... list) { lookup(file.root(), list...); });
        collect_in_its_arrays(lookup, file.root());
    }
    for (const Search routine : {VAK_SEARCHBLOCKS, VAK1_SEARCHBLOCKS}) search(routine, file.root(), c);
}

}  // namespace vak::fuzz
