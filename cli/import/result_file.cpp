#include "import/result_file.h"

#include <vak_sp.h>

#include <algorithm>
#include <array>

#include "import/description.h"
#include "import/tensor.h"
#include "store/call.h"

namespace vak::import {

namespace {

using store::call;
using store::Int;

constexpr Int none{-1}, zero{0}, one{1}, single_precision{4};
constexpr Int no_filters{0};
constexpr int32_t no_parameters[2] = {0, 0};
constexpr int32_t real_values = 4, complex_values = 16;
constexpr const char* nodes_type = "NODE";
constexpr const char* no_zone = "";
constexpr const char* global_frame = "GLOBAL";

Int count(size_t n) { return {static_cast<int32_t>(n)}; }

}  // namespace

ResultFile::ResultFile(const std::string& path, const std::string& model, const Survey& survey)
    : survey_(survey), file_(store::File::create(path, model))
{
    call("writing the header", VAK_WRITE_FILEHEADER, file_.root(), nullptr, nullptr);
    write_system(model);
    write_index();
    for (const Variable& variable : survey_.variables) write_variable(variable);
    write_coordinates();
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
    const frd::Mesh& mesh = survey_.mesh;
    if (mesh.nodes.empty()) return;
    write_variable({.key = "COORD", .components = xyz});
    call("writing the node coordinates", VAK_WRITE_ENTITYRESULTS, file_.root(), nodes_type,
         count(mesh.nodes.size()), "COORD", Int{3}, no_zone, none, global_frame, zero, zero, zero, zero,
         nullptr, nullptr, mesh.nodes.data(), zero, nullptr, nullptr, nullptr, mesh.coordinates.data(), none,
         none, no_filters, no_parameters, Int{real_values});
}

void ResultFile::write(const PlannedResult& result, const frd::Values& values)
{
    write_results(result, values.nodes, values.values.data(), real_values);
}

void ResultFile::write(const PlannedResult& result, const frd::Values& real, const frd::Values& imaginary)
{
    pairs_.resize(2 * real.values.size());
    for (size_t i = 0; i < real.values.size(); ++i) {
        pairs_[2 * i] = real.values[i];
        pairs_[2 * i + 1] = imaginary.values[i];
    }
    write_results(result, real.nodes, pairs_.data(), complex_values);
}

void ResultFile::write_results(const PlannedResult& result, const std::vector<int32_t>& nodes,
                               const float* values, int32_t value_form)
{
    const Variable& variable = survey_.variables[result.variable];
    const State& state = survey_.states[result.state];
    call("writing " + variable.key + " of state " + std::to_string(state.number), VAK_WRITE_ENTITYRESULTS,
         file_.root(), nodes_type, count(nodes.size()), variable.key.c_str(),
         count(variable.components.size()), no_zone, none, global_frame, zero, zero, one, Int{state.analysis},
         Int{state.number}, &state.value, nodes.data(), zero, nullptr, nullptr, nullptr, values, none,
         Int{state.number}, no_filters, no_parameters, Int{value_form});
}

}  // namespace vak::import
