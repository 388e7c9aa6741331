// The eraser on a disk that fails, or in a process that is killed, at each of its writes.
//
// A share of the writes is tried; all of them with VAK_TEST_EVERY_WRITE set in the environment.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "support/faults.h"
#include "support/root_group.h"
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

constexpr int32_t blocks = 20, states = 6, kept = 3, entities = 60;

struct Figures {
    int tried = 0, wrong = 0, lost = 0, lost_in_flush = 0, unreadable_in_flush = 0, unnoticed = 0;
};

class EraserUnderFaults : public EraserTest {
protected:
    void TearDown() override
    {
        disk().mend();
        EraserTest::TearDown();
    }

    static vak_id open(const std::string& name, int32_t option) { return open_root(name, option); }
    static int32_t close(vak_id group)
    {
        const Flushing now;
        return close_root(group);
    }

    // Every second one is compressed; chunks of one state and of eight in turns.
    MultiEntityResults block(int32_t number) const
    {
        std::vector<int32_t> idents(states);
        for (int32_t i = 0; i < states; ++i) idents[static_cast<size_t>(i)] = i + 1;
        auto s = series(idents);
        s.set = number;
        s.nent = entities;
        s.tables.ids.assign(entities, 7);
        s.tables.fid.assign(entities, 8);
        s.tables.weight.assign(entities, 1);
        s.res = some_values(size_t{states} * entities * 2, static_cast<float>(number) * 1000);
        s.flags = number % 2 == 0 ? 0 : 18;
        s.params[1] = 6;
        return s;
    }

