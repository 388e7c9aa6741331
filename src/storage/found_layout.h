// How a dataset that exists is stored.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

struct FoundLayout {
    // A row that should be there is looked for by the way.
    explicit FoundLayout(hid_t dataset, hsize_t row = 0);

    Properties list;               // only where filters were found, or could not be ruled out by less
    int filters = 0;               // how many
    bool has_bare_chunks = false;  // chunked, without filters
    bool has_row = false;          // it stands in a chunk; false, too, where nobody looked
    bool is_usable = true;         // its values stand in this file, behind filters that HDF5 itself brings
};

}  // namespace vak
