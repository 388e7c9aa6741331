#include "merge/rounds.h"

#include <deque>

#include "import/part_file.h"

namespace vak::merge {

namespace {

// The files of a round: given ones, or temporary ones that the round before has made.
struct Round {
    std::vector<Source> sources;
    std::deque<import::PartFile> temporary;
    int number = 0;
};

// In a round before the last nothing is compressed further; what loses digits is done once, at the end.
Settings settings_between(const Settings& settings, bool first)
{
    return {.exponents = {}, .report = settings.report, .domain_numbers = settings.domain_numbers && first};
}

Round next_round(Round& from, const std::string& target, const std::string& model, const Settings& settings,
                 size_t at_once, Progress& progress)
{
    Round next{.sources = {}, .temporary = {}, .number = from.number + 1};
    auto begin = from.sources.begin();
    for (const size_t size : group_sizes(from.sources.size(), at_once)) {
        const std::vector<Source> group(begin, begin + static_cast<std::ptrdiff_t>(size));
        begin += static_cast<std::ptrdiff_t>(size);
        const auto& file = next.temporary.emplace_back(target + ".round" + std::to_string(next.number) + "-" +
                                                       std::to_string(next.temporary.size()));
        merge_files(group, file.path(), model, settings_between(settings, from.number == 0), progress);
        next.sources.push_back({file.path(), group.front().first_domain});
        for (size_t i = 0; i < size && !from.temporary.empty(); ++i) from.temporary.pop_front();
    }
    return next;
}

}  // namespace

std::vector<size_t> group_sizes(size_t files, size_t at_once)
{
    const size_t groups = (files + at_once - 1) / at_once;
    std::vector<size_t> sizes(groups, files / groups);
    for (size_t i = 0; i < files % groups; ++i) ++sizes[i];
    return sizes;
}

int64_t round_count(size_t files, size_t at_once)
{
    int64_t rounds = 1;
    for (; files > at_once; files = group_sizes(files, at_once).size()) ++rounds;
    return rounds;
}

void merge_in_rounds(const std::vector<std::string>& domains, const std::string& file,
                     const std::string& target, const std::string& model, const Settings& settings,
                     size_t at_once, Progress& progress)
{
    Round round;
    for (const std::string& domain : domains)
        round.sources.push_back({domain, static_cast<int32_t>(round.sources.size())});
    while (round.sources.size() > at_once)
        round = next_round(round, target, model, settings, at_once, progress);
    Settings last = settings;
    last.domain_numbers = settings.domain_numbers && round.number == 0;
    merge_files(round.sources, file, model, last, progress);
}

}  // namespace vak::merge
