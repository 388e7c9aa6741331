// The program's subcommands.
#pragma once

#include <CLI/CLI.hpp>

namespace vak::cli {

// Each adds one subcommand, which does its work when it is chosen.
void add_list(CLI::App& app);
void add_show(CLI::App& app);
void add_import(CLI::App& app);
void add_export(CLI::App& app);
void add_merge(CLI::App& app);
void add_compare(CLI::App& app);
void add_link(CLI::App& app);
void add_erase(CLI::App& app);
void add_params(CLI::App& app);

}  // namespace vak::cli
