// The stored form of a solver's results: which block each piece of them becomes.
#pragma once

#include <string>

#include "frd/records.h"
#include "import/conventions.h"
#include "import/survey.h"
#include "store/file.h"

namespace vak::import {

// How the values of a result are stored: real or complex, and the set of their series.
struct ValueForm {
    int32_t type = real_values;
    int32_t set = -1;
};

// What takes the results in, state by state: one file, or one for each domain.
class Receiver {
public:
    virtual ~Receiver() = default;

    // Values of one variable at the nodes, of one state; complex ones in pairs.
    virtual void write(const PlannedResult& result, const frd::Values& values, const ValueForm& form) = 0;
    // The parameter lines of a state, as they stand in the result file.
    virtual void write_parameters(size_t state, const std::vector<std::string>& lines) = 0;
};

class ResultFile : public Receiver {
public:
    // Creates the file with what describes it: header, system, index, variables, mesh. The mesh is the
    // survey's or a part of it. With a series' name each variable is one block of all its states in that
    // series, otherwise one per state.
    ResultFile(const std::string& path, const std::string& model, const Survey& survey, const frd::Mesh& mesh,
               std::string series);

    void write(const PlannedResult& result, const frd::Values& values, const ValueForm& form) override;
    void write_parameters(size_t state, const std::vector<std::string>& lines) override;

    void close() { file_.close(); }

private:
    void write_system(const std::string& model);
    void write_index();
    void write_variable(const Variable& variable);
    void write_coordinates();
    std::vector<std::string> run_lines() const;
    void write_text(const char* name, const std::vector<std::string>& lines, const State* state);
    void write_state(const PlannedResult& result, const frd::Values& values, int32_t value_form);
    void append_state(const PlannedResult& result, const frd::Values& values, const ValueForm& form);

    const Survey& survey_;
    const frd::Mesh& mesh_;
    std::string series_;
    store::File file_;
};

}  // namespace vak::import
