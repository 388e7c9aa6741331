// What is tried: for every exported writer and tool the calls of a small program that uses it, and what its
// file has to read as afterwards.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "prove/judge.h"
#include "vak_sp.h"

namespace vak::test {

// Something in the file.
struct Item {
    std::string name;
    std::function<Verdict(vak_id root, std::string& difference)> judge;
    bool untouched = false;  // flushed before what the job does, and not changed by it
};

struct Job {
    std::string name;
    std::function<int32_t(const std::string& file)>
        run;  // the first status of its calls that tells a failure
    std::vector<Item> items;
    std::function<void(const std::string& file)> prepare = nullptr;  // makes the file that it starts from
    bool passes_over = false;  // what the catalogue, or a listing of links, cannot read
    size_t number = 0;         // of all jobs
};

std::vector<Job> jobs();

// Makes the arrays of results large enough that they are not stored in the object header: 25,600 bytes a
// state.
template <class S>
S enlarged(S sample, size_t states = 1)
{
    constexpr size_t n = 800, components = 8;
    sample.nent = n;
    sample.ncoo = components;
    sample.tables.ids.assign(n, 7);
    sample.tables.fid.assign(n, 8);
    sample.tables.weight.assign(n, 1);
    sample.tables.op = fields(std::vector<std::string_view>(components, "SUM"));
    sample.res.resize(states * n * components);
    for (size_t i = 0; i < sample.res.size(); ++i) sample.res[i] = static_cast<float>(i % 5000) / 4;
    return sample;
}

// The parts of the list, of one family each.
std::vector<Job> block_jobs(Family family);
std::vector<Job> series_jobs(Family family);
std::vector<Job> tool_jobs(Family family);

using Step = std::function<int32_t(vak_id root)>;

// The calls of one program: the first failure is kept, no step follows it, and the file is closed.
class Calls {
public:
    explicit Calls(Family family) : legacy_(family == Family::legacy) {}

    // Any other status than 0 is a failure, or negative ones only.
    void take(int32_t status) { status_ = status_ != 0 ? status_ : status; }
    void take_negative(int32_t status) { take(status < 0 ? status : 0); }
    void take_step(const Step& step, vak_id root)
    {
        if (status_ == 0) take(step(root));
    }
    int32_t status() const { return status_; }

    vak_id open(const std::string& file, int32_t option);
    void write_header(vak_id root);
    void flush(vak_id root);
    void close(vak_id root);
    // Opens, and makes if need be, a group of the file for a routine that takes one.
    void in_group(vak_id root, const std::string& path, const std::function<int32_t(vak_id)>& routine);

private:
    bool legacy_;
    int32_t status_ = 0;
};

// What stands in the file now is flushed, unless a fault came before.
void end_of_beginning();

template <class S>
Step writing(const S& sample)
{
    return [sample](vak_id root) { return sample.write(root); };
}

template <class S>
Item item(const std::vector<S>& versions, bool still = false)
{
    return {versions.back().path(),
            [versions](vak_id root, std::string& difference) { return judged(root, versions, difference); },
            still};
}

// A new file with header and a block of results; the first steps; a flush; the other steps; VAK_CLOSE.
Job writing_job(const std::string& name, Family family, std::vector<Step> first, std::vector<Step> then,
                std::vector<Item> items);

}  // namespace vak::test
