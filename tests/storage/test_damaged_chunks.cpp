// Filtered chunks that were damaged: one that does not become as long as a chunk is is refused, by our own
// hand or before HDF5 unpacks it.
#include <algorithm>

#include "damaged_layouts_test.h"

namespace vak::test {

namespace {

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

    void put_short_chunk()
    {
        const Bytes& bytes = GetParam().short_chunk;
        const hsize_t first[] = {0, 0};
        ASSERT_GE(H5Dwrite_chunk(open_object(file, "values"), H5P_DEFAULT, GetParam().mask, first,
                                 bytes.size(), bytes.data()),
                  0);
    }
};

TEST_P(DamagedForeign, chunk_that_holds_too_little_is_refused_before_hdf5_unpacks_it)
{
    make();
    reopen();
    expect_right_in_every_way();
    put_short_chunk();
    std::vector<int32_t> found(states * width);
    EXPECT_EQ(read(found, {.dims = {states, width}}), refusal);
    const Access column{.dims = {states, width}, .count = {states, 1}, .start = {0, 5}, .mode = hyperslab};
    EXPECT_EQ(read(found, column), refusal);
    const Access point{.dims = {states, width}, .count = {1}, .start = {1, 31}, .mode = point_list};
    EXPECT_EQ(read(found, point), refusal);
    expect_slab({2, 0}, {2, width});  // a sound chunk
}

TEST_P(DamagedForeign, chunk_that_holds_too_little_is_not_changed_in_part)
{
    make();
    put_short_chunk();
    const Outcome unwritten = not_written(-3999, 999, "values 2 4 4 1 -1");
    const std::vector<int32_t> row = numbers<int32_t>(width, 50);
    const auto row_at = [](hsize_t state) {
        return Access{.dims = {states, width}, .count = {1, width}, .start = {state, 0}, .mode = hyperslab};
    };
    EXPECT_EQ(write(row, row_at(1)), unwritten);
    EXPECT_EQ(write(row, row_at(2)), done);
    std::copy(row.begin(), row.end(), values.begin() + 2 * width);
    reopen();
    expect_slab({2, 0}, {4, width});
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

}  // namespace

}  // namespace vak::test
