// vak merge: joins the files of a distributed run's domains.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "import/part_file.h"
#include "merge/rounds.h"
#include "problem.h"
#include "store/file.h"
#include "store/open_files.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::vector<std::string> domains;
    std::string target;
    std::string params;
    uint64_t memory = uint64_t{2} << 30;
    size_t at_once = 0;  // 0: what the system and the memory allow
    bool no_domain_number = false;
    int verbose = 0;
};

// What HDF5 holds of an open file, and what a merge needs beside: slices of values, orders of entities.
constexpr uint64_t bytes_of_open_file = uint64_t{2} << 20, bytes_of_merging = uint64_t{512} << 20;

size_t files_at_once(const Options& options)
{
    const uint64_t spare = options.memory > bytes_of_merging ? options.memory - bytes_of_merging : 0;
    size_t limit = std::min<uint64_t>(spare / bytes_of_open_file, options.domains.size());
    limit = std::min(limit, store::allow_open_files(limit));
    if (options.at_once > 0) limit = std::min(limit, options.at_once);
    return std::max(limit, merge::least_at_once);
}

int64_t bytes_of(const std::vector<std::string>& files)
{
    int64_t bytes = 0;
    for (const std::string& file : files) {
        std::error_code unknown;
        const auto size = std::filesystem::file_size(file, unknown);
        if (!unknown) bytes += static_cast<int64_t>(size);
    }
    return bytes;
}

// Of a domain that is named twice the sums would count everything double.
void check_different(const std::vector<std::string>& domains)
{
    std::map<std::pair<dev_t, ino_t>, std::string> names;
    for (const std::string& domain : domains) {
        struct stat file {};
        if (stat(domain.c_str(), &file) != 0) continue;
        const auto [first, is_new] = names.try_emplace({file.st_dev, file.st_ino}, domain);
        if (!is_new) throw Problem(domain + ": is the same file as the domain " + first->second);
    }
}

void check_names(const Options& options)
{
    check_different(options.domains);
    for (const std::string& domain : options.domains) {
        std::error_code error;
        if (std::filesystem::equivalent(domain, options.target, error))
            throw Problem(options.target + ": is one of the domain files; name another file with -o");
        if (!std::filesystem::exists(domain, error)) throw Problem(domain + ": no such file");
    }
}

void run(const Options& options)
{
    check_names(options);
    merge::Settings settings{
        .exponents = {}, .report = options.verbose, .domain_numbers = !options.no_domain_number};
    if (!options.params.empty()) settings.exponents = merge::read_exponents(options.params);
    const size_t at_once = files_at_once(options);
    import::PartFile part(options.target);
    merge::Progress progress(bytes_of(options.domains) * merge::round_count(options.domains.size(), at_once));
    merge::merge_in_rounds(options.domains, part.path(), options.target, store::model_name(options.target),
                           settings, at_once, progress);
    part.complete();
    progress.finish();
}

}  // namespace

void add_merge(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand merge(app, "merge", "Joins the files of a distributed run's domains");
    merge.takes("DOMAIN", options->domains, "The domain files; their order is the domains' numbers")
        .required();
    merge.takes("-o,--output", options->target, "The file to write; one that has this name is replaced")
        .required();
    merge.takes("--params", options->params, "File of variables and the decimal places they are kept to");
    merge
        .takes("--memory", options->memory,
               "About how much memory may be used; decides how many files are merged at once (2G)")
        .bytes();
    merge.takes("--at-once", options->at_once, "Merge at most so many files at once")
        .between(merge::least_at_once, size_t{1} << 30);
    merge.flag("--no-domain-number", options->no_domain_number,
               "Do not add the result that tells the domain of each element");
    merge.flag("-v,--verbose", options->verbose, "Report what is done; -vv in detail");
    merge.runs([options] { run(*options); });
}

}  // namespace vak::cli
