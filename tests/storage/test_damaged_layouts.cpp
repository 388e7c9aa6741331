// Files in which the sizes of a dataset's storage are damaged: what HDF5 has in memory for it is then smaller
// or larger than what is read from it. Nothing is read or written beside it, and values are right or refused.
// (The sanitizers watch HDF5's copies too.)
#include "damaged_layouts_test.h"

namespace vak::test {

namespace {

TEST_F(DamagedLayouts, element_smaller_than_its_type_is_read_from_where_it_stands)
{
    write_growing();
    put_element_size(1);
    expect_right_in_every_way();
}

TEST_F(DamagedLayouts, element_larger_than_its_type_is_refused)
{
    write_growing();
    put_element_size(4000);
    std::vector<int32_t> found(states * width);
    EXPECT_EQ(read(found, {.dims = {states, width}}), refusal);
}

TEST_F(DamagedLayouts, chunk_noted_with_fewer_bytes_than_it_has_is_read_whole)
{
    write_growing();
    put_chunk_bytes(12);
    expect_right_in_every_way();
}

TEST_F(DamagedLayouts, chunk_noted_with_more_bytes_than_it_has_is_not_written_behind_the_array)
{
    write_growing();
    put_chunk_bytes(2 * chunk_bytes);
    expect_right_in_every_way();
}

// As above, with chunks so large that HDF5 does not keep them in its cache.
TEST_F(DamagedLayouts, large_chunk_noted_with_more_bytes_than_it_has_is_not_written_behind_the_array)
{
    constexpr hsize_t wide = 40000;
    values = numbers<int32_t>(2 * wide);
    ASSERT_EQ(write(values,
                    {.dims = {H5S_UNLIMITED, wide}, .count = {2, wide}, .start = {0, 0}, .mode = hyperslab}),
              done);
    put_chunk_bytes(700000);
    std::vector<int32_t> found(2 * wide);
    EXPECT_EQ(read(found, {.dims = {2, wide}}), done);
    EXPECT_EQ(found, values);
}

TEST_F(DamagedLayouts, compact_size_that_is_not_that_of_the_values_is_refused)
{
    values = numbers<int32_t>(100);
    ASSERT_EQ(write(values, {.dims = {100}}), done);
    damage([&](Bytes& bytes) {
        const size_t at = bytes.find(little_endian(0) + little_endian(1) + little_endian(2));
        ASSERT_NE(at, Bytes::npos);
        ASSERT_EQ(bytes.substr(at - 4, 4), Bytes("\3\0\x90\1", 4));
        bytes[at - 2] = '\x80';
    });
    EXPECT_EQ(read(values, {.dims = {100}}), not_read(2, "values 2 4 -1"));
}

}  // namespace

}  // namespace vak::test
