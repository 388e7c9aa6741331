// The program's subcommands.
#pragma once

namespace CLI {
class App;
}

namespace vak::cli {

// Thrown by a subcommand whose answer is a status.
struct Answer {
    int status;
};

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
