// Reads entity results back through the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vak::test {

struct ReadBack {
    int32_t key = 0, ncoo = 0, analysis = 0, state = 0;
    float value = 0;
    std::string etyp, variable, frame;
    std::vector<int32_t> nodes;
    std::vector<float> values;
};

ReadBack read_back(const std::string& file, const std::string& path);

bool has_block(const std::string& file, const std::string& path);

}  // namespace vak::test
