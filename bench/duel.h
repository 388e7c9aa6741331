// A duel: the same job done by the library and by plain HDF5 calls, in turn, in one run.
#pragma once

#include "run_folder.h"

#include <algorithm>
#include <functional>
#include <string>

namespace bench {

// Both sides of a job. What they share (arrays, files) lives in the functions.
struct Contest {
    std::function<void()> ours, plain;
    std::function<void()> before = [] {};  // each side, not timed
    std::function<void()> check = [] {};   // both did the same; after the last round, not timed
    std::function<std::string()> remark = [] {
        return std::string();
    };  // behind the job's name, when it is done
};

struct Job {
    const char* name;
    double aim;  // ratio of the times, ours to plain
    int rounds;
};

// `make` prepares the job when its turn comes.
void add_duel(const Job& job, std::function<Contest()> make);

// The results of the duels that were fought, in Markdown.
void print_table();

// The contest of two writers, each given the name of its file.
using Writer = std::function<void(const std::string&)>;
Contest writing(const Writer& ours, const Writer& plain);

// The contest of two readers of one file into the same array.
template <class Values>
Contest reading(const std::function<void()>& ours, const std::function<void()>& plain, Values& values)
{
    const auto check = [=, &values] {
        Values zeros = values;
        std::fill(zeros.begin(), zeros.end(), typename Values::value_type{});
        values = zeros;
        ours();
        const Values found = values;
        values = zeros;  // where it is: the sides know the address
        plain();
        must(values == found && values != zeros ? 0 : -1, "comparing what was read");
        remove_files();
    };
    return {.ours = ours, .plain = plain, .check = check};
}

}  // namespace bench
