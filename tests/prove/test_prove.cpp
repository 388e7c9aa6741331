// One fault at a time in every writer and tool: no crash, nothing left open, no other values, and what is
// missing was told.
//
// Of each job a few points are tried; all of them by script/prove, which sets VAK_PROVE_ALL. VAK_PROVE_JOB
// takes the words that the name of a job begins with.
#include <gmock/gmock.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "prove/inside.h"
#include "prove/sweep.h"
#include "support/faults.h"
#include "support/matches.h"

namespace vak::test {

namespace {

struct Range {
    long first, end;
};
using RangeOf = std::function<Range(const Ending& whole, bool is_first_job)>;
using Trial = std::function<void(Trials&, long point, Tally&)>;

// Those of one sweep alone: a process with little memory is forked quickly.
std::vector<Job> chosen_jobs(size_t turn)
{
    std::vector<Job> all = jobs();
    std::erase_if(all, [&](const Job& job) { return !is_chosen(job.name, job.number, turn); });
    malloc_trim(0);
    return all;
}

// Tries every job at its points.
void sweep(const std::string& mode, size_t turn, const RangeOf& range_of, const Trial& trial)
{
    constexpr long share = 3;
    Table table(mode);
    for (const Job& job : chosen_jobs(turn)) {
        Trials trials(job);
        Tally tally;
        disk().mend();
        const Range range = range_of(trials.whole(), job.number == 0);
        for (const long point : points(range.first, range.end, share, job.number)) {
            disk().mend();
            trial(trials, point, tally);
        }
        table.add(job.name, tally);
    }
    EXPECT_TRUE(is_part() || table.all().points > 0);
    EXPECT_EQ(table.all().violations, 0) << table.all().examples;
}

void sweep_writes(const std::string& mode, size_t turn, Fault fault)
{
    const auto all = [](const Ending&, bool) { return Range{0, disk().writes}; };
    sweep(mode, turn, all, [=](Trials& trials, long point, Tally& tally) {
        const Ending ran = trials.run([=] { disk().fail(fault, point); });
        EXPECT_TRUE(disk().hit);
        trials.count(ran, trials.judge(), mode + ", write " + std::to_string(point), tally);
    });
}

TEST(WriteThat, fails_once_is_told_and_changes_nothing_else)
{
    sweep_writes("EIO once", 0, Fault::io_error_once);
}
TEST(WriteThat, finds_the_disk_full_is_told_and_changes_nothing_else)
{
    sweep_writes("ENOSPC from there", 1, Fault::full_from_here);
}
TEST(WriteThat, finds_no_more_blocks_is_told_and_leaves_no_flush_in_part)
{
    sweep_writes("no more blocks", 5, Fault::no_more_blocks);
}
TEST(WriteThat, is_short_is_continued) { sweep_writes("short", 2, Fault::short_once); }
TEST(WriteThat, is_torn_is_told_and_changes_nothing_else) { sweep_writes("torn", 3, Fault::torn_once); }
TEST(WriteThat, a_kill_prevents_changes_nothing_else) { sweep_writes("kill at a write", 4, Fault::killed); }

// What every job begins with is tried with the first one.
Range hdf5_calls(const Ending& whole, bool is_first_job)
{
    return {is_first_job ? 0 : whole.report.hdf5_calls_before, whole.report.hdf5_calls};
}
Range allocations(const Ending& whole, bool is_first_job)
{
    return {is_first_job ? 0 : whole.report.allocations_before, whole.report.allocations};
}

TEST(Hdf5CallThatFails, in_a_writer_or_tool_is_told)
{
    sweep("HDF5 call", 0, hdf5_calls, [](Trials& trials, long point, Tally& tally) {
        const Ending ran = trials.run_and_judge([=] { library.hdf5_calls.fails_at = point; });
        trials.count(ran, ran, "call " + std::to_string(point), tally);
    });
}

Job job_of(const std::string& name)
{
    for (Job& job : jobs())
        if (job.name == name) return job;
    throw std::runtime_error("no job " + name);
}

// What the sweep over all calls has found.
TEST(Hdf5CallThatFails, is_told_where_it_was_not)
{
    const std::vector<std::pair<std::string, std::string>> found{
        {"system", "H5Iget_ref"},
        {"system", "H5Iis_valid"},
        {"system", "H5Fget_obj_ids"},
        {"multientityresults", "H5Sset_extent_simple"},
        {"multiactivflags", "H5Sget_simple_extent_dims"},
        {"eraser", "H5Pget_nfilters"},
        {"indices", "H5Awrite"},
        {"densematrix rows deflated", "H5Pget_chunk"},
        {"merger", "H5Iget_type"},
    };
    Tally tally;
    for (const auto& [name, function] : found) {
        const Job job = job_of(name);
        Trials trials(job);
        disk().mend();
        library.hdf5_calls.only = function;
        const long number = trials.whole().report.hdf5_calls;
        EXPECT_GT(number, 0) << function;
        for (long point = 0; point < number; ++point) {
            disk().mend();
            const Ending ran = trials.run_and_judge([=] { library.hdf5_calls.fails_at = point; });
            trials.count(ran, ran, "call " + std::to_string(point), tally);
        }
        library.hdf5_calls.only = "";
    }
    EXPECT_EQ(tally.violations, 0) << tally.examples;
}

void try_allocation(Trials& trials, long point, Tally& tally)
{
    disk().mend();
    const Ending ran = trials.run_and_judge([=] { library.allocations.fails_at = point; });
    if (ran.report.finished && ran.report.held != 0)
        tally.violation(std::to_string(ran.report.held) + " pieces of memory kept by " +
                        ran.report.failed.data());
    trials.count(ran, ran, "allocation " + std::to_string(point), tally);
}

TEST(AllocationThatFails, leaves_no_array_without_its_values)
{
    Tally tally;
    for (const char* name : {"attributes filtered", "multientityresults deflated"}) {
        const Job job = job_of(name);
        Trials trials(job);
        const Ending whole = trials.whole();
        for (long point = whole.report.allocations_before; point < whole.report.allocations; ++point)
            try_allocation(trials, point, tally);
    }
    EXPECT_EQ(tally.violations, 0) << tally.examples;
}

// In the last series that it rewrites, the exchange of its arrays among them.
TEST(AllocationThatFails, in_the_eraser_leaves_the_series_whole)
{
    const Job job = job_of("eraser");
    Trials trials(job);
    disk().mend();
    const long end = trials.whole().report.allocations;
    Tally tally;
    for (long point = end - 120; point < end; point += 3) try_allocation(trials, point, tally);
    EXPECT_EQ(tally.violations, 0) << tally.examples;
}

TEST(AllocationThatFails, in_a_writer_or_tool_is_told_and_leaks_nothing)
{
    sweep("allocation", 3, allocations, try_allocation);
}

TEST(Jobs, call_every_writer_and_tool)
{
    const TempFolder folder;
    library.counting = true;
    for (const Job& job : jobs()) {
        std::filesystem::remove(folder.file("file.h5"));
        if (job.prepare) job.prepare(folder.file("file.h5"));
        EXPECT_EQ(job.run(folder.file("file.h5")), 0) << job.name;
    }
    library.counting = false;
    const auto declared = routines_declared("WRITE_|ERASE_|MERGE_|CREATE_");
    EXPECT_GT(declared.size(), 40U);
    EXPECT_THAT(routines_called(), testing::IsSupersetOf(declared));
}

}  // namespace

}  // namespace vak::test
