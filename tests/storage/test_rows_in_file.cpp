// Arrays whose extents count rows that never came to the file, as a flush leaves them that was cut off.
#include "refusal.h"
#include "storage_test.h"

// clang-format off
MAY_REFUSE_ONCE(herr_t, H5Dget_chunk_storage_size, (hid_t d, const hsize_t o[], hsize_t* s), (d, o, s))
MAY_REFUSE(hid_t, H5Dget_create_plist, (hid_t d), (d))
MAY_REFUSE(int, H5Pget_chunk, (hid_t p, int n, hsize_t d[]), (p, n, d))
MAY_REFUSE(herr_t, H5Dread, (hid_t d, hid_t t, hid_t m, hid_t f, hid_t x, void* v), (d, t, m, f, x, v))
MAY_REFUSE(herr_t, H5Dset_extent, (hid_t d, const hsize_t e[]), (d, e))
// clang-format on

namespace vak::test {
namespace {

class RowsInFile : public StorageTest {
protected:
    static Access states(hsize_t count, hsize_t start = 0)
    {
        return {
            .dims = {H5S_UNLIMITED, 2, 3}, .count = {count, 2, 3}, .start = {start, 0, 0}, .mode = hyperslab};
    }
    static Access part(hsize_t all, hsize_t count, hsize_t start)
    {
        return {.dims = {all, 2, 3}, .count = {count, 2, 3}, .start = {start, 0, 0}, .mode = hyperslab};
    }

    void append(hsize_t n, int32_t first, uint32_t flags = 0, hsize_t start = 0)
    {
        Access access = states(n, start);
        access.flags = flags;
        access.params = {0, 5};
        EXPECT_EQ(write(numbers<int32_t>(n * 6, first), access), done);
    }

    void remove_values() { EXPECT_GE(H5Ldelete(file, "values", H5P_DEFAULT), 0); }

    // Counts rows that nobody has written.
    void lose_rows(hsize_t counted)
    {
        const hsize_t extents[] = {counted, 2, 3};
        EXPECT_GE(H5Dset_extent(open_object(file, "values"), extents), 0);
    }

    void expect_values(const std::vector<int32_t>& values)
    {
        std::vector<int32_t> found(values.size());
        EXPECT_EQ(read(found, {.dims = {values.size() / 6, 2, 3}}), done);
        EXPECT_EQ(found, values);
    }

    // What one reader gives while a function of HDF5 refuses.
    Outcome read_without(const char* name, hsize_t rows, std::vector<int32_t>& found)
    {
        chosen_ = name;
        const Outcome result = read(found, {.dims = {rows, 2, 3}});
        chosen_.clear();
        return result;
    }
    void begin_routine() override { refused = chosen_; }
    void end_routine() override { refused.clear(); }

    std::string chosen_;
};

TEST_F(RowsInFile, behind_the_last_chunk_are_not_read_as_fill_values)
{
    for (const uint32_t flags : {0U, deflate_integers, shuffle_integers | deflate_integers}) {
        append(3, 1, flags);
        lose_rows(5);
        expect_values(numbers<int32_t>(18, 1));
        std::vector<int32_t> row(6);
        EXPECT_EQ(read(row, part(3, 1, 2)), done);
        EXPECT_EQ(row, numbers<int32_t>(6, 13));
        EXPECT_EQ(read(row, part(5, 1, 3)), not_read(31, "values 2 4 0"));
        std::vector<int32_t> all(30);
        EXPECT_EQ(read(all, {.dims = {5, 2, 3}}), not_read(30, "values 2 4 0"));
        remove_values();
    }
}

TEST_F(RowsInFile, behind_the_last_chunk_give_way_to_what_is_appended)
{
    for (const uint32_t flags : {0U, deflate_integers}) {
        append(3, 1, flags);
        lose_rows(7);
        append(1, 19, flags);
        EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{4, 2, 3}));
        EXPECT_EQ(dataset_values<int32_t>(file, "values"), numbers<int32_t>(24, 1));
        remove_values();
    }
}

TEST_F(RowsInFile, that_were_skipped_count)
{
    append(1, 1);
    append(1, 7, 0, 2);
    lose_rows(6);
    auto values = numbers<int32_t>(6, 1);
    values.resize(18, 0);
    for (int32_t i = 7; i < 13; ++i) values.push_back(i);
    expect_values(values);
}

TEST_F(RowsInFile, of_a_chunk_count_all)
{
    set_chunk_size(4);
    append(6, 1);
    set_chunk_size(1);
    lose_rows(19);
    auto values = numbers<int32_t>(36, 1);
    values.resize(48, 0);
    expect_values(values);
    append(1, 100);
    EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{9, 2, 3}));
}

// As other programs make arrays that they fill later.
TEST_F(RowsInFile, count_all_where_no_row_was_written)
{
    append(1, 1);
    lose_rows(0);
    lose_rows(4);
    expect_values(std::vector<int32_t>(24, 0));
}

// Of such a row only a part may have been written.
TEST_F(RowsInFile, count_all_where_a_row_has_several_chunks)
{
    const hsize_t extents[] = {3, 6}, maximum[] = {H5S_UNLIMITED, 6}, chunk[] = {1, 3};
    const hsize_t start[] = {0, 3}, count[] = {1, 3};
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(list.get(), 2, chunk);
    const Space space(H5Screate_simple(2, extents, maximum)), memory(H5Screate_simple(2, count, nullptr));
    {
        const Dataset made(
            H5Dcreate2(file, "values", H5T_NATIVE_INT32, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
        const std::vector<int32_t> some{1, 2, 3};
        H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start, nullptr, count, nullptr);
        EXPECT_GE(H5Dwrite(made.get(), H5T_NATIVE_INT32, memory.get(), space.get(), H5P_DEFAULT, some.data()),
                  0);
    }
    std::vector<int32_t> found(18, -1);
    EXPECT_EQ(read(found, {.dims = {3, 6}}), done);
    EXPECT_EQ(found, (std::vector<int32_t>{0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(RowsInFile, beyond_counting_do_not_keep_a_reader_waiting)
{
    append(1, 1);
    lose_rows(hsize_t{1} << 40);
    std::vector<int32_t> row(6, -1);
    EXPECT_EQ(read(row, part(2, 1, hsize_t{1} << 39)), done);
    EXPECT_EQ(row, std::vector<int32_t>(6, 0));
}

TEST_F(RowsInFile, are_not_given_up_for_one_lookup_that_fails)
{
    append(3, 1, deflate_integers);
    std::vector<int32_t> found(18);
    EXPECT_EQ(read_without("H5Dget_chunk_storage_size", 3, found), done);
    EXPECT_EQ(found, numbers<int32_t>(18, 1));
}

TEST_F(RowsInFile, that_cannot_be_counted_are_an_error)
{
    append(3, 1);
    lose_rows(5);
    std::vector<int32_t> found(18, -1);
    for (const char* name : {"H5Dget_create_plist", "H5Pget_chunk", "H5Dread"})
        EXPECT_EQ(read_without(name, 3, found), not_read(999, "values 2 4 -1")) << name;
    EXPECT_EQ(found, std::vector<int32_t>(18, -1));
    chosen_ = "H5Dread";
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), not_written(-3999, 999, "values 2 4 4 1 -1"));
    chosen_ = "H5Dset_extent";
    EXPECT_EQ(write(numbers<int32_t>(6), states(1)), not_written(-3100, 100, "values 2 4 4 1 -1"));
    chosen_.clear();
    expect_values(numbers<int32_t>(18, 1));
}

}  // namespace
}  // namespace vak::test
