#include "import/results.h"

#include <algorithm>
#include <map>

#include "frd/reader.h"
#include "import/part_file.h"
#include "import/series_sets.h"
#include "problem.h"

namespace vak::import {

namespace {

// Real parts wait for their imaginary parts, which come later in the same state.
class Transfer {
public:
    Transfer(std::string source, const Survey& survey, bool in_series, Receiver& into)
        : source_(std::move(source)), survey_(survey), in_series_(in_series), into_(into)
    {
    }

    void take(frd::Reader& reader)
    {
        if (next_ == survey_.results.size() || survey_.results[next_].line != reader.result().line)
            throw cli::Problem(source_ + ": was changed while it was read; run the import again");
        const PlannedResult& result = survey_.results[next_++];
        take_parameters(result.state, reader.parameters());
        if (result.part == Part::real) return reader.read_values(waiting_[result.variable]);
        reader.read_values(values_);
        if (result.part == Part::whole) return write(result, values_, real_values);
        frd::Values real = std::move(waiting_.extract(result.variable).mapped());
        if (real.nodes != values_.nodes)
            throw cli::Problem(
                source_ + ", line " + std::to_string(result.line) +
                ": the nodes of the imaginary part are not those of the real part; the file is damaged");
        write(result, pairs(std::move(real), values_), complex_values);
    }

    // The parameters of the last state.
    void finish()
    {
        if (!parameters_.empty()) into_.write_parameters(state_, parameters_);
    }

private:
    void write(const PlannedResult& result, const frd::Values& values, int32_t type)
    {
        const int32_t set = in_series_ ? sets_.set_of(result.variable, type, values.nodes) : -1;
        into_.write(result, values, {type, set});
    }

    static frd::Values pairs(frd::Values real, const frd::Values& imaginary)
    {
        std::vector<float> values(2 * real.values.size());
        for (size_t i = 0; i < real.values.size(); ++i) {
            values[2 * i] = real.values[i];
            values[2 * i + 1] = imaginary.values[i];
        }
        real.values = std::move(values);
        return real;
    }

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
    const Survey& survey_;
    bool in_series_;
    Receiver& into_;
    SeriesSets sets_;
    size_t next_ = 0;
    frd::Values values_;
    size_t state_ = 0;
    std::vector<std::string> parameters_;    // of the present state
    std::map<size_t, frd::Values> waiting_;  // real parts by variable
};

}  // namespace

void transfer_results(const std::string& result, const Survey& survey, const std::string& series,
                      Receiver& into)
{
    Transfer transfer(result, survey, !series.empty(), into);
    frd::Reader reader(result);
    for (auto kind = reader.next(); kind != frd::BlockKind::end; kind = reader.next())
        if (kind == frd::BlockKind::result) transfer.take(reader);
    transfer.finish();
}

void import_results(const std::string& result, const std::string& model, const std::string& series,
                    const std::string& output)
{
    const Survey found = survey(result);
    PartFile part(output);
    ResultFile file(part.path(), model, found, found.mesh, series);
    transfer_results(result, found, series, file);
    file.close();
    part.complete();
}

}  // namespace vak::import
