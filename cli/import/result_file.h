// The stored form of a solver's results: which block each piece of them becomes.
#pragma once

#include <string>

#include "import/survey.h"
#include "store/file.h"

namespace vak::import {

class ResultFile {
public:
    // Creates the file with what describes it: header, system, index, variables, mesh.
    ResultFile(const std::string& path, const std::string& model, const Survey& survey);

    // Values of one variable at the nodes, of one state.
    void write(const PlannedResult& result, const frd::Values& values);
    // The same, complex; both parts on the same nodes.
    void write(const PlannedResult& result, const frd::Values& real, const frd::Values& imaginary);

    void close() { file_.close(); }

private:
    void write_system(const std::string& model);
    void write_index();
    void write_variable(const Variable& variable);
    void write_coordinates();
    void write_results(const PlannedResult& result, const std::vector<int32_t>& nodes, const float* values,
                       int32_t value_form);

    const Survey& survey_;
    store::File file_;
    std::vector<float> pairs_;  // kept between calls for its memory
};

}  // namespace vak::import
