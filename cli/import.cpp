// vak import: stores the result file of a solver.
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "commands.h"
#include "frd/reader.h"
#include "import/part_file.h"
#include "import/result_file.h"
#include "import/survey.h"
#include "problem.h"

namespace vak::cli {

namespace {

struct Options {
    std::string result;
    std::string output;
};

// The model's group is named like the result file.
std::string model_name(const std::string& result)
{
    const std::string stem = std::filesystem::path(result).stem().string();
    const bool usable = !stem.empty() && stem != "." && stem != ".." && stem != "post";
    return usable ? stem : "model";
}

// Real parts wait for their imaginary parts, which come later in the same state.
class Transfer {
public:
    Transfer(std::string source, const import::Survey& survey, import::ResultFile& into)
        : source_(std::move(source)), survey_(survey), into_(into)
    {
    }

    void take(frd::Reader& reader)
    {
        if (next_ == survey_.results.size() || survey_.results[next_].line != reader.result().line)
            throw Problem(source_ + ": was changed while it was read; run the import again");
        const import::PlannedResult& result = survey_.results[next_++];
        if (result.part == import::Part::real) return reader.read_values(waiting_[result.variable]);
        reader.read_values(values_);
        if (result.part == import::Part::whole) return into_.write(result, values_);
        const frd::Values real = std::move(waiting_.extract(result.variable).mapped());
        if (real.nodes != values_.nodes)
            throw Problem(
                source_ + ", line " + std::to_string(result.line) +
                ": the nodes of the imaginary part are not those of the real part; the file is damaged");
        into_.write(result, real, values_);
    }

private:
    std::string source_;
    const import::Survey& survey_;
    import::ResultFile& into_;
    size_t next_ = 0;
    frd::Values values_;
    std::map<size_t, frd::Values> waiting_;  // real parts by variable
};

void run(const Options& options)
{
    std::error_code not_there;
    if (std::filesystem::equivalent(options.result, options.output, not_there))
        throw Problem(options.output + ": is the result file itself; name another file with -o");
    const import::Survey survey = import::survey(options.result);
    import::PartFile part(options.output);
    import::ResultFile file(part.path(), model_name(options.result), survey);
    Transfer transfer(options.result, survey, file);
    frd::Reader reader(options.result);
    for (auto kind = reader.next(); kind != frd::BlockKind::end; kind = reader.next())
        if (kind == frd::BlockKind::result) transfer.take(reader);
    file.close();
    part.complete();
}

}  // namespace

void add_import(CLI::App& app)
{
    auto options = std::make_shared<Options>();
    CLI::App* import = app.add_subcommand("import", "Stores the results of a CalculiX run (.frd)");
    import->add_option("RESULT", options->result, "The solver's result file")->required();
    import
        ->add_option("-o,--output", options->output, "The file to write; one that has this name is replaced")
        ->required();
    import->callback([options] { run(*options);
});
}  // namespace vak::cli

}  // namespace vak::cli
