// Series that grow chunk by chunk.
#include <cmath>

#include "direct_chunks_test.h"

namespace vak::test {
namespace {

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

TEST_F(DirectChunks, states_that_were_skipped_are_fill_values)
{
    for (const uint32_t flags : {uint32_t{0}, scaled | deflated}) {
        const auto state = spread<double>(9000);
        EXPECT_EQ(write(state, {.dims = {H5S_UNLIMITED, 3000, 3},
                                .count = {1, 3000, 3},
                                .start = {1, 0, 0},
                                .mode = hyperslab,
                                .flags = flags,
                                .params = {2, 6}}),
                  done);
        std::vector<double> expected(9000, flags == 0 ? 0 : 10000);
        expected.insert(expected.end(), state.begin(), state.end());
        EXPECT_EQ(read_again<double>({.dims = {2, 3000, 3}}, 18000), expected);
        EXPECT_EQ(plainly_read<double>(18000), expected);
        H5Ldelete(file, "values", H5P_DEFAULT);
    }
}

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

}  // namespace
}  // namespace vak::test
