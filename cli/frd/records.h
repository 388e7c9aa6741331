// What a result file of the CalculiX solver consists of.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vak::frd {

enum class BlockKind { nodes, elements, result, end };

// One component of a result (record -5).
struct Component {
    std::string name;
    int32_t type = 1;  // 1 scalar, 2 vector, 4 tensor, 12 and 14 amplitudes and phases
    int32_t row = 0, column = 0;
    bool calculated = false;  // announced for the viewer to compute, as a rule not in the records

    bool operator==(const Component&) const = default;
};

// The head of a result block (records 100C, -4 and -5).
struct ResultHead {
    int64_t line = 0;
    std::string name;
    std::vector<Component> components;  // those that the records hold
    float value = 0;                    // time, frequency or another number that tells the states apart
    int64_t announced = -1;             // number of nodes, -1 when the head does not tell
    int32_t analysis = 0;               // 0 static, 1 time step, 2 frequency, 3 load step, 4 user named
    int32_t step = 0;
};

// Values of one result block: values[node][component].
struct Values {
    std::vector<int32_t> nodes;
    std::vector<float> values;
};

struct ElementGroup {
    std::vector<int32_t> ids, groups, materials;
    std::vector<int32_t> nodes;  // nodes[element][node], in the order of the file
};

struct Mesh {
    std::vector<int32_t> nodes;
    std::vector<float> coordinates;            // coordinates[node][3]
    std::map<int32_t, ElementGroup> elements;  // by element type
};

// The lines that describe the run.
struct Description {
    std::string title;                    // behind 1C
    std::vector<std::string> user_lines;  // behind 1U
};

// Number of nodes of an element type (1 to 12); 0 for an unknown type.
int32_t nodes_per_element(int32_t type);

}  // namespace vak::frd
