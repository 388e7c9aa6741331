// The walk over all blocks below a group, in both layouts.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/paths.h"

namespace vak {

// What may be passed to a walk: a file or a group.
bool can_be_walked(hid_t start);

// A block as the walk comes upon it; valid during the visit only.
struct FoundBlock {
    int32_t key;
    std::string_view path;  // from the starting group, ending in the block's own group
    hid_t group;            // holds the block's attributes; invalid for a file header, which has none
};

// Far above what files of solvers have; a file made to trap a walk ends it here.
struct WalkLimits {
    size_t depth = 1024;          // levels of groups below the starting one
    int64_t visits = 10'000'000;  // links looked at
};

// Visits every block below `start` in the order of the names: false from `visit` ends the walk. Soft, hard
// and external links are followed; those that lead nowhere and blocks without a readable key are passed over
// in silence; `unreadable`, where given, is told the paths of objects and of block keys that are there and
// cannot be read. 0, or 1 when there may be blocks that were not visited.
int32_t walk_blocks(Family family, hid_t start, const std::function<bool(const FoundBlock&)>& visit,
                    const WalkLimits& limits = {},
                    const std::function<void(std::string_view)>& unreadable = {});

// All blocks below a group, for the tools.
struct ListedBlock {
    int32_t key;
    std::string path;
};
struct Listing {
    int32_t status = 0;  // -1 `start` is no file or group; otherwise as walk_blocks
    std::vector<ListedBlock> blocks;
    std::vector<std::string> unreadable;  // paths of what is there and may be a block
};
Listing list_blocks(Family family, hid_t start);

}  // namespace vak
