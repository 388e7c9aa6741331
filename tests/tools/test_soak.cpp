// Long life of a file: calls in random order, after each of which everything reads as a model in memory says,
// and nothing is open or held that was not before.
//
// By default short. VAK_SOAK_SECONDS=300 lets each family run that long and tells what memory it took.
#include <chrono>
#include <filesystem>
#include <random>

#include "support/memory_limit.h"
#include "tools/eraser_test.h"
#include "tools/soak_model.h"

namespace vak::test {

namespace {

constexpr int32_t idents = 40;

class Soak : public EraserTest {
protected:
    void TearDown() override
    {
        close(root);
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&one);
        EraserTest::TearDown();
    }

    int32_t random(int32_t n) { return static_cast<int32_t>(random_() % static_cast<uint32_t>(n)); }

    static vak_id open(const std::string& name, int32_t option)
    {
        const auto length = static_cast<int32_t>(name.size());
        const int32_t none = 0;
        vak_id group = H5I_INVALID_HID;
        int32_t ierr = 0;
        VAK_OPEN(name.data(), &length, "", &none, "", &none, &group, &none, &option, &ierr);
        EXPECT_EQ(ierr, 0);
        return group;
    }
    static void close(vak_id& group)
    {
        int32_t ierr = 0;
        if (group >= 0) VAK_CLOSE(&group, &ierr);
        EXPECT_EQ(ierr, 0);
        group = H5I_INVALID_HID;
    }
    void write_frame_to(hid_t at) const
    {
        int32_t ierr = 0;
        (legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&at, nullptr, nullptr, &ierr);
        EXPECT_EQ(ierr, 0);
        EXPECT_EQ(sample<Indices>().write(at), 0);
        EXPECT_EQ(sample<System>().write(at), 0);
    }

    // --- the calls -----------------------------------------------------------------------------------------

    void reopen()
    {
        close(root);
        root = open(name, 9);
    }
    void flush() const
    {
        const int32_t scope = 0;
        int32_t ierr = 0;
        VAK_FLUSH(&root, &scope, &ierr);
        EXPECT_EQ(ierr, 0);
    }
    template <class S>
    S with_values(S s)
    {
        s.index.indexident[0] = random(idents);
        s.index.indexval[0] = static_cast<float>(random(1000));
        if constexpr (requires { s.res; })
            for (float& value : s.res) value = static_cast<float>(random(100000)) / 8;
        else
            for (int32_t& flag : s.status) flag = random(3) - 1;
        return s;
    }
    template <class S>
    void choose_storage(S& s)
    {
        constexpr int32_t losing_nothing[] = {0, 0, 18, 127};
        constexpr int32_t chunks[] = {1, 3, 8};
        s.flags = losing_nothing[random(4)];
        s.params[1] = 4;
        const int32_t chunk = chunks[random(3)];
        VAK_SET_CHUNK_SIZE(&chunk);
    }

