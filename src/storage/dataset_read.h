// One call of VAK_H5Dread, as its steps see it.
#pragma once

#include "storage/dataset_layout.h"
#include "storage/element_type.h"
#include "storage/found_layout.h"
#include "storage/rows_in_file.h"

namespace vak {

struct DatasetRead {
    const char* name;
    void* data;
    int32_t type;
    size_t data_size;
    Part part;
    uint32_t* flags;
    int32_t* params;

    hid_t memory_type = H5I_INVALID_HID;
};

// The dataset that is read from.
struct Source {
    Source(Dataset opened, FoundType found)
        : dataset(std::move(opened)),
          type(std::move(found)),
          space(H5Dget_space(dataset.get())),
          rank_or_error(H5Sget_simple_extent_dims(space.get(), extents.data(), maximum.data())),
          rank(rank_or_error < 0 ? 0 : static_cast<size_t>(rank_or_error)),
          layout(dataset.get(), last_row(shape(), {maximum.data(), rank}))
    {
    }

    Dataset dataset;
    FoundType type;
    Space space;
    Extents extents{};
    Extents maximum{};
    int rank_or_error;
    size_t rank;
    FoundLayout layout;
    bool has_lost_rows = false;  // the dataset's own extents count more than are in the file

    std::span<const hsize_t> shape() const { return {extents.data(), rank}; }
};

}  // namespace vak
