#include "merge/check.h"

#include <vak_sp.h>

#include <algorithm>
#include <list>
#include <map>

#include "merge/expected.h"
#include "problem.h"
#include "store/integers.h"

namespace vak::merge {

namespace {

// The domains' blocks that become one, without those that do not agree with the lowest.
struct Expected {
    struct Part {
        size_t domain;
        const store::BlockEntry* entry;
        int64_t entities;
    };
    show::BlockView lowest;
    std::vector<Part> parts;
};

// Which entities blocks of the same kind and sizes have in common; the last few are kept.
struct Union {
    std::vector<int64_t> sizes;
    Ids entities;
};
constexpr size_t kept_unions = 8;

[[noreturn]] void refuse(const std::string& block, const std::string& what)
{
    throw cli::Problem("the merged file was read back and is not complete: " + block + " " + what +
                       ". Nothing was kept; is the disk full or failing?");
}

std::vector<std::string> compared_arrays(int32_t key)
{
    if (key == 400) return {"idcoll", "etyp", "nent", "entid"};
    if (fate_of(key) == Fate::joined) return {identifiers_of(key)};
    return {};
}

class Check {
public:
    explicit Check(const Domains& domains) : domains_(domains)
    {
        for (size_t i = 0; i < domains_.files.size(); ++i)
            for (const store::BlockEntry& entry : domains_.catalogues[i].blocks) expect(i, entry);
    }

    void compare(const store::File& merged)
    {
        for (const store::BlockEntry& entry : store::catalogue(merged, domains_.layout()).blocks)
            found_[entry.path] = entry;
        for (const auto& [path, expected] : expected_)
            compare_block(expected, read(merged, entry_at(path), path));
    }

    void compare_domain_numbers(const store::File& merged)
    {
        for (const char* const path :
             {"constant/variable/DMPComputeDomainNumber/vakblock", "constant/variablegroup/Domain/vakblock"})
            read(merged, entry_at(path), path);
        for (auto& [etyp, elements] : elements_) {
            const std::string path = "constant/entityresults/" + etyp + (etyp.empty() ? "" : "/") +
                                     "DMPComputeDomainNumber/vakblock";
            if (expected_.contains(path)) continue;  // a domain has brought them along
            sort_out(elements);
            const show::BlockView block = read(merged, entry_at(path), path);
            expect_entities(path, block, elements);
        }
    }

private:
    void expect(size_t domain, const store::BlockEntry& entry)
    {
        if (fate_of(entry.key) == Fate::unknown) return;
        const auto at = expected_.find(entry.path);
        if (at != expected_.end() && fate_of(entry.key) != Fate::joined) return;
        const show::BlockView block = read_attributes(domain, entry);
        Expected& all = at != expected_.end()
                            ? at->second
                            : expected_.emplace(entry.path, Expected{block, {}}).first->second;
        if (shape_of(block) == shape_of(all.lowest))
            all.parts.push_back({domain, &entry, entities_of(block)});
    }

    show::BlockView read_attributes(size_t domain, const store::BlockEntry& entry) const
    {
        try {
            return show::view(domains_.files[domain], entry, {.layout = domains_.layout()});
        } catch (const cli::Problem& problem) {
            throw cli::Problem(domains_.names[domain] + ": " + problem.what());
        }
    }

    const store::BlockEntry& entry_at(const std::string& path) const
    {
        const auto at = found_.find(path);
        if (at == found_.end()) refuse(path, "is missing");
        return at->second;
    }

    // All that its reader wants must be there; the values are not read.
    show::BlockView read(const store::File& merged, const store::BlockEntry& entry,
                         const std::string& path) const
    {
        try {
            return read_part(merged, entry);
        } catch (const cli::Problem& problem) {
            refuse(path, std::string("cannot be read (") + problem.what() + ")");
        }
    }
    show::BlockView read_part(const store::File& file, const store::BlockEntry& entry) const
    {
        return show::view(file, entry,
                          {.layout = domains_.layout(),
                           .values = true,
                           .all_values = true,
                           .only = compared_arrays(entry.key)});
    }

    void compare_block(const Expected& expected, const show::BlockView& merged)
    {
        const std::string& path = expected.lowest.entry.path;
        const Fate fate = fate_of(expected.lowest.entry.key);
        if (fate == Fate::copied && !has_attributes_of(expected.lowest, merged))
            refuse(path, "has other attributes than the domain's");
        if (fate != Fate::joined) return;
        if (shape_of(merged) != shape_of(expected.lowest)) refuse(path, "has another form than the domain's");
        if (merged.entry.key == 400) return compare_members(expected, merged);
        if (has_no_state(merged)) return compare_count(expected, merged);
        compare_entities(expected, merged);
        if (merged.entry.key == 300) add_elements(merged);
    }

