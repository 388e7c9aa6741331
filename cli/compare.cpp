// vak compare: whether two files hold the same.
#include <fnmatch.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "compare/differences.h"
#include "show/view.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::string first, second;
    std::vector<std::string> without;
    double tolerance = 0;
};

struct Side {
    explicit Side(const std::string& name) : file(store::File::open(name)), catalogue(store::catalogue(file))
    {
    }
    show::BlockView view(const store::BlockEntry& entry) const
    {
        return show::view(file, entry, {.layout = catalogue.layout, .values = true, .all_values = true});
    }

    store::File file;
    store::Catalogue catalogue;
};

bool is_left_out(const Options& options, const std::string& path)
{
    for (const std::string& pattern : options.without)
        if (fnmatch(pattern.c_str(), path.c_str(), 0) == 0) return true;
    return false;
}

std::map<std::string, const store::BlockEntry*> by_path(const Options& options, const Side& side)
{
    std::map<std::string, const store::BlockEntry*> blocks;
    for (const store::BlockEntry& entry : side.catalogue.blocks)
        if (!is_left_out(options, entry.path)) blocks[entry.path] = &entry;
    return blocks;
}

// One line per difference; their number.
size_t report(const Options& options, const Side& a, const Side& b)
{
    size_t count = 0;
    const auto tell = [&](const std::string& path, const std::string& what) {
        std::printf("%s: %s\n", path.c_str(), what.c_str());
        ++count;
    };
    const auto first = by_path(options, a), second = by_path(options, b);
    for (const auto& [path, entry] : first) {
        const auto other = second.find(path);
        if (other == second.end()) {
            tell(path, "only in " + options.first);
            continue;
        }
        for (const std::string& line :
             compare::differences(a.view(*entry), b.view(*other->second), options.tolerance))
            tell(path, line);
    }
    for (const auto& [path, entry] : second)
        if (!first.contains(path)) tell(path, "only in " + options.second);
    return count;
}

void run(const Options& options)
{
    const Side a(options.first), b(options.second);
    if (report(options, a, b) > 0) throw Answer{1};
}

}  // namespace

void add_compare(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand compare(app, "compare",
                       "Compares two files block by block, entities matched by their identifiers");
    compare.takes("FIRST", options->first, "A result file, or a group in it").required();
    compare.takes("SECOND", options->second, "The one to compare it with").required();
    compare.takes("--without", options->without,
                  "Leave out the blocks whose path matches; may be given again");
    compare
        .takes("--tolerance", options->tolerance,
               "Reals may differ by so much, times the largest magnitude in their array")
        .not_negative();
    compare.runs([options] { run(*options); });
}

}  // namespace vak::cli
