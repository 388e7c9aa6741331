// The result variable that tells for each element the domain it came from.
#include <cstdio>

#include "tools/merge.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr const char* variable_name = "DMPComputeDomainNumber";
constexpr const char* group_name = "Domain";
constexpr int32_t none = -1, zero = 0, one = 1;

// A field of 256 characters, blank padded.
std::string field(const char* text)
{
    std::string padded(text);
    padded.resize(256, ' ');
    return padded;
}

struct Params {
    int32_t flags;
    int32_t values[2];
    int32_t float_size;
};

Params params_of(const Merge& merge)
{
    return {static_cast<int32_t>(merge.storage.flags),
            {static_cast<int32_t>(merge.storage.params[0]), static_cast<int32_t>(merge.storage.params[1])},
            static_cast<int32_t>(merge.storage.real_size)};
}

bool is_there(const Merge& merge, const char* type, const char* name, const char* etypvar = nullptr)
{
    const std::string path = path_text(merge.family, {.names = {type, name, etypvar}});
    if (!exists_in_target(merge, path)) return false;
    std::fprintf(stderr, "VAK WARNING target file: \"%s\" is there already and stays\n", path.c_str());
    return true;
}

int32_t write_variable(const Merge& merge)
{
    if (is_there(merge, "variable", variable_name)) return 0;
    const std::string name = field(variable_name), var_class = field("CLASS_DISCRETE"), type = field("FLOAT");
    const vak_id target = merge.target;
    const Params p = params_of(merge);
    int32_t status = 0;
    VAK_WRITE_VARIABLE(&target, nullptr, nullptr, name.c_str(), var_class.c_str(), name.c_str(), &one, &zero,
                       &zero, &zero, type.c_str(), &zero, &zero, &zero, &zero, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr, &p.flags, p.values, &p.float_size,
                       &status);
    return status == 0 ? 0 : write_failed("variable", status);
}

int32_t write_group(const Merge& merge)
{
    if (is_there(merge, "variablegroup", group_name)) return 0;
    const std::string name = field(group_name), key = field(variable_name);
    const vak_id target = merge.target;
    const Params p = params_of(merge);
    int32_t status = 0;
    VAK_WRITE_VARIABLEGROUP(&target, name.c_str(), nullptr, name.c_str(), &one, &one, &one, &zero,
                            key.c_str(), &p.flags, p.values, &status);
    return status == 0 ? 0 : write_failed("variablegroup", status);
}

// For each element the number of the lowest file that has it.
std::vector<float> lowest_files(const Order& order)
{
    std::vector<float> file(order.size());
    for (size_t i = order.place.size(); i-- > 0;)
        for (const int32_t row : order.place[i]) file[static_cast<size_t>(row)] = static_cast<float>(i);
    return file;
}

int32_t write_numbers(const Merge& merge, const std::string& etyp, const std::vector<Ids>& elements)
{
    // Domains that were merged before bring theirs along.
    if (is_there(merge, "entityresults", etyp.c_str(), variable_name)) return 0;
    const Order order = order_of(elements);
    const std::vector<float> numbers = lowest_files(order);
    const std::string variable = field(variable_name), blank = field(""), type = field(etyp.c_str());
    const auto n = static_cast<int32_t>(order.size());
    const auto ivsize = static_cast<int32_t>(merge.storage.real_size);
    const vak_id target = merge.target;
    const Params p = params_of(merge);
    int32_t status = 0;
    VAK_WRITE_ENTITYRESULTS(&target, type.c_str(), &n, variable.c_str(), &one, blank.c_str(), &none,
                            blank.c_str(), &zero, &zero, &zero, &zero, nullptr, nullptr, order.ids.data(),
                            &zero, nullptr, nullptr, nullptr, numbers.data(), &none, &none, &p.flags,
                            p.values, &ivsize, &status);
    return status == 0 ? 0 : write_failed("entityresults", status);
}

}  // namespace

int32_t write_domain_variable(const Merge& merge)
{
    if (!merge.adds_domain_number) return 0;
    const int32_t status = write_variable(merge);
    return status == 0 ? write_group(merge) : status;
}

int32_t write_domain_numbers(const Merge& merge)
{
    for (const auto& [etyp, elements] : merge.elements)
        if (const int32_t status = write_numbers(merge, etyp, elements); status != 0) return status;
    return 0;
}

}  // namespace vak
