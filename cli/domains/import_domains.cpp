#include "domains/import_domains.h"

#include <cstdio>

#include "domains/domain_files.h"
#include "import/results.h"
#include "problem.h"
#include "store/open_files.h"

namespace vak::domains {

namespace {

constexpr size_t most_digits = 9;

// The place of the number in a pattern: "%d", "%03d".
struct NumberPlace {
    size_t begin = 0, length = 0;
    int digits = 0;
};

NumberPlace number_place(const std::string& pattern)
{
    const size_t begin = pattern.find('%');
    size_t at = begin == std::string::npos ? pattern.size() : begin + 1;
    NumberPlace place{.begin = begin, .length = 0, .digits = 0};
    if (at + 1 < pattern.size() && pattern[at] == '0' && pattern[at + 1] >= '1' &&
        pattern[at + 1] <= '0' + static_cast<int>(most_digits)) {
        place.digits = pattern[at + 1] - '0';
        at += 2;
    }
    const bool found =
        at < pattern.size() && pattern[at] == 'd' && pattern.find('%', at) == std::string::npos;
    if (!found)
        throw cli::Problem(pattern +
                           ": the name needs %d once, where the number of the domain is to stand: "
                           "-o 'RUN-%d.h5' or, with leading zeros, 'RUN-%03d.h5'");
    place.length = at + 1 - begin;
    return place;
}

}  // namespace

std::vector<std::string> file_names(const std::string& pattern, int32_t domains)
{
    const NumberPlace place = number_place(pattern);
    std::vector<std::string> names;
    for (int32_t domain = 0; domain < domains; ++domain) {
        char number[16];
        std::snprintf(number, sizeof number, "%0*d", place.digits, domain);
        names.push_back(std::string(pattern).replace(place.begin, place.length, number));
    }
    return names;
}

void import_domains(const std::string& result, const std::string& model, const std::string& series,
                    const std::vector<std::string>& outputs)
{
    if (store::allow_open_files(outputs.size()) < outputs.size())
        throw cli::Problem(
            "so many files may not be open at once; raise the limit (ulimit -n) or name fewer domains");
    const import::Survey survey = import::survey(result);
    DomainFiles files(outputs, model, survey, series);
    import::transfer_results(result, survey, series, files);
    files.complete();
}

}  // namespace vak::domains
