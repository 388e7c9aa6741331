// Filters of other writers, in orders and with settings that ours never has: read as HDF5 reads them, and
// still readable by it when values have been changed.
#include "storage_test.h"

namespace vak::test {
namespace {

struct Pipeline {
    const char* name;
    void (*set)(hid_t list);
    H5T_class_t only_for = H5T_NO_CLASS;
};

std::ostream& operator<<(std::ostream& stream, const Pipeline& pipeline) { return stream << pipeline.name; }

// clang-format off
const Pipeline pipelines[] = {
    {"deflate_before_shuffle", [](hid_t l) { H5Pset_deflate(l, 4); H5Pset_shuffle(l); }},
    {"shuffle_twice", [](hid_t l) { H5Pset_shuffle(l); H5Pset_shuffle(l); }},
    {"deflate_twice", [](hid_t l) { H5Pset_deflate(l, 1); H5Pset_deflate(l, 9); }},
    {"checksum_before_deflate", [](hid_t l) { H5Pset_fletcher32(l); H5Pset_deflate(l, 4); }},
    {"checksum_alone", [](hid_t l) { H5Pset_fletcher32(l); }},
    {"shuffle_before_scale_offset", [](hid_t l) { H5Pset_shuffle(l); H5Pset_scaleoffset(l, H5Z_SO_INT, 0); }, H5T_INTEGER},
    {"scale_offset_of_7_bits", [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 7); }, H5T_INTEGER},
    {"scale_offset_of_all_bits", [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_INT, 32); }, H5T_INTEGER},
    {"scale_offset_of_digits_before_the_point", [](hid_t l) { H5Pset_scaleoffset(l, H5Z_SO_FLOAT_DSCALE, -1); }, H5T_FLOAT},
};
// clang-format on

class ForeignPipelines : public StorageTest, public testing::WithParamInterface<Pipeline> {
protected:
    static constexpr hsize_t rows = 7, columns = 10;

    // Seven rows of ten in chunks of three by four, so that chunks reach beyond the edges.
    template <class T>
    void make(const char* name, hid_t type)
    {
        const Properties list(H5Pcreate(H5P_DATASET_CREATE));
        const hsize_t extents[] = {rows, columns}, chunk[] = {3, 4};
        H5Pset_chunk(list.get(), 2, chunk);
        GetParam().set(list.get());
        const Space space(H5Screate_simple(2, extents, nullptr));
        const Dataset dataset(
            H5Dcreate2(file, name, type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
        const std::vector<T> values = numbers<T>(rows * columns, 20);
        ASSERT_GE(H5Dwrite(dataset.get(), memory_of<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }

    template <class T>
    static hid_t memory_of()
    {
        return std::is_floating_point_v<T> ? H5T_NATIVE_FLOAT : H5T_NATIVE_INT32;
    }

    template <class T>
    void expect_as_hdf5(const char* name)
    {
        std::vector<T> found(rows * columns, -1), part(2 * 5, -1), points(3, -1);
        const std::vector<T> expected = dataset_values<T>(file, name);
        EXPECT_EQ(read(found, {.name = name, .dims = {rows, columns}}), done);
        EXPECT_EQ(found, expected);
        EXPECT_EQ(
            read(
                part,
                {.name = name, .dims = {rows, columns}, .count = {2, 5}, .start = {2, 3}, .mode = hyperslab}),
            done);
        for (size_t i = 0; i < part.size(); ++i)
            EXPECT_EQ(part[i], expected[(2 + i / 5) * columns + 3 + i % 5]);
        EXPECT_EQ(read(points, {.name = name,
                                .dims = {rows, columns},
                                .count = {3},
                                .start = {6, 9, 0, 0, 3, 4},
                                .mode = point_list}),
                  done);
        EXPECT_EQ(points, (std::vector<T>{expected[69], expected[0], expected[34]}));
    }

    template <class T>
    void check(hid_t type)
    {
        make<T>("d", type);
        expect_as_hdf5<T>("d");
        EXPECT_EQ(
            write(
                numbers<T>(10, 50),
                {.name = "d", .dims = {rows, columns}, .count = {2, 5}, .start = {2, 3}, .mode = hyperslab}),
            done);
        expect_as_hdf5<T>("d");
        EXPECT_EQ(write(numbers<T>(rows * columns, 30), {.name = "d", .dims = {rows, columns}}), done);
        expect_as_hdf5<T>("d");
        reopen();
        expect_as_hdf5<T>("d");
    }
};

TEST_P(ForeignPipelines, of_integers_are_read_as_hdf5_reads_them_and_stay_readable)
{
    if (GetParam().only_for == H5T_FLOAT) return;
    check<int32_t>(H5T_STD_I32LE);
}

TEST_P(ForeignPipelines, of_integers_without_a_sign_are_read_as_hdf5_reads_them_and_stay_readable)
{
    if (GetParam().only_for == H5T_FLOAT) return;
    check<int32_t>(H5T_STD_U32LE);
}

TEST_P(ForeignPipelines, of_short_integers_are_read_as_hdf5_reads_them_and_stay_readable)
{
    if (GetParam().only_for == H5T_FLOAT) return;
    check<int32_t>(H5T_STD_I16LE);
}

TEST_P(ForeignPipelines, of_reals_are_read_as_hdf5_reads_them_and_stay_readable)
{
    if (GetParam().only_for == H5T_INTEGER) return;
    check<float>(H5T_IEEE_F32LE);
}

TEST_P(ForeignPipelines, of_doubles_are_read_as_hdf5_reads_them_and_stay_readable)
{
    if (GetParam().only_for == H5T_INTEGER) return;
    check<float>(H5T_IEEE_F64LE);
}

INSTANTIATE_TEST_SUITE_P(All, ForeignPipelines, testing::ValuesIn(pipelines),
                         [](const auto& pipeline) { return std::string(pipeline.param.name); });

}  // namespace
}  // namespace vak::test
