// External links to a damaged file, which are followed afterwards.
#include <vak_sp.h>

#include <array>

#include "support/input.h"

namespace vak::fuzz {

namespace {

void link(const vak_id* source, const vak_id* into, uint64_t tail)
{
    const int32_t one = 1, option = static_cast<int32_t>(tail & 2), verbose = static_cast<int32_t>(tail & 1);
    int32_t status = 0;
    std::array<char, 256> subgroup{};
    subgroup.fill(' ');
    subgroup[0] = 'S';
    const auto routine = (tail & 4) == 0 ? VAK_CREATE_EXTLINKS : VAK1_CREATE_EXTLINKS;
    for (int twice = 0; twice < 2; ++twice)
        routine(source, into, &one, subgroup.data(), &option, &verbose, &status);
}

void count_blocks(const vak_id* root)
{
    const int32_t count = 0, quiet = 0;
    int32_t blocks = 0, status = 0;
    int64_t length = 0;
    for (const auto lookup : {vak_lookup, vak1_lookup})
        lookup(root, &count, &quiet, nullptr, nullptr, &blocks, &length, nullptr, nullptr, nullptr, &status);
}

}  // namespace

void try_input(Bytes input)
{
    const auto tail = take_tail<uint64_t>(input);
    const Folder folder;
    const std::string path = put(folder, "source.h5", input);
    const OpenFile links(folder.file("links.h5"), create);
    {
        const OpenFile source(path, read_only);
        if (source.valid()) link(source.root(), links.root(), tail);
    }
    count_blocks(links.root());
}

}  // namespace vak::fuzz
