// A disk that fills while results are written: the fixture that tries many ends of it, and kinds of results.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "support/block_test.h"
#include "support/faults.h"
#include "support/root_group.h"

namespace vak::test {

// State k, written and read through the exported routines.
struct StateKind {
    std::string name;
    std::function<std::string(int32_t k)> path;
    std::function<int32_t(hid_t file, int32_t k)> append;
    // 1 the values of that state, 0 an error, -1 other values.
    std::function<int32_t(hid_t group, int32_t k)> read;
};

inline std::ostream& operator<<(std::ostream& stream, const StateKind& kind) { return stream << kind.name; }

constexpr int32_t many = 3000;

inline const std::vector<int32_t>& values_of(const MultiActivFlags& s) { return s.status; }
inline const std::vector<float>& values_of(const MultiElementResults& s) { return s.res; }
inline const std::vector<float>& values_of(const MultiEntityResults& s) { return s.res; }
inline const std::vector<float>& values_of(const EntityResults& s) { return s.res; }

template <class S>
int32_t judged(const S& expected, const S& found, int32_t ierr)
{
    if (ierr < 0) return 0;
    const bool same =
        values_of(found) == values_of(expected) && found.index.indexident == expected.index.indexident;
    return same ? 1 : -1;
}

class FullDisk : public LibraryTest, public testing::WithParamInterface<StateKind> {
protected:
    static constexpr int32_t before = 3, after = 6;

    static vak_id open(const std::string& name, int32_t option) { return open_root(name, option); }
    static int32_t close(vak_id group)
    {
        const Flushing now;
        return close_root(group);
    }

    // Whether every call succeeded.
    static bool append(vak_id group, int32_t first, int32_t end)
    {
        int32_t ierr = 0;
        for (int32_t k = first; k < end && ierr == 0; ++k) ierr = GetParam().append(group, k);
        return close(group) == 0 && ierr == 0;
    }

    // The same in a process of its own, under the limit that `set_limit` sets.
    bool append_under(const std::function<void()>& set_limit, const std::string& name)
    {
        const pid_t child = fork();
        if (child == 0) {
            set_limit();
            const vak_id group = open(name, 9);
            _exit(group >= 0 && append(group, before, after) ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        written_ = disk();
        disk().mend();
        EXPECT_TRUE(WIFEXITED(status) || written_.fault == Fault::killed) << "the process died";
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    // How the states read: so many as they were written, so many as something else.
    struct Found {
        int32_t good = 0, wrong = 0;
    };
    static Found states_in(const std::string& name)
    {
        Found found;
        const vak_id group = open(name, 10);
        if (group < 0) return found;
        for (int32_t k = 0; k < after; ++k) {
            const hid_t block =
                quietly([&] { return H5Gopen2(group, GetParam().path(k).c_str(), H5P_DEFAULT); });
            const int32_t judgement = block < 0 ? 0 : GetParam().read(block, k);
            (judgement < 0 ? found.wrong : found.good) += std::abs(judgement);
            if (block >= 0) H5Gclose(block);
        }
        close(group);
        return found;
    }

    // A file with the first states, and how long it is without and with the others.
    void begin()
    {
        const std::string whole = path("whole.h5");
        ASSERT_TRUE(append(open(path("first.h5"), 8), 0, before));
        std::filesystem::copy_file(path("first.h5"), whole);
        ASSERT_TRUE(append(open(whole, 9), before, after));
        ASSERT_EQ(states_in(whole).good, after);
        start_ = std::filesystem::file_size(path("first.h5"));
        end_ = std::filesystem::file_size(whole);
    }

    // Appends the other states to it on such a disk.
    void try_disk(const std::function<void()>& set_limit)
    {
        const std::string cut = path("cut.h5");
        std::filesystem::copy_file(path("first.h5"), cut, std::filesystem::copy_options::overwrite_existing);
        bool succeeded = false;
        Found found;
        captured_unnoted([&] {
            succeeded = append_under(set_limit, cut);
            found = states_in(cut);
        });
        EXPECT_EQ(found.wrong, 0);
        EXPECT_TRUE(!succeeded || found.good == after) << found.good << " good states";
        (succeeded ? succeeded_ : failed_) += 1;
        // A disk that refuses to overwrite does not take old bytes back either.
        if (!written_.hit_in_flush && written_.fault != Fault::full_from_here)
            fewest_ = std::min(fewest_, found.good);
    }

    // The same under many limits.
    void try_limits(uintmax_t number, const std::function<void(uintmax_t)>& set_limit)
    {
        ASSERT_NO_FATAL_FAILURE(begin());
        for (uintmax_t i = 0; i <= number; ++i) {
            const uintmax_t limit =
                start_ + (end_ - start_) * reach_ * i / number + (i == number ? spare : 0);
            SCOPED_TRACE(limit);
            try_disk([&] { set_limit(limit); });
        }
    }

    static constexpr uintmax_t spare = 65536;  // what is reserved before the last write
    uintmax_t start_ = 0, end_ = 0;
    uintmax_t reach_ = 1;  // the largest disk, in times of what the states add to the file
    Disk written_;         // what became of the last one
    int succeeded_ = 0, failed_ = 0;
    int32_t fewest_ = after;  // states that read well afterwards
};

}  // namespace vak::test
