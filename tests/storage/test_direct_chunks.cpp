// Whole datasets chunk by chunk: what plain HDF5 reads of them, and what they make of files of plain HDF5.
#include <cmath>
#include <limits>

#include "direct_chunks_test.h"

namespace vak::test {
namespace {

struct Form {
    uint32_t flags;
    Dims dims;
};

const std::vector<Form> forms = {
    {deflated, {1000}},   {shuffled | deflated, {50, 30}},
    {scaled, {17, 3, 5}}, {scaled | deflated, {1000}},
    {255, {9, 1, 70}},    {shuffled, {8}},
};

template <class T>
class WholeDatasets : public DirectChunks {
};
using Types = testing::Types<int32_t, int64_t, float, double>;
TYPED_TEST_SUITE(WholeDatasets, Types);

size_t product(const Dims& dims)
{
    size_t count = 1;
    for (const hsize_t d : dims) count *= d;
    return count;
}

TYPED_TEST(WholeDatasets, are_stored_as_hdf5_stores_them)
{
    using T = TypeParam;
    for (const Form& form : forms) {
        const Access access{.dims = form.dims, .flags = form.flags, .params = {2, 6}};
        const auto values = spread<T>(product(form.dims));
        Access a = access;
        EXPECT_EQ(this->write(values, a), done);
        this->make_plain_twin("twin", values, form.dims);
        const auto read = this->template plainly_read<T>(values.size());
        EXPECT_EQ(read, this->template plainly_read<T>(values.size(), "twin"));
        EXPECT_EQ(this->template read_again<T>(access, values.size()), read);
        Access of_twin = access;
        of_twin.name = "twin";
        EXPECT_EQ(this->template read_again<T>(of_twin, values.size()), read);
        const Dims origin(form.dims.size());
        if ((form.flags & deflated) == 0) {
            EXPECT_EQ(this->chunk_at(origin), this->chunk_at(origin, "twin"));
        }
        for (const char* name : {"values", "twin"}) H5Ldelete(this->file, name, H5P_DEFAULT);
    }
}

TYPED_TEST(WholeDatasets, hold_every_value_of_their_type)
{
    using T = TypeParam;
    using limits = std::numeric_limits<T>;
    auto values = spread<T>(1000);
    values[3] = limits::lowest();
    values[4] = limits::max();
    if (limits::has_infinity) {
        values[500] = limits::infinity();
        values[501] = -limits::infinity();
        values[502] = limits::denorm_min();
    }
    for (const uint32_t flags : {deflated, scaled, scaled | deflated, uint32_t{255}}) {
        const Access access{.dims = {1000}, .flags = flags, .params = {3, 6}};
        Access a = access;
        EXPECT_EQ(this->write(values, a), done);
        EXPECT_EQ(this->template plainly_read<T>(1000), values) << flags;
        EXPECT_EQ(this->template read_again<T>(access, 1000), values);
        EXPECT_EQ(this->mask_at({0}), (flags & scaled) != 0 ? 1U : 0U);
        // Rewritten with values that can be packed, and back.
        a = access;
        EXPECT_EQ(this->write(spread<T>(1000), a), done);
        EXPECT_EQ(this->template plainly_read<T>(1000), spread<T>(1000));
        EXPECT_EQ(this->mask_at({0}), 0U);
        a = access;
        EXPECT_EQ(this->write(values, a), done);
        EXPECT_EQ(this->template plainly_read<T>(1000), values);
        H5Ldelete(this->file, "values", H5P_DEFAULT);
    }
}

TEST_F(DirectChunks, a_value_that_is_not_a_number_stays_one)
{
    std::vector<float> values(1000, 1.5F);
    values[0] = values[999] = std::nanf("");
    const Access access{.dims = {1000}, .flags = 255, .params = {3, 6}};
    EXPECT_EQ(write(values, Access(access)), done);
    for (const auto& read : {plainly_read<float>(1000), read_again<float>(access, 1000)}) {
        ASSERT_EQ(read.size(), 1000U);
        EXPECT_TRUE(std::isnan(read[0]) && std::isnan(read[999]));
        EXPECT_EQ(std::vector<float>(read.begin() + 1, read.end() - 1), std::vector<float>(998, 1.5F));
    }
}

TEST_F(DirectChunks, texts_pass_through_their_filters)
{
    std::string values;
    for (int i = 0; i < 200; ++i) values += padded("node " + std::to_string(i), 11);
    EXPECT_EQ(write(values, 11, {.dims = {200}, .flags = shuffled | deflated, .params = {0, 6}}), done);
    reopen();
    std::string read_back(values.size(), '?');
    {
        const auto dataset = open_dataset(file, "values");
        const TypeId type(H5Dget_type(dataset), "type");
        ASSERT_GE(H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, read_back.data()), 0);
    }
    EXPECT_EQ(read_back, values);
    std::string longer(200 * 15, '?');
    EXPECT_EQ(read(longer, 15, {.dims = {200}}), done);
    EXPECT_EQ(longer.substr(15, 15), padded("node 1", 15));
}

TEST_F(DirectChunks, chunks_of_full_precision_by_others_are_read_in_every_mode)
{
    auto values = spread<float>(1000);
    values[10] = HUGE_VALF;
    make_dataset<float>(file, "values", {.factor = 3, .shuffle = true, .deflate = 6}, 1000);
    ASSERT_TRUE(write_by_hdf5(file, "values", values));
    ASSERT_TRUE(plainly_read<float>(1000).empty()) << "HDF5 reads it, our own reading is not needed";
    EXPECT_EQ(read_again<float>({.dims = {1000}}, 1000), values);
    const std::vector<float> slab(values.begin() + 8, values.begin() + 12);
    EXPECT_EQ(read_again<float>({.dims = {1000}, .count = {4}, .start = {8}, .mode = hyperslab}, 4), slab);
    EXPECT_EQ(read_again<float>({.dims = {1000}, .count = {2}, .start = {10, 999}, .mode = point_list}, 2),
              (std::vector<float>{values[10], values[999]}));
}

TEST_F(DirectChunks, a_part_of_such_a_chunk_can_be_rewritten)
{
    std::vector<int32_t> values(1000, 5);
    values[0] = std::numeric_limits<int32_t>::lowest();
    values[1] = std::numeric_limits<int32_t>::max();
    make_dataset<int32_t>(file, "values", {.deflate = 6}, 1000);
    ASSERT_TRUE(write_by_hdf5(file, "values", values));
    EXPECT_EQ(write(numbers<int32_t>(3), {.dims = {1000}, .count = {3}, .start = {7}, .mode = hyperslab}),
              done);
    for (size_t i = 0; i < 3; ++i) values[7 + i] = static_cast<int32_t>(i);
    EXPECT_EQ(plainly_read<int32_t>(1000), values);
}

TEST_F(DirectChunks, a_chunk_that_keeps_its_size_but_not_its_mask_is_read_by_the_new_one)
{
    // 176 codes of 31 bits and their header are as long as 176 integers.
    std::vector<int32_t> unpackable(176, 3);
    unpackable[1] = std::numeric_limits<int32_t>::max();
    unpackable[2] = std::numeric_limits<int32_t>::lowest();
    std::vector<int32_t> packable(176, 3);
    packable[1] = (1 << 30) + 5;
    const Access access{.dims = {176}, .flags = scaled};
    for (const auto& values : {unpackable, packable, unpackable, packable}) {
        EXPECT_EQ(write(values, Access(access)), done);
        EXPECT_EQ(plainly_read<int32_t>(176), values);
        EXPECT_EQ(chunk_at({0}).bytes.size(), 704U);
        EXPECT_EQ(read_again<int32_t>(access, 176), values);
    }
}

TEST_F(DirectChunks, who_has_the_dataset_open_reads_what_was_written)
{
    std::vector<float> values(1000, 1.5F);
    const Access access{.dims = {1000}, .flags = scaled | deflated, .params = {3, 6}};
    EXPECT_EQ(write(values, Access(access)), done);
    {
        const auto held = open_dataset(file, "values");
        values[17] = HUGE_VALF;
        EXPECT_EQ(write(values, Access(access)), done);
        std::vector<float> found(1000);
        ASSERT_GE(H5Dread(held, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
        EXPECT_EQ(found, values);
        values[17] = 2;
        EXPECT_EQ(write(values, Access(access)), done);
        ASSERT_GE(H5Dread(held, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
        EXPECT_EQ(found, values);
    }
    EXPECT_EQ(plainly_read<float>(1000), values);
}

TEST_F(DirectChunks, what_hdf5_still_holds_in_its_cache_is_seen)
{
    auto values = spread<double>(1000);
    const Access access{.dims = {1000}, .flags = shuffled | deflated, .params = {0, 6}};
    EXPECT_EQ(write(std::vector<double>(1000), Access(access)), done);
    const auto held = open_dataset(file, "values");
    ASSERT_GE(H5Dwrite(held, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    EXPECT_EQ(read_again<double>(access, 1000), values);
    ASSERT_GE(H5Dwrite(held, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    values[5] = 77;
    EXPECT_EQ(write(std::vector<double>{77}, {.dims = {1000}, .count = {1}, .start = {5}, .mode = hyperslab}),
              done);
    std::vector<double> found(1000);
    ASSERT_GE(H5Dread(held, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, found.data()), 0);
    EXPECT_EQ(found, values);
}

TEST_F(DirectChunks, a_chunk_cut_short_is_an_error_and_not_other_values)
{
    for (const uint32_t flags : {deflated, scaled, shuffled}) {
        EXPECT_EQ(write(spread<float>(1000), {.dims = {1000}, .flags = flags, .params = {2, 6}}), done);
        auto chunk = chunk_at({0});
        chunk.bytes.resize(chunk.bytes.size() - 2);
        ASSERT_TRUE(store_chunk(file, "values", chunk));
        reopen();
        std::vector<float> values(1000);
        EXPECT_EQ(read(values, {.dims = {1000}}), not_read(999, "values 3 4 -1")) << flags;
        H5Ldelete(file, "values", H5P_DEFAULT);
    }
}

}  // namespace
}  // namespace vak::test
