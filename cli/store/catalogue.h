// The list of a file's blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/file.h"

namespace vak::store {

enum class Layout { current, legacy };

struct BlockEntry {
    int32_t key = 0;
    std::string path;             // of the block's own group
    std::vector<int64_t> states;  // the numbers in the path, outermost first
    std::optional<int64_t> set;
};

struct Catalogue {
    Layout layout = Layout::current;
    std::vector<BlockEntry> blocks;
};

// Lists every block. Unless the layout is given, it is the legacy one when only that one finds any.
Catalogue catalogue(const File& file, std::optional<Layout> layout = {});

// The type word of a key; "unknown" for any other number.
const char* block_type(int32_t key);

}  // namespace vak::store
