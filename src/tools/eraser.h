// One run of the state eraser.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/erase_block.h"
#include "tools/file_blocks.h"

namespace vak {

struct EraserRun {
    Family family;
    hid_t root;
    std::vector<int32_t> index;  // after which everything goes
    int32_t verbose;
    FileBlocks file;
};

// The block at that place in the listing.
ErasableBlock erasable(const EraserRun&, int32_t number);

// Its listed group: a legacy one is the block's "header".
Group open_listed(const EraserRun&, int32_t number);

// Prints the line; gives the status back.
int32_t read_error(const char* type, int32_t pass, int32_t status);

// What every file has beside its states. 0 or the status that ends the run.
int32_t check_header(const EraserRun&);
int32_t check_index(const EraserRun&);
int32_t stamp_system(const EraserRun&);  // modified now

}  // namespace vak
