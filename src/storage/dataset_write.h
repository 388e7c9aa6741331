// One call of VAK_H5Dwrite, as its steps see it.
#pragma once

#include "storage/dataset_layout.h"

namespace vak {

struct DatasetWrite {
    const char* name;
    const void* data;
    int32_t type;
    size_t data_size;
    size_t vak_size;
    const Location& location;
    SharedIds& ids;

    std::span<hsize_t> dims{};  // the caller's: unlimited entries become the new extents
    Part part{};
    hsize_t* start = nullptr;      // the caller's: shifted behind the present end along unlimited dimensions
    int32_t mode = whole_dataset;  // as given
    uint32_t flags = 0;
    const uint32_t* params = nullptr;

    int32_t type_class = 0;
    hid_t memory_type = H5I_INVALID_HID;
    Extents maximum{};  // dims as given, unlimited entries kept

    bool unlimited(size_t i) const { return maximum[i] == H5S_UNLIMITED; }
    bool extendible() const { return has_entry({maximum.data(), dims.size()}, H5S_UNLIMITED); }
};

// The dataset that is written to.
struct Target {
    Dataset dataset;
    Space space;       // with the extents that it has when the values are written
    Extents before{};  // the extents before it grew: of a new one all 0
    Type found_type;   // of one that existed; of texts in memory, too
    Properties list;   // with which it was created, where it is filtered or new and chunked
    bool is_new = false;
    bool repacks = false;  // filtered chunks that the file had before
};

// Prints the line of that number and gives the code that belongs to it.
int32_t fail(const DatasetWrite& w, int32_t number, int64_t error, int32_t code);

// Finds where the part goes in a dataset of these extents (0 along unlimited dimensions of a new one), and
// the extents that it needs.
int32_t place(DatasetWrite& w, const Extents& present);

// Makes the dataset, with nothing in it yet.
int32_t create_dataset(DatasetWrite& w, Target& target);

}  // namespace vak
