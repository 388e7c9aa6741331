// A reader that fails says so by its status and the line of what failed; one that succeeds has delivered the
// values that are in the file.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

#include "prove/inside.h"
#include "prove/readings.h"
#include "prove/sweep.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (!line.empty()) lines.push_back(line);
    return lines;
}

// What is wrong with the values that were delivered.
std::string difference(const Reading& reading, const std::string& found, const std::string& expected)
{
    if (found == expected) return "";
    const auto known = lines_of(expected), given = lines_of(found);
    for (size_t i = 0; i < given.size(); ++i) {
        const bool is_known = reading.may_be_fewer
                                  ? std::find(known.begin(), known.end(), given[i]) != known.end()
                                  : i < known.size() && known[i] == given[i];
        if (!is_known) return given[i];
    }
    return reading.may_be_fewer ? "" : "values are missing";
}

// The line of a negative status: the storage layer's has the number that the status ends in.
bool tells(int32_t status, std::vector<std::string> lines, const std::string& then)
{
    if (lines.size() == 2 && lines[1] == then) lines.pop_back();
    if (lines.size() != 1) return false;
    const int32_t layer = -status / 1000;
    if (layer != 4 && layer != 6) return lines[0].starts_with("VAK ");
    const std::string routine = layer == 4 ? "VAK_H5Aread" : "VAK_H5Dread";
    return lines[0].starts_with("VAK INTERNAL ERROR (" + std::to_string(-status % 1000) + ") in " + routine);
}

// A file with a block, opened to read, from which each trial is forked.
class ReadingTrials {
public:
    explicit ReadingTrials(const Reading& reading)
        : reading_(reading),
          root_(opened(reading, file_.path())),
          group_(H5Gopen2(root_, reading.path.c_str(), H5P_DEFAULT))
    {
        library.hdf5_calls = {.only = library.hdf5_calls.only};
        library.allocations = Countdown();
        const Delivered whole = reading_.read(group_);
        if (whole.status < 0 || whole.held != 0 || !whole.values.starts_with(reading_.expected))
            throw std::runtime_error(reading_.name + " does not read: status " +
                                     std::to_string(whole.status) + whole.values);
        hdf5_calls = library.hdf5_calls.seen;
        allocations = library.allocations.seen;
        success_ = whole.status;
        expected_ = whole.values;
    }
    ReadingTrials(const ReadingTrials&) = delete;
    ReadingTrials& operator=(const ReadingTrials&) = delete;
    ~ReadingTrials() { Calls(Family::current).close(root_); }

    long hdf5_calls = 0, allocations = 0;

    void run(Countdown Library::*what, long point, Tally& tally) const
    {
        const Ending ending = apart([&](Report& report) {
            const IdCounter ids;
            const int64_t before = ids.count().total();
            library.hdf5_calls = {.only = library.hdf5_calls.only};
            library.allocations = Countdown();
            (library.*what).fails_at = point;
            judge(reading_.read(group_), report);
            report.ids_left = static_cast<long>(ids.count().total() - before);
        });
        count(ending, reading_.name + ", " + std::to_string(point) + " ", tally);
    }

private:
    static vak_id opened(const Reading& reading, const std::string& file)
    {
        Calls calls(reading.name.ends_with("legacy") ? Family::legacy : Family::current);
        const vak_id root = calls.open(file, 8);
        calls.write_header(root);
        calls.take_step(reading.write, root);
        calls.close(root);
        const vak_id again = calls.open(file, 10);
        if (calls.status() != 0) throw std::runtime_error(reading.name + " cannot be written");
        return again;
    }

    void judge(const Delivered& delivered, Report& report) const
    {
        const std::string wrong = difference(reading_, delivered.values, expected_);
        report.status = delivered.status;
        report.held = delivered.held;
        report.verdicts[0] = wrong.empty() ? 'n' : 'X';
        if (wrong.empty() && delivered.values != expected_) report.verdicts[0] = 'o';
        std::snprintf(report.example.data(), report.example.size(), "%s", wrong.c_str());
        std::snprintf(report.failed.data(), report.failed.size(), "%s%s", library.hdf5_calls.failed,
                      library.allocations.failed);
    }

