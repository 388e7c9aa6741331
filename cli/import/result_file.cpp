#include "import/result_file.h"

#include <vak_sp.h>

#include <algorithm>
#include <array>

#include "import/conventions.h"
#include "import/description.h"
#include "import/mesh.h"
#include "import/tensor.h"

namespace vak::import {

namespace {

using store::call;
using store::Int;

constexpr const char* no_zone = "";
constexpr const char* global_frame = "GLOBAL";

}  // namespace

ResultFile::ResultFile(const std::string& path, const std::string& model, const Survey& survey,
                       const frd::Mesh& mesh, std::string series)
    : survey_(survey), mesh_(mesh), series_(std::move(series)), file_(store::File::create(path, model))
{
    call("writing the header", VAK_WRITE_FILEHEADER, file_.root(), nullptr, nullptr);
    write_system(model);
    write_index();
    for (const Variable& variable : survey_.variables) write_variable(variable);
    write_coordinates();
    write_mesh(file_, mesh_, survey_.mesh, survey_.description);
    write_text("RUN", run_lines(), nullptr);
}

void ResultFile::write_system(const std::string& model)
{
    const RunDescription run = describe(survey_.description, model);
    call("writing the system block", VAK_WRITE_SYSTEM, file_.root(), run.title.c_str(), run.host.c_str(),
         run.solver.c_str(), run.version.c_str(), run.date.c_str(), run.time.c_str(), run.date.c_str(),
         run.time.c_str(), zero, zero, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
         nullptr, nullptr, nullptr, no_filters, no_parameters, single_precision);
}

void ResultFile::write_index()
{
    const char* name = index_variable(survey_.states);
    call("writing the index block", VAK_WRITE_INDEX, file_.root(), one, name, nullptr, nullptr);
    write_variable({.key = name, .components = {{.name = name, .type = 1}}});
}

void ResultFile::write_variable(const Variable& variable)
{
    const TensorMap tensor = tensor_map(variable.components);
    const Subscripts names = subscripts(variable.components);
    const std::vector<int32_t> no_units(variable.components.size(), 0);
    call("writing the variable " + variable.key, VAK_WRITE_VARIABLE, file_.root(), nullptr, nullptr,
         variable.key.c_str(), "CLASS_DISCRETE", variable.key.c_str(), count(variable.components.size()),
         Int{tensor.rank}, Int{tensor.ndim}, Int{tensor.kind}, "FLOAT", count(tensor.map.empty() ? 0 : 1),
         count(names.characters.size()), no_units.data(), no_units.data(), nullptr, nullptr, nullptr, nullptr,
         names.characters.data(), names.lengths.data(), names.offsets.data(), tensor.map.data(), no_filters,
         no_parameters, single_precision);
}

void ResultFile::write_coordinates()
{
    static const std::vector<frd::Component> xyz{{.name = "X", .type = 2, .row = 1},
                                                 {.name = "Y", .type = 2, .row = 2},
                                                 {.name = "Z", .type = 2, .row = 3}};
    if (mesh_.nodes.empty()) return;
    write_variable({.key = "COORD", .components = xyz});
    call("writing the node coordinates", VAK_WRITE_ENTITYRESULTS, file_.root(), node_type,
         count(mesh_.nodes.size()), "COORD", Int{3}, no_zone, none, global_frame, zero, zero, zero, zero,
         nullptr, nullptr, mesh_.nodes.data(), zero, nullptr, nullptr, nullptr, mesh_.coordinates.data(),
         none, none, no_filters, no_parameters, Int{real_values});
}

// The lines 1C and 1U as they stand in the result file, without the blanks before them.
std::vector<std::string> ResultFile::run_lines() const
{
    std::vector<std::string> lines;
    if (!survey_.description.title.empty()) lines.push_back(std::string("1C") += survey_.description.title);
    for (const std::string& line : survey_.description.user_lines) lines.push_back(std::string("1U") += line);
    return lines;
}

void ResultFile::write_parameters(size_t state, const std::vector<std::string>& lines)
{
    write_text("PARAMETERS", lines, &survey_.states[state]);
}

// One text, constant or of a state.
void ResultFile::write_text(const char* name, const std::vector<std::string>& lines, const State* state)
{
    if (lines.empty()) return;
    size_t length = 0;
    for (const std::string& line : lines) length = std::max(length, line.size());
    std::string fields;
    for (const std::string& line : lines) fields += line + std::string(length - line.size(), ' ');
    call(std::string("writing the text ") + name, VAK_WRITE_TEXT, file_.root(), name, count(lines.size()),
         count(length), state ? one : zero, Int{state ? state->analysis : 0},
         state ? &state->number : nullptr, state ? &state->value : nullptr, fields.c_str(),
         state ? Int{state->number} : none, no_filters, no_parameters, single_precision);
}

void ResultFile::write(const PlannedResult& result, const frd::Values& values, const ValueForm& form)
{
    if (series_.empty())
        write_state(result, values, form.type);
    else
        append_state(result, values, form);
}

void ResultFile::write_state(const PlannedResult& result, const frd::Values& values, int32_t value_form)
{
    const Variable& variable = survey_.variables[result.variable];
    const State& state = survey_.states[result.state];
    call("writing " + variable.key + " of state " + std::to_string(state.number), VAK_WRITE_ENTITYRESULTS,
         file_.root(), node_type, count(values.nodes.size()), variable.key.c_str(),
         count(variable.components.size()), no_zone, none, global_frame, zero, zero, one, Int{state.analysis},
         Int{state.number}, &state.value, values.nodes.data(), zero, nullptr, nullptr, nullptr,
         values.values.data(), none, Int{state.number}, no_filters, no_parameters, Int{value_form});
}

void ResultFile::append_state(const PlannedResult& result, const frd::Values& values, const ValueForm& form)
{
    const Variable& variable = survey_.variables[result.variable];
    const State& state = survey_.states[result.state];
    call("appending " + variable.key + " of state " + std::to_string(state.number),
         VAK_WRITE_MULTIENTITYRESULTS, file_.root(), series_.c_str(), node_type, count(values.nodes.size()),
         variable.key.c_str(), count(variable.components.size()), no_zone, none, global_frame, zero, zero,
         one, &state.number, &state.value, values.nodes.data(), zero, nullptr, nullptr, nullptr,
         values.values.data(), Int{form.set}, one, no_filters, no_parameters, Int{form.type});
}

}  // namespace vak::import
