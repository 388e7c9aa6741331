#include "import/tensor.h"

#include <algorithm>

namespace vak::import {

namespace {

constexpr int32_t dimension = 3;
constexpr int32_t vector_type = 2, tensor_type = 4;

bool in_space(int32_t index) { return index >= 1 && index <= dimension; }

// The tensor rank if every component says which entry it is, otherwise 0.
int32_t common_rank(const std::vector<frd::Component>& components)
{
    const auto all = [&](auto fits) {
        return !components.empty() && std::all_of(components.begin(), components.end(), fits);
    };
    if (all([](const auto& c) { return c.type == vector_type && in_space(c.row); })) return 1;
    if (all([](const auto& c) { return c.type == tensor_type && in_space(c.row) && in_space(c.column); }))
        return 2;
    return 0;
}

size_t entry(int32_t row, int32_t column) { return static_cast<size_t>((row - 1) * dimension + column - 1); }

}  // namespace

TensorMap tensor_map(const std::vector<frd::Component>& components)
{
    TensorMap tensor{.rank = common_rank(components), .ndim = 0, .kind = 0, .map = {}};
    if (!components.empty()) tensor.kind = components.front().type;
    if (tensor.rank == 0) return tensor;
    tensor.ndim = dimension;
    const size_t entries = tensor.rank == 1 ? 3 : 9;
    tensor.map.assign(components.size() * entries, 0.0F);
    for (size_t i = 0; i < components.size(); ++i) {
        const auto& c = components[i];
        float* map = tensor.map.data() + i * entries;
        map[tensor.rank == 1 ? static_cast<size_t>(c.row - 1) : entry(c.row, c.column)] = 1;
        const bool has_mirror = std::any_of(components.begin(), components.end(), [&](const auto& other) {
            return other.row == c.column && other.column == c.row;
        });
        if (tensor.rank == 2 && !has_mirror) map[entry(c.column, c.row)] = 1;
    }
    return tensor;
}

Subscripts subscripts(const std::vector<frd::Component>& components)
{
    Subscripts names;
    for (const frd::Component& component : components) {
        names.offsets.push_back(static_cast<int32_t>(names.characters.size()));
        names.lengths.push_back(static_cast<int32_t>(component.name.size()));
        names.characters += component.name;
    }
    return names;
}

}  // namespace vak::import
