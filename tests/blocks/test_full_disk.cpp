// A disk that fills while states are appended: told by the call or by VAK_CLOSE, and never read as other
// values.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>

#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "support/block_test.h"
#include "support/faults.h"

namespace vak::test {

namespace {

// State k, written and read through the exported routines.
struct StateKind {
    std::string name;
    std::function<std::string(int32_t k)> path;
    std::function<int32_t(hid_t file, int32_t k)> append;
    // 1 the values of that state, 0 an error, -1 other values.
    std::function<int32_t(hid_t group, int32_t k)> read;
    bool shares_chunks = false;  // with states that were written before
};

std::ostream& operator<<(std::ostream& stream, const StateKind& kind) { return stream << kind.name; }

constexpr int32_t many = 3000;

const std::vector<int32_t>& values_of(const MultiActivFlags& s) { return s.status; }
const std::vector<float>& values_of(const MultiElementResults& s) { return s.res; }
const std::vector<float>& values_of(const MultiEntityResults& s) { return s.res; }
const std::vector<float>& values_of(const EntityResults& s) { return s.res; }

template <class S>
int32_t judged(const S& expected, const S& found, int32_t ierr)
{
    if (ierr < 0) return 0;
    const bool same =
        values_of(found) == values_of(expected) && found.index.indexident == expected.index.indexident;
    return same ? 1 : -1;
}

// Kinds that take and give one state with each call.
template <class S>
StateKind one_state_kind(const std::string& name, Family family, S (*state)(Family, int32_t))
{
    return {name + (family == Family::legacy ? "_legacy" : "_current"),
            [=](int32_t k) { return state(family, k).path(); },
            [=](hid_t file, int32_t k) { return state(family, k).write(file); },
            [=](hid_t group, int32_t k) {
                const S expected = state(family, k);
                S found = emptied(expected);
                if constexpr (requires { found.ipos; }) found.ipos = k;
                const int32_t ierr = found.read(group, 2);
                return judged(expected, found, ierr);
            }};
}

MultiActivFlags flags_state(Family family, int32_t k)
{
    MultiActivFlags s;
    s.family = family;
    s.nent = many;
    s.entid.assign(many, 7);
    s.status.assign(many, k + 1);
    s.index.indexident = {k, k};
    return s;
}

MultiElementResults elements_state(Family family, int32_t k)
{
    MultiElementResults s;
    s.family = family;
    s.nele = many;
    s.tables.ids.assign(many, 7);
    s.tables.fid.assign(many, 8);
    s.tables.weight.assign(many, 1);
    s.res.assign(many * 4, static_cast<float>(k + 1));
    s.index.indexident = {k, k};
    return s;
}

MultiEntityResults entities_state(Family family, int32_t k)
{
    MultiEntityResults s;
    s.family = family;
    s.nent = many;
    s.tables.ids.assign(many, 7);
    s.tables.fid.assign(many, 8);
    s.tables.weight.assign(many, 1);
    s.res.assign(many * 2, static_cast<float>(k + 1));
    s.index.indexident = {k, k};
    return s;
}

// A block of its own for each state.
EntityResults single_state(Family family, int32_t k)
{
    EntityResults s;
    s.family = family;
    s.state = k;
    s.nent = many;
    s.tables.ids.assign(many, 7);
    s.tables.fid.assign(many, 8);
    s.tables.weight.assign(many, 1);
    s.res.assign(many * 2, static_cast<float>(k + 1));
    s.index.indexident = {k, k};
    return s;
}

StateKind entities_kind(Family family)
{
    return {std::string("entities") + (family == Family::legacy ? "_legacy" : "_current"),
            [=](int32_t k) { return entities_state(family, k).path(); },
            [=](hid_t file, int32_t k) {
                return entities_state(family, k).write_chosen(
                    file, -1, {.mode = 1, .count = {1, many, 2}, .start = {0, 0, 0}});
            },
            [=](hid_t group, int32_t k) {
                const auto expected = entities_state(family, k);
                auto found = emptied(expected);
                const int32_t ierr =
                    found.read_chosen(group, 2, {.mode = 1, .count = {1, many, 2}, .start = {k, 0, 0}});
                return judged(expected, found, ierr);
            }};
}

// Several states in a chunk, which each call changes and, as its length changes, moves: they share its fate.
MultiEntityResults filtered_state(Family family, int32_t k)
{
    MultiEntityResults s = entities_state(family, k);
    s.flags = 2 + 16;
    s.params[1] = 1;
    for (size_t i = 0; i < s.res.size(); ++i) s.res[i] += static_cast<float>(i * 7919 % 1000);
    return s;
}

StateKind filtered_kind(Family family)
{
    StateKind kind = entities_kind(family);
    kind.name = std::string("filtered") + (family == Family::legacy ? "_legacy" : "_current");
    kind.shares_chunks = true;
    kind.append = [=](hid_t file, int32_t k) {
        const int32_t four = 4, one = 1;
        VAK_SET_CHUNK_SIZE(&four);
        const int32_t ierr = filtered_state(family, k).write_chosen(
            file, -1, {.mode = 1, .count = {1, many, 2}, .start = {0, 0, 0}});
        VAK_SET_CHUNK_SIZE(&one);
        return ierr;
    };
    kind.read = [=](hid_t group, int32_t k) {
        const auto expected = filtered_state(family, k);
        auto found = emptied(expected);
        const int32_t ierr =
            found.read_chosen(group, 2, {.mode = 1, .count = {1, many, 2}, .start = {k, 0, 0}});
        return judged(expected, found, ierr);
    };
    return kind;
}

class FullDisk : public LibraryTest, public testing::WithParamInterface<StateKind> {
protected:
    static constexpr int32_t before = 3, after = 6;

