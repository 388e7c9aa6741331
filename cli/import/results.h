// Stores a result file of the solver.
#pragma once

#include <string>

#include "import/result_file.h"

namespace vak::import {

// `model` names the model's group; with a series' name each variable is one block of all its states. The
// output appears complete or not at all.
void import_results(const std::string& result, const std::string& model, const std::string& series,
                    const std::string& output);

// Reads through the result file and hands on what it holds, value by value.
void transfer_results(const std::string& result, const Survey& survey, const std::string& series,
                      Receiver& into);

}  // namespace vak::import