    // Of a state that is there already the values are overwritten.
    void write_state()
    {
        EntityResults s = with_values(sample<EntityResults>());
        s.state = s.index.indexident[0];
        const auto there = model.states.find(s.state);
        if (there == model.states.end())
            choose_storage(s);
        else
            s.flags = there->second.flags;
        EXPECT_EQ(run([&] { return s.write(root); }), success);
        model.states[s.state] = s;
    }
    void append_to_series()
    {
        const int32_t n = 1 + random(5), set = random(3);
        MultiEntityResults s = MultiEntityResults::of_states(family(), n);
        s.set = set;
        if (model.series.contains(set))
            s.flags = model.series.at(set).flags;
        else
            choose_storage(s);
        for (size_t k = 0; k < static_cast<size_t>(n); ++k) s.index.indexident[2 * k] = random(idents);
        for (float& value : s.res) value = static_cast<float>(random(100000)) / 8;
        EXPECT_EQ(run([&] { return s.write(root); }), success);
        model.extend(s);
    }
    template <class S>
    void append_to(std::vector<S>& states)
    {
        S s = with_values(sample<S>());
        if (states.empty())
            choose_storage(s);
        else
            s.flags = states[0].flags;
        s.ipos = static_cast<int32_t>(states.size());
        EXPECT_EQ(run([&] { return s.write(root); }), success);
        states.push_back(s);
    }
    void erase_some()
    {
        const int32_t last = random(4) == 0 ? random(idents) - 1 : idents / 2 + random(idents / 2);
        EXPECT_EQ(erase(root, {last}).ierr, 0);
        model.erase_after(last);
    }
    // Another file shows what this one holds.
    void link_and_look()
    {
        const std::string linked = path("linked.h5"), subgroup = padded("all");
        vak_id other = open(linked, 8);
        const int32_t one = 1, none = 0, in_subgroup = random(2);
        run([&] {
            int32_t ierr = untouched;
            (legacy() ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(&root, &other, &one, subgroup.data(),
                                                                    &in_subgroup, &none, &ierr);
            EXPECT_GE(ierr, 0);
            return ierr;
        });
        close(root);
        expect_model(other, model, in_subgroup ? "all/" : "");
        close(other);
        root = open(name, 9);
    }
    void write_all(hid_t at, SoakModel& all) const
    {
        write_frame_to(at);
        int32_t next_element = 0, next_flags = 0;
        all.each([&](auto& s) {
            if constexpr (std::is_same_v<std::decay_t<decltype(s)>, MultiElementResults>)
                s.ipos = next_element++;
            if constexpr (std::is_same_v<std::decay_t<decltype(s)>, MultiActivFlags>) s.ipos = next_flags++;
            EXPECT_EQ(s.write(at), 0);
        });
    }
    // This file and one of other entities are the domains.
    void merge_and_look()
    {
        SoakModel far = model.of_other_domain();
        vak_id other = open(path("domain.h5"), 8), target = open(path("merged.h5"), 8);
        write_all(other, far);
        const vak_id domains[2] = {root, other};
        const int32_t two = 2, none = 0, no_params[2]{}, plain = 4, real_size = 4;
        EXPECT_EQ(run([&] {
                      int32_t ierr = untouched;
                      (legacy() ? VAK1_MERGE_DMP : VAK_MERGE_DMP)(domains, &target, &two, &none, no_params,
                                                                  &none, nullptr, nullptr, &plain, &real_size,
                                                                  &ierr);
                      return ierr;
                  }).ierr,
                  0);
        close(other);
        expect_model(target, model.merged_with(far));
        close(target);
    }

    void step()
    {
        const int32_t choice = random(100);
        if (choice < 30) return write_state();
        if (choice < 50) return append_to_series();
        if (choice < 60) return append_to(model.elements);
        if (choice < 70) return append_to(model.flags);
        if (choice < 82) return erase_some();
        if (choice < 88) return reopen();
        if (choice < 93) return flush();
        choice < 97 ? link_and_look() : merge_and_look();
    }

    // --- what is there then --------------------------------------------------------------------------------

    template <class S>
    void expect_read(hid_t at, const std::string& below, const S& expected)
    {
        S found = emptied(expected);
        if constexpr (requires { found.ipos; }) found.ipos = expected.ipos;
        const ObjectId group = open_object(at, below + expected.path());
        const int32_t ierr = found.read(group, 2);
        EXPECT_GE(ierr, 0) << expected.path();
        ASSERT_EQ(listing(found), listing(expected)) << expected.path();
    }
    std::set<std::string> listed_blocks(hid_t at) const
    {
        int32_t capacity = 0, n = 0, ierr = 0, *keys = nullptr;
        const int32_t collect = 1, verbose = 0;
        int64_t pool = 0, total = 0, *offsets = nullptr;
        char* paths = nullptr;
        (legacy() ? vak1_lookup : vak_lookup)(&at, &collect, &verbose, &capacity, &pool, &n, &total, &keys,
                                              &offsets, &paths, &ierr);
        EXPECT_EQ(ierr, 0);
        std::set<std::string> found;
        for (int32_t i = 0; i < n; ++i)
            if (keys[i] >= 1000) found.insert(paths + offsets[i]);
        std::free(keys);
        std::free(offsets);
        std::free(paths);
        return found;
    }
    void expect_model(hid_t at, const SoakModel& expected, const std::string& below = "")
    {
        std::set<std::string> paths;
        for (const std::string& path : expected.paths())
            paths.insert(below + path + (legacy() ? "/header" : ""));
        ASSERT_EQ(listed_blocks(at), paths);
        for (const auto& [number, s] : expected.states) expect_read(at, below, s);
        for (const auto& [set, s] : expected.series) expect_read(at, below, s);
        for (const auto& s : SoakModel::placed(expected.elements)) expect_read(at, below, s);
        for (const auto& s : SoakModel::placed(expected.flags)) expect_read(at, below, s);
    }

    void take_step()
    {
        count_anew();
        const IdCounter counter;
        const OpenIds ids = counter.count();
        const size_t descriptors = open_descriptors();
        step();
        expect_model(root, model);
        ASSERT_EQ(counter.count(), ids);
        ASSERT_EQ(open_descriptors(), descriptors);
        ++steps;
    }
    // A file from its making to its end; gives what is allocated when nothing of it is left.
    size_t live(uint32_t start, int calls)
    {
        random_.seed(start);
        model = {};
        root = open(name, 8);
        write_frame_to(root);
        for (int i = 0; i < calls && !HasFatalFailure(); ++i) take_step();
        close(root);
        model = {};
        H5garbage_collect();
        return allocated_bytes();
    }

    const std::string name = path("soak.h5");
    vak_id root = H5I_INVALID_HID;
    SoakModel model;
    long steps = 0;

private:
    std::mt19937 random_;
};
INSTANTIATE_TEST_SUITE_P(, Soak, both_families, family_name);

// How long the asked time has been running, as a share of it.
class Asked {
public:
    bool at_all() const { return seconds_ != nullptr; }
    double share() const
    {
        if (!at_all()) return 1;
        return std::chrono::duration<double>(Clock::now() - begin_).count() / std::stod(seconds_);
    }

private:
    using Clock = std::chrono::steady_clock;
    const char* const seconds_ = std::getenv("VAK_SOAK_SECONDS");
    const Clock::time_point begin_ = Clock::now();
};

TEST_P(Soak, everything_reads_as_written_after_calls_in_any_order)
{
    const Asked asked;
    const int calls = asked.at_all() ? 100 : 35;
    size_t early = 0, last = 0;
    for (uint32_t start = 1; start <= 3 || asked.share() < 1; ++start) {
        last = live(start, calls);
        ASSERT_FALSE(HasFatalFailure()) << "with seed " << start << " at call " << steps;
        if (start <= 2 || asked.share() < 0.25) early = last;  // HDF5 has made what it keeps
    }
    if (asked.at_all())
        std::printf("%ld calls; %zu bytes allocated early, %zu at the end\n", steps, early, last);
    EXPECT_LT(last, early + allocated_bytes_slack);
}

}  // namespace

}  // namespace vak::test
