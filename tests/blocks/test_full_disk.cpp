// A disk that fills while states are appended: told by the call or by VAK_CLOSE, and never read as other
// values.
#include <sys/resource.h>

#include <csignal>

#include "full_disk.h"

namespace vak::test {

namespace {

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

TEST_P(FullDisk, is_reported_and_loses_no_state_that_was_appended_before)
{
    try_limits(12, [](uintmax_t limit) { disk().end = static_cast<off_t>(limit); });
    EXPECT_GE(failed_, 8);
    EXPECT_GE(succeeded_, 1);
    EXPECT_GE(fewest_, before);
}

// What has its place in the file can still be written, so that nothing is left half written.
TEST_P(FullDisk, without_more_blocks_from_any_write_on_loses_no_state_that_was_appended_before)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    try_disk([] {});
    const long writes = written_.writes;
    for (long at = 0; at < writes; at += writes / 8 + 1) {
        SCOPED_TRACE(at);
        try_disk([&] { disk().fail(Fault::no_more_blocks, at); });
    }
    EXPECT_GE(failed_, 1);
    EXPECT_GE(fewest_, before);
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
                                         one_state_kind("single", Family::current, single_state),
                                         one_state_kind("single", Family::legacy, single_state)),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace

}  // namespace vak::test
