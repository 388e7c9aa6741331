// What the state eraser does to single blocks.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/paths.h"

namespace vak {

// A block of the file that states are erased from.
struct ErasableBlock {
    Family family;
    hid_t root;
    int32_t key;
    std::string path;  // as listed: a legacy one ends in "header"
};

// A group of the file; other files by external links only where they are regular ones, and to read.
Group open_in_file(const ErasableBlock&, const std::string& path);
std::string parent_of(const std::string& path);

// Deletes the block, then each parent that has no links left. 0, or -1 for a failed deletion.
int32_t delete_block(const ErasableBlock&, bool verbose);

// The group that holds the block's datasets of that name: for a legacy block "index" or "data". Invalid: none
// has it.
Group group_with(const ErasableBlock&, const char* dataset);

// False for a block that an external link brings in: another file's blocks are not ours to erase.
bool is_of_this_file(const ErasableBlock&);

// The same for each path that leads to the block.
using ObjectToken = std::array<uint8_t, H5O_MAX_TOKEN_SIZE>;
ObjectToken token_of(const ErasableBlock&);

// The index rows of the block's states, one for a block of a single state; none where it has no index.
struct IndexRows {
    int32_t status = 0;
    size_t width = 0;
    std::vector<int32_t> values;

    size_t size() const { return width == 0 ? 0 : values.size() / width; }
};
IndexRows read_index_row(const ErasableBlock&);
IndexRows read_series_rows(const ErasableBlock&);

// Puts the kept states in place of all states of the series. The new datasets are complete and in the file
// before the old ones go, so that a failure or a kill leaves the old states or the kept ones. 0, or a status.
int32_t keep_states(const ErasableBlock&, const std::vector<hsize_t>& kept);

// 0 when all that `keep_states` will read can be read.
int32_t check_states(const ErasableBlock&, const std::vector<hsize_t>& kept);

}  // namespace vak
