#include "merge/check.h"

#include <vak_sp.h>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "problem.h"
#include "show/view.h"
#include "store/call.h"

namespace vak::merge {

namespace {

using store::call;
using store::Int;
using Names = std::set<std::string_view>;

// Blocks that differ in one of these are not merged: the lowest domain's stands, as the library has warned.
const Names agreeing{"ncoo",  "numl", "ndim",    "fswitch",  "dmpswitch", "npele",
                     "nbint", "nbid", "nbfloat", "nbstring", "nstate"};

bool is_merged_kind(int32_t key)
{
    static const std::set<int32_t> keys{100,  200,  250,  300,  400,  500,  1000, 1001,
                                        1050, 1051, 1100, 1101, 1150, 1151, 2100, 2150};
    return keys.contains(key);
}

// What of a block its attributes tell.
struct Size {
    int32_t key = 0;
    int64_t entities = 0;
    std::vector<std::pair<std::string, int64_t>> shape;

    bool agrees(const Size& other) const { return shape == other.shape; }
};

Size size_of(const store::File& file, const store::BlockEntry& entry, store::Layout layout)
{
    static const Names counts{"nent", "nele", "npart", "ncoll"};
    Size size{.key = entry.key, .entities = 0, .shape = {{"key", entry.key}}};
    bool counted = false;
    const show::BlockView block = show::view(file, entry, {.layout = layout});
    for (const auto& [name, value] : block.attributes) {
        const int64_t* number = std::get_if<int64_t>(&value);
        if (number == nullptr) continue;
        if (!counted && counts.contains(name)) {
            size.entities = *number;
            counted = true;
        }
        if (agreeing.contains(name)) size.shape.emplace_back(name, *number);
    }
    return size;
}

// Whether the identifiers of a kind's entities can be read without its values.
bool tells_identifiers(int32_t key) { return key == 300 || key == 1000 || key == 1001; }

std::vector<int32_t> identifiers(const store::File& file, const store::BlockEntry& entry, int64_t count)
{
    const store::Group group(file.root(), entry.path);
    const std::string doing = "reading " + entry.path;
    std::vector<int32_t> ids(static_cast<size_t>(std::max<int64_t>(count, 0)));
    char text[5][256];
    int32_t n[8], params[2];
    if (entry.key == 300)
        call(doing, VAK_READ_CONNECTIVITIES, group.id(), Int{1 + 4}, text[0], text[1], text[2], text[3],
             text[4], &n[0], &n[1], &n[2], &n[3], &n[4], &n[5], &n[6], nullptr, nullptr, ids.data(), nullptr,
             nullptr, nullptr, nullptr, &n[7], params);
    else
        call(doing, VAK_READ_ENTITYRESULTS2, group.id(), Int{1 + 4}, nullptr, text[0], &n[0], text[1], &n[1],
             text[2], &n[2], text[3], &n[3], &n[4], &n[5], &n[6], nullptr, nullptr, ids.data(), &n[7],
             nullptr, nullptr, nullptr, nullptr, Int{4}, params, params, Int{0}, nullptr, nullptr);
    return ids;
}

// The domains' blocks that become one, without those that do not agree with the lowest.
struct Expected {
    struct Part {
        size_t domain;
        const store::BlockEntry* entry;
        int64_t entities;
    };
    Size lowest;
    std::vector<Part> parts;

    int64_t least() const
    {
        int64_t most = 0;
        for (const Part& part : parts) most = std::max(most, part.entities);
        return most;
    }
    int64_t most() const
    {
        int64_t sum = 0;
        for (const Part& part : parts) sum += part.entities;
        return sum;
    }
};

[[noreturn]] void refuse(const std::string& block, const std::string& what)
{
    throw cli::Problem("the merged file was read back and is not complete: " + block + " " + what +
                       ". Nothing was kept; is the disk full or failing?");
}

class Check {
public:
    Check(const std::deque<store::File>& domains, const std::vector<store::Catalogue>& catalogues)
        : domains_(domains), catalogues_(catalogues)
    {
        for (size_t i = 0; i < domains_.size(); ++i)
            for (const store::BlockEntry& entry : catalogues_[i].blocks) expect(i, entry);
    }

    void compare(const store::File& merged)
    {
        std::map<std::string, store::BlockEntry> found;
        for (const store::BlockEntry& entry : store::catalogue(merged, layout()).blocks)
            found[entry.path] = entry;
        for (const auto& [path, expected] : expected_) {
            const auto at = found.find(path);
            if (at == found.end()) refuse(path, "is missing");
            if (is_merged_kind(at->second.key))
                compare_count(path, expected, size_of(merged, at->second, layout()).entities);
        }
    }

private:
    store::Layout layout() const { return catalogues_.front().layout; }

    void expect(size_t domain, const store::BlockEntry& entry)
    {
        if (!is_merged_kind(entry.key)) {
            expected_.try_emplace(entry.path);
            return;
        }
        const Size size = size_of(domains_[domain], entry, layout());
        Expected& all =
            expected_.try_emplace(entry.path, Expected{.lowest = size, .parts = {}}).first->second;
        if (size.agrees(all.lowest)) all.parts.push_back({domain, &entry, size.entities});
    }

    // As a rule the blocks of a run list the same entities, and the entities that domains have in common are
    // counted once for blocks of the same sizes. Where that does not give the count, they are counted anew.
    void compare_count(const std::string& path, const Expected& expected, int64_t count)
    {
        if (count < expected.least() || count > expected.most())
            refuse_count(path, count,
                         std::to_string(expected.least()) + " to " + std::to_string(expected.most()));
        if (!tells_identifiers(expected.lowest.key) || layout() != store::Layout::current) return;
        std::vector<int64_t> sizes{expected.lowest.key};
        for (const Expected::Part& part : expected.parts) {
            sizes.push_back(static_cast<int64_t>(part.domain));
            sizes.push_back(part.entities);
        }
        const auto known = unions_.find(sizes);
        if (known != unions_.end() && known->second == count) return;
        const int64_t all = unions_[sizes] = entities_in(expected);
        if (all != count) refuse_count(path, count, std::to_string(all));
    }

    [[noreturn]] static void refuse_count(const std::string& path, int64_t count, const std::string& wanted)
    {
        refuse(path, "has " + std::to_string(count) + " entities instead of " + wanted);
    }

    int64_t entities_in(const Expected& expected) const
    {
        std::vector<int32_t> all;
        for (const Expected::Part& part : expected.parts) {
            const auto ids = identifiers(domains_[part.domain], *part.entry, part.entities);
            all.insert(all.end(), ids.begin(), ids.end());
        }
        std::sort(all.begin(), all.end());
        return std::unique(all.begin(), all.end()) - all.begin();
    }

    const std::deque<store::File>& domains_;
    const std::vector<store::Catalogue>& catalogues_;
    std::map<std::string, Expected> expected_;
    std::map<std::vector<int64_t>, int64_t> unions_;  // by kind, and number and size of each domain's block
};

}  // namespace

void check_merged(const std::deque<store::File>& domains, const std::vector<store::Catalogue>& catalogues,
                  const std::string& file)
{
    Check check(domains, catalogues);
    check.compare(store::File::open(file));
}

}  // namespace vak::merge
