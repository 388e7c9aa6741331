// Trials of all jobs at every point, or at a share of them, and what came of them.
#pragma once

#include <map>
#include <string>

#include "prove/apart.h"
#include "prove/jobs.h"
#include "support/temp_file.h"

namespace vak::test {

// All points with VAK_PROVE_ALL in the environment; otherwise so many of each job.
bool proves_all();
// One of several processes that share the work, or one that was asked for some jobs.
bool is_part();
bool is_in_part(size_t number);
// By default each sweep takes every fifth job, another fifth than the sweep before it.
bool is_chosen(const std::string& job, size_t number, size_t turn);
long every_point();
std::vector<long> points(long first, long end, long share, size_t job);

struct Tally {
    long points = 0, failed = 0, violations = 0;
    long passed_over = 0;                     // by a tool, as the catalogue does with what it cannot read
    long lost_in_flush = 0;                   // blocks, where the fault hit a flush under way
    std::map<std::string, long> inside_hdf5;  // crashes on a file that a fault in a flush left
    std::string examples;                     // of violations

    void violation(const std::string& what);
    void add(const Tally& other);
};

// One line for each job, then one for all.
class Table {
public:
    explicit Table(std::string mode) : mode_(std::move(mode)) {}
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    void add(const std::string& job, const Tally& tally);
    const Tally& all() const { return all_; }

private:
    void print(const std::string& job, const Tally& tally) const;

    std::string mode_;
    Tally all_;
};

// A job with the file that it is tried on.
class Trials {
public:
    explicit Trials(const Job& job);

    // From the same file every time; `arm` sets what will fail.
    Ending run(const std::function<void()>& arm) const;
    // The same, and then what is in the file is read in the same process.
    Ending run_and_judge(const std::function<void()>& arm) const;
    // What is in the file now; `arm` may make the reading fail.
    Ending judge(const std::function<void()>& arm = [] {}) const;
    // The calls that all succeed; throws when they do not, or when the file does not read.
    Ending whole(const std::function<void()>& arm = [] {}) const;

    // Adds what is wrong with a trial and its file.
    void count(const Ending& ran, const Ending& read, const std::string& point, Tally& tally) const;

private:
    void run_in(Report& report, const std::function<void()>& arm) const;
    void judge_in(Report& report, const std::function<void()>& arm) const;
    Ending start(const std::function<void(Report&)>& body) const;
    void count_items(const Ending& ran, const Ending& read, const std::string& point, Tally& tally) const;

    const Job& job_;
    TempFolder folder_;
    std::string file_, before_;
};

}  // namespace vak::test
