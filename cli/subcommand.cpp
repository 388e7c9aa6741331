#include "subcommand.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace vak::cli {

Argument Argument::required() { return option_->required(); }

Argument Argument::excludes(const std::string& other) { return option_->excludes(other); }

Argument Argument::comma_separated() { return option_->delimiter(','); }

Argument Argument::bytes() { return option_->transform(CLI::AsSizeValue(false)); }

Argument Argument::not_negative() { return option_->check(CLI::NonNegativeNumber); }

template <class T>
Argument Argument::between(T least, T most)
{
    return option_->check(CLI::Range(least, most));
}
template Argument Argument::between(int32_t, int32_t);
template Argument Argument::between(size_t, size_t);

Argument Argument::one_of(const std::vector<std::string>& words)
{
    return option_->check(CLI::IsMember(words));
}

Argument Argument::check(std::function<std::string(const std::string&)> wrong)
{
    return option_->check(std::move(wrong));
}

Subcommand::Subcommand(CLI::App& app, const std::string& name, const std::string& help)
    : app_(app.add_subcommand(name, help))
{
}

template <class T>
Argument Subcommand::takes(const std::string& names, T& value, const std::string& help)
{
    return app_->add_option(names, value, help);
}
template Argument Subcommand::takes(const std::string&, double&, const std::string&);
template Argument Subcommand::takes(const std::string&, int32_t&, const std::string&);
template Argument Subcommand::takes(const std::string&, uint64_t&, const std::string&);
template Argument Subcommand::takes(const std::string&, std::string&, const std::string&);
template Argument Subcommand::takes(const std::string&, std::vector<int32_t>&, const std::string&);
template Argument Subcommand::takes(const std::string&, std::vector<std::string>&, const std::string&);

Argument Subcommand::flag(const std::string& names, bool& value, const std::string& help)
{
    return app_->add_flag(names, value, help);
}

Argument Subcommand::flag(const std::string& names, int& times, const std::string& help)
{
    return app_->add_flag(names, times, help);
}

void Subcommand::runs(std::function<void()> run) { app_->callback(std::move(run)); }

}  // namespace vak::cli
