// The blocks of one file as the whole-file tools see them: listed, ordered by key, their states and sets read
// from the paths.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/walk.h"

namespace vak {

constexpr int32_t header_key = 1;  // the file header in a listing

struct FileBlocks {
    std::vector<ListedBlock> blocks;
    std::vector<int32_t> by_key;            // permutation of the blocks, keys ascending
    int32_t status = 0;                     // not 0: there may be blocks that were not found
    std::vector<std::string> unreadable{};  // paths of what is there and may be a block
};

FileBlocks blocks_of(Family, hid_t file);

// The places in `blocks` of all blocks with this key.
std::span<const int32_t> blocks_with_key(const FileBlocks&, int32_t key);

size_t number_of_keys(const FileBlocks&);

// One line for each block, under its key; the merger and the eraser frame the key differently.
enum class KeyFrame { above, around };
void print_block_types(const FileBlocks&, KeyFrame);

// A number in a path, such as that behind the last "_set".
enum class Numbered { absent, unreadable, read };
struct PathNumber {
    Numbered state = Numbered::absent;
    int32_t value = -1;
};
PathNumber state_number(std::string_view path);  // behind the first "/state"
PathNumber set_number(std::string_view path);    // behind the last "_set"

void warn_of_set(const ListedBlock&);
void warn_of_state(const ListedBlock&);

}  // namespace vak
