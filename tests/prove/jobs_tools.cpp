#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "prove/jobs.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/system.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

void require(int32_t status)
{
    if (status < 0) throw std::runtime_error("status " + std::to_string(status));
}

// Beside the file that is tried.
std::string beside(const std::string& file, const std::string& name)
{
    return std::filesystem::path(file).replace_filename(name).string();
}

// Results of these entities; the values tell entity and domain.
EntityResults of_entities(Family family, std::vector<int32_t> ids, float mark)
{
    auto r = sample_of<EntityResults>(family);
    r.zone.fswitch = 0;
    r.zone.dmpswitch = 0;
    r.ncoo = 1;
    r.nent = static_cast<int32_t>(ids.size());
    r.res.clear();
    for (const int32_t id : ids) r.res.push_back(static_cast<float>(id) + mark);
    r.tables.ids = std::move(ids);
    r.tables.op = padded("SUM");
    r.tables.weight.assign(r.tables.ids.size(), 1);
    return r;
}

MultiEntityResults series(Family family, int32_t number, int32_t nstate)
{
    auto s = MultiEntityResults::of_states(family, nstate);
    s.set = number;
    s.nent = 40;
    s.tables.ids.assign(40, 7);
    s.tables.fid.assign(40, 8);
    s.tables.weight.assign(40, 1);
    s.res = some_values(static_cast<size_t>(nstate) * 80, static_cast<float>(number));
    for (size_t i = 0; i < s.index.indexident.size(); ++i)
        s.index.indexident[i] = i % 2 == 0 ? static_cast<int32_t>(i / 2) + 1 : 1;
    s.flags = number % 2 == 0 ? 0 : 18;
    s.params[1] = 6;
    return s;
}

EntityResults state(Family family, int32_t number)
{
    auto r = sample_of<EntityResults>(family);
    r.state = number;
    r.index.indexident = {number, 1};
    for (float& value : r.res) value += static_cast<float>(number);
    return r;
}

void make_file(const std::string& file, Family family, const std::vector<Step>& steps)
{
    Calls calls(family);
    const vak_id root = calls.open(file, 8);
    calls.write_header(root);
    for (const Step& step : steps) calls.take_step(step, root);
    calls.close(root);
    require(-std::abs(calls.status()));
}

// The eraser keeps states up to 3 of 6, in series and of single states; in either case each is in the file.
Job eraser(Family family)
{
    std::vector<Step> steps{writing(sample_of<Indices>(family)), writing(sample_of<System>(family))};
    std::vector<Item> items;
    for (int32_t number = 1; number <= 4; ++number) {
        const auto whole = series(family, number, 6);
        steps.push_back(writing(whole));
        items.push_back(item<MultiEntityResults>({whole, whole.states(0, 3)}, true));
    }
    for (int32_t number = 1; number <= 5; ++number) {
        steps.push_back(writing(state(family, number)));
        if (number <= 3) items.push_back(item<EntityResults>({state(family, number)}, true));
    }
    const auto run = [=](const std::string& file) {
        Calls calls(family);
        const vak_id root = calls.open(file, 9);
        end_of_beginning();
        const int32_t nindex = 1, last = 3, verbose = 0;
        int32_t ierr = untouched;
        (family == Family::legacy ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&root, &nindex, &last, &verbose,
                                                                          &ierr);
        calls.take(ierr);
        calls.close(root);
        return calls.status();
    };
    return {std::string("eraser") + (family == Family::legacy ? " legacy" : ""), run, items,
            [=](const std::string& file) { make_file(file, family, steps); }, true};
}

std::vector<EntityResults> domains(Family family)
{
    return {of_entities(family, {11, 12, 13}, 0), of_entities(family, {13, 14, 15}, 0)};
}

