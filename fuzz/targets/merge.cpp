// Two domains, of which each may be damaged, are joined.
#include <vak_sp.h>

#include <array>

#include "support/input.h"

namespace vak::fuzz {

struct Merging {
    uint32_t first_size;  // of the two files
    uint8_t legacy, options, flags, real_size;
};

void try_input(Bytes input)
{
    const auto what = take_tail<Merging>(input);
    const size_t first = std::min<size_t>(what.first_size, input.size());
    const Folder folder;
    const OpenFile one(put(folder, "1.h5", input.first(first)), read_only),
        two(put(folder, "2.h5", input.subspan(first)), read_only), target(folder.file("target.h5"), create);
    if (!one.valid() || !two.valid()) return;
    const std::array<vak_id, 2> files{*one.root(), *two.root()};
    const int32_t n = 2, flags = what.flags, none = 0, options = what.options % 8,
                  real_size = what.real_size % 2 == 0 ? 4 : 8;
    const std::array<int32_t, 2> params{3, 1};
    int32_t status = 0;
    (what.legacy % 2 == 0 ? VAK_MERGE_DMP : VAK1_MERGE_DMP)(files.data(), target.root(), &n, &flags,
                                                            params.data(), &none, nullptr, nullptr, &options,
                                                            &real_size, &status);
}

}  // namespace vak::fuzz
