// The files of a cube of nodes that is cut into smaller cubes, as the domains of a distributed run write
// them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

constexpr int32_t components = 3, variables = 3, states = 10;

// `cut` domains along each axis, of `edge` nodes along each edge; neighbours share the nodes of a face.
struct Cube {
    int32_t cut[3], edge;

    int32_t domains() const { return cut[0] * cut[1] * cut[2]; }
    int32_t nodes_along(int axis) const { return cut[axis] * (edge - 1) + 1; }
    int64_t nodes() const { return int64_t{1} * nodes_along(0) * nodes_along(1) * nodes_along(2); }
    int64_t nodes_of_domain() const { return int64_t{edge} * edge * edge; }
    int64_t nodes_of_all() const { return domains() * nodes_of_domain(); }
    // Identifiers and values, read once and written once.
    double megabytes() const
    {
        return double(nodes() + nodes_of_all()) * variables * states * (components + 1) * 4 / 1e6;
    }
};

// The values of a node, which are the same in each domain that has it.
float value_of(int32_t node, int32_t variable, int32_t state);

std::string variable_name(int32_t variable);
std::string block_path(int32_t variable, int32_t state);

// With header, system, index, variables, their group, and a text, which the merger copies.
void write_domain(const Cube& cube, int32_t domain, const std::string& name);

}  // namespace bench
