// The eraser on an HDF5 that refuses a step: what it says, and that the states which should stay are there.
#include "storage/refusal.h"
#include "tools/eraser_test.h"

namespace vak::test {

// The call of the refused function that is refused, from 0; calls before it are counted down.
int refused_call = 0;
// Only calls that name this link, where it is not empty.
std::string refused_link;

bool refuses_now(const char* function, const char* link)
{
    if (!refuses(function) || (!refused_link.empty() && refused_link != link)) return false;
    if (refused_call-- > 0) return false;
    refused.clear();
    return true;
}

}  // namespace vak::test

extern "C" herr_t H5Ldelete(hid_t at, const char* name, hid_t access)
{
    static const auto original = vak::test::next<herr_t (*)(hid_t, const char*, hid_t)>("H5Ldelete");
    return vak::test::refuses_now("H5Ldelete", name) ? -1 : original(at, name, access);
}
extern "C" herr_t H5Lmove(hid_t from, const char* name, hid_t to, const char* other, hid_t create,
                          hid_t access)
{
    static const auto original =
        vak::test::next<herr_t (*)(hid_t, const char*, hid_t, const char*, hid_t, hid_t)>("H5Lmove");
    return vak::test::refuses_now("H5Lmove", name) ? -1 : original(from, name, to, other, create, access);
}
extern "C" hid_t H5Dcreate2(hid_t at, const char* name, hid_t type, hid_t space, hid_t links, hid_t create,
                            hid_t access)
{
    static const auto original =
        vak::test::next<hid_t (*)(hid_t, const char*, hid_t, hid_t, hid_t, hid_t, hid_t)>("H5Dcreate2");
    return vak::test::refuses_now("H5Dcreate2", name)
               ? -1
               : original(at, name, type, space, links, create, access);
}
extern "C" herr_t H5Dwrite_chunk(hid_t set, hid_t transfer, uint32_t mask, const hsize_t* at, size_t size,
                                 const void* bytes)
{
    static const auto original =
        vak::test::next<herr_t (*)(hid_t, hid_t, uint32_t, const hsize_t*, size_t, const void*)>(
            "H5Dwrite_chunk");
    return vak::test::refuses_now("H5Dwrite_chunk", "") ? -1 : original(set, transfer, mask, at, size, bytes);
}
extern "C" herr_t H5Dread_chunk(hid_t set, hid_t transfer, const hsize_t* at, uint32_t* mask, void* bytes)
{
    static const auto original =
        vak::test::next<herr_t (*)(hid_t, hid_t, const hsize_t*, uint32_t*, void*)>("H5Dread_chunk");
    return vak::test::refuses_now("H5Dread_chunk", "") ? -1 : original(set, transfer, at, mask, bytes);
}
extern "C" herr_t H5Fflush(hid_t object, H5F_scope_t scope)
{
    static const auto original = vak::test::next<herr_t (*)(hid_t, H5F_scope_t)>("H5Fflush");
    return vak::test::refuses_now("H5Fflush", "") ? -1 : original(object, scope);
}

namespace vak::test {

namespace {

class RefusedErasing : public EraserTest {
protected:
    void SetUp() override
    {
        EraserTest::SetUp();
        write_frame();
        write_states(1, 2);
    }
    void TearDown() override
    {
        refused.clear();
        EraserTest::TearDown();
    }
    Result erase_refusing(const char* function, const std::string& link = "", int call = 0)
    {
        refused = function;
        refused_link = link;
        refused_call = call;
        Result result = erase({1});
        was_refused = refused.empty();
        refused.clear();
        return result;
    }
    std::string not_erased(const std::string& path) const
    {
        return " erase of block \"" + path + "\" failed\n";
    }
    std::string not_written(int32_t status) const
    {
        return "\nVAK ERROR writing \"multientityresults\" block - error code = " + std::to_string(status) +
               "\n";
    }
    // The first write of the eraser is to the file's own series.
    MultiEntityResults write_series()
    {
        const auto s = series({1, 2, 3});
        EXPECT_EQ(write(s), success);
        return s;
    }

