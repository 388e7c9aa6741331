#include "merge/merging.h"

#include <vak_sp.h>

#include <algorithm>
#include <deque>
#include <filesystem>

#include "merge/check.h"
#include "merge/domain_numbers.h"
#include "problem.h"
#include "show/view.h"
#include "store/call.h"
#include "store/catalogue.h"
#include "store/file.h"

namespace vak::merge {

namespace {

using store::call;
using store::Int;

constexpr int32_t no_domain_numbers = 4;
constexpr Int no_flags{0}, single_precision{4};
constexpr int32_t no_parameters[2] = {0, 0};

int32_t options_of(const Settings& settings)
{
    return std::min(settings.report, 2) + (settings.domain_numbers ? 0 : no_domain_numbers);
}

int64_t bytes_of(const std::string& file)
{
    std::error_code unknown;
    const auto size = std::filesystem::file_size(file, unknown);
    return unknown ? 0 : static_cast<int64_t>(size);
}

store::Catalogue list(const store::File& file, const std::string& name)
{
    try {
        return store::catalogue(file);
    } catch (const cli::Problem& problem) {
        throw cli::Problem(name + ": " + problem.what());
    }
}

Domains open_all(const std::vector<Source>& sources)
{
    Domains domains;
    for (const Source& source : sources) {
        domains.names.push_back(source.file);
        const store::File& file = domains.files.emplace_back(store::File::open(source.file));
        domains.roots.push_back(*file.root());
        domains.catalogues.push_back(list(file, source.file));
        if (domains.catalogues.back().blocks.empty())
            throw cli::Problem(source.file + ": has no blocks; is it the file of a domain?");
        if (domains.catalogues.back().layout != domains.catalogues.front().layout)
            throw cli::Problem(source.file + ": is not of the layout of " + sources.front().file +
                               "; merge files of one layout");
    }
    return domains;
}

// The library's line tells the kind of a block that cannot be read: this one finds out which it is.
std::string unreadable_block(const Domains& domains)
{
    for (size_t i = 0; i < domains.files.size(); ++i)
        for (const store::BlockEntry& entry : domains.catalogues[i].blocks) try {
                show::view(domains.files[i], entry, {.layout = domains.layout(), .values = true});
            } catch (const cli::Problem& problem) {
                return domains.names[i] + ": " + problem.what();
            }
    return {};
}

// Status of the library's readers; writers have others.
bool is_of_reading(int32_t status) { return status < -4000 || status == -123; }

[[noreturn]] void refuse(int32_t status, const Domains& domains)
{
    const std::string stopped = "the merge stopped with status " + std::to_string(status);
    const std::string block = is_of_reading(status) ? unreadable_block(domains) : "";
    if (!block.empty())
        throw cli::Problem(block + "; " + stopped +
                           " and nothing was written. Mend or leave out that domain and merge again");
    throw cli::Problem(
        stopped + "; the lines above tell at what kind of block, where file [0] is " + domains.names.front() +
        ". Nothing was written; mend or leave out a domain that they name, or make room on the "
        "disk, and merge again");
}

// The library's own lines go to standard error as they come.
void merge_open(const Domains& domains, const store::File& target, const Settings& settings)
{
    const Exponents& e = settings.exponents;
    const auto n = static_cast<int32_t>(domains.roots.size());
    const bool current = domains.layout() == store::Layout::current;
    int32_t status = 0;
    (current ? VAK_MERGE_DMP : VAK1_MERGE_DMP)(domains.roots.data(), target.root(), &n, no_flags,
                                               no_parameters, &e.count, e.names.data(), e.values.data(),
                                               Int{options_of(settings)}, single_precision, &status);
    if (status != 0) refuse(status, domains);
}

}  // namespace

Exponents read_exponents(const std::string& file)
{
    Exponents e;
    int32_t count = 0;
    const std::string doing = "reading the parameters in " + file;
    call(doing, VAK_READ_PARAM, file.c_str(), nullptr, Int{0}, &count, nullptr, nullptr, Int{0});
    // A name may run on into a slot of its own.
    e.count = count;
    e.names.assign(static_cast<size_t>(count + 1) * 256, ' ');
    e.values.assign(static_cast<size_t>(count), 0);
    if (count > 0)
        call(doing, VAK_READ_PARAM, file.c_str(), nullptr, Int{1}, &e.count, e.names.data(), e.values.data(),
             Int{0});
    return e;
}

void merge_files(const std::vector<Source>& sources, const std::string& file, const std::string& model,
                 const Settings& settings, Progress& progress)
{
    int64_t bytes = 0;
    for (const Source& source : sources) bytes += bytes_of(source.file);
    const Domains domains = open_all(sources);
    {
        const Progress::Watch watch(progress, file, bytes);
        store::File target = store::File::create(file, model);
        merge_open(domains, target, settings);
        if (settings.domain_numbers && sources.front().first_domain > 0)
            shift_domain_numbers(target, domains.catalogues, sources.front().first_domain);
        target.close();
    }
    const bool numbered =
        settings.domain_numbers && sources.size() > 1 && domains.layout() == store::Layout::current;
    check_merged(domains, file, numbered);
}

}  // namespace vak::merge