    static vak_id open(const std::string& name, int32_t option)
    {
        const auto length = static_cast<int32_t>(name.size());
        const int32_t none = 0;
        vak_id group = H5I_INVALID_HID;
        int32_t ierr = 0;
        VAK_OPEN(name.data(), &length, "", &none, "", &none, &group, &none, &option, &ierr);
        return ierr == 0 ? group : H5I_INVALID_HID;
    }
    static int32_t close(vak_id group)
    {
        int32_t ierr = 0;
        VAK_CLOSE(&group, &ierr);
        return ierr;
    }

    // Whether every call succeeded.
    static bool append(vak_id group, int32_t first, int32_t end)
    {
        int32_t ierr = 0;
        for (int32_t k = first; k < end && ierr == 0; ++k) ierr = GetParam().append(group, k);
        return close(group) == 0 && ierr == 0;
    }

    // The same in a process of its own, under the limit that `set_limit` sets.
    static bool append_under(const std::function<void()>& set_limit, const std::string& name)
    {
        const pid_t child = fork();
        if (child == 0) {
            set_limit();
            const vak_id group = open(name, 9);
            _exit(group >= 0 && append(group, before, after) ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        disk().mend();
        EXPECT_TRUE(WIFEXITED(status)) << "the process died";
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    // How many of the states read as they were written; other values fail the test.
    int32_t good_states(const std::string& name)
    {
        const vak_id group = open(name, 10);
        if (group < 0) return 0;
        int32_t good = 0;
        for (int32_t k = 0; k < after; ++k) {
            const hid_t block =
                quietly([&] { return H5Gopen2(group, GetParam().path(k).c_str(), H5P_DEFAULT); });
            const int32_t judgement = block < 0 ? 0 : GetParam().read(block, k);
            EXPECT_NE(judgement, -1) << "state " << k << " reads as something else";
            good += judgement;
            if (block >= 0) H5Gclose(block);
        }
        close(group);
        return good;
    }

    // Appends to the same file under many limits.
    void try_limits(uintmax_t number, const std::function<void(uintmax_t)>& set_limit)
    {
        const std::string first = path("first.h5"), whole = path("whole.h5"), cut = path("cut.h5");
        ASSERT_TRUE(append(open(first, 8), 0, before));
        std::filesystem::copy_file(first, whole);
        ASSERT_TRUE(append(open(whole, 9), before, after));
        ASSERT_EQ(good_states(whole), after);
        const uintmax_t start = std::filesystem::file_size(first), end = std::filesystem::file_size(whole);
        for (uintmax_t i = 0; i <= number; ++i) {
            const uintmax_t limit = start + (end - start) * i / number;
            SCOPED_TRACE(limit);
            std::filesystem::copy_file(first, cut, std::filesystem::copy_options::overwrite_existing);
            bool succeeded = false;
            int32_t good = 0;
            captured([&] {
                succeeded = append_under([&] { set_limit(limit); }, cut);
                good = good_states(cut);
            });
            EXPECT_TRUE(!succeeded || good == after) << good << " good states";
            (succeeded ? succeeded_ : failed_) += 1;
            fewest_ = std::min(fewest_, good);
        }
    }

    int succeeded_ = 0, failed_ = 0;
    int32_t fewest_ = after;  // states that read well afterwards
};

TEST_P(FullDisk, is_reported_and_loses_no_state_that_was_appended_before)
{
    try_limits(12, [](uintmax_t limit) { disk().end = static_cast<off_t>(limit); });
    EXPECT_GE(failed_, 8);
    EXPECT_GE(succeeded_, 1);
    EXPECT_GE(fewest_, GetParam().shares_chunks ? 0 : before);
}

// Here HDF5 cannot even give the file the length that its header tells, so that it may not open again.
TEST_P(FullDisk, limit_to_the_length_of_a_file_is_reported_and_gives_no_other_values)
{
    try_limits(4, [](uintmax_t limit) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit length{limit, limit};
        setrlimit(RLIMIT_FSIZE, &length);
    });
    EXPECT_GE(failed_, 3);
    EXPECT_GE(succeeded_, 1);
}

INSTANTIATE_TEST_SUITE_P(States, FullDisk,
                         testing::Values(one_state_kind("flags", Family::current, flags_state),
                                         one_state_kind("flags", Family::legacy, flags_state),
                                         one_state_kind("elements", Family::current, elements_state),
                                         one_state_kind("elements", Family::legacy, elements_state),
                                         entities_kind(Family::current), entities_kind(Family::legacy),
                                         filtered_kind(Family::current), filtered_kind(Family::legacy),
                                         one_state_kind("single", Family::current, single_state),
                                         one_state_kind("single", Family::legacy, single_state)),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace

}  // namespace vak::test
