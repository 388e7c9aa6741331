// A place for a chunk that is packed anew, away from where the file looks for it.
#pragma once

#include <array>

#include "storage/hdf5_id.h"

namespace vak {

// HDF5 gives up the place of a chunk before it looks for another, and takes the smallest free one that is
// large enough: for a chunk that becomes shorter that would be its own. So a gap of just that size is made
// first, between two pieces that keep it from growing together with others. Until the file tells the new
// place, the old bytes then stand where it looks for them, whatever happens.
class ChunkGap {
public:
    ChunkGap(hid_t location, hsize_t size);

    // False when HDF5 refuses. Where the file is so full of holes that none was made, HDF5 chooses.
    bool valid() const { return is_valid_; }

private:
    std::array<Dataset, 24> pieces_;
    bool is_valid_ = false;
};

}  // namespace vak
