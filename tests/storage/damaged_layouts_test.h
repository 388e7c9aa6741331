// The fixture of tests that change bytes of a closed file, and chunks that are too short.
#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "storage/storage_test.h"

namespace vak::test {

using Bytes = std::string;

inline Bytes little_endian(uint32_t value)
{
    Bytes bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

inline const Outcome refusal = not_read(999, "values 2 4 -1");

// The state axis grows by chunks of two, the other one is 32 long.
constexpr hsize_t states = 6, width = 32;
constexpr size_t chunk_bytes = 2 * width * sizeof(int32_t);

class DamagedLayouts : public StorageTest {
protected:
    void SetUp() override
    {
        StorageTest::SetUp();
        set_chunk_size(2);
        values = numbers<int32_t>(states * width, 7);
    }
    void TearDown() override
    {
        set_chunk_size(1);
        StorageTest::TearDown();
    }

    void write_growing(uint32_t flags = 0)
    {
        Access a{
            .dims = {H5S_UNLIMITED, width}, .count = {states, width}, .start = {0, 0}, .mode = hyperslab};
        a.flags = flags;
        a.params = {0, 6};
        ASSERT_EQ(write(values, a), done);
    }

    // Changes the bytes of the closed file.
    template <class Change>
    void damage(Change change)
    {
        const std::string name = close_file();
        std::stringstream text;
        text << std::ifstream(name, std::ios::binary).rdbuf();
        Bytes bytes = text.str();
        change(bytes);
        std::ofstream(name, std::ios::binary) << bytes;
        file = H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
        ASSERT_GE(file, 0);
    }

    // The layout message: version, class, then for a chunked dataset rank, address and chunk, the element
    // last.
    void put_element_size(uint32_t size)
    {
        damage([&](Bytes& bytes) {
            const Bytes chunk = little_endian(2) + little_endian(width) + little_endian(4);
            const size_t at = bytes.find(chunk);
            ASSERT_NE(at, Bytes::npos);
            ASSERT_EQ(bytes.substr(at - 11, 3), Bytes("\3\2\3"));
            bytes.replace(at + 8, 4, little_endian(size));
        });
    }

    // The size of the first chunk stands in the first key of the tree that finds chunks.
    void put_chunk_bytes(uint32_t size)
    {
        damage([&](Bytes& bytes) {
            const size_t at = bytes.find(Bytes("TREE\1", 5));
            ASSERT_NE(at, Bytes::npos);
            bytes.replace(at + 24, 4, little_endian(size));
        });
    }

    void expect_right_in_every_way()
    {
        std::vector<int32_t> found(states * width);
        EXPECT_EQ(read(found, {.dims = {states, width}}), done);
        EXPECT_EQ(found, values);
        expect_slab({0, 0}, {2, width});   // whole chunks
        expect_slab({1, 0}, {3, width});   // runs of values
        expect_slab({0, 5}, {states, 1});  // one column
        expect_slab({0, 3}, {states, 20});
        expect_slab({0, 31}, {1, 1});
        std::vector<int32_t> point(2);
        EXPECT_EQ(
            read(point, {.dims = {states, width}, .count = {2}, .start = {1, 31, 5, 31}, .mode = point_list}),
            done);
        EXPECT_EQ(point, (std::vector<int32_t>{7 + 32 + 31, 7 + 5 * 32 + 31}));
    }

    void expect_slab(const Dims& start, const Dims& count)
    {
        std::vector<int32_t> found(count[0] * count[1]), expected;
        for (hsize_t i = start[0]; i < start[0] + count[0]; ++i)
            for (hsize_t j = start[1]; j < start[1] + count[1]; ++j)
                expected.push_back(values[i * width + j]);
        const Access part{.dims = {states, width}, .count = count, .start = start, .mode = hyperslab};
        EXPECT_EQ(read(found, part), done);
        EXPECT_EQ(found, expected);
    }

    std::vector<int32_t> values;
};

// Eight bytes where the chunk has 256: as they are, and as what a stored deflate stream holds.
inline const Bytes eight(8, '\0');
inline const Bytes eight_deflated =
    Bytes("\x78\x01\x01\x08\x00\xF7\xFF", 7) + eight + Bytes("\x00\x08\x00\x01", 4);

// A header of scale-offset that tells of 31 bits a value, and no values.
inline const Bytes no_codes = Bytes("\x1F\0\0\0\x08", 5) + Bytes(16, '\0');

}  // namespace vak::test
