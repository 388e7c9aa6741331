// Chunks moved by our own hand: what plain HDF5 reads of them, and what they make of files of plain HDF5.
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "chunk_judge.h"
#include "storage_test.h"

namespace vak::test {
namespace {

constexpr uint32_t deflated = 1 | 2 | 4;
constexpr uint32_t shuffled = 8 | 16 | 32;
constexpr uint32_t scaled = 64 | 128;

struct ChunkAt {
    Dims corner;
    ChunkBytes stored;
};

class DirectChunks : public StorageTest {
protected:
    // As plain HDF5 reads it from the closed and reopened file; empty when it cannot.
    template <class T>
    std::vector<T> plainly_read(size_t count, const std::string& name = "values")
    {
        reopen();
        return read_by_hdf5<T>(file, name, count);
    }

    template <class T>
    std::vector<T> read_again(const Access& a, size_t count)
    {
        std::vector<T> values(count);
        EXPECT_EQ(read(values, a), done);
        return values;
    }

    uint32_t mask_at(const Dims& corner, const std::string& name = "values") const
    {
        return chunk_at(corner, name).mask;
    }

    ChunkBytes chunk_at(const Dims& corner, const std::string& name = "values") const
    {
        const auto dataset = open_dataset(file, name);
        hsize_t size = 0;
        EXPECT_GE(H5Dget_chunk_storage_size(dataset, corner.data(), &size), 0);
        ChunkBytes chunk;
        chunk.bytes.resize(size);
        EXPECT_GE(H5Dread_chunk(dataset, H5P_DEFAULT, corner.data(), &chunk.mask, chunk.bytes.data()), 0);
        return chunk;
    }

