// A disk that fills while filtered chunks are packed anew: chunks of four states that are appended one by
// one, and whole ones that are rewritten.
#include "full_disk.h"
#include "samples/elementresults.h"

namespace vak::test {

namespace {

struct Packing {
    std::string name;
    int32_t flags;
    int32_t digits = 2, level = 1;
    int32_t nent = many;
};

const std::vector<Packing> packings = {{.name = "deflated", .flags = 2},
                                       {.name = "shuffled_and_deflated", .flags = 2 + 16},
                                       {.name = "scaled", .flags = 64 + 128},
                                       {.name = "scaled_and_deflated", .flags = 64 + 128 + 1 + 2},
                                       {.name = "small", .flags = 2 + 16, .nent = 100}};

// Values that no filter rounds; those of later states take more room.
template <class S>
S packed_values(S s, const Packing& packing, int32_t k)
{
    const auto nent = static_cast<size_t>(packing.nent);
    s.tables.ids.assign(nent, 7);
    s.tables.fid.assign(nent, 8);
    s.tables.weight.assign(nent, 1);
    s.index.indexident.clear();
    s.index.indexval.clear();
    s.flags = packing.flags;
    s.params[0] = packing.digits;
    s.params[1] = packing.level;
    s.res.resize(nent * 2);
    for (size_t i = 0; i < s.res.size(); ++i)
        s.res[i] = static_cast<float>(k + 1) + static_cast<float>(i * 7919 % (100U << k)) / 4;
    s.index.nindex = 8;
    for (int32_t i = 0; i < 8; ++i) {
        s.index.indexident.push_back(k * i);
        s.index.indexval.push_back(static_cast<float>(k + i) / 3);
    }
    return s;
}

MultiEntityResults series_state(Family family, const Packing& packing, int32_t k)
{
    MultiEntityResults s;
    s.family = family;
    s.nent = packing.nent;
    return packed_values(s, packing, k);
}

std::string name_of(const std::string& kind, const Packing& packing, Family family)
{
    return kind + "_" + packing.name + (family == Family::legacy ? "_legacy" : "_current");
}

StateKind series_kind(Family family, const Packing& packing)
{
    return {
        name_of("series", packing, family),
        [=](int32_t k) { return series_state(family, packing, k).path(); },
        [=](hid_t file, int32_t k) {
            const int32_t four = 4, one = 1;
            VAK_SET_CHUNK_SIZE(&four);
            const int32_t ierr =
                series_state(family, packing, k)
                    .write_chosen(file, -1, {.mode = 1, .count = {1, packing.nent, 2}, .start = {0, 0, 0}});
            VAK_SET_CHUNK_SIZE(&one);
            return ierr;
        },
        [=](hid_t group, int32_t k) {
            const auto expected = series_state(family, packing, k);
            auto found = emptied(expected);
            const int32_t ierr =
                found.read_chosen(group, 2, {.mode = 1, .count = {1, packing.nent, 2}, .start = {k, 0, 0}});
            if (ierr >= 0 && found.index.indexval != expected.index.indexval) return -1;
            return judged(expected, found, ierr);
        }};
}

constexpr int32_t versions_before = 3, versions = 6;

// One block, of which every call writes the next version.
ElementResults version(Family family, const Packing& packing, int32_t k)
{
    ElementResults s;
    s.family = family;
    s.nele = packing.nent / 2;
    s.state = 0;
    return packed_values(s, packing, k);
}

// "State" k is there when that version or a later one is. Those before the last good one must not be.
StateKind rewritten_kind(Family family, const Packing& packing)
{
    return {name_of("rewritten", packing, family),
            [=](int32_t k) { return version(family, packing, k).path(); },
            [=](hid_t file, int32_t k) { return version(family, packing, k).write(file); },
            [=](hid_t group, int32_t k) {
                auto found = emptied(version(family, packing, 0));
                if (found.read(group, 2) < 0) return 0;
                for (int32_t v = versions_before - 1; v < versions; ++v)
                    if (found.res == version(family, packing, v).res) return v >= k ? 1 : 0;
                return -1;
            }};
}

class FullDiskChunks : public FullDisk {
protected:
    FullDiskChunks() { reach_ = 2; }

    // All disks take many minutes.
    static bool every_disk() { return std::getenv("VAK_TEST_EVERY_DISK") != nullptr; }
};

TEST_P(FullDiskChunks, loses_no_state_that_was_written_before)
{
    try_limits(every_disk() ? 200 : 10, [](uintmax_t limit) { disk().end = static_cast<off_t>(limit); });
    EXPECT_GE(failed_, 4);
    EXPECT_GE(succeeded_, 1);
    EXPECT_GE(fewest_, before);
}

// Some writes, each of which fails on a disk of its own.
TEST_P(FullDiskChunks, a_write_that_fails_loses_no_state_that_was_written_before)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    try_disk([] {});
    const long writes = written_.writes;
    for (const Fault fault :
         {Fault::io_error_once, Fault::torn_once, Fault::full_from_here, Fault::no_more_blocks})
        for (long at = 0; at < writes; at += every_disk() ? 1 : writes / 5 + 1) {
            SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault) << " at write " << at);
            try_disk([&] { disk().fail(fault, at); });
        }
    EXPECT_GE(failed_, 4);
    EXPECT_GE(fewest_, before);
}

// A chunk that was packed anew may be lost until a flush has told its place; it never reads as another.
TEST_P(FullDiskChunks, a_kill_at_a_write_leaves_no_other_values)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    try_disk([] {});
    const long writes = written_.writes;
    for (long at = 0; at < writes; at += every_disk() ? 1 : writes / 7 + 1) {
        SCOPED_TRACE(testing::Message() << "write " << at);
        try_disk([&] { disk().fail(Fault::killed, at); });
    }
    EXPECT_GE(failed_, 3);
}

// The first states were flushed when their file was closed.
TEST_P(FullDiskChunks, a_kill_after_a_later_call_loses_no_state_that_was_flushed)
{
    ASSERT_NO_FATAL_FAILURE(begin());
    for (int32_t last = before; last < after; ++last)
        try_disk([&] {
            const vak_id group = open(path("cut.h5"), 9);
            for (int32_t k = before; k <= last; ++k) GetParam().append(group, k);
            _exit(1);
        });
    EXPECT_GE(fewest_, before);
}

std::vector<StateKind> kinds()
{
    std::vector<StateKind> all;
    for (const Family family : {Family::current, Family::legacy})
        for (const Packing& packing : packings) {
            all.push_back(series_kind(family, packing));
            all.push_back(rewritten_kind(family, packing));
        }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Chunks, FullDiskChunks, testing::ValuesIn(kinds()),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace

}  // namespace vak::test
