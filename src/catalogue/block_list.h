// A list of blocks in the caller's three arrays, which grow with it.
#pragma once

#include "catalogue/walk.h"

namespace vak {

// The arguments that all listing routines have in common.
struct BlockList {
    int32_t collect, verbose;
    int32_t* capacity;  // blocks for which keys and offsets have room
    int64_t* pool_size;
    int32_t* nblocks;
    int64_t* total_len;
    int32_t** keys;
    int64_t** offsets;
    char** paths;
};

using Accept = std::function<bool(const FoundBlock&)>;

// Lists the blocks that are accepted, and prints them under the routine's name when asked to. Gives the
// routine's status.
int32_t list_blocks_into(const BlockList& list, Family family, hid_t start, const char* routine,
                         const Accept& accept);

}  // namespace vak