    std::string make_file()
    {
        const std::string name = path("whole.h5");
        const vak_id group = open(name, 8);
        EXPECT_GE(group, 0);
        int32_t ierr = 0;
        (legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&group, nullptr, nullptr, &ierr);
        EXPECT_EQ(sample<Indices>().write(group), 0);
        EXPECT_EQ(sample<System>().write(group), 0);
        for (int32_t k = 1; k <= states; ++k) EXPECT_EQ(state(k).write(group), 0);
        for (int32_t number = 0; number < blocks; ++number) {
            const int32_t chunk = number / 2 % 2 == 0 ? 1 : 8;
            VAK_SET_CHUNK_SIZE(&chunk);
            EXPECT_EQ(block(number).write(group), 0);
        }
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&one);
        EXPECT_EQ(close(group), 0);
        return name;
    }

    int32_t erase_in(const std::string& name) const
    {
        const vak_id group = open(name, 9);
        if (group < 0) return -1;
        const int32_t nindex = 1, index = kept, verbose = 0;
        int32_t ierr = 0;
        (legacy() ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&group, &nindex, &index, &verbose, &ierr);
        const int32_t closed = close(group);
        return ierr != 0 ? ierr : closed;
    }
    // In a process of its own; whether every call succeeded.
    bool erase_with(Fault fault, long at, const std::string& name)
    {
        disk().fail(fault, at);
        const pid_t child = fork();
        if (child == 0) _exit(erase_in(name) == 0 ? 0 : 1);
        int result = 0;
        waitpid(child, &result, 0);
        EXPECT_TRUE(WIFEXITED(result) || WTERMSIG(result) == SIGKILL)
            << "the process died of " << WTERMSIG(result);
        disk().fault = Fault::none;
        return WIFEXITED(result) && WEXITSTATUS(result) == 0;
    }

    // 1 all states or those to be kept, 0 an error, -1 other values.
    template <class S>
    int judged(vak_id group, const S& expected, const S& shorter) const
    {
        const hid_t id = quietly([&] { return H5Gopen2(group, expected.path().c_str(), H5P_DEFAULT); });
        if (id < 0) return 0;
        S found = emptied(expected), again = emptied(shorter);
        const int32_t ierr = found.read(id, 1);  // tells the number of states
        bool good = false, failed = ierr < 0;
        if constexpr (requires { found.nstate; }) {
            if (!failed && found.nstate == shorter.nstate) {
                failed = again.read(id, 2) < 0;
                good = listing(again) == listing(shorter);
                H5Gclose(id);
                return failed ? 0 : good ? 1 : -1;
            }
        }
        failed = failed || found.read(id, 2) < 0;
        good = listing(found) == listing(expected);
        H5Gclose(id);
        return failed ? 0 : good ? 1 : -1;
    }

    void count(Figures& f, int judgement) const
    {
        if (judgement < 0) ++f.wrong;
        if (judgement == 0) ++(disk().hit_in_flush ? f.lost_in_flush : f.lost);
    }
    void judge(const std::string& name, bool succeeded, Figures& f) const
    {
        const vak_id group = open(name, 10);
        if (group < 0) {
            disk().hit_in_flush ? ++f.unreadable_in_flush : ++f.lost;
            return;
        }
        for (int32_t number = 0; number < blocks; ++number) {
            const auto whole = block(number);
            const int judgement = judged(group, whole, whole.states(0, kept));
            count(f, judgement);
            if (succeeded && judgement != 1) ++f.unnoticed;
        }
        for (int32_t k = 1; k <= kept; ++k) count(f, judged(group, state(k), state(k)));
        close(group);
    }

    // HDF5 may crash on a group that was half written: reading is in a process of its own, too.
    void judge_apart(const std::string& name, bool succeeded, Figures& f) const
    {
        auto* found = static_cast<Figures*>(
            mmap(nullptr, sizeof(Figures), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
        *found = f;
        const pid_t child = fork();
        if (child == 0) {
            judge(name, succeeded, *found);
            _exit(0);
        }
        int result = 0;
        waitpid(child, &result, 0);
        f = *found;
        munmap(found, sizeof(Figures));
        if (!WIFEXITED(result) || WEXITSTATUS(result) != 0)
            ++(disk().hit_in_flush ? f.unreadable_in_flush : f.lost);
    }

    void try_writes(Fault fault, const char* word)
    {
        const std::string whole = make_file(), tried = path("tried.h5");
        std::filesystem::copy_file(whole, tried);
        Figures f;
        Output ignored = captured_unnoted([&] {
            ASSERT_TRUE(erase_with(Fault::io_error_once, -1, tried));
            const long writes = disk().writes;
            const long step = std::getenv("VAK_TEST_EVERY_WRITE") != nullptr ? 1 : writes / 12 + 1;
            for (long at = 0; at < writes; at += step) {
                std::filesystem::copy_file(whole, tried, std::filesystem::copy_options::overwrite_existing);
                const bool succeeded = erase_with(fault, at, tried);
                ASSERT_TRUE(disk().hit);
                if (succeeded) ++f.unnoticed;
                judge_apart(tried, succeeded, f);
                ++f.tried;
            }
        });
        std::printf("%s: %d writes tried; wrong %d, lost %d; in a flush: lost %d, file unreadable %d\n", word,
                    f.tried, f.wrong, f.lost, f.lost_in_flush, f.unreadable_in_flush);
        EXPECT_GT(f.tried, 8);
        EXPECT_EQ(f.wrong, 0);
        EXPECT_EQ(f.lost, 0);
        EXPECT_EQ(f.unnoticed, 0);
    }
};
INSTANTIATE_TEST_SUITE_P(, EraserUnderFaults, both_families, family_name);

TEST_P(EraserUnderFaults, one_write_that_fails_gives_no_wrong_values)
{
    try_writes(Fault::io_error_once, "EIO");
}

TEST_P(EraserUnderFaults, disk_that_is_full_from_a_write_on_gives_no_wrong_values)
{
    try_writes(Fault::full_from_here, "ENOSPC");
}

TEST_P(EraserUnderFaults, kill_at_a_write_gives_no_wrong_values) { try_writes(Fault::killed, "kill"); }

}  // namespace

}  // namespace vak::test
