// Elements of other sizes in chunks of our own, and what is left to HDF5.
#include <cmath>
#include <limits>

#include "direct_chunks_test.h"

namespace vak::test {
namespace {

class Conversions : public DirectChunks {
protected:
    // Filtered datasets are ours, contiguous ones HDF5's: both must hold and deliver the same.
    template <class From, class Stored, class To>
    void expect_both_alike(const std::vector<From>& values)
    {
        for (const uint32_t flags : {uint32_t{0}, deflated}) {
            Access a{.name = flags == 0 ? "plain" : "filtered",
                     .dims = {values.size()},
                     .flags = flags,
                     .params = {0, 6},
                     .vak_size = sizeof(Stored)};
            EXPECT_EQ(write(values, a), done);
        }
        const auto bits = [](const auto& v) {
            return std::string(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(v[0]));
        };
        EXPECT_EQ(bits(plainly_read<Stored>(values.size(), "plain")),
                  bits(plainly_read<Stored>(values.size(), "filtered")));
        EXPECT_EQ(bits(read_again<To>({.name = "plain", .dims = {values.size()}}, values.size())),
                  bits(read_again<To>({.name = "filtered", .dims = {values.size()}}, values.size())));
        for (const char* name : {"plain", "filtered"}) H5Ldelete(file, name, H5P_DEFAULT);
    }
};

const std::vector<double> border_values = [] {
    const double largest = std::numeric_limits<float>::max();
    std::vector<double> values = {0, -0.0, 1.1, largest, -largest, 1e300, -1e300, 1e-45, 1e-50, 5e-324};
    values.insert(values.end(), {std::nextafter(largest, 1e300), std::nextafter(-largest, -1e300)});
    values.insert(values.end(), {HUGE_VAL, -HUGE_VAL, std::nan(""), 16777217});
    values.resize(6000, 0.1);
    return values;
}();

TEST_F(Conversions, doubles_narrow_as_hdf5_narrows_them)
{
    expect_both_alike<double, float, double>(border_values);
}

TEST_F(Conversions, doubles_narrow_on_reading_as_hdf5_narrows_them)
{
    expect_both_alike<double, double, float>(border_values);
}

TEST_F(Conversions, floats_widen)
{
    const std::vector<float> values(border_values.begin() + 6, border_values.end());
    expect_both_alike<float, double, float>(values);
    expect_both_alike<float, double, double>({values.begin(), values.begin() + 4000});
}

TEST_F(Conversions, integers_widen)
{
    auto values = spread<int32_t>(9000);
    values[0] = std::numeric_limits<int32_t>::lowest();
    values[1] = std::numeric_limits<int32_t>::max();
    expect_both_alike<int32_t, int64_t, int64_t>(values);
}

TEST_F(DirectChunks, numbers_in_another_byte_order_are_left_to_hdf5)
{
    const hsize_t count = 100;
    {
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
        H5Pset_chunk(list, 1, &count);
        H5Pset_deflate(list, 6);
        const SpaceId space(H5Screate_simple(1, &count, nullptr), "space");
        const ObjectId made(H5Dcreate2(file, "values", H5T_STD_I32BE, space, H5P_DEFAULT, list, H5P_DEFAULT),
                            "values");
    }
    const auto values = spread<int32_t>(count);
    EXPECT_EQ(write(values, {.dims = {count}}), done);
    EXPECT_EQ(plainly_read<int32_t>(count), values);
    EXPECT_EQ(read_again<int32_t>({.dims = {count}}, count), values);
}

TEST_F(DirectChunks, a_checksum_behind_the_filters_is_left_to_hdf5)
{
    const hsize_t count = 100;
    {
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
        H5Pset_chunk(list, 1, &count);
        H5Pset_deflate(list, 6);
        H5Pset_fletcher32(list);
        const SpaceId space(H5Screate_simple(1, &count, nullptr), "space");
        const ObjectId made(H5Dcreate2(file, "values", H5T_STD_I32LE, space, H5P_DEFAULT, list, H5P_DEFAULT),
                            "values");
    }
    const auto values = spread<int32_t>(count);
    EXPECT_EQ(write(values, {.dims = {count}}), done);
    EXPECT_EQ(plainly_read<int32_t>(count), values);
    EXPECT_EQ(read_again<int32_t>({.dims = {count}}, count), values);
}

}  // namespace
}  // namespace vak::test
