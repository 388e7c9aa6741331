#pragma once

#include <cstdint>
#include <vector>

namespace vak::test {

// Which part of a matrix a call transfers: everything, a slab, or points.
struct SampleTransfer {
    int32_t mode = 0;
    std::vector<int64_t> counts{}, starts{};
};

}  // namespace vak::test
