// What is shown of a block: its attributes, its arrays with as many values as are wanted, their extremes.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "show/statistics.h"
#include "store/catalogue.h"

namespace vak::show {

constexpr int64_t unknown_length = -1;  // of an array whose length depends on values that were not read

using AttributeValue = std::variant<std::string, int64_t, std::vector<int64_t>>;
using ArrayValues =
    std::variant<std::vector<int32_t>, std::vector<int64_t>, std::vector<float>, std::vector<std::string>>;

struct ArrayView {
    std::string name;
    std::string type;            // int32, int64, float32, char[n]
    std::vector<int64_t> shape;  // with the states of a series in front
    ArrayValues values;          // the first ones, or all
    bool complete = false;       // all values are there
    std::vector<ComponentExtremes> components;
};

struct BlockView {
    store::BlockEntry entry;
    std::vector<std::pair<std::string, AttributeValue>> attributes;
    std::vector<ArrayView> arrays;
};

// What is wanted of a block.
struct Request {
    store::Layout layout = store::Layout::current;
    bool values = false;                                        // read the arrays
    bool all_values = false;                                    // keep all of them
    int64_t most_values = std::numeric_limits<int64_t>::max();  // an array of more is a problem
    // Only these arrays are read; of the others, and of a series behind its first state, it is only looked
    // whether the file has what the block's counts say.
    std::optional<std::vector<std::string>> only{};

    bool wants(const std::string& array) const;
};

// Reads a block of any kind; of one of an unknown kind nothing but key and path is shown.
BlockView view(const store::File& file, const store::BlockEntry& entry, const Request& request);

}  // namespace vak::show