    bool was_refused = false;
};
INSTANTIATE_TEST_SUITE_P(, RefusedErasing, both_families, family_name);

TEST_P(RefusedErasing, block_that_cannot_be_deleted_is_told_and_stays)
{
    const std::string block = listed(state(2));
    EXPECT_EQ(erase_refusing("H5Ldelete", block),
              failure(-1, frame_warnings() + " H5Ldelete of block \"" + block + "\" failed \n" +
                              not_erased(block)));
    auto found = emptied(state(2));
    EXPECT_EQ(read(found, 2), status(1000));
    EXPECT_EQ(erase({1}), erased());
    EXPECT_FALSE(has(state(2).path()));
}

TEST_P(RefusedErasing, group_that_cannot_be_deleted_is_told)
{
    const std::string group = "singlestate/state000000000002";
    EXPECT_EQ(erase_refusing("H5Ldelete", group),
              failure(-1, frame_warnings() + " H5Ldelete of group \"" + group + "\" failed \n" +
                              not_erased(listed(state(2)))));
    EXPECT_FALSE(has(state(2).path()));
    EXPECT_TRUE(has(group));
    EXPECT_EQ(erase({1}), erased());
}

TEST_P(RefusedErasing, series_that_cannot_be_deleted_is_told_and_stays)
{
    const auto s = series({7, 8});
    EXPECT_EQ(write(s), success);
    EXPECT_EQ(erase_refusing("H5Ldelete", listed(s)),
              failure(-1, frame_warnings() + " H5Ldelete of block \"" + listed(s) + "\" failed \n" +
                              not_erased(listed(s))));
    expect_series(s);
}

TEST_P(RefusedErasing, series_that_cannot_be_written_is_told_and_stays)
{
    const auto s = write_series();
    EXPECT_EQ(erase_refusing("H5Dcreate2", "res states being rewritten"),
              failure(-2190, frame_warnings() + not_written(-2190)));
    expect_series(s);
    EXPECT_EQ(erase_refusing("H5Dwrite_chunk"), failure(-3999, frame_warnings() + not_written(-3999)));
    expect_series(s);
    EXPECT_THAT(stored(s), testing::Not(testing::HasSubstr("states being")));
    EXPECT_EQ(erase({1}), erased());
    expect_series(only(s, {0}));
}

// When the states are checked, and again when they are copied.
TEST_P(RefusedErasing, chunk_that_cannot_be_read_is_told_and_the_series_stays)
{
    const auto s = write_series();
    int call = 0;
    for (;; ++call) {
        const Result result = erase_refusing("H5Dread_chunk", "", call);
        if (!was_refused) break;
        EXPECT_EQ(result.ierr, -6999) << call;
        EXPECT_EQ(result.output.out, "") << call;
        EXPECT_THAT(result.output.err, testing::StartsWith(frame_warnings())) << call;
        EXPECT_THAT(result.output.err, testing::HasSubstr("error code = -6999")) << call;
        expect_series(s);
        EXPECT_THAT(stored(s), testing::Not(testing::HasSubstr("states being"))) << call;
    }
    EXPECT_GT(call, 0);
    expect_series(only(s, {0}));
}

// Between the exchange of the first dataset and that of the last the block belongs to neither side.
TEST_P(RefusedErasing, exchange_that_fails_at_any_step_leaves_the_series_as_it_was)
{
    const auto s = write_series();
    int call = 0;
    for (;; ++call) {
        const Result result = erase_refusing("H5Lmove", "", call);
        if (!was_refused) break;
        EXPECT_EQ(result, failure(-1, frame_warnings() + not_written(-1))) << call;
        expect_series(s);
        EXPECT_THAT(stored(s), testing::Not(testing::HasSubstr("states being"))) << call;
    }
    EXPECT_EQ(call, 6);  // two names for each of three datasets
    expect_series(only(s, {0}));
}

TEST_P(RefusedErasing, flush_that_fails_ends_the_run_and_whatever_is_there_is_whole)
{
    const auto s = write_series();
    int call = 0;
    for (;; ++call) {
        const Result result = erase_refusing("H5Fflush", "", call);
        if (!was_refused) break;
        EXPECT_EQ(result.ierr, -1) << call;
        auto found = emptied(s);
        EXPECT_EQ(read(found, 1), status(1050));
        expect_series(found.nstate == 3 ? s : only(s, {0}));
        EXPECT_EQ(erase({9}).ierr, 0);
        if (found.nstate != 3) {
            EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
            write_series();
        }
    }
    EXPECT_GE(call, 2);
}

}  // namespace

}  // namespace vak::test
