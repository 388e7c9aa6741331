#include "duel.h"

#include "same_layout.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <vector>

namespace bench {

namespace {

// Of the clock on the wall, and of the processor, which holds on a machine that others use as well.
struct Cost {
    std::vector<double> wall, processor;
};

struct Result {
    Job job;
    Cost ours, plain;
    std::string remark;
};

std::vector<Result> results;

double processor_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

void measure(Cost& cost, const Contest& contest, const std::function<void()>& side)
{
    contest.before();
    const auto begin = std::chrono::steady_clock::now();
    const double processor_begin = processor_seconds();
    side();
    cost.processor.push_back(processor_seconds() - processor_begin);
    cost.wall.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
}

// Who begins changes from round to round.
void fight_round(Result& result, const Contest& contest, bool we_begin)
{
    if (we_begin) measure(result.ours, contest, contest.ours);
    measure(result.plain, contest, contest.plain);
    if (!we_begin) measure(result.ours, contest, contest.ours);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

// Of the rounds: both sides of a round met the same disturbances.
double median_ratio(const std::vector<double>& ours, const std::vector<double>& plain)
{
    std::vector<double> ratios(ours.size());
    std::transform(ours.begin(), ours.end(), plain.begin(), ratios.begin(), std::divides<>());
    return median(ratios);
}

double ratio(const Result& r) { return median_ratio(r.ours.wall, r.plain.wall); }
double processor_ratio(const Result& r) { return median_ratio(r.ours.processor, r.plain.processor); }

void fight(benchmark::State& state, const Job& job, const std::function<Contest()>& make)
{
    Result result{job, {}, {}, {}};
    const Contest contest = make();
    Result warm_up = result;
    fight_round(warm_up, contest, true);
    bool we_begin = false;
    for ([[maybe_unused]] auto round : state) {
        fight_round(result, contest, we_begin = !we_begin);
        state.SetIterationTime(result.ours.wall.back());
    }
    contest.check();
    result.remark = contest.remark();
    state.counters["plain_s"] = median(result.plain.wall);
    state.counters["ratio"] = ratio(result);
    state.counters["cpu_ratio"] = processor_ratio(result);
    results.push_back(result);
}

// Speed is not to be had by compressing less.
void check_sizes(const std::string& our_file, const std::string& plain_file)
{
    const auto ours = double(std::filesystem::file_size(our_file));
    const auto plain = double(std::filesystem::file_size(plain_file));
    must(ours <= 1.05 * plain ? 0 : -1, "comparing the sizes of the files");
}

}  // namespace

void add_duel(const Job& job, std::function<Contest()> make)
{
    benchmark::RegisterBenchmark(job.name, [job, make](benchmark::State& state) { fight(state, job, make); })
        ->Iterations(job.rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

void print_table()
{
    if (results.empty()) return;
    std::printf(
        "\n| Job | Ours s | Plain HDF5 s | Ratio | of processor time | Aim |\n|---|---|---|---|---|---|\n");
    for (const Result& r : results)
        std::printf("| %s%s | %.4f | %.4f | %.2f | %.2f | %.2f |\n", r.job.name, r.remark.c_str(),
                    median(r.ours.wall), median(r.plain.wall), ratio(r), processor_ratio(r), r.job.aim);
}

Contest writing(const Writer& ours, const Writer& plain)
{
    const std::string our_file = file_name("ours.h5"), plain_file = file_name("plain.h5");
    return {.ours = [=] { ours(our_file); },
            .plain = [=] { plain(plain_file); },
            // A file that was there costs the time to give its pages back, which is nobody's.
            .before =
                [=] {
                    std::filesystem::remove(our_file);
                    std::filesystem::remove(plain_file);
                },
            .check =
                [=] {
                    ours(our_file);
                    plain(plain_file);
                    check_same_layout(our_file, plain_file);
                    check_sizes(our_file, plain_file);
                    remove_files();
                }};
}

}  // namespace bench
