// vak show: what blocks hold.
#include <cstdio>
#include <memory>
#include <string>

#include "commands.h"
#include "listing.h"
#include "problem.h"
#include "selection.h"
#include "show/print.h"
#include "show/view.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::string file;
    std::string pattern;
    bool json = false;
    bool all = false;
    bool legacy = false;
};

void run(const Options& options)
{
    const store::File file = store::File::open(options.file);
    const store::Catalogue catalogue = store::catalogue(file, asked_layout(options.legacy));
    // Without a pattern the file is looked through: its arrays are not read.
    const show::Request request{.layout = catalogue.layout,
                                .values = options.all || !options.pattern.empty(),
                                .all_values = options.all};
    auto json = nlohmann::ordered_json::array();
    bool any = false;
    for (const store::BlockEntry& entry : catalogue.blocks) {
        if (!matches(entry.path, options.pattern)) continue;
        any = true;
        const show::BlockView block = show::view(file, entry, request);
        if (options.json) {
            json.push_back(as_json(entry));
            json.back().update(show::as_json(block));
        } else {
            std::puts(line(entry).c_str());
            show::print(block);
        }
    }
    if (!any && !options.pattern.empty())
        throw Problem(options.file + ": no block matches " + options.pattern + "; vak list tells the paths");
    if (options.json) print_document(options.file, catalogue.layout, std::move(json));
}

}  // namespace

void add_show(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand show(app, "show", "Shows what blocks hold: attributes, shapes, first values, extremes");
    show.takes("FILE", options->file, "The result file, or a group in it: run.h5/post").required();
    show.takes(
        "PATTERN", options->pattern,
        "Part of a path, or with *, ? or [] a pattern of whole paths. Without it every block is shown, "
        "and no array is read");
    show.flag("--json", options->json, "Print one JSON document");
    show.flag("--all", options->all, "Print every value");
    show.flag("--legacy", options->legacy, "Take the file for one of the legacy layout without looking");
    show.runs([options] { run(*options); });
}

}  // namespace vak::cli
