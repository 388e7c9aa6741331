// Files in which the sizes of a dataset's storage are damaged: what HDF5 has in memory for it is then smaller
// or larger than what is read from it. Nothing is read or written beside it, and values are right or refused.
// (The sanitizers watch HDF5's copies too.)
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "storage/storage_test.h"

namespace vak::test {

namespace {

using Bytes = std::string;

Bytes little_endian(uint32_t value)
{
    Bytes bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

const Outcome refusal = not_read(999, "values 2 4 -1");

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

// Eight bytes where the chunk has 256: as they are, and as what a stored deflate stream holds.
const Bytes eight(8, '\0');
const Bytes eight_deflated = Bytes("\x78\x01\x01\x08\x00\xF7\xFF", 7) + eight + Bytes("\x00\x08\x00\x01", 4);

TEST_F(DamagedLayouts, filtered_chunk_that_holds_too_little_is_refused)
{
    write_growing(deflate_integers);
    reopen();
    const hsize_t first[] = {0, 0};
    for (const auto& [mask, bytes] : {std::pair(0U, eight_deflated), std::pair(1U, eight)}) {
        {
            const ObjectId dataset = open_object(file, "values");
            ASSERT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, mask, first, bytes.size(), bytes.data()), 0);
        }
        std::vector<int32_t> found(states * width);
        EXPECT_EQ(read(found, {.dims = {states, width}}), refusal);
        const Access column{
            .dims = {states, width}, .count = {states, 1}, .start = {0, 5}, .mode = hyperslab};
        EXPECT_EQ(read(found, column), refusal);
        const Access point{.dims = {states, width}, .count = {1}, .start = {1, 31}, .mode = point_list};
        EXPECT_EQ(read(found, point), refusal);
    }
}

// Datasets that HDF5 unpacks itself, because it must convert them or they have filters or forms that ours
// have not.
struct Foreign {
    const char* name;
    hid_t (*type)();
    void (*set)(hid_t list);
    Bytes short_chunk;
    uint32_t mask = 0;
};

std::ostream& operator<<(std::ostream& stream, const Foreign& foreign) { return stream << foreign.name; }

// A header of scale-offset that tells of 31 bits a value, and no values.
const Bytes no_codes = Bytes("\x1F\0\0\0\x08", 5) + Bytes(16, '\0');

// clang-format off
const Foreign foreign_datasets[] = {
    {"big_endian", [] { return H5T_STD_I32BE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight_deflated},
    {"big_endian_unfiltered_chunk", [] { return H5T_STD_I32BE; }, [](hid_t l) { H5Pset_deflate(l, 6); }, eight, 1},
    {"shorter", [] { return H5T_STD_I16LE; }, [](hid_t l) { H5Pset_shuffle(l); }, eight},
    {"checksum", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_fletcher32(l); }, Bytes(12, '\0')},
    {"wrong_checksum", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_fletcher32(l); }, Bytes(260, '\1')},
    {"less_than_a_checksum", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_fletcher32(l); }, Bytes(3, '\0')},
    {"checksum_left_out", [] { return H5T_STD_I32LE; }, [](hid_t l) { H5Pset_fletcher32(l); }, eight, 1},
    {"scale_offset_without_codes", [] { return H5T_STD_U32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, no_codes},
    {"scale_offset_without_header", [] { return H5T_STD_U32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, eight},
    {"scale_offset_of_all_bits", [] { return H5T_STD_U32LE; }, [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 32); }, eight},
};
// clang-format on

class DamagedForeign : public DamagedLayouts, public testing::WithParamInterface<Foreign> {
protected:
    void make()
    {
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "list");
        const hsize_t extents[] = {states, width}, chunk[] = {2, width};
        H5Pset_chunk(list, 2, chunk);
        GetParam().set(list);
        const SpaceId space(H5Screate_simple(2, extents, nullptr), "space");
        const ObjectId dataset(
            H5Dcreate2(file, "values", GetParam().type(), space, H5P_DEFAULT, list, H5P_DEFAULT), "values");
        ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }
};

TEST_P(DamagedForeign, chunk_that_holds_too_little_is_refused_before_hdf5_unpacks_it)
{
    make();
    reopen();
    expect_right_in_every_way();
    const Bytes& bytes = GetParam().short_chunk;
    const hsize_t first[] = {0, 0};
    ASSERT_GE(H5Dwrite_chunk(open_object(file, "values"), H5P_DEFAULT, GetParam().mask, first, bytes.size(),
                             bytes.data()),
              0);
    std::vector<int32_t> found(states * width);
    EXPECT_EQ(read(found, {.dims = {states, width}}), refusal);
    const Access column{.dims = {states, width}, .count = {states, 1}, .start = {0, 5}, .mode = hyperslab};
    EXPECT_EQ(read(found, column), refusal);
    const Access point{.dims = {states, width}, .count = {1}, .start = {1, 31}, .mode = point_list};
    EXPECT_EQ(read(found, point), refusal);
    expect_slab({2, 0}, {2, width});  // a sound chunk
}

INSTANTIATE_TEST_SUITE_P(All, DamagedForeign, testing::ValuesIn(foreign_datasets),
                         [](const auto& foreign) { return std::string(foreign.param.name); });

TEST_F(DamagedLayouts, chunk_that_is_larger_than_its_filters_can_have_made_it_is_refused)
{
    write_growing(deflate_integers);
    reopen();
    const Bytes large(chunk_bytes + chunk_bytes / 8 + 64 * 1024 + 1, '\0');
    const hsize_t first[] = {0, 0};
    {
        const ObjectId dataset = open_object(file, "values");
        ASSERT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 1, first, large.size(), large.data()), 0);
    }
    std::vector<int32_t> found(states * width);
    EXPECT_EQ(read(found, {.dims = {states, width}}), refusal);
    EXPECT_EQ(read_values(nullptr, integer_type, 4, {.dims = {states, width}}), refusal);
    const Access later{.dims = {states, width}, .count = {2, width}, .start = {2, 0}, .mode = hyperslab};
    EXPECT_EQ(read_values(nullptr, integer_type, 4, later), done);
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