Job merger(Family family)
{
    const auto parts = domains(family);
    const auto joined = of_entities(family, {11, 12, 13, 14, 15}, 0);
    const auto system = sample_of<System>(family);
    const auto prepare = [=](const std::string& file) {
        for (size_t i = 0; i < parts.size(); ++i)
            make_file(beside(file, "domain" + std::to_string(i) + ".h5"), family,
                      {writing(sample_of<Indices>(family)), writing(system), writing(parts[i])});
    };
    const auto merge = [=](Calls& calls, vak_id root, const std::array<vak_id, 2>& files) {
        const int32_t n = 2, flags = 0, params[2] = {}, none = 0, options = 4, size = 4;
        int32_t ierr = untouched;
        (family == Family::legacy ? VAK1_MERGE_DMP : VAK_MERGE_DMP)(
            files.data(), &root, &n, &flags, params, &none, "", nullptr, &options, &size, &ierr);
        calls.take(ierr);
    };
    const auto run = [=](const std::string& file) {
        Calls calls(family);
        const vak_id root = calls.open(file, 8);
        const std::array files{calls.open(beside(file, "domain0.h5"), 10),
                               calls.open(beside(file, "domain1.h5"), 10)};
        merge(calls, root, files);
        for (const vak_id one : files) calls.close(one);
        calls.close(root);
        return calls.status();
    };
    return {std::string("merger") + (family == Family::legacy ? " legacy" : ""),
            run,
            {item<EntityResults>({joined}), item<System>({system})},
            prepare};
}

// A link to a block in another file reads as that block does.
Job linker(Family family)
{
    const auto linked = sample_of<Parts>(family);
    const auto prepare = [=](const std::string& file) {
        make_file(beside(file, "source.h5"), family, {writing(linked)});
    };
    Job job = writing_job("external links", family, {}, {}, {item<Parts>({linked})});
    job.prepare = prepare;
    job.passes_over = true;
    job.run = [=](const std::string& file) {
        Calls calls(family);
        const vak_id root = calls.open(file, 8);
        calls.take(sample_of<System>(family).write(root));
        calls.flush(root);
        end_of_beginning();
        const vak_id source = calls.open(beside(file, "source.h5"), 10);
        const int32_t one = 1, none = 0;
        int32_t ierr = untouched;
        (family == Family::legacy ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(
            &source, &root, &one, padded("").data(), &none, &none, &ierr);
        calls.take_negative(ierr);
        calls.close(source);
        calls.close(root);
        return calls.status();
    };
    job.items = {item<Parts>({linked}), item<System>({sample_of<System>(family)}, true)};
    return job;
}

// Keys and paths in the order of the listing.
struct Arrays {
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;
    ~Arrays()
    {
        std::free(keys);
        std::free(offsets);
        std::free(paths);
    }
};

// What the catalogue lists of three states: all, or fewer where a block cannot be read, but nothing else.
Verdict judged_listing(Family family, vak_id root, bool by_search, const std::set<std::string>& known)
{
    const int32_t collect = 1, verbose = 0, any = -2;
    const std::string text = padded("undefined");
    int32_t capacity = 0, nblocks = 0, ierr = untouched;
    int64_t pool = 0, length = 0;
    Arrays list;
    if (by_search)
        (family == Family::legacy ? VAK1_SEARCHBLOCKS : VAK_SEARCHBLOCKS)(
            &root, text.data(), text.data(), text.data(), text.data(), text.data(), &any, &any, &any, &any,
            &collect, &verbose, &capacity, &pool, &nblocks, &length, &list.keys, &list.offsets, &list.paths,
            &ierr);
    else
        (family == Family::legacy ? vak1_lookup : vak_lookup)(&root, &collect, &verbose, &capacity, &pool,
                                                              &nblocks, &length, &list.keys, &list.offsets,
                                                              &list.paths, &ierr);
    std::set<std::string> found;
    for (int32_t k = 0; k < nblocks; ++k) found.insert(list.paths + list.offsets[k]);
    for (const std::string& path : found)
        if (!known.contains(path)) return Verdict::other;
    return ierr == 0 && found == known ? Verdict::new_values : Verdict::error;
}

Job catalogue(Family family)
{
    const std::string header = family == Family::legacy ? "/header" : "";
    std::set<std::string> known{"vakheader"};
    std::vector<Step> steps;
    for (int32_t number = 1; number <= 3; ++number) {
        steps.push_back(writing(state(family, number)));
        known.insert(state(family, number).path() + header);
    }
    Job job = writing_job("catalogue", family, {}, steps, {});
    const auto base = job.items.front().name + header;
    known.insert(base);
    for (const bool by_search : {false, true})
        job.items.push_back({by_search ? "search" : "lookup", [=](vak_id root, std::string&) {
                                 return judged_listing(family, root, by_search, known);
                             }});
    return job;
}

}  // namespace

std::vector<Job> tool_jobs(Family family)
{
    return {eraser(family), merger(family), linker(family), catalogue(family)};
}

}  // namespace vak::test
