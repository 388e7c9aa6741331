// The stored form of a solver's results: which block each piece of them becomes.
#pragma once

#include <string>

#include "import/series_sets.h"
#include "import/survey.h"
#include "store/file.h"

namespace vak::import {

class ResultFile {
public:
    // Creates the file with what describes it: header, system, index, variables, mesh.
    // With a series' name each variable is one block of all its states in that series, otherwise one per
    // state.
    ResultFile(const std::string& path, const std::string& model, const Survey& survey,
               std::string series = {});

    // Values of one variable at the nodes, of one state.
    void write(const PlannedResult& result, const frd::Values& values);
    // The same, complex; both parts on the same nodes.
    void write(const PlannedResult& result, const frd::Values& real, const frd::Values& imaginary);

    // The parameter lines of a state, as they stand in the result file.
    void write_parameters(size_t state, const std::vector<std::string>& lines);

    void close() { file_.close(); }

private:
    void write_system(const std::string& model);
    void write_index();
    void write_variable(const Variable& variable);
    void write_coordinates();
    std::vector<std::string> run_lines() const;
    void write_text(const char* name, const std::vector<std::string>& lines, const State* state);
    void write_results(const PlannedResult& result, const std::vector<int32_t>& nodes, const float* values,
                       int32_t value_form);
    void write_state(const PlannedResult& result, const std::vector<int32_t>& nodes, const float* values,
                     int32_t value_form);
    void append_state(const PlannedResult& result, const std::vector<int32_t>& nodes, const float* values,
                      int32_t value_form);

    const Survey& survey_;
    std::string series_;
    SeriesSets sets_;
    store::File file_;
    std::vector<float> pairs_;  // kept between calls for its memory
};

}  // namespace vak::import
