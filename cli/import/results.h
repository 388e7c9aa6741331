// Stores a result file of the solver.
#pragma once

#include <string>

namespace vak::import {

// `model` names the model's group; with a series' name each variable is one block of all its states. The
// output appears complete or not at all.
void import_results(const std::string& result, const std::string& model, const std::string& series,
                    const std::string& output);

}  // namespace vak::import
