#include "merge/domain_numbers.h"

#include <vak_sp.h>

#include <algorithm>
#include <set>
#include <string>

#include "store/call.h"

namespace vak::merge {

namespace {

using store::call;
using store::Int;

bool is_domain_number(const store::BlockEntry& block)
{
    return block.key == 1000 && block.path.starts_with("constant/") &&
           block.path.ends_with("/DMPComputeDomainNumber/vakblock");
}

// The arguments of the block's reader and writer, to which attributes and tables do not matter here.
struct Numbers {
    char etyp[256]{}, etypvar[256]{}, etypzone[256]{}, etypframe[256]{};
    int32_t nent = 0, ncoo = 0, zoneid = 0, fswitch = 0, dmpswitch = 0, nindex = 0, indexic = 0;
    int32_t flags = 0, params[2]{};
    std::vector<float> values;
};

constexpr Int attributes{1}, whole{0}, values_only{8}, single_precision{4};

void read_part(const store::Group& group, const Int& part, Numbers& n)
{
    call("reading the domain numbers", VAK_READ_ENTITYRESULTS2, group.id(), part, nullptr, n.etyp, &n.nent,
         n.etypvar, &n.ncoo, n.etypzone, &n.zoneid, n.etypframe, &n.fswitch, &n.dmpswitch, &n.nindex,
         &n.indexic, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, n.values.data(),
         single_precision, &n.flags, n.params, whole, nullptr, nullptr);
}

void write_values(const store::Group& group, const Numbers& n)
{
    const vak_id groups[2] = {*group.id(), *group.id()};
    call("writing the domain numbers", VAK_WRITE_ENTITYRESULTS2, groups, values_only, nullptr, n.etyp,
         &n.nent, n.etypvar, &n.ncoo, n.etypzone, &n.zoneid, n.etypframe, &n.fswitch, &n.dmpswitch, &n.nindex,
         &n.indexic, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, n.values.data(),
         single_precision, &n.flags, n.params, single_precision, whole, nullptr, nullptr);
}

}  // namespace

void shift_domain_numbers(const store::File& merged, const std::vector<store::Catalogue>& domains,
                          int32_t first)
{
    std::set<std::string> brought;
    for (const store::Catalogue& domain : domains)
        for (const store::BlockEntry& block : domain.blocks)
            if (is_domain_number(block)) brought.insert(block.path);
    for (const store::BlockEntry& block : store::catalogue(merged, store::Layout::current).blocks) {
        if (!is_domain_number(block) || brought.contains(block.path)) continue;
        const store::Group group(merged.root(), block.path);
        Numbers numbers;
        read_part(group, attributes, numbers);
        numbers.values.resize(static_cast<size_t>(numbers.nent));
        read_part(group, values_only, numbers);
        for (float& number : numbers.values) number += static_cast<float>(first);
        write_values(group, numbers);
    }
}

}  // namespace vak::merge
