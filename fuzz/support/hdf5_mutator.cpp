// Changes HDF5 files as HDF5 files: numbers where its structures and our fields have theirs, names, parts
// that are repeated elsewhere. Bytes changed anywhere would mostly hit empty space.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max);

namespace {

using Random = std::minstd_rand;

struct File {
    uint8_t* data;
    size_t size;
};

size_t below(Random& random, size_t end) { return end == 0 ? 0 : random() % end; }

template <class T>
T any_of(Random& random, std::initializer_list<T> values)
{
    return values.begin()[below(random, values.size())];
}

// What a change is made beside: the signatures of HDF5's structures, and names that our blocks store.
constexpr std::array<std::string_view, 30> landmarks{
    "TREE",     "SNOD",   "HEAP",       "OHDR",   "GCOL",   "block",   "blocktype", "nent",
    "ncoo",     "nele",   "nindex",     "nstate", "nline",  "nvar",    "numl",      "nrow",
    "nnz",      "entid",  "indexident", "res",    "mbunit", "ubid",    "fswitch",   "dmpswitch",
    "operator", "weight", "npele",      "lvmap",  "length", "vakblock"};

// A place behind a landmark, or anywhere when there is none.
size_t place(const File& file, Random& random)
{
    const std::string_view all(reinterpret_cast<const char*>(file.data), file.size);
    const std::string_view name = landmarks[below(random, landmarks.size())];
    size_t found = all.find(name, below(random, file.size));
    if (found == std::string_view::npos) found = all.find(name);
    if (found == std::string_view::npos) return below(random, file.size);
    return std::min(found + below(random, 96), file.size - 1);
}

// Something that is not empty space.
size_t used_place(const File& file, Random& random)
{
    size_t at = 0;
    for (int tries = 0; tries < 16; ++tries) {
        at = below(random, file.size);
        if (file.data[at] != 0) break;
    }
    return at;
}

void change_number(const File& file, size_t at, Random& random)
{
    const size_t width = std::min(any_of<size_t>(random, {1, 2, 4, 8}), file.size - at);
    const uint64_t special = any_of<uint64_t>(random, {0,
                                                       1,
                                                       2,
                                                       3,
                                                       7,
                                                       8,
                                                       0x7F,
                                                       0x80,
                                                       0xFF,
                                                       0x7FFF,
                                                       0x8000,
                                                       0xFFFF,
                                                       0x10000,
                                                       0x7FFFFFFF,
                                                       0x80000000,
                                                       0xFFFFFFFF,
                                                       0x100000000,
                                                       0x7FFFFFFFFFFFFFFF,
                                                       0x8000000000000000,
                                                       0xFFFFFFFFFFFFFFFF});
    uint64_t value = 0;
    std::memcpy(&value, file.data + at, width);
    switch (below(random, 4)) {
        case 0: value = special; break;
        case 1: value += 1 + below(random, 16); break;
        case 2: value -= 1 + below(random, 16); break;
        default: value ^= uint64_t{1} << below(random, width * 8); break;
    }
    std::memcpy(file.data + at, &value, width);
}

// Names, messages or blocks of the file appear twice.
void repeat_part(const File& file, Random& random)
{
    const size_t length =
        std::min<size_t>(any_of<size_t>(random, {4, 8, 16, 24, 40, 64, 256}), file.size / 2);
    const size_t from = used_place({file.data, file.size - length}, random);
    std::memmove(file.data + place({file.data, file.size - length}, random), file.data + from, length);
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max, unsigned seed)
{
    Random random(seed + 1);
    if (size < 512 || random() % 32 == 0) return LLVMFuzzerMutate(data, size, max);
    const File file{data, size};
    for (size_t changes = 1 + below(random, 3); changes > 0; --changes) {
        switch (below(random, 8)) {
            case 0: repeat_part(file, random); break;
            case 1: {
                const size_t at = place(file, random);
                LLVMFuzzerMutate(data + at, std::min<size_t>(16, size - at), std::min<size_t>(16, size - at));
                break;
            }
            case 2:
            case 3: change_number(file, size - 1 - below(random, 16), random); break;
            case 4: change_number(file, used_place(file, random), random); break;
            default: change_number(file, place(file, random), random); break;
        }
    }
    return size;
}
