// What a result file holds, found by reading through it once without the values.
#pragma once

#include <string>
#include <vector>

#include "frd/records.h"

namespace vak::import {

struct Variable {
    std::string key;
    std::vector<frd::Component> components;
};

struct State {
    int32_t number = 0;    // ascends; the solver's step number wherever that ascends as well
    float value = 0;       // time, frequency ...
    int32_t analysis = 0;  // analysis type as in the file
    int32_t step = 0;      // step number as in the file
    bool complex = false;  // holds complex results
};

// The solver writes a complex result as two blocks: NAME and, later in the state, NAMEI.
enum class Part { whole, real, imaginary };

struct PlannedResult {
    int64_t line = 0;
    size_t state = 0;
    size_t variable = 0;
    Part part = Part::whole;
};

struct Survey {
    frd::Description description;
    frd::Mesh mesh;
    std::vector<Variable> variables;
    std::vector<State> states;
    std::vector<PlannedResult> results;  // in the order of the file
};

// Also finds damage that shows without reading the values, before anything is written.
Survey survey(const std::string& path);

// The variable that the states are told apart by: TIME, FREQUENCY, LOADSTEP, or VALUE for a mixture or
// another number.
const char* index_variable(const std::vector<State>& states);

}  // namespace vak::import
