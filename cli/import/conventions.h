// What all blocks of an import have in common.
#pragma once

#include <cstdint>
#include <vector>

#include "store/call.h"

namespace vak::import {

constexpr store::Int none{-1}, zero{0}, one{1}, single_precision{4}, no_filters{0};
constexpr int32_t no_parameters[2] = {0, 0};

constexpr int32_t real_values = 4, complex_values = 16;

constexpr const char* node_type = "NODE";
constexpr const char* part_type = "PART";
constexpr const char* element_type = "ELEMENT";

inline store::Int count(size_t n) { return {static_cast<int32_t>(n)}; }

}  // namespace vak::import
