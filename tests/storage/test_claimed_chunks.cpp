// Small files that claim very large chunks, or very many of them: neither memory nor time is taken for what
// is not there.
#include "damaged_layouts_test.h"
#include "refusal.h"
#include "support/failing_memory.h"
#include "support/memory_limit.h"

// clang-format off
MAY_REFUSE(herr_t, H5Dget_num_chunks, (hid_t d, hid_t s, hsize_t* n), (d, s, n))
MAY_REFUSE(herr_t, H5Dchunk_iter, (hid_t d, hid_t x, H5D_chunk_iter_op_t f, void* p), (d, x, f, p))
MAY_REFUSE_ONCE(herr_t, H5Dget_chunk_storage_size, (hid_t d, const hsize_t o[], hsize_t* s), (d, o, s))
MAY_REFUSE(herr_t, H5Dread, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, void* v), (d, t, m, f, x, v))
// clang-format on

namespace vak::test {

namespace {

// A file of a few kilobytes may claim any number of chunks. Two of these were written.
class ClaimedChunks : public DamagedLayouts {
protected:
    static constexpr hsize_t number = hsize_t{1} << 24;

    void make(hid_t type, void (*set)(hid_t list))
    {
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "list");
        const hsize_t one[] = {1}, written[] = {0, number - 2};
        const int32_t fill = 5, numbers[] = {7, 8};
        H5Pset_chunk(list, 1, one);
        H5Pset_fill_value(list, H5T_NATIVE_INT, &fill);
        set(list);
        const SpaceId space(H5Screate_simple(1, &number, nullptr), "space");
        const SpaceId two(H5Screate_simple(1, std::array<hsize_t, 1>{2}.data(), nullptr), "space");
        const ObjectId dataset(H5Dcreate2(file, "values", type, space, H5P_DEFAULT, list, H5P_DEFAULT),
                               "values");
        H5Sselect_elements(space, H5S_SELECT_SET, 2, written);
        ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, two, space, H5P_DEFAULT, numbers), 0);
    }

    void begin_routine() override { refused = to_refuse; }
    void end_routine() override { refused.clear(); }

    std::string to_refuse;

    // All but the first few.
    static Access most()
    {
        return {.dims = {number}, .count = {number - 9}, .start = {9}, .mode = hyperslab};
    }

    void expect_read_at_once()
    {
        std::vector<int32_t> expected(number, 5), found(number);
        expected[0] = 7;
        expected[number - 2] = 8;
        EXPECT_EQ(read(found, {.dims = {number}}), done);
        EXPECT_TRUE(found == expected);
        expected.erase(expected.begin(), expected.begin() + 9);
        found.assign(number - 9, 0);
        EXPECT_EQ(read(found, most()), done);
        EXPECT_TRUE(found == expected);
    }
};

TEST_F(ClaimedChunks, that_were_never_written_are_read_at_once)
{
    make(H5T_STD_I32LE, [](hid_t l) { H5Pset_deflate(l, 6); });
    expect_read_at_once();
}

TEST_F(ClaimedChunks, without_filters_that_were_never_written_are_read_at_once)
{
    make(H5T_STD_I32LE, [](hid_t) {});
    expect_read_at_once();
}

TEST_F(ClaimedChunks, that_cannot_be_counted_or_listed_are_refused)
{
    std::vector<int32_t> found(number);
    make(H5T_STD_I32LE, [](hid_t l) { H5Pset_deflate(l, 6); });
    for (const char* function : {"H5Dget_num_chunks", "H5Dchunk_iter"}) {
        to_refuse = function;
        EXPECT_EQ(read(found, {.dims = {number}}), refusal) << function;
        EXPECT_EQ(read_values(nullptr, integer_type, 4, {.dims = {number}}), refusal) << function;
    }
}

TEST_F(ClaimedChunks, whose_places_cannot_be_told_are_not_taken_for_absent)
{
    make(H5T_STD_I64LE, [](hid_t l) { H5Pset_deflate(l, 6); });
    const Access last{.dims = {number}, .count = {2}, .start = {number - 2}, .mode = hyperslab};
    std::vector<int64_t> wide(2);
    EXPECT_EQ(read(wide, last), done);
    EXPECT_EQ(wide, (std::vector<int64_t>{8, 5}));
    const auto point = [](hsize_t place) {
        return Access{.dims = {number}, .count = {1}, .start = {place}, .mode = point_list};
    };
    to_refuse = "H5Dread";
    EXPECT_EQ(read(wide, point(number - 1)), not_read(999, "values 2 8 -1"));
    to_refuse.clear();
    to_refuse = "H5Dget_chunk_storage_size";
    EXPECT_EQ(read(wide, point(number - 2)), not_read(999, "values 2 8 -1"));
}

