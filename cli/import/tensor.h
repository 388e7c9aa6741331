// How the components of a result are the entries of a tensor.
#pragma once

#include <string>
#include <vector>

#include "frd/records.h"

namespace vak::import {

struct TensorMap {
    int32_t rank = 0;
    int32_t ndim = 0;  // extent of each index; 0 for rank 0
    int32_t kind = 0;  // the component type of the file: 1, 2, 4, 12, 14
    std::vector<float>
        map;  // [component][ndim] ... (rank times), 1 where the component is that entry; else empty
};

// A vector has rank 1, a symmetric or full tensor rank 2, everything else, amplitudes with phases too, rank
// 0.
TensorMap tensor_map(const std::vector<frd::Component>& components);

// The names of the components, one behind the other.
struct Subscripts {
    std::string characters;
    std::vector<int32_t> lengths, offsets;
};

Subscripts subscripts(const std::vector<frd::Component>& components);

}  // namespace vak::import
