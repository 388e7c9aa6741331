// vak import: stores the result file of a solver.
#include <algorithm>
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
    std::string series;
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
        take_parameters(result.state, reader.parameters());
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

    // The parameters of the last state.
    void finish()
    {
        if (!parameters_.empty()) into_.write_parameters(state_, parameters_);
    }

private:
    // Each result repeats the lines of its state; those that are alike are kept once.
    void take_parameters(size_t state, const std::vector<std::string>& lines)
    {
        if (state != state_) {
            finish();
            parameters_.clear();
            state_ = state;
        }
        for (const std::string& line : lines) {
            const std::string whole = std::string("1P") += line;
            if (std::find(parameters_.begin(), parameters_.end(), whole) == parameters_.end())
                parameters_.push_back(whole);
        }
    }

    std::string source_;
    const import::Survey& survey_;
    import::ResultFile& into_;
    size_t next_ = 0;
    frd::Values values_;
    size_t state_ = 0;
    std::vector<std::string> parameters_;    // of the present state
    std::map<size_t, frd::Values> waiting_;  // real parts by variable
};

// The name is one level of a path.
std::string series_name(const std::string& name)
{
    const bool usable = !name.empty() && name.size() <= 256 && name != "." && name != ".." &&
                        name.find('/') == std::string::npos && name.back() > ' ';
    return usable ? ""
                  : "a series needs a name of 1 to 256 characters without / and without a blank at its end";
}

void run(const Options& options)
{
    std::error_code not_there;
    if (std::filesystem::equivalent(options.result, options.output, not_there))
        throw Problem(options.output + ": is the result file itself; name another file with -o");
    const import::Survey survey = import::survey(options.result);
    import::PartFile part(options.output);
    import::ResultFile file(part.path(), model_name(options.result), survey, options.series);
    Transfer transfer(options.result, survey, file);
    frd::Reader reader(options.result);
    for (auto kind = reader.next(); kind != frd::BlockKind::end; kind = reader.next())
        if (kind == frd::BlockKind::result) transfer.take(reader);
    transfer.finish();
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
    import
        ->add_option("--series", options->series,
                     "Store each variable as one block of all states in this series")
        ->check(series_name);
    import->callback([options] { run(*options);
});
}  // namespace vak::cli

}  // namespace vak::cli