TEST_F(ClaimedChunks, are_listed_whole_or_not_at_all_when_memory_runs_out)
{
    make(H5T_STD_I32LE, [](hid_t l) { H5Pset_deflate(l, 6); });
    std::vector<int32_t> found(number);
    int32_t status = 0;
    const auto read_all = [&] {
        const QuietHdf5 quiet;
        const hsize_t extents[] = {number};
        try {
            status = VAK_H5Dread("values", found.data(), integer_type, 4, extents, 1, nullptr, nullptr,
                                 whole_dataset, file, nullptr, nullptr);
        } catch (const std::bad_alloc&) {
            status = 1;
        }
    };
    long allocation = 0;
    for (; runs_out_at(allocation, read_all); ++allocation) EXPECT_EQ(status, 1) << allocation;
    EXPECT_GT(allocation, 3);
    EXPECT_EQ(status, 0);
}

TEST_F(ClaimedChunks, that_hdf5_would_have_to_convert_are_refused)
{
    make(H5T_STD_I32BE, [](hid_t l) { H5Pset_deflate(l, 6); });
    std::vector<int32_t> found(number);
    EXPECT_EQ(read(found, {.dims = {number}}), refusal);
    EXPECT_EQ(read_values(nullptr, integer_type, 4, {.dims = {number}}), done);
}

TEST_F(ClaimedChunks, without_filters_that_hdf5_would_have_to_convert_are_refused)
{
    make(H5T_STD_I32BE, [](hid_t) {});
    std::vector<int32_t> found(number);
    EXPECT_EQ(read(found, {.dims = {number}}), refusal);
    EXPECT_EQ(read(found, most()), refusal);
    EXPECT_EQ(read(found, {.dims = {number}, .count = {2}, .start = {number - 2}, .mode = hyperslab}), done);
    EXPECT_EQ(found[0], 8);
    EXPECT_EQ(found[1], 5);
}

// A chunk of 2 GiB, of which the dataset has ten values, in a small file. Reading them takes no such memory.
struct Claim {
    const char* name;
    hid_t (*type)();
    void (*set)(hid_t list);
    Bytes stored;  // none: never written
    uint32_t claimed_bytes = 0;
    bool is_read = false;
};

std::ostream& operator<<(std::ostream& stream, const Claim& claim) { return stream << claim.name; }

// Scale-offset by which every value is seven.
const Bytes seven = Bytes("\0\0\0\0\x08\x07", 6) + Bytes(16, '\0');

// clang-format off
const Claim claims[] = {
    {"deflated", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight_deflated},
    {"stored_size", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight_deflated, 0x7FFFFFFF},
    {"shuffled", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_shuffle(l); H5Pset_deflate(l, 6); }, eight_deflated},
    {"scale_offset", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, no_codes},
    {"one_value", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, seven, 0, true},
    {"no_chunk", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, "", 0, true},
    {"foreign_deflated", [] { return H5T_STD_I32BE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight_deflated},
    {"foreign_one_value", [] { return H5T_STD_U32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, seven},
    {"foreign_stored_size", [] { return H5T_STD_I32BE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight_deflated, 0x7FFFFFFF},
};
// clang-format on

class ClaimedMemory : public DamagedLayouts, public testing::WithParamInterface<Claim> {
protected:
    static constexpr hsize_t few = 10;

    void make()
    {
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "list");
        const hsize_t chunk = hsize_t{1} << 29, growing = H5S_UNLIMITED, first = 0;
        const int32_t fill = 7;
        H5Pset_chunk(list, 1, &chunk);
        H5Pset_fill_value(list, H5T_NATIVE_INT, GetParam().stored.empty() ? &fill : nullptr);
        GetParam().set(list);
        const SpaceId space(H5Screate_simple(1, &few, &growing), "space");
        const Bytes& bytes = GetParam().stored;
        const ObjectId dataset(
            H5Dcreate2(file, "values", GetParam().type(), space, H5P_DEFAULT, list, H5P_DEFAULT), "values");
        if (bytes.empty()) return;
        ASSERT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, &first, bytes.size(), bytes.data()), 0);
    }

    bool reads_as_expected()
    {
        std::vector<int32_t> found(few), points(1);
        const Outcome expected = GetParam().is_read ? done : refusal;
        const bool all = read(found, {.dims = {few}}) == expected;
        const bool point =
            read(points, {.dims = {few}, .count = {1}, .start = {3}, .mode = point_list}) == expected;
        return all && point && (!GetParam().is_read || found == std::vector<int32_t>(few, 7));
    }
};

TEST_P(ClaimedMemory, is_not_taken)
{
    make();
    reopen();
    if (GetParam().claimed_bytes != 0) put_chunk_bytes(GetParam().claimed_bytes);
    EXPECT_TRUE(reads_as_expected());
    EXPECT_TRUE(with_memory(size_t{24} << 20, [&] { return reads_as_expected(); }).ended_well);
}

INSTANTIATE_TEST_SUITE_P(All, ClaimedMemory, testing::ValuesIn(claims),
                         [](const auto& claim) { return std::string(claim.param.name); });

}  // namespace

}  // namespace vak::test