    // As a rule the blocks of a run list the same entities; those of blocks of the same sizes are only found
    // anew where they are not those of the block before.
    void compare_entities(const Expected& expected, const show::BlockView& merged)
    {
        std::vector<int64_t> sizes{expected.lowest.entry.key};
        for (const Expected::Part& part : expected.parts) {
            sizes.push_back(static_cast<int64_t>(part.domain));
            sizes.push_back(part.entities);
        }
        const Ids& ids = values_of<int32_t>(merged, identifiers_of(merged.entry.key));
        const auto known = std::find_if(unions_.begin(), unions_.end(), [&](const Union& u) {
            return u.sizes == sizes && u.entities == ids;
        });
        if (known == unions_.end()) {
            unions_.push_front({std::move(sizes), entities_in(expected)});
            if (unions_.size() > kept_unions) unions_.pop_back();
        } else {
            unions_.splice(unions_.begin(), unions_, known);
        }
        expect_entities(merged.entry.path, merged, unions_.front().entities);
    }

    static void expect_entities(const std::string& path, const show::BlockView& block, const Ids& wanted)
    {
        const int64_t count = entities_of(block);
        if (count != static_cast<int64_t>(wanted.size()))
            refuse(path,
                   "has " + std::to_string(count) + " entities instead of " + std::to_string(wanted.size()));
        if (values_of<int32_t>(block, identifiers_of(block.entry.key)) != wanted)
            refuse(path, "has other entities than the domains");
    }

    // What is known only of arrays that were read comes on top.
    static bool has_attributes_of(const show::BlockView& lowest, const show::BlockView& merged)
    {
        return std::all_of(lowest.attributes.begin(), lowest.attributes.end(), [&](const auto& attribute) {
            return std::find(merged.attributes.begin(), merged.attributes.end(), attribute) !=
                   merged.attributes.end();
        });
    }

    // Its readers tell nothing of it but the counts.
    static bool has_no_state(const show::BlockView& block)
    {
        return std::find(block.attributes.begin(), block.attributes.end(),
                         std::pair<std::string, show::AttributeValue>("nstate", int64_t{0})) !=
               block.attributes.end();
    }
    static void compare_count(const Expected& expected, const show::BlockView& merged)
    {
        int64_t least = 0, most = 0;
        for (const Expected::Part& part : expected.parts) {
            least = std::max(least, part.entities);
            most += part.entities;
        }
        const int64_t count = entities_of(merged);
        if (count < least || count > most)
            refuse(merged.entry.path, "has " + std::to_string(count) + " entities instead of " +
                                          std::to_string(least) + " to " + std::to_string(most));
    }

    void compare_members(const Expected& expected, const show::BlockView& merged) const
    {
        Members wanted;
        for (const Expected::Part& part : expected.parts)
            wanted.merge(members_of(read_part(domains_.files[part.domain], *part.entry)));
        if (members_of(merged) != wanted) refuse(merged.entry.path, "has other entities than the domains");
    }

    void add_elements(const show::BlockView& merged)
    {
        const Ids ids = values_of<int32_t>(merged, "idele");
        Ids& elements = elements_[text_of(merged, "etyp")];
        elements.insert(elements.end(), ids.begin(), ids.end());
    }

    // Quickly, if they can be had so; the library's readers look at much more of the block.
    Ids identifiers(const Expected::Part& part) const
    {
        const store::File& file = domains_.files[part.domain];
        const std::string array = identifiers_of(part.entry->key);
        Ids ids(static_cast<size_t>(part.entities));
        if (store::read_integers(file, part.entry->path, domains_.layout(), array, ids)) return ids;
        return values_of<int32_t>(read_part(file, *part.entry), array);
    }
    Ids entities_in(const Expected& expected) const
    {
        Ids all;
        for (const Expected::Part& part : expected.parts) {
            const Ids ids = identifiers(part);
            all.insert(all.end(), ids.begin(), ids.end());
        }
        sort_out(all);
        return all;
    }
    static void sort_out(Ids& ids)
    {
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    }

    const Domains& domains_;
    std::map<std::string, Expected> expected_;
    std::map<std::string, store::BlockEntry> found_;
    std::map<std::string, Ids> elements_;  // by entity type
    std::list<Union> unions_;              // the last used first
};

}  // namespace

void check_merged(const Domains& domains, const std::string& file, bool domain_numbers)
{
    const store::File merged = store::File::open(file);
    Check check(domains);
    check.compare(merged);
    if (domain_numbers) check.compare_domain_numbers(merged);
}

}  // namespace vak::merge
