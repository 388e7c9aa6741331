// What matches a regular expression. Compiled once: std::regex alone takes seconds in each file that uses it.
#pragma once

#include <set>
#include <string>

namespace vak::test {

// The text with `by` in the place of every match; "$1" in it stands for the first group.
std::string replaced(const std::string& text, const std::string& expression, const std::string& by);

// What the first group matched, each once.
std::set<std::string> matches(const std::string& text, const std::string& expression);

}  // namespace vak::test
