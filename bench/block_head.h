#pragma once

#include "plain.h"

#include <cmath>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

namespace bench {

// The identity of a block, as both sides store it.
struct Head {
    int32_t key;
    std::string type;

    Head(int32_t number, std::string name) : key(number), type(std::move(name)) { type.resize(256, '\0'); }
};

// The index value of a state.
struct Index {
    int32_t n = 1, code = 1, ident = 1;
    float value = 0;
};

inline std::string state_path(int32_t state, const std::string& names)
{
    char level[32];
    std::snprintf(level, sizeof level, "state%012d/", state);
    return "singlestate/" + std::string(level) + names + "/vakblock";
}

inline std::vector<int32_t> numbers_from_1(size_t n)
{
    std::vector<int32_t> ids(n);
    std::iota(ids.begin(), ids.end(), 1);
    return ids;
}

// A smooth field that moves with the state.
inline void fill_smoothly(std::vector<float>& values, int32_t state)
{
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = std::sin(0.001F * static_cast<float>(i) + 0.1F * static_cast<float>(state));
}

}  // namespace bench
