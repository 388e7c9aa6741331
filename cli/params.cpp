// vak params: what a file of compression parameters says.
#include <cstdio>
#include <memory>
#include <string>

#include "commands.h"
#include "merge/merging.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

void run(const std::string& file)
{
    const merge::Exponents found = merge::read_exponents(file);
    for (size_t i = 0; i < static_cast<size_t>(found.count); ++i) {
        const std::string name = found.names.substr(i * 256, 256);
        std::printf("%10d  %s\n", found.values[i], name.substr(0, name.find_last_not_of(' ') + 1).c_str());
    }
}

}  // namespace

void add_params(CLI::App& app)
{
    auto file = std::make_shared<std::string>();
    Subcommand params(app, "params", "Lists the variables of a parameter file with their exponents");
    params.takes("FILE", *file, "Lines of a variable and its exponent; $ and # begin comments").required();
    params.runs([file] { run(*file); });
}

}  // namespace vak::cli
