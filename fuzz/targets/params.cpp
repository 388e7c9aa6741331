// A compression parameter file: counted, then read into arrays of exactly that size, and into smaller ones.
#include <vak_sp.h>

#include <vector>

#include "support/input.h"

namespace vak::fuzz {

void try_input(Bytes input)
{
    const Folder folder;
    const std::string path = put(folder, "params.txt", input);
    const int32_t counting = 0, storing = 1, loud = 1;
    int32_t entries = 0, status = 0;
    VAK_READ_PARAM(path.c_str(), nullptr, &counting, &entries, nullptr, nullptr, &loud, &status);
    if (status < 0 || entries < 0) return;
    std::vector<char> names(static_cast<size_t>(entries) * 256);
    std::vector<int32_t> exponents(static_cast<size_t>(entries));
    VAK_READ_PARAM(path.c_str(), nullptr, &storing, &entries, names.data(), exponents.data(), &loud, &status);
}

}  // namespace vak::fuzz
