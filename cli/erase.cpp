// vak erase: cuts a file back to a state.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "erase/repack.h"
#include "erase/states.h"
#include "problem.h"
#include "selection.h"
#include "store/call.h"
#include "store/file.h"
#include "store/file_lock.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::string file;
    std::vector<int32_t> after;
    std::string state;
    bool dry_run = false, repack = false, legacy = false;
};

void refuse_file_in_use(const std::string& file)
{
    if (store::is_in_use(file, store::Use::writing))
        throw Problem(file + ": another program has it open; nothing was changed");
}

struct Target {
    store::Layout layout;
    std::vector<int32_t> index;
    std::vector<erase::BlockStates> blocks;
};

Target target_of(const Options& options)
{
    const store::File file = store::File::open(options.file);
    const store::Catalogue catalogue = store::catalogue(file, asked_layout(options.legacy));
    Target target{
        .layout = catalogue.layout, .index = options.after, .blocks = erase::states_of(file, catalogue)};
    if (!options.state.empty()) target.index = erase::index_of(target.blocks, options.state);
    return target;
}

void print_what_would_go(const Target& target)
{
    for (const erase::BlockStates& b : target.blocks) {
        const auto gone = std::ranges::count_if(
            b.states, [&](const erase::State& s) { return erase::lies_after(s, target.index); });
        if (gone == 0) continue;
        if (static_cast<size_t>(gone) == b.states.size())
            std::printf("%s\n", b.block.path.c_str());
        else
            std::printf("%s: %d of %zu states\n", b.block.path.c_str(), static_cast<int>(gone),
                        b.states.size());
    }
}

void erase_states(const Options& options, const Target& target)
{
    store::File file = store::File::update(options.file);
    const auto routine = target.layout == store::Layout::current ? VAK_ERASE_STATES : VAK1_ERASE_STATES;
    store::call("erasing states of " + options.file, routine, file.root(),
                store::Int{static_cast<int32_t>(target.index.size())}, target.index.data(), store::Int{0});
    file.close();
}

void run(const Options& options)
{
    if (options.after.empty() == options.state.empty())
        throw Problem("say where to cut: either --after with index values or --state");
    if (!options.dry_run) refuse_file_in_use(options.file);
    const Target target = target_of(options);
    if (options.dry_run) return print_what_would_go(target);
    erase_states(options, target);
    if (options.repack)
        std::printf("%s: %lld bytes freed\n", options.file.c_str(),
                    static_cast<long long>(erase::repack(options.file)));
}

}  // namespace

void add_erase(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand erase(app, "erase", "Erases every state behind a given one");
    erase.takes("FILE", options->file, "The result file").required();
    erase.takes("--after", options->after, "The index values behind which states go: 5, or 5,2")
        .comma_separated();
    erase.takes("--state", options->state, "The last state to stay: its number, or a value such as its time");
    erase.flag("--dry-run", options->dry_run, "Only name what would go");
    erase.flag("--repack", options->repack, "Write the file anew, without the space that becomes free");
    erase.flag("--legacy", options->legacy, "Take the file for one of the legacy layout without looking");
    erase.runs([options] { run(*options); });
}

}  // namespace vak::cli
