// A series holds states on the same nodes and of the same form. A variable that changes either from state to
// state goes on in further blocks, told apart by their set number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace vak::import {

class SeriesSets {
public:
    // The set that this state of the variable belongs to: -1 for its first, then 2, 3 ...
    int32_t set_of(size_t variable, int32_t value_form, const std::vector<int32_t>& nodes);

private:
    struct Kind {
        int32_t value_form;
        size_t nodes;
        bool operator==(const Kind&) const = default;
    };

    size_t number_of(const std::vector<int32_t>& nodes);

    std::vector<std::vector<int32_t>> node_lists_;  // each once, as most variables have the same
    std::map<size_t, std::vector<Kind>> kinds_;     // by variable
};

}  // namespace vak::import
