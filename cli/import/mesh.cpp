#include "import/mesh.h"

#include <vak_sp.h>

#include <algorithm>
#include <set>

#include "import/conventions.h"
#include "text/numbers.h"

namespace vak::import {

namespace {

using store::call;
using store::Int;

constexpr Int without_type_and_colour{2 + 4};

// The name behind the number: "MAT    1STEEL".
std::string material_name(const frd::Description& description, int32_t material)
{
    for (const std::string& line : description.user_lines)
        if (line.starts_with("MAT") && text::integer(text::columns(line, 3, 5)) == material)
            return std::string(text::trimmed(text::columns(line, 8, line.size())));
    return {};
}

std::vector<PartKey> part_keys(const frd::ElementGroup& elements)
{
    std::vector<PartKey> keys(elements.ids.size());
    for (size_t i = 0; i < keys.size(); ++i) keys[i] = {elements.groups[i], elements.materials[i]};
    return keys;
}

void write_identifiers(const store::File& file, const std::vector<int32_t>& nodes)
{
    call("writing the node identifiers", VAK_WRITE_IDENTIFIERS, file.root(), node_type, count(nodes.size()),
         zero, zero, zero, zero, nullptr, nullptr, nodes.data(), nullptr, nullptr, none, no_filters,
         no_parameters, single_precision);
}

void write_elements(const store::File& file, int32_t type, const frd::ElementGroup& elements,
                    const std::map<PartKey, int32_t>& parts)
{
    std::vector<int32_t> part_of_each;
    for (const PartKey& key : part_keys(elements)) part_of_each.push_back(parts.at(key));
    const char* name = element_type_name(type);
    call(std::string("writing the elements ") + name, VAK_WRITE_CONNECTIVITIES, file.root(), element_type,
         name, part_type, node_type, "", count(elements.ids.size()), Int{frd::nodes_per_element(type)},
         Int{element_dimension(type)}, zero, zero, zero, zero, nullptr, nullptr, elements.ids.data(),
         part_of_each.data(), elements.nodes.data(), nullptr, nullptr, none, no_filters, no_parameters,
         single_precision);
}

// Those of the whole mesh's parts that this mesh has elements of.
std::map<PartKey, int32_t> used_parts(const frd::Mesh& mesh, const std::map<PartKey, int32_t>& parts)
{
    std::map<PartKey, int32_t> used;
    for (const auto& [type, elements] : mesh.elements)
        for (const PartKey& key : part_keys(elements)) used[key] = parts.at(key);
    return used;
}

void write_parts(const store::File& file, const std::map<PartKey, int32_t>& parts,
                 const frd::Description& description)
{
    std::vector<int32_t> numbers, materials;
    std::vector<std::string> titles;
    size_t length = 0;
    for (const auto& [key, number] : parts) {
        numbers.push_back(number);
        materials.push_back(key.material);
        titles.push_back(part_title(description, key));
        length = std::max(length, titles.back().size());
    }
    std::string fields;
    for (const std::string& title : titles) fields += title + std::string(length - title.size(), ' ');
    call("writing the parts", VAK_WRITE_PARTS, file.root(), part_type, count(parts.size()),
         without_type_and_colour, count(length), zero, zero, nullptr, nullptr, numbers.data(), fields.c_str(),
         materials.data(), nullptr, nullptr, none, no_filters, no_parameters, single_precision);
}

// The elements of one type that are in one group.
std::vector<int32_t> members(const frd::ElementGroup& elements, int32_t group)
{
    std::vector<int32_t> found;
    for (size_t i = 0; i < elements.ids.size(); ++i)
        if (elements.groups[i] == group) found.push_back(elements.ids[i]);
    return found;
}

std::set<int32_t> groups_of(const frd::Mesh& mesh)
{
    std::set<int32_t> groups;
    for (const auto& [type, elements] : mesh.elements)
        for (const int32_t group : elements.groups)
            if (group > 0) groups.insert(group);
    return groups;
}

std::string type_names(const frd::Mesh& mesh)
{
    std::string names;
    for (const auto& [type, elements] : mesh.elements) {
        const std::string name = element_type_name(type);
        names += name + std::string(256 - name.size(), ' ');
    }
    return names;
}

// Groups above 0 are the sets of elements that the file has; 0 is no group. They have a list for each
// element type of the whole mesh, an empty one where this mesh has no such elements.
void write_groups(const store::File& file, const frd::Mesh& mesh, const frd::Mesh& whole)
{
    const std::set<int32_t> groups = groups_of(mesh);
    const std::string types = type_names(whole);
    if (groups.empty()) return;
    const std::vector<int32_t> identifiers(groups.begin(), groups.end());
    std::vector<int32_t> counts, all;
    for (const int32_t group : identifiers)
        for (const auto& [type, all_elements] : whole.elements) {
            const auto elements = mesh.elements.find(type);
            if (elements == mesh.elements.end()) {
                counts.push_back(0);
                continue;
            }
            const auto found = members(elements->second, group);
            counts.push_back(static_cast<int32_t>(found.size()));
            all.insert(all.end(), found.begin(), found.end());
        }
    call("writing the groups of elements", VAK_WRITE_COLLECTOR, file.root(), "GROUP",
         count(identifiers.size()), count(whole.elements.size()), zero, zero, nullptr, nullptr,
         identifiers.data(), types.c_str(), counts.data(), all.data(), none, no_filters, no_parameters,
         single_precision);
}

}  // namespace

std::map<PartKey, int32_t> part_numbers(const frd::Mesh& mesh)
{
    std::map<PartKey, int32_t> parts;
    for (const auto& [type, elements] : mesh.elements)
        for (const PartKey& key : part_keys(elements)) parts[key] = 0;
    int32_t number = 0;
    for (auto& [key, part] : parts) part = ++number;
    return parts;
}

std::string part_title(const frd::Description& description, const PartKey& part)
{
    std::string title = material_name(description, part.material);
    if (title.empty()) title = "material " + std::to_string(part.material);
    if (part.group > 0) title += ", group " + std::to_string(part.group);
    return title;
}

const char* element_type_name(int32_t type)
{
    constexpr const char* names[] = {"HE8", "PE6", "TE4", "HE20", "PE15", "TE10",
                                     "TR3", "TR6", "QU4", "QU8",  "BE2",  "BE3"};
    return names[type - 1];
}

int32_t element_dimension(int32_t type) { return type <= 6 ? 3 : type <= 10 ? 2 : 1; }

void write_mesh(const store::File& file, const frd::Mesh& mesh, const frd::Mesh& whole,
                const frd::Description& description)
{
    if (!mesh.nodes.empty()) write_identifiers(file, mesh.nodes);
    if (mesh.elements.empty()) return;
    const auto parts = part_numbers(whole);
    write_parts(file, used_parts(mesh, parts), description);
    for (const auto& [type, elements] : mesh.elements) write_elements(file, type, elements, parts);
    write_groups(file, mesh, whole);
}

}  // namespace vak::import
