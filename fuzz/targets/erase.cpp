// States are erased from a damaged file.
#include <vak_sp.h>

#include <array>

#include "support/input.h"

namespace vak::fuzz {

struct Erasing {
    std::array<int16_t, 2> index;
    uint8_t nindex, legacy, verbose, unused;
};

void try_input(Bytes input)
{
    const auto what = take_tail<Erasing>(input);
    const Folder folder;
    const OpenFile file(put(folder, "file.h5", input), update);
    if (!file.valid()) return;
    const std::array<int32_t, 2> index{what.index[0], what.index[1]};
    const int32_t nindex = what.nindex % 3, verbose = what.verbose % 3;
    int32_t status = 0;
    const auto erase = what.legacy % 2 == 0 ? VAK_ERASE_STATES : VAK1_ERASE_STATES;
    erase(file.root(), &nindex, index.data(), &verbose, &status);
}

}  // namespace vak::fuzz
