#include "show/view.h"

#include <algorithm>

#include "show/kinds.h"

namespace vak::show {

namespace {

using Show = void (*)(Reading&);

Show show_function(int32_t key)
{
    switch (key) {
        case 1: return show_header;
        case 10: return show_system;
        case 20: return show_index;
        case 30: return show_variable;
        case 32: return show_variablegroup;
        case 40: return show_text;
        case 100: return show_parts;
        case 200:
        case 250: return show_attributes;
        case 300: return show_connectivities;
        case 400: return show_collector;
        case 500: return show_properties;
        case 1000:
        case 1001: return show_entityresults;
        case 1050:
        case 1051: return show_multientityresults;
        case 1100:
        case 1101: return show_elementresults;
        case 1150:
        case 1151: return show_multielementresults;
        case 2100: return show_activflags;
        case 2150: return show_multiactivflags;
        case 10000:
        case 10001: return show_densematrix;
        case 10100:
        case 10101: return show_triangularmatrix;
        case 10200:
        case 10201: return show_sparsematrix;
        default: return nullptr;
    }
}

BlockView read(const store::File& file, const store::BlockEntry& entry, const Request& request)
{
    BlockView block{.entry = entry, .attributes = {}, .arrays = {}};
    const Show show = show_function(entry.key);
    if (show == nullptr) return block;
    const store::Group group(file.root(), entry.path);
    Reading reading{.view = block, .request = request, .group = group.id()};
    show(reading);
    return block;
}

std::string text_of(const BlockView& block, const std::string& name)
{
    for (const auto& [attribute, value] : block.attributes)
        if (attribute == name && std::holds_alternative<std::string>(value))
            return std::get<std::string>(value);
    return {};
}

template <class T>
std::vector<T> values_of(const BlockView& block, const std::string& name)
{
    for (const ArrayView& array : block.arrays)
        if (array.name == name && std::holds_alternative<std::vector<T>>(array.values))
            return std::get<std::vector<T>>(array.values);
    return {};
}

// The subscripts of a variable block, cut from one text.
std::vector<std::string> subscripts(const BlockView& variable)
{
    const auto text = values_of<std::string>(variable, "subscr");
    const auto counts = values_of<int32_t>(variable, "subscnt"),
               offsets = values_of<int32_t>(variable, "subsoffs");
    std::vector<std::string> names;
    for (size_t i = 0; i < counts.size() && i < offsets.size() && !text.empty(); ++i) {
        const auto from = static_cast<size_t>(std::max(offsets[i], 0));
        if (from >= text[0].size()) return {};
        names.push_back(text[0].substr(from, static_cast<size_t>(std::max(counts[i], 0))));
    }
    return names;
}

// The names of a variable's components; none when the file does not describe it.
std::vector<std::string> component_names(const store::File& file, store::Layout layout,
                                         const std::string& variable)
{
    const bool legacy = layout == store::Layout::legacy;
    store::BlockEntry entry;
    entry.key = 30;
    entry.path = legacy ? "constant/variables/" + variable : "constant/variable/" + variable + "/vakblock";
    if (variable.empty() || !store::has_group(file.root(), entry.path)) return {};
    const BlockView block = read(file, entry, {.layout = layout, .values = true, .all_values = true});
    return legacy ? values_of<std::string>(block, "cname") : subscripts(block);
}

void name_components(std::vector<ComponentExtremes>& components, const std::vector<std::string>& names)
{
    const size_t parts = !components.empty() && components[0].name.ends_with("re") ? 2 : 1;
    if (names.empty() || components.size() != names.size() * parts) return;
    for (size_t i = 0; i < components.size(); ++i)
        components[i].name = names[i / parts] + (parts == 1 ? "" : i % 2 == 0 ? ".re" : ".im");
}

}  // namespace

bool Request::wants(const std::string& array) const
{
    return !only || std::find(only->begin(), only->end(), array) != only->end();
}

BlockView view(const store::File& file, const store::BlockEntry& entry, const Request& request)
{
    BlockView block = read(file, entry, request);
    for (ArrayView& array : block.arrays)
        if (array.name == "res" && !array.components.empty())
            name_components(array.components,
                            component_names(file, request.layout, text_of(block, "etypvar")));
    return block;
}

}  // namespace vak::show
