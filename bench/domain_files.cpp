#include "domain_files.h"

#include "ours.h"

#include <cstdio>

namespace bench {

namespace {

constexpr int32_t none = -1, zero = 0, one = 1, four = 4, no_parameters[2] = {0, 0};

std::vector<int32_t> nodes_of(const Cube& cube, int32_t domain)
{
    const int32_t step = cube.edge - 1;
    const int32_t x0 = domain % cube.cut[0] * step, y0 = domain / cube.cut[0] % cube.cut[1] * step,
                  z0 = domain / cube.cut[0] / cube.cut[1] * step;
    std::vector<int32_t> ids;
    for (int32_t z = z0; z <= z0 + step; ++z)
        for (int32_t y = y0; y <= y0 + step; ++y)
            for (int32_t x = x0; x <= x0 + step; ++x)
                ids.push_back(1 + x + cube.nodes_along(0) * (y + cube.nodes_along(1) * z));
    return ids;
}

void write_variable(const File& file, const std::string& name)
{
    const std::string key = field(name), kind = field("CLASS_DISCRETE"), type = field("FLOAT");
    const int32_t lengths[components] = {1, 1, 1}, offsets[components] = {0, 1, 2},
                  units[components] = {0, 0, 0};
    int32_t ierr = 0;
    VAK_WRITE_VARIABLE(file.id(), nullptr, nullptr, key.data(), kind.data(), key.data(), &components, &zero,
                       &zero, &zero, type.data(), &zero, &components, units, units, nullptr, nullptr, nullptr,
                       nullptr, "XYZ", lengths, offsets, nullptr, &zero, no_parameters, &four, &ierr);
    must(ierr, "writing a variable");
}

void write_group(const File& file)
{
    const std::string etypvar = field("RESULT"), name = field("Results");
    int32_t offsets[variables], counts[variables], ierr = 0;
    std::string keys;
    for (int32_t v = 0; v < variables; ++v) {
        counts[v] = components;
        offsets[v] = v * components;
        keys += field(variable_name(v));
    }
    const int32_t all = variables * components;
    VAK_WRITE_VARIABLEGROUP(file.id(), etypvar.data(), nullptr, name.data(), &variables, &all, counts,
                            offsets, keys.data(), &zero, no_parameters, &ierr);
    must(ierr, "writing a variable group");
}

void write_system(const File& file)
{
    const std::string title = field("A cube of nodes"), system = field("SI"), blank = field("");
    int32_t ierr = 0;
    VAK_WRITE_FILEHEADER(file.id(), nullptr, nullptr, &ierr);
    must(ierr, "writing the header");
    VAK_WRITE_SYSTEM(file.id(), title.data(), system.data(), blank.data(), blank.data(), blank.data(),
                     blank.data(), blank.data(), blank.data(), &zero, &zero, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &zero,
                     no_parameters, &four, &ierr);
    must(ierr, "writing the system");
    const std::string time = field("TIME"), name = field("NOTE"), line = field("computed for a comparison");
    VAK_WRITE_INDEX(file.id(), &one, time.data(), nullptr, nullptr, &ierr);
    must(ierr, "writing the index");
    const int32_t length = 256;
    VAK_WRITE_TEXT(file.id(), name.data(), &one, &length, &zero, &zero, nullptr, nullptr, line.data(), &none,
                   &zero, no_parameters, &four, &ierr);
    must(ierr, "writing a text");
}

void write_state(const File& file, const std::vector<int32_t>& ids, int32_t v, int32_t state,
                 const std::vector<float>& res)
{
    const std::string etyp = field("NODE"), etypvar = field(variable_name(v)), blank = field("");
    const auto nent = static_cast<int32_t>(ids.size());
    const auto time = static_cast<float>(state);
    int32_t ierr = 0;
    VAK_WRITE_ENTITYRESULTS(file.id(), etyp.data(), &nent, etypvar.data(), &components, blank.data(), &none,
                            blank.data(), &zero, &zero, &one, &one, &state, &time, ids.data(), &zero, nullptr,
                            nullptr, nullptr, res.data(), &none, &state, &zero, no_parameters, &four, &ierr);
    must(ierr, "writing a state");
}

}  // namespace

float value_of(int32_t node, int32_t variable, int32_t state)
{
    return static_cast<float>(node % 1000 + state) * 0.001F + static_cast<float>(variable);
}

std::string variable_name(int32_t variable) { return "VARIABLE" + std::to_string(variable); }

std::string block_path(int32_t variable, int32_t state)
{
    char path[256];
    std::snprintf(path, sizeof path, "singlestate/state%012d/entityresults/NODE/%s/vakblock", state,
                  variable_name(variable).c_str());
    return path;
}

void write_domain(const Cube& cube, int32_t domain, const std::string& name)
{
    const std::vector<int32_t> ids = nodes_of(cube, domain);
    std::vector<float> res(ids.size() * components);
    const File file(name, create);
    write_system(file);
    for (int32_t v = 0; v < variables; ++v) write_variable(file, variable_name(v));
    write_group(file);
    for (int32_t state = 1; state <= states; ++state)
        for (int32_t v = 0; v < variables; ++v) {
            for (size_t i = 0; i < res.size(); ++i) res[i] = value_of(ids[i / components], v, state);
            write_state(file, ids, v, state, res);
        }
}

}  // namespace bench
