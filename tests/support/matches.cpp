#include "support/matches.h"

#include <regex>

namespace vak::test {

std::string replaced(const std::string& text, const std::string& expression, const std::string& by)
{
    return std::regex_replace(text, std::regex(expression), by);
}

std::set<std::string> matches(const std::string& text, const std::string& expression)
{
    const std::regex pattern(expression);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        found.insert((*match)[1]);
    return found;
}

}  // namespace vak::test
