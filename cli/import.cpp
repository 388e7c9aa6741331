// vak import: stores the result file of a solver, or matrices.
#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "commands.h"
#include "domains/import_domains.h"
#include "import/part_file.h"
#include "import/results.h"
#include "matrix/matrix.h"
#include "problem.h"
#include "store/call.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::vector<std::string> sources;
    std::string output;
    std::string series;
    int32_t domains = 0;  // 0: one file, no domains
    std::string matrix;   // the kind of block, when matrices are imported
};

// The name is one level of a path.
std::string series_name(const std::string& name)
{
    const bool usable = !name.empty() && name.size() <= 256 && name != "." && name != ".." &&
                        name.find('/') == std::string::npos && name.back() > ' ';
    return usable ? ""
                  : "a series needs a name of 1 to 256 characters without / and without a blank at its end";
}

void check_not_itself(const std::string& source, const std::string& output)
{
    std::error_code not_there;
    if (std::filesystem::equivalent(source, output, not_there))
        throw Problem(output + ": is the file to read; name another one with -o");
}

// Each matrix is named like its file.
void import_matrices(const Options& options)
{
    import::PartFile part(options.output);
    store::File file = store::File::create(part.path(), store::model_name(options.sources.front()));
    store::call("writing the header", VAK_WRITE_FILEHEADER, file.root(), nullptr, nullptr);
    std::set<std::string> names;
    for (const std::string& source : options.sources) {
        check_not_itself(source, options.output);
        const std::string name = store::model_name(source);
        if (!names.insert(name).second)
            throw Problem(source + ": there is another matrix of that name; rename the file");
        matrix::write_block(matrix::read_market(source), options.matrix, name, file);
    }
    file.close();
    part.complete();
}

void import_result(const Options& options, const std::string& result)
{
    const std::string model = store::model_name(result);
    if (options.domains == 0) {
        check_not_itself(result, options.output);
        return import::import_results(result, model, options.series, options.output);
    }
    const auto outputs = domains::file_names(options.output, options.domains);
    for (const std::string& output : outputs) check_not_itself(result, output);
    domains::import_domains(result, model, options.series, outputs);
}

void run(const Options& options)
{
    if (!options.matrix.empty()) return import_matrices(options);
    if (options.sources.size() > 1)
        throw Problem("more than one result file; import one at a time, or matrices with --matrix KIND");
    import_result(options, options.sources.front());
}

}  // namespace

void add_import(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand command(app, "import", "Stores the results of a CalculiX run (.frd), or matrices");
    command
        .takes("FILE", options->sources, "The solver's result file; with --matrix Matrix Market files (.mtx)")
        .required();
    command.takes("-o,--output", options->output, "The file to write; one that has this name is replaced")
        .required();
    command
        .takes("--series", options->series, "Store each variable as one block of all states in this series")
        .check(series_name);
    command.takes("--matrix", options->matrix, "Store matrices, as blocks of this kind")
        .one_of({"sparse", "triangular", "dense"})
        .excludes("--series");
    command
        .takes("--domains", options->domains,
               "Cut the mesh into so many domains and write a file for each: -o RUN-%d.h5")
        .between(1, 100000)
        .excludes("--matrix");
    command.runs([options] { run(*options); });
}

}  // namespace vak::cli
