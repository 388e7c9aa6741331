// vak export: writes a matrix block as a Matrix Market file.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "import/part_file.h"
#include "matrix/matrix.h"
#include "problem.h"
#include "selection.h"
#include "subcommand.h"

namespace vak::cli {

namespace {

struct Options {
    std::string file;
    std::string path;
    std::string output;
    bool legacy = false;
};

// The one matrix that is meant.
store::BlockEntry chosen(const store::Catalogue& catalogue, const Options& options)
{
    std::optional<store::BlockEntry> found;
    for (const store::BlockEntry& entry : catalogue.blocks) {
        if (!matrix::is_matrix(entry.key) || !matches(entry.path, options.path)) continue;
        if (found)
            throw Problem(options.file + ": more than one matrix matches " + options.path +
                          "; give a whole path");
        found = entry;
    }
    if (!found)
        throw Problem(options.file + ": no matrix matches " + options.path + "; vak list tells the paths");
    return *found;
}

void write_file(const matrix::Matrix& matrix, const std::string& comment, const std::string& name)
{
    import::PartFile part(name);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(part.path().c_str(), "wb"),
                                                               &std::fclose);
    if (!file) throw Problem(name + ": cannot be written");
    matrix::write_market(matrix, comment, file.get());
    part.complete();
}

void run(const Options& options)
{
    const store::File file = store::File::open(options.file);
    const store::Catalogue catalogue = store::catalogue(file, asked_layout(options.legacy));
    const store::BlockEntry entry = chosen(catalogue, options);
    const matrix::Matrix matrix = matrix::read_block(file, catalogue.layout, entry);
    if (options.output.empty())
        matrix::write_market(matrix, entry.path, stdout);
    else
        write_file(matrix, entry.path, options.output);
}

}  // namespace

void add_export(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    Subcommand command(app, "export", "Writes a matrix block as a Matrix Market file");
    command.takes("FILE", options->file, "The result file, or a group in it: run.h5/post").required();
    command
        .takes("--matrix", options->path,
               "Path of the block, part of it, or a pattern that one matrix matches")
        .required();
    command.takes("-o,--output", options->output,
                  "The file to write (.mtx); without it the matrix is printed");
    command.flag("--legacy", options->legacy, "Take the file for one of the legacy layout without looking");
    command.runs([options] { run(*options); });
}

}  // namespace vak::cli