    // A copy of a dataset's description, filled by plain HDF5.
    template <class T>
    void make_plain_twin(const std::string& name, const std::vector<T>& values, const Dims& extents)
    {
        const auto original = open_dataset(file, "values");
        const PropertiesId list(H5Dget_create_plist(original), "creation list");
        const TypeId type(H5Dget_type(original), "type");
        const SpaceId space(H5Screate_simple(rank(extents), extents.data(), nullptr), "space");
        const ObjectId twin(H5Dcreate2(file, name.c_str(), type, space, H5P_DEFAULT, list, H5P_DEFAULT),
                            name);
        ASSERT_GE(H5Dwrite(twin, native_type<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }

    std::vector<double> random_reals(size_t count, double span)
    {
        std::vector<double> values(count);
        std::uniform_real_distribution<double> draw(-span, span);
        for (auto& v : values) v = draw(random);
        return values;
    }

    std::mt19937_64 random{7};
};

template <class T>
std::vector<T> spread(size_t count, double factor = 0.25)
{
    std::vector<T> values(count);
    for (size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(static_cast<double>(i * 7919 % 2003) * factor - 40);
    return values;
}

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

// ---- Conversions ----

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

// ---- Chunks that HDF5 writes and cannot read ----

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

// ---- Masks ----

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

// ---- Series ----

struct Series {
    uint32_t flags;
    int32_t chunk;
    hsize_t entities;
};

class GrowingSeries : public DirectChunks, public testing::WithParamInterface<Series> {
protected:
    void SetUp() override
    {
        DirectChunks::SetUp();
        set_chunk_size(GetParam().chunk);
    }
    void TearDown() override
    {
        set_chunk_size(1);
        DirectChunks::TearDown();
    }

    template <class T>
    Outcome append(const std::vector<T>& state)
    {
        return write(state, {.dims = {H5S_UNLIMITED, GetParam().entities, 3},
                             .count = {1, GetParam().entities, 3},
                             .start = {0, 0, 0},
                             .mode = hyperslab,
                             .flags = GetParam().flags,
                             .params = {3, 6}});
    }
};

TEST_P(GrowingSeries, grows_state_by_state)
{
    const size_t length = GetParam().entities * 3;
    std::vector<double> all;
    for (int state = 0; state < 9; ++state) {
        auto values = random_reals(length, 20);
        if (state == 4) values[1] = HUGE_VAL;
        EXPECT_EQ(append(values), done);
        all.insert(all.end(), values.begin(), values.end());
    }
    const auto found = plainly_read<double>(all.size());
    ASSERT_EQ(found.size(), all.size());
    // Rounded once, however often a chunk was taken up again.
    const double tolerance = (GetParam().flags & scaled) != 0 ? 0.5e-3 * (1 + 1e-9) : 0;
    for (size_t i = 0; i < all.size(); ++i) {
        if (found[i] == all[i]) continue;
        ASSERT_NEAR(found[i], all[i], tolerance) << i;
    }
    const Access whole{.dims = {9, GetParam().entities, 3}};
    EXPECT_EQ(read_again<double>(whole, all.size()), found);
    Access part{.dims = whole.dims, .count = {2, 3, 2}, .start = {5, 2, 1}, .mode = hyperslab};
    const auto read = read_again<double>(part, 12);
    for (size_t i = 0; i < 12; ++i) {
        const size_t place = ((5 + i / 6) * GetParam().entities + 2 + i % 6 / 2) * 3 + 1 + i % 2;
        EXPECT_EQ(read[i], found[place]);
    }
}

TEST_P(GrowingSeries, integers_grow_in_several_states_at_a_time)
{
    const size_t length = GetParam().entities * 3;
    const auto values = spread<int32_t>(length * 12, 3);
    for (const hsize_t states : {hsize_t{1}, hsize_t{4}, hsize_t{2}, hsize_t{5}}) {
        const size_t begin = states == 1 ? 0 : states == 4 ? 1 : states == 2 ? 5 : 7;
        const std::vector<int32_t> part(
            values.begin() + static_cast<std::ptrdiff_t>(begin * length),
            values.begin() + static_cast<std::ptrdiff_t>((begin + states) * length));
        EXPECT_EQ(write(part, {.dims = {H5S_UNLIMITED, GetParam().entities, 3},
                               .count = {states, GetParam().entities, 3},
                               .start = {0, 0, 0},
                               .mode = hyperslab,
                               .flags = GetParam().flags,
                               .params = {0, 6}}),
                  done);
    }
    EXPECT_EQ(plainly_read<int32_t>(values.size()), values);
    EXPECT_EQ(read_again<int32_t>({.dims = {12, GetParam().entities, 3}}, values.size()), values);
}

INSTANTIATE_TEST_SUITE_P(All, GrowingSeries,
                         testing::Values(Series{0, 1, 10000}, Series{0, 1, 7001}, Series{0, 4, 7001},
                                         Series{deflated, 1, 900}, Series{shuffled | deflated, 3, 1301},
                                         Series{scaled, 1, 1301}, Series{scaled | deflated, 3, 1301},
                                         Series{255, 4, 20}, Series{255, 16, 20}));

TEST_F(DirectChunks, edges_of_a_growing_dataset_hold_fill_values_as_hdf5s_do)
{
    // 1301 entities make chunks of 1301; 2999 of 1499, of which the last reaches beyond.
    Access a{.dims = {H5S_UNLIMITED, 2999, 3}, .count = {1, 2999, 3}, .start = {0, 0, 0}, .mode = hyperslab};
    a.flags = scaled;
    a.params = {2, 0};
    const auto values = spread<double>(2999 * 3);
    EXPECT_EQ(write(values, a), done);
    {
        const auto original = open_dataset(file, "values");
        const PropertiesId list(H5Dget_create_plist(original), "creation list");
        const hsize_t extents[] = {1, 2999, 3};
        const hsize_t most[] = {H5S_UNLIMITED, 2999, 3};
        const SpaceId space(H5Screate_simple(3, extents, most), "space");
        const ObjectId twin(
            H5Dcreate2(file, "twin", H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, list, H5P_DEFAULT), "twin");
        ASSERT_GE(H5Dwrite(twin, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }
    for (const hsize_t entity : {hsize_t{0}, hsize_t{1499}, hsize_t{2998}}) {
        EXPECT_EQ(chunk_at({0, entity, 0}), chunk_at({0, entity, 0}, "twin")) << entity;
    }
}

TEST_F(DirectChunks, a_chunk_is_rounded_when_it_is_complete_and_not_before)
{
    set_chunk_size(3);
    for (uint32_t state = 0; state < 5; ++state) {
        EXPECT_EQ(write(random_reals(40, 9), {.dims = {H5S_UNLIMITED, 40},
                                              .count = {1, 40},
                                              .start = {0, 0},
                                              .mode = hyperslab,
                                              .flags = scaled,
                                              .params = {3, 0}}),
                  done);
        EXPECT_EQ(mask_at({0, 0}), state < 2 ? 1U : 0U);
    }
    EXPECT_EQ(mask_at({3, 0}), 1U);
    set_chunk_size(1);
}

// ---- Parts ----

TEST_F(DirectChunks, parts_of_a_scaled_dataset_never_round_what_stands_beside_them)
{
    auto values = random_reals(1000, 9);
    const Access access{.dims = {1000}, .flags = scaled | deflated, .params = {3, 6}};
    EXPECT_EQ(write(values, Access(access)), done);
    auto expected = plainly_read<double>(1000);
    for (hsize_t round = 0; round < 20; ++round) {
        const auto part = random_reals(10, 1e3);
        const hsize_t start = round * 37;
        Access slab{.dims = {1000}, .count = {10}, .start = {start}, .mode = hyperslab};
        EXPECT_EQ(write(part, slab), done);
        std::copy(part.begin(), part.end(), expected.begin() + static_cast<std::ptrdiff_t>(start));
    }
    EXPECT_EQ(plainly_read<double>(1000), expected);
    EXPECT_EQ(read_again<double>(access, 1000), expected);
}

TEST_F(DirectChunks, a_scaled_dataset_that_begins_with_a_part_is_fill_values_elsewhere)
{
    const std::vector<double> part{1.23456, 7, HUGE_VAL, -2};
    EXPECT_EQ(write(part, {.dims = {20, 10},
                           .count = {2, 2},
                           .start = {5, 3},
                           .mode = hyperslab,
                           .flags = scaled,
                           .params = {2, 0}}),
              done);
    std::vector<double> expected(200, 10000);
    expected[53] = part[0];
    expected[54] = part[1];
    expected[63] = part[2];
    expected[64] = part[3];
    EXPECT_EQ(plainly_read<double>(200), expected);
    EXPECT_EQ(read_again<double>({.dims = {20, 10}}, 200), expected);
}

TEST_F(DirectChunks, points_of_a_scaled_dataset_reach_it_unharmed_and_the_last_of_two_counts)
{
    EXPECT_EQ(write(std::vector<float>(1000, 1.5F), {.dims = {10, 100}, .flags = scaled, .params = {2, 0}}),
              done);
    const std::vector<float> points{HUGE_VALF, 2.25F, 3.125F, 4.5F};
    const Dims places{9, 99, 0, 0, 5, 50, 0, 0};
    EXPECT_EQ(write(points, {.dims = {10, 100}, .count = {4}, .start = places, .mode = point_list}), done);
    std::vector<float> expected(1000, 1.5F);
    expected[999] = HUGE_VALF;
    expected[550] = 3.125F;
    expected[0] = 4.5F;
    EXPECT_EQ(plainly_read<float>(1000), expected);
    EXPECT_EQ(read_again<float>({.dims = {10, 100}, .count = {4}, .start = places, .mode = point_list}, 4),
              (std::vector<float>{HUGE_VALF, 4.5F, 3.125F, 4.5F}));
}

TEST_F(DirectChunks, of_many_points_at_one_place_the_last_counts)
{
    Dims places;
    for (hsize_t i = 0; i < 300; ++i) places.push_back(i * 7 % 10);
    Access a{.dims = {20}, .count = {300}, .start = places, .mode = point_list, .flags = scaled};
    EXPECT_EQ(write(numbers<int32_t>(300), a), done);
    auto expected = std::vector<int32_t>(20, 10000);
    for (size_t i = 0; i < 300; ++i) expected[places[i]] = static_cast<int32_t>(i);
    EXPECT_EQ(plainly_read<int32_t>(20), expected);
}

TEST_F(DirectChunks, points_in_many_chunks_find_their_places_in_any_order)
{
    Access a{.dims = {H5S_UNLIMITED, 3000}, .count = {3, 3000}, .start = {0, 0}, .mode = hyperslab};
    a.flags = scaled;
    a.params = {2, 0};
    EXPECT_EQ(write(spread<double>(9000), a), done);
    const auto stored = plainly_read<double>(9000);
    const Access points{
        .dims = {3, 3000}, .count = {4}, .start = {2, 2500, 0, 0, 1, 1999, 1, 2000}, .mode = point_list};
    EXPECT_EQ(read_again<double>(points, 4),
              (std::vector<double>{stored[8500], stored[0], stored[4999], stored[5000]}));
}

TEST_F(DirectChunks, points_behind_the_end_of_a_scaled_series_are_written)
{
    Access a{.dims = {H5S_UNLIMITED, 20}, .count = {1, 20}, .start = {0, 0}, .mode = hyperslab};
    a.flags = scaled;
    a.params = {2, 0};
    EXPECT_EQ(write(std::vector<double>(20, 1.5), a), done);
    // Along the unlimited dimension they are counted from the end; the largest one gives the extent.
    Access points{.dims = {H5S_UNLIMITED, 20}, .count = {3}, .start = {0, 4, 0, 7, 2, 0}, .mode = point_list};
    EXPECT_EQ(write(std::vector<double>{HUGE_VAL, 2.123456, 3}, points).code, -3999);
    EXPECT_EQ(read_again<double>({.dims = {3, 20}}, 60).size(), 60U);
}

// ---- Damage ----

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
