// Layout and chunks of new datasets.
#include "storage/dataset_layout.h"

#include "storage_test.h"

namespace vak::test {
namespace {

class DatasetLayout : public StorageTest {
protected:
    void TearDown() override
    {
        set_chunk_size(1);
        StorageTest::TearDown();
    }

    std::string stored(Access access, size_t elements)
    {
        EXPECT_EQ(write(std::vector<int32_t>(elements), access), done);
        return layout(file, "/");
    }
};

Access growing(Dims fixed, uint32_t flags = 0)
{
    Access access{.dims = {H5S_UNLIMITED},
                  .count = {1},
                  .start = Dims(fixed.size() + 1, 0),
                  .mode = hyperslab,
                  .flags = flags};
    access.dims.insert(access.dims.end(), fixed.begin(), fixed.end());
    access.count.insert(access.count.end(), fixed.begin(), fixed.end());
    return access;
}

TEST_F(DatasetLayout, chunk_extent_leaves_the_smallest_remainder_between_1000_and_2000)
{
    EXPECT_EQ(chunk_extent(1, 1), 1U);
    EXPECT_EQ(chunk_extent(999, 1), 999U);
    EXPECT_EQ(chunk_extent(1000, 1), 1000U);
    EXPECT_EQ(chunk_extent(1500, 1), 1500U);
    EXPECT_EQ(chunk_extent(2000, 1), 1000U);
    EXPECT_EQ(chunk_extent(2999, 1), 1499U);
    EXPECT_EQ(chunk_extent(4001, 1), 1000U);
    EXPECT_EQ(chunk_extent(5000, 1), 1000U);
}

TEST_F(DatasetLayout, chunk_extent_agrees_with_a_plain_search)
{
    for (hsize_t d = 1000; d < 9000; d += 7) {
        hsize_t best = 1000;
        for (hsize_t c = 1001; c <= 2000 && c <= d; ++c)
            if (d % c < d % best) best = c;
        EXPECT_EQ(chunk_extent(d, 1), best) << d;
    }
}

TEST_F(DatasetLayout, chunk_extent_along_a_growing_axis_is_the_chunk_size_or_1)
{
    EXPECT_EQ(chunk_extent(H5S_UNLIMITED, 64), 64U);
    EXPECT_EQ(chunk_extent(H5S_UNLIMITED, 1), 1U);
    EXPECT_EQ(chunk_extent(H5S_UNLIMITED, 0), 1U);
    EXPECT_EQ(chunk_extent(H5S_UNLIMITED, -9), 1U);
}

TEST_F(DatasetLayout, up_to_24000_bytes_are_compact)
{
    EXPECT_EQ(stored({.dims = {6000}}, 6000), "\nD values int32 [6000] compact\n");
    EXPECT_EQ(stored({.name = "wide", .dims = {3000}, .vak_size = 8}, 3000),
              "\nD values int32 [6000] compact\nD wide int64 [3000] compact\n");
}

TEST_F(DatasetLayout, more_bytes_are_contiguous)
{
    EXPECT_EQ(stored({.dims = {6001}}, 6001), "\nD values int32 [6001] contiguous\n");
    EXPECT_EQ(stored({.name = "wide", .dims = {3001}, .vak_size = 8}, 3001),
              "\nD values int32 [6001] contiguous\nD wide int64 [3001] contiguous\n");
}

TEST_F(DatasetLayout, texts_count_with_their_stored_length)
{
    EXPECT_EQ(write(std::string(300, 'a'), 1, {.dims = {300}, .vak_size = 81}), done);
    EXPECT_EQ(layout(file, "/"), "\nD values char[81] [300] contiguous\n");
}

TEST_F(DatasetLayout, a_growing_dataset_is_chunked_without_filters_however_short)
{
    EXPECT_EQ(stored(growing({3}), 3), "\nD values int32 [unlimited(1),3] chunked(1,3)\n");
}

TEST_F(DatasetLayout, a_growing_dataset_is_cut_along_its_long_fixed_extents)
{
    EXPECT_EQ(stored(growing({2999, 3}), 8997), "\nD values int32 [unlimited(1),2999,3] chunked(1,1499,3)\n");
}

TEST_F(DatasetLayout, the_chunk_size_of_the_process_counts_for_new_datasets_only)
{
    set_chunk_size(64);
    EXPECT_EQ(stored(growing({3}), 3), "\nD values int32 [unlimited(1),3] chunked(64,3)\n");
    set_chunk_size(0);
    EXPECT_EQ(stored(growing({3}), 3), "\nD values int32 [unlimited(2),3] chunked(64,3)\n");
    Access other = growing({3});
    other.name = "other";
    EXPECT_EQ(
        stored(other, 3),
        "\nD values int32 [unlimited(2),3] chunked(64,3)\nD other int32 [unlimited(1),3] chunked(1,3)\n");
}

TEST_F(DatasetLayout, a_filtered_dataset_of_fixed_extents_is_one_chunk)
{
    EXPECT_EQ(stored({.dims = {2500, 3}, .flags = 8}, 7500),
              "\nD values int32 [2500,3] chunked(2500,3) shuffle\n");
}

Dims filtered(Dims dims, size_t element_size)
{
    const Extents chunk = filtered_chunk(dims, element_size);
    return {chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(dims.size())};
}

TEST_F(DatasetLayout, a_filtered_dataset_up_to_4_gib_is_one_chunk)
{
    EXPECT_EQ(filtered({(hsize_t{1} << 30) - 1}, 4), (Dims{(hsize_t{1} << 30) - 1}));
    EXPECT_EQ(filtered({65535, 8192}, 8), (Dims{65535, 8192}));
}

TEST_F(DatasetLayout, a_larger_one_takes_the_chunks_of_growing_datasets)
{
    EXPECT_EQ(filtered({hsize_t{1} << 30}, 4), (Dims{1024}));
    EXPECT_EQ(filtered({400'000'000, 3}, 4), (Dims{1000, 3}));
}

TEST_F(DatasetLayout, a_filtered_dataset_above_4_gib_is_written)
{
    constexpr hsize_t n = hsize_t{1} << 31;
    const Access part{
        .dims = {n}, .count = {8}, .start = {n - 8}, .mode = hyperslab, .flags = 1, .params = {0, 1}};
    EXPECT_EQ(write(numbers<int32_t>(8, 1), Access(part)), done);
    EXPECT_EQ(layout(file, "/"), "\nD values int32 [2147483648] chunked(1024) deflate(1)\n");
    std::vector<int32_t> found(8);
    EXPECT_EQ(read(found, part), done);
    EXPECT_EQ(found, numbers<int32_t>(8, 1));
}

TEST_F(DatasetLayout, chunks_that_are_still_too_large_are_halved)
{
    EXPECT_EQ(filtered({1999, 1999, 1999}, 4), (Dims{1000, 1000, 1000}));
    EXPECT_EQ(filtered({900, 900, 900, 900}, 8), (Dims{113, 113, 113, 225}));
}

TEST_F(DatasetLayout, filters_are_those_of_the_element_type)
{
    const auto chosen = [](int32_t type, uint32_t flags, hsize_t n) {
        const Filters f = filters_for(type, flags, n);
        return std::string(f.scale_offset ? "o" : "") + (f.shuffle ? "s" : "") + (f.deflate ? "d" : "");
    };
    EXPECT_EQ(chosen(text_type, 0xFFFFFFFF, 8), "sd");
    EXPECT_EQ(chosen(integer_type, 0xFFFFFFFF, 8), "osd");
    EXPECT_EQ(chosen(real_type, 0xFFFFFFFF, 8), "osd");
    EXPECT_EQ(chosen(real_type, 0xFFFFFFFF, 7), "");
    const uint32_t bits[3][3] = {{0, 32, 4}, {64, 8, 1}, {128, 16, 2}};
    for (int32_t type = 1; type <= 3; ++type)
        for (int32_t other = 1; other <= 3; ++other)
            for (size_t i = 0; i < 3; ++i) {
                const uint32_t flag = bits[other - 1][i];
                EXPECT_EQ(chosen(type, flag, 100),
                          type == other && flag != 0 ? std::string(1, "osd"[i]) : "");
            }
}

TEST_F(DatasetLayout, slabs_that_are_runs_are_told_from_others)
{
    const Dims extents{50, 2000, 3}, start{0, 0, 0};
    const auto in_runs = [&](const Dims& count) {
        return vak::in_runs(part_of(hyperslab, extents.data(), 3, count.data(), start.data()), extents);
    };
    EXPECT_TRUE(in_runs({50, 1, 3}));     // history of an entity
    EXPECT_TRUE(in_runs({50, 2, 3}));     // of two
    EXPECT_TRUE(in_runs({1, 2000, 3}));   // a state
    EXPECT_TRUE(in_runs({64, 1, 1}));     // history of one component
    EXPECT_FALSE(in_runs({1, 2000, 1}));  // one component of a state
    EXPECT_FALSE(in_runs({50, 2000, 2}));
    EXPECT_FALSE(vak::in_runs(part_of(whole_dataset, extents.data(), 3, nullptr, nullptr), extents));
}

}  // namespace
}  // namespace vak::test
