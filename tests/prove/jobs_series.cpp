#include "prove/jobs.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

struct Stored {
    bool large = true;
    int32_t flags = 0, chunk = 1;
};

MultiEntityResults series_of(Family family, const Stored& stored)
{
    auto s = MultiEntityResults::of_states(family, 5);
    if (stored.large) s = enlarged(s, 5);
    s.flags = stored.flags;
    s.params[0] = 2;
    s.params[1] = 6;
    return s;
}

using Append = std::function<int32_t(vak_id root, const MultiEntityResults& states)>;

int32_t append_all(vak_id root, const MultiEntityResults& states) { return states.write(root); }

Step appending(const MultiEntityResults& states, int32_t chunk, const Append& append)
{
    return [=](vak_id root) {
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&chunk);
        const int32_t status = append(root, states);
        VAK_SET_CHUNK_SIZE(&one);
        return status;
    };
}

// Two states, a flush, three states. Filtered chunks of several states are written anew with each of them.
Job entities_job(const std::string& name, Family family, const Stored& stored, const Append& append)
{
    const auto all = series_of(family, stored);
    std::vector<MultiEntityResults> versions;
    for (int32_t n = 0; n <= 5; ++n) versions.push_back(all.states(0, n));
    const auto step = [&](int32_t state) { return appending(all.states(state, 1), stored.chunk, append); };
    return writing_job(name, family, {step(0), step(1)}, {step(2), step(3), step(4)},
                       {item(versions, stored.flags == 0 || stored.chunk == 1)});
}

int32_t append_chosen(vak_id root, const MultiEntityResults& states)
{
    return states.write_chosen(root, -1,
                               {.mode = 1, .count = {1, states.nent, states.ncoo}, .start = {0, 0, 0}});
}

int32_t append_into(vak_id root, const MultiEntityResults& states)
{
    Calls calls(states.family);
    calls.in_group(root, states.path(), [&](vak_id group) {
        int32_t then = untouched;
        return states.write_into(
            group, {.mode = 1, .count = {1, states.nent, states.ncoo}, .start = {0, 0, 0}}, then);
    });
    return calls.status();
}

template <class S>
std::vector<Step> writing_each(const std::vector<S>& states, size_t from, size_t to)
{
    std::vector<Step> steps;
    for (size_t k = from; k < to; ++k) steps.push_back(writing(states[k]));
    return steps;
}

// One state with each call; a state reads at its place, whatever follows it. Of many the last ones are read.
template <class S>
Job one_by_one(const std::string& name, Family family, size_t flushed = 2, size_t number = 4)
{
    std::vector<S> states{sample_of<S>(family)};
    while (states.size() < number) states.push_back(states.back().next());
    std::vector<Item> items;
    for (size_t k = std::max(flushed, size_t{4}) - 4; k < number; ++k) {
        std::vector<S> versions(number - k, states[k]);
        for (size_t later = 0; later < versions.size(); ++later)
            versions[later].nstate = static_cast<int32_t>(k + later + 1);
        items.push_back(item(versions, k < flushed));
        items.back().name += " state " + std::to_string(k);
    }
    return writing_job(name, family, writing_each(states, 0, flushed), writing_each(states, flushed, number),
                       items);
}

}  // namespace

std::vector<Job> series_jobs(Family family)
{
    return {
        entities_job("multientityresults", family, {.large = false}, append_all),
        entities_job("multientityresults large", family, {}, append_all),
        entities_job("multientityresults deflated", family, {.flags = 18}, append_all),
        entities_job("multientityresults deflated by 4", family, {.flags = 18, .chunk = 4}, append_all),
        entities_job("multientityresults scale-offset by 4", family, {.flags = 128 + 18, .chunk = 4},
                     append_all),
        entities_job("multientityresultc", family, {.large = false, .chunk = 4}, append_chosen),
        entities_job("multientityresults2", family, {}, append_into),
        one_by_one<MultiElementResults>("multielementresults", family),
        one_by_one<MultiActivFlags>("multiactivflags", family),
        one_by_one<MultiElementResults>("multielementresults, many", family, 66, 72),
    };
}

}  // namespace vak::test
