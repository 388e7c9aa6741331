// Finding the blocks of all files that become one block in the target.
#include <algorithm>
#include <cstdio>
#include <numeric>

#include "frame/guarded_links.h"
#include "tools/merge.h"
#include "vak_sp.h"

namespace vak {

namespace {

struct Gathered {
    std::string key;  // numbers first: whatever a name holds, it cannot be taken for them
    DomainBlock source;
};

int32_t number_or_none(const PathNumber& number)
{
    return number.state == Numbered::read ? number.value : -1;
}

void gather(const Merge& merge, size_t file, int32_t key, std::vector<Gathered>& all)
{
    const FileBlocks& list = merge.domains[file].list;
    for (const int32_t number : blocks_with_key(list, key)) {
        const ListedBlock& block = list.blocks[static_cast<size_t>(number)];
        DomainBlock source{static_cast<int32_t>(file), key, block_path(merge.family, block.path)};
        std::string text = std::to_string(number_or_none(state_number(block.path))) + "," +
                           std::to_string(number_or_none(set_number(block.path))) + "," + source.path;
        all.push_back({std::move(text), std::move(source)});
    }
}

std::vector<int32_t> sorted(const std::vector<Gathered>& all)
{
    std::vector<const char*> keys(all.size());
    std::ranges::transform(all, keys.begin(), [](const Gathered& g) { return g.key.c_str(); });
    std::vector<int32_t> order(all.size());
    std::iota(order.begin(), order.end(), 0);
    vak_cpquicksort(keys.data(), order.data(), 0, static_cast<int32_t>(order.size()) - 1);
    return order;
}

}  // namespace

std::string block_path(Family family, const std::string& listed)
{
    if (family == Family::current) return listed;
    const size_t slash = listed.rfind('/');
    return slash == std::string::npos ? "." : listed.substr(0, slash);
}

Group open_source(const Merge& merge, const DomainBlock& source)
{
    const Properties access = guarded_links();
    return Group(
        H5Gopen2(merge.domains[static_cast<size_t>(source.file)].file, source.path.c_str(), access.get()));
}

std::vector<TargetBlock> target_blocks(const Merge& merge, int32_t key, int32_t second_key)
{
    std::vector<Gathered> all;
    for (size_t file = 0; file < merge.domains.size(); ++file) {
        gather(merge, file, key, all);
        if (second_key != 0) gather(merge, file, second_key, all);
    }
    std::vector<TargetBlock> targets;
    const std::string* last = nullptr;
    for (const int32_t i : sorted(all)) {
        Gathered& g = all[static_cast<size_t>(i)];
        if (last == nullptr || *last != g.key) targets.push_back({g.source.path, {}});
        targets.back().sources.push_back(std::move(g.source));
        last = &g.key;
    }
    for (TargetBlock& target : targets) std::ranges::sort(target.sources, {}, &DomainBlock::file);
    return targets;
}

}  // namespace vak
