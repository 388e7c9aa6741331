// vak: result files from the command line.
#include <hdf5.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "commands.h"
#include "problem.h"

namespace {

constexpr int cannot = 2;

int refuse(const std::string& program, const std::string& what)
{
    std::fprintf(stderr, "%s: %s\n", program.c_str(), what.c_str());
    return cannot;
}

std::string chosen(const CLI::App& app)
{
    const auto subcommands = app.get_subcommands();
    return subcommands.empty() ? "vak" : "vak " + subcommands.front()->get_name();
}

std::string first_line(const std::string& text) { return text.substr(0, text.find('\n')); }

int run(int argc, char** argv)
{
    CLI::App app("Lists, shows and makes block-structured result files.", "vak");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("vak ") + VAK_VERSION);
    vak::cli::add_list(app);
    vak::cli::add_show(app);
    vak::cli::add_import(app);
    vak::cli::add_export(app);
    vak::cli::add_merge(app);
    vak::cli::add_compare(app);
    vak::cli::add_link(app);
    vak::cli::add_erase(app);
    vak::cli::add_params(app);
    try {
        app.parse(argc, argv);
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            return refuse(chosen(app), "the output could not be written; is the disk full?");
        return 0;
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const vak::cli::Answer& answer) {
        return answer.status;
    } catch (const CLI::ParseError& error) {
        return refuse(chosen(app),
                      first_line(error.what()) + " (" + chosen(app) + " --help tells the usage)");
    } catch (const vak::cli::Problem& problem) {
        return refuse(chosen(app), problem.what());
    }
}

}  // namespace

int main(int argc, char** argv)
{
    // Files are closed where they were opened. What HDF5 still holds of one that could not be written it
    // would try to write again at the end, and complain.
    H5dont_atexit();
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("vak: not enough memory\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vak: %s\n", error.what());
    }
    return cannot;
}
