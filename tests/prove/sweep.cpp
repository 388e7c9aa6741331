#include "prove/sweep.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "prove/inside.h"
#include "support/faults.h"
#include "support/library.h"

namespace vak::test {

bool proves_all() { return std::getenv("VAK_PROVE_ALL") != nullptr; }

namespace {

// VAK_PROVE_PART "2/8": what has number 2, 10, 18 ... of eight processes that share the work.
struct Part {
    size_t number = 0, parts = 1;
};
Part part()
{
    Part p;
    const char* text = std::getenv("VAK_PROVE_PART");
    if (text != nullptr && std::sscanf(text, "%zu/%zu", &p.number, &p.parts) != 2)
        throw std::runtime_error("VAK_PROVE_PART is not of the form 2/8");
    return p;
}

constexpr size_t turns = 5;

}  // namespace

bool is_part() { return std::getenv("VAK_PROVE_PART") != nullptr || std::getenv("VAK_PROVE_JOB") != nullptr; }

bool is_in_part(size_t number) { return number % part().parts == part().number; }

bool is_chosen(const std::string& job, size_t number, size_t turn)
{
    const char* only = std::getenv("VAK_PROVE_JOB");
    if (only != nullptr && !job.starts_with(only)) return false;
    return proves_all() ? is_in_part(number) : only != nullptr || number % turns == turn % turns;
}

// VAK_PROVE_EVERY: only each so many-th point.
long every_point()
{
    const char* text = std::getenv("VAK_PROVE_EVERY");
    return text == nullptr ? 1 : std::max(std::atol(text), 1L);
}

// The share differs from job to job, so that together they see the beginning, the middle and the end.
std::vector<long> points(long first, long end, long share, size_t job)
{
    const long number = end - first;
    const long step = proves_all() ? every_point() : std::max(number / share, 1L);
    std::vector<long> chosen;
    for (long point = first + static_cast<long>(job * 7919) % step; point < end; point += step)
        chosen.push_back(point);
    return chosen;
}

void Tally::violation(const std::string& what)
{
    if (++violations <= 40) examples += what + "\n";
}

void Tally::add(const Tally& other)
{
    points += other.points;
    failed += other.failed;
    violations += other.violations;
    passed_over += other.passed_over;
    lost_in_flush += other.lost_in_flush;
    for (const auto& [frame, number] : other.inside_hdf5) inside_hdf5[frame] += number;
    examples += other.examples;
}

Table::~Table() { print("all", all_); }

void Table::add(const std::string& job, const Tally& tally)
{
    if (proves_all()) print(job, tally);
    all_.add(tally);
}

// script/prove looks for these lines.
void Table::print(const std::string& job, const Tally& tally) const
{
    std::printf("prove| %-18s | %-42s | %6ld | %6ld | %4ld | %5ld | %5ld |", mode_.c_str(), job.c_str(),
                tally.points, tally.failed, tally.violations, tally.passed_over, tally.lost_in_flush);
    for (const auto& [frame, number] : tally.inside_hdf5) std::printf(" %s %ld", frame.c_str(), number);
    std::printf("\n");
    std::fflush(stdout);
}

Trials::Trials(const Job& job)
    : job_(job), file_(folder_.file("tried.h5")), before_(folder_.file("before.h5"))
{
    H5open();  // once, not in each trial
    if (job_.prepare) job_.prepare(before_);
}

static void note(Report& report)
{
    report.hdf5_calls = library.hdf5_calls.seen;
    report.allocations = library.allocations.seen;
    report.hdf5_calls_before = library.hdf5_calls_before;
    report.allocations_before = library.allocations_before;
    const std::string_view in = library.failed_in;
    report.in_open_or_close = in.ends_with("_CLOSE") || in.ends_with("_OPEN");
    std::snprintf(report.failed.data(), report.failed.size(), "%s%s", library.hdf5_calls.failed,
                  library.allocations.failed);
}

static int32_t status_of(const std::function<int32_t()>& calls)
{
    try {
        return calls();
    } catch (const std::runtime_error&) {
        return -5;  // an HDF5 call of the job's own
    }
}

void Trials::run_in(Report& report, const std::function<void()>& arm) const
{
    const IdCounter ids;
    const int64_t before = ids.count().total();
    const long held = library.held;
    arm();
    library.counting = true;
    report.status = status_of([&] { return job_.run(file_); });
    library.counting = false;
    report.held = library.held - held;
    note(report);
    report.ids_left = static_cast<long>(ids.count().total() - before);
}

void Trials::judge_in(Report& report, const std::function<void()>& arm) const
{
    report.verdicts.fill(0);
    arm();
    library.counting = true;
    Calls calls(Family::current);
    const vak_id root = calls.open(file_, 10);
    for (size_t i = 0; root >= 0 && i < job_.items.size(); ++i) {
        std::string difference;
        const Verdict verdict = job_.items[i].judge(root, difference);
        report.verdicts[i] = static_cast<char>(verdict);
        if (verdict == Verdict::other && report.example[0] == 0)
            std::snprintf(report.example.data(), report.example.size(), "%s: %s", job_.items[i].name.c_str(),
                          difference.c_str());
    }
    calls.close(root);
    library.counting = false;
}

Ending Trials::start(const std::function<void(Report&)>& body) const
{
    std::filesystem::remove(file_);
    if (std::filesystem::exists(before_)) std::filesystem::copy_file(before_, file_);
    const Ending ending = apart(body);
    disk().fault = Fault::none;
    return ending;
}

Ending Trials::run(const std::function<void()>& arm) const
{
    return start([&](Report& report) { run_in(report, arm); });
}

Ending Trials::run_and_judge(const std::function<void()>& arm) const
{
    const Ending both = start([&](Report& report) {
        run_in(report, arm);
        library.hdf5_calls = library.allocations = Countdown();
        judge_in(report, [] {});
    });
    if (!both.out_of_memory) return both;
    Ending apart_from_it = judge();
    apart_from_it.report.finished = false;
    return apart_from_it;
}

Ending Trials::judge(const std::function<void()>& arm) const
{
    return apart([&](Report& report) {
        const IdCounter ids;
        const int64_t before = ids.count().total();
        judge_in(report, arm);
        note(report);
        report.ids_left = static_cast<long>(ids.count().total() - before);
    });
}

Ending Trials::whole(const std::function<void()>& arm) const
{
    const Ending ran = run(arm);
    if (!ran.report.finished || ran.report.status != 0 || ran.report.ids_left != 0)
        throw std::runtime_error(job_.name + " fails without a fault: status " +
                                 std::to_string(ran.report.status) + ", " + ran.crash + ", identifiers " +
                                 std::to_string(ran.report.ids_left));
    const Ending read = judge();
    for (size_t i = 0; i < job_.items.size(); ++i)
        if (read.report.verdicts[i] != static_cast<char>(Verdict::new_values))
            throw std::runtime_error(job_.name + ": " + job_.items[i].name + " does not read: " +
                                     read.report.verdicts[i] + " " + read.report.example.data() + read.crash);
    return ran;
}

void Trials::count(const Ending& ran, const Ending& read, const std::string& point, Tally& tally) const
{
    const std::string where = job_.name + ", " + point + " " + ran.report.failed.data() +
                              (disk().hit_in_flush ? "in a flush" : "") + ", status " +
                              std::to_string(ran.report.status) + ": ";
    ++tally.points;
    if (!ran.succeeded()) ++tally.failed;
    if (!ran.crash.empty()) tally.violation(where + "the calls end in " + ran.crash);
    if (!ran.crash.empty() && &ran == &read) return;
    // VAK_OPEN leaves a file open that it cannot use, VAK_CLOSE what it cannot find or close; both tell.
    const bool told = ran.report.in_open_or_close && ran.report.status != 0;
    if (ran.report.finished && ran.report.ids_left != 0 && !told)
        tally.violation(where + std::to_string(ran.report.ids_left) + " identifiers left, status " +
                        std::to_string(ran.report.status));
    if (read.crash.empty()) return count_items(ran, read, where, tally);
    if (read.in_hdf5() && disk().hit_in_flush) {
        ++tally.inside_hdf5[read.crash];
        return count_items(ran, read, where, tally);
    }
    tally.violation(where + "reading ends in " + read.crash);
}

void Trials::count_items(const Ending& ran, const Ending& read, const std::string& point, Tally& tally) const
{
    const bool succeeded = ran.succeeded();
    for (size_t i = 0; i < job_.items.size(); ++i) {
        const char verdict = read.report.verdicts[i];
        const std::string what = point + job_.items[i].name;
        const bool is_new = verdict == static_cast<char>(Verdict::new_values);
        const bool there = is_new || verdict == static_cast<char>(Verdict::old_values);
        const bool is_other = verdict == static_cast<char>(Verdict::other);
        if (is_other)
            tally.violation(what + " reads as something else: " + read.report.example.data());
        else if (succeeded && !is_new && job_.passes_over && !disk().hit)
            ++tally.passed_over;
        else if (succeeded && !is_new)
            tally.violation(what + " is missing, and no call told");
        else if (there || !job_.items[i].untouched || !disk().flushed)
            continue;
        else if (!disk().hit_in_flush)
            tally.violation(what + " is lost");
        else
            ++tally.lost_in_flush;
    }
}

}  // namespace vak::test
