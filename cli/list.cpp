// vak list: one line per block of a file.
#include <cstdio>
#include <memory>
#include <string>

#include "commands.h"
#include "listing.h"
#include "selection.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::string file;
    bool json = false;
    bool legacy = false;
};

void run(const Options& options)
{
    const store::File file = store::File::open(options.file);
    const store::Catalogue catalogue = store::catalogue(file, asked_layout(options.legacy));
    auto json = nlohmann::ordered_json::array();
    for (const store::BlockEntry& block : catalogue.blocks) {
        if (options.json)
            json.push_back(as_json(block));
        else
            std::puts(line(block).c_str());
    }
    if (options.json) print_document(options.file, catalogue.layout, std::move(json));
}

}  // namespace

void add_list(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand list(app, "list", "Lists the blocks of a file: key, type, state, set, path");
    list.takes("FILE", options->file, "The result file, or a group in it: run.h5/post").required();
    list.flag("--json", options->json, "Print one JSON document");
    list.flag("--legacy", options->legacy, "Take the file for one of the legacy layout without looking");
    list.runs([options] { run(*options); });
}

}  // namespace vak::cli
