// How a subcommand names its arguments. The parser's templates stay behind this: they take seconds to
// compile.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vak::cli {

// What else is said of one argument.
class Argument {
public:
    Argument(CLI::Option* option) : option_(option) {}

    Argument required();
    Argument excludes(const std::string& other);
    Argument comma_separated();
    Argument bytes();  // 512, 64K, 2G
    Argument not_negative();
    template <class T>  // int32_t, size_t
    Argument between(T least, T most);
    Argument one_of(const std::vector<std::string>& words);
    // Gives what is wrong with the argument, or nothing.
    Argument check(std::function<std::string(const std::string&)> wrong);

private:
    CLI::Option* option_;
};

class Subcommand {
public:
    Subcommand(CLI::App& app, const std::string& name, const std::string& help);

    template <class T>  // double, int32_t, uint64_t, std::string, vectors of int32_t and std::string
    Argument takes(const std::string& names, T& value, const std::string& help);
    Argument flag(const std::string& names, bool& value, const std::string& help);
    Argument flag(const std::string& names, int& times, const std::string& help);
    void runs(std::function<void()> run);

private:
    CLI::App* app_;
};

}  // namespace vak::cli