    void count(const Ending& e, const std::string& point, Tally& tally) const
    {
        const std::string where =
            point + e.report.failed.data() + ", status " + std::to_string(e.report.status) + ": ";
        ++tally.points;
        if (!e.crash.empty()) return tally.violation(where + "ends in " + e.crash);
        if (e.report.ids_left != 0 || e.report.held != 0)
            tally.violation(where + std::to_string(e.report.ids_left) + " identifiers and " +
                            std::to_string(e.report.held) + " pieces of memory left");
        auto lines = lines_of(e.printed);
        if (std::string_view(e.report.failed.data()) == "H5Eset_auto2") lines.clear();  // HDF5's own lines
        if (e.report.status != success_) return count_failure(e, where, lines, tally);
        if (e.report.verdicts[0] == 'X')
            tally.violation(where + "delivers " + e.report.example.data());
        else if (e.report.verdicts[0] == 'o')
            ++tally.passed_over;
        if (!lines.empty()) tally.violation(where + "success says " + lines[0]);
    }

    void count_failure(const Ending& e, const std::string& where, const std::vector<std::string>& lines,
                       Tally& tally) const
    {
        ++tally.failed;
        if (reading_.may_be_fewer) {
            const bool known = e.report.status == 1 || e.report.status == -1;
            if (!known || e.report.verdicts[0] == 'X')
                tally.violation(where + "lists " + e.report.example.data());
        } else if (e.report.status > 0 || !tells(e.report.status, lines, reading_.second_line)) {
            tally.violation(where + (lines.empty() ? "says nothing" : "says " + lines[0]));
        }
    }

    const Reading& reading_;
    TempFile file_;
    vak_id root_;
    vak_id group_;  // VAK_CLOSE closes it
    int32_t success_ = 0;
    std::string expected_;
};

using Number = long ReadingTrials::*;

void sweep_readings(const std::string& mode, size_t turn, Number number, Countdown Library::*what)
{
    constexpr long share = 3;
    Table table(mode);
    const std::vector<Reading> all = readings();
    for (size_t i = 0; i < all.size(); ++i) {
        if (!is_chosen(all[i].name, i, turn)) continue;
        const ReadingTrials trials(all[i]);
        Tally tally;
        for (const long point : points(0, trials.*number, share, i)) trials.run(what, point, tally);
        table.add(all[i].name, tally);
    }
    EXPECT_TRUE(is_part() || table.all().points > 0);
    EXPECT_EQ(table.all().violations, 0) << table.all().examples;
}

TEST(Hdf5CallThatFails, in_a_reader_is_told)
{
    sweep_readings("reader, HDF5 call", 1, &ReadingTrials::hdf5_calls, &Library::hdf5_calls);
}

TEST(AllocationThatFails, in_a_reader_is_told_and_leaks_nothing)
{
    sweep_readings("reader, allocation", 2, &ReadingTrials::allocations, &Library::allocations);
}

// What the sweep over all calls has found.
TEST(Hdf5CallThatFails, in_a_reader_is_told_where_it_was_not)
{
    const std::vector<std::pair<std::string, std::string>> found{
        {"lookup", "H5Tget_size"},
        {"search", "H5Tget_size"},
        {"parts", "H5Tget_size"},
        {"densematrix, rows", "H5Pget_filter2"},
    };
    Tally tally;
    for (const auto& [name, function] : found) {
        const std::vector<Reading> all = readings();
        const auto reading = std::ranges::find(all, name, &Reading::name);
        library.hdf5_calls = Countdown{.only = function};
        const ReadingTrials trials(*reading);
        EXPECT_GT(trials.hdf5_calls, 0) << function;
        for (long point = 0; point < trials.hdf5_calls; ++point)
            trials.run(&Library::hdf5_calls, point, tally);
    }
    library.hdf5_calls.only = "";
    EXPECT_EQ(tally.violations, 0) << tally.examples;
}

TEST(Readings, call_every_reader_of_the_library)
{
    for (const Reading& reading : readings()) ReadingTrials{reading};
    std::set<std::string> declared = routines_declared("READ_");
    declared.erase("VAK_READ_PARAM");  // of a text file
    declared.merge(routines_declared("SEARCH"));
    EXPECT_GT(declared.size(), 35U);
    EXPECT_THAT(routines_called(), testing::IsSupersetOf(declared));
}

}  // namespace

}  // namespace vak::test
