// vak list: one line per block of a file.
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "commands.h"
#include "store/catalogue.h"

namespace vak::cli {

namespace {

struct Options {
    std::string file;
    bool json = false;
    bool legacy = false;
};

// States of nested indices are joined, outermost first: "9/5".
std::string states_text(const store::BlockEntry& block)
{
    std::string text;
    for (const int64_t state : block.states) text += (text.empty() ? "" : "/") + std::to_string(state);
    return text.empty() ? "-" : text;
}

void print_lines(const store::Catalogue& catalogue)
{
    for (const store::BlockEntry& block : catalogue.blocks)
        std::printf("%7d  %-20s %8s %5s  %s\n", block.key, store::block_type(block.key),
                    states_text(block).c_str(), block.set ? std::to_string(*block.set).c_str() : "-",
                    block.path.c_str());
}

nlohmann::ordered_json as_json(const store::BlockEntry& block)
{
    nlohmann::ordered_json json{{"key", block.key}, {"type", store::block_type(block.key)}};
    json["state"] = block.states.size() == 1 ? nlohmann::ordered_json(block.states[0])
                    : block.states.empty()   ? nlohmann::ordered_json(nullptr)
                                             : nlohmann::ordered_json(block.states);
    json["set"] = block.set ? nlohmann::ordered_json(*block.set) : nlohmann::ordered_json(nullptr);
    json["path"] = block.path;
    return json;
}

void print_json(const Options& options, const store::Catalogue& catalogue)
{
    auto blocks = nlohmann::ordered_json::array();
    for (const store::BlockEntry& block : catalogue.blocks) blocks.push_back(as_json(block));
    const nlohmann::ordered_json document{
        {"file", options.file},
        {"layout", catalogue.layout == store::Layout::current ? "current" : "legacy"},
        {"blocks", std::move(blocks)}};
    // Names in a file need not be UTF-8.
    std::puts(document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void run(const Options& options)
{
    const store::File file = store::File::open(options.file);
    const auto layout = options.legacy ? std::optional(store::Layout::legacy) : std::nullopt;
    const store::Catalogue catalogue = store::catalogue(file, layout);
    if (options.json)
        print_json(options, catalogue);
    else
        print_lines(catalogue);
}

}  // namespace

void add_list(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    CLI::App* list = app.add_subcommand("list", "Lists the blocks of a file: key, type, state, set, path");
    list->add_option("FILE", options->file, "The result file, or a group in it: run.h5/post")->required();
    list->add_flag("--json", options->json, "Print one JSON document");
    list->add_flag("--legacy", options->legacy, "Take the file for one of the legacy layout without looking");
    list->callback([options] { run(*options); });
}

}  // namespace vak::cli
