// A process that writes blocks and appends to series, flushes now and then and is killed between two calls:
// what was flushed reads bit for bit, and nothing reads as something else.
//
// A few random runs by default, 2,000 by script/prove.
#include <gtest/gtest.h>

#include <csignal>
#include <random>

#include "prove/sweep.h"
#include "samples/densematrix.h"
#include "samples/entityresults.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "support/block_test.h"
#include "support/faults.h"

namespace vak::test {

namespace {

constexpr int32_t most_calls = 40;

// A series that grows by one state with each call.
struct Grown {
    MultiEntityResults whole;
    int32_t chunk;
    int32_t states = 0, flushed = 0;
};

// One run: what is called until the kill, and what the file must then hold.
class RandomRun {
public:
    explicit RandomRun(uint32_t seed)
        : random_(seed), family_(seed % 2 == 0 ? Family::current : Family::legacy)
    {
        add_series(1, {}, false, 1);
        add_series(2, {}, true, 1);
        add_series(3, 18, true, 1);
        add_series(4, 18, true, 4);
        add_series(5, 128 + 18, true, 4);
        const int32_t calls = 1 + pick(most_calls);
        for (int32_t number = 0; number < calls; ++number) add_call(number);
    }

    Job job() const
    {
        Job job{"run", {}, items_};
        for (size_t i = 0; i < blocks_.size(); ++i) job.items[i].untouched = i < flushed_blocks_;
        for (const Grown& series : series_) add_item(series, job.items);
        job.run = [family = family_, steps = steps_](const std::string& file) {
            Calls calls(family);
            const vak_id root = calls.open(file, 8);
            for (const Step& step : steps) calls.take_step(step, root);
            if (calls.status() == 0) raise(SIGKILL);
            return calls.status();
        };
        return job;
    }

private:
    int32_t pick(int32_t n) { return static_cast<int32_t>(random_() % static_cast<uint32_t>(n)); }

    void add_series(int32_t set, int32_t flags, bool large, int32_t chunk)
    {
        auto s = MultiEntityResults::of_states(family_, most_calls);
        if (large) s = enlarged(s, most_calls);
        s.set = set;
        s.flags = flags;
        s.params[0] = 2;
        s.params[1] = 6;
        series_.push_back({std::move(s), chunk});
    }

    template <class S>
    void add_block(const S& sample)
    {
        blocks_.push_back(sample.path());
        steps_.push_back(writing(sample));
        items_.push_back(item<S>({sample}));
    }

    void append(Grown& series)
    {
        const auto one = series.whole.states(series.states++, 1);
        steps_.push_back([one, chunk = series.chunk](vak_id root) {
            const int32_t smallest = 1;
            VAK_SET_CHUNK_SIZE(&chunk);
            const int32_t status = one.write(root);
            VAK_SET_CHUNK_SIZE(&smallest);
            return status;
        });
    }

    void flush()
    {
        flushed_blocks_ = blocks_.size();
        for (Grown& series : series_) series.flushed = series.states;
        steps_.push_back([family = family_](vak_id root) {
            Calls calls(family);
            calls.flush(root);
            return calls.status();
        });
    }

    void add_call(int32_t number)
    {
        const int32_t kind = pick(10);
        if (kind == 0) {
            auto results = sample_of<EntityResults>(family_);
            results.state = number;
            results.res = some_values(6, static_cast<float>(number));
            add_block(results);
        } else if (kind == 1) {
            auto results = enlarged(sample_of<EntityResults>(family_));
            results.state = number;
            results.flags = pick(2) * 18;
            add_block(results);
        } else if (kind == 2) {
            auto parts = sample_of<Parts>(family_);
            parts.state = number;
            add_block(parts);
        } else if (kind == 3) {
            auto matrix = sample_of<DenseMatrix>(family_);
            matrix.entid = number;
            add_block(matrix);
        } else if (kind < 6) {
            flush();
        } else {
            append(series_[static_cast<size_t>(pick(static_cast<int32_t>(series_.size())))]);
        }
    }

    static void add_item(const Grown& series, std::vector<Item>& items)
    {
        if (series.states == 0) return;
        std::vector<MultiEntityResults> versions;
        for (int32_t n = series.flushed; n <= series.states; ++n)
            versions.push_back(series.whole.states(0, n));
        items.push_back(item(versions, series.flushed > 0));
    }

    std::mt19937 random_;
    Family family_;
    std::vector<Step> steps_;
    std::vector<Item> items_;
    std::vector<std::string> blocks_;
    size_t flushed_blocks_ = 0;
    std::vector<Grown> series_;
};

TEST(KillBetweenTwoCalls, loses_nothing_that_was_flushed)
{
    Table table("kill between calls");
    Tally tally;
    const uint32_t runs = proves_all() ? 2000 : 20;
    for (uint32_t seed = 0; seed < runs; seed += static_cast<uint32_t>(every_point())) {
        if (proves_all() && !is_in_part(seed)) continue;
        const Job job = RandomRun(seed).job();
        const Trials trials(job);
        disk().mend();
        disk().flushed = true;
        const Ending ran = trials.run([] {});
        EXPECT_TRUE(ran.killed) << "seed " << seed << ", status " << ran.report.status << ran.crash;
        trials.count(ran, trials.judge(), "seed " + std::to_string(seed), tally);
    }
    table.add("random calls", tally);
    EXPECT_EQ(tally.violations, 0) << tally.examples;
}

}  // namespace

}  // namespace vak::test
