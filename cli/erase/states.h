// The states of a file, by the index values of its blocks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/catalogue.h"

namespace vak::erase {

struct State {
    std::vector<int32_t> index;
    std::vector<double> values;  // of the same indices: time, frequency
};

struct BlockStates {
    store::BlockEntry block;
    std::vector<State> states;  // one, or those of a series; none where the block belongs to no state
};

// Of the blocks of this file; those that links bring in from others are not there.
std::vector<BlockStates> states_of(const store::File&, const store::Catalogue&);

// The index values of the state that a number of the path or an index value names; a problem when none does.
std::vector<int32_t> index_of(const std::vector<BlockStates>&, const std::string& state);

// As the library compares: entry by entry over the shorter list.
bool lies_after(const State&, const std::vector<int32_t>& index);

}  // namespace vak::erase
