// Chunks that could not be written or read: HDF5's chunk functions, named by the test, say no.
#include <cmath>
#include <cstring>

#include "chunk_judge.h"
#include "refusal.h"
#include "storage_test.h"

// clang-format off
MAY_REFUSE_ONCE(herr_t, H5Dwrite_chunk, (hid_t d, hid_t x, uint32_t m, const hsize_t* o, size_t n, const void* v), (d, x, m, o, n, v))
MAY_REFUSE(herr_t, H5Dread_chunk, (hid_t d, hid_t x, const hsize_t* o, uint32_t* m, void* v), (d, x, o, m, v))
MAY_REFUSE(herr_t, H5Dget_chunk_storage_size, (hid_t d, const hsize_t* o, hsize_t* n), (d, o, n))
// clang-format on

namespace vak::test {
namespace {

constexpr uint32_t scaled_and_deflated = 64 | 128 | 1 | 2;

class DirectFailures : public StorageTest {
protected:
    template <class Call>
    Outcome without(const char* name, Call&& call)
    {
        chosen_ = name;
        const Outcome result = call();
        chosen_.clear();
        return result;
    }

    void begin_routine() override { refused = chosen_; }
    void end_routine() override { refused.clear(); }

    Outcome append(const std::vector<double>& state)
    {
        return write(state, {.dims = {H5S_UNLIMITED, 40},
                             .count = {1, 40},
                             .start = {0, 0},
                             .mode = hyperslab,
                             .flags = scaled_and_deflated,
                             .params = {3, 6}});
    }

    std::vector<double> states(hsize_t count)
    {
        std::vector<double> values(count * 40);
        EXPECT_EQ(read(values, {.dims = {count, 40}}), done);
        return values;
    }

private:
    std::string chosen_;
};

const Access whole{.dims = {100}, .flags = scaled_and_deflated, .params = {3, 6}};

TEST_F(DirectFailures, a_chunk_that_is_not_written_is_error_999_and_leaves_no_dataset)
{
    const auto values = numbers<int32_t>(100);
    EXPECT_EQ(without("H5Dwrite_chunk", [&] { return write(values, Access(whole)); }),
              not_written(-3999, 999, "values 2 4 4 0 -1"));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_F(DirectFailures, a_chunk_that_is_not_read_is_error_999)
{
    const auto values = numbers<int32_t>(100);
    EXPECT_EQ(write(values, Access(whole)), done);
    std::vector<int32_t> found(100);
    EXPECT_EQ(without("H5Dread_chunk", [&] { return read(found, whole); }), not_read(999, "values 2 4 -1"));
    // What HDF5 cannot find it is asked for the other way.
    EXPECT_EQ(without("H5Dget_chunk_storage_size", [&] { return read(found, whole); }), done);
    EXPECT_EQ(found, values);
    const Access part{.dims = {100}, .count = {1}, .start = {5}, .mode = hyperslab};
    EXPECT_EQ(without("H5Dread_chunk", [&] { return write(std::vector<int32_t>{77}, Access(part)); }),
              not_written(-3999, 999, "values 2 4 4 1 -1"));
    EXPECT_EQ(read(found, whole), done);
    EXPECT_EQ(found, values);
}

TEST_F(DirectFailures, a_state_that_is_not_appended_leaves_those_before_it_as_they_were)
{
    set_chunk_size(3);
    std::vector<double> first(40, 1.23456789);
    first[7] = std::nan("");
    EXPECT_EQ(append(first), done);
    EXPECT_EQ(without("H5Dwrite_chunk", [&] { return append(std::vector<double>(40, 2)); }),
              not_written(-3999, 999, "values 3 8 8 1 -1"));
    const auto is_first = [&](const std::vector<double>& state) {
        return std::memcmp(state.data(), first.data(), 40 * sizeof(double)) == 0;
    };
    EXPECT_TRUE(is_first(states(1)));
    reopen();
    EXPECT_TRUE(is_first(read_by_hdf5<double>(file, "values", 40)));
    EXPECT_EQ(append(std::vector<double>(40, 2)), done);
    auto both = states(2);
    EXPECT_TRUE(is_first(both));
    both.erase(both.begin(), both.begin() + 40);
    EXPECT_EQ(both, std::vector<double>(40, 2));
    set_chunk_size(1);
}

// Whole chunks stand before the row that failed, none of which HDF5 would pack anew.
TEST_F(DirectFailures, a_state_in_a_chunk_of_its_own_that_is_not_appended_leaves_those_before_it)
{
    EXPECT_EQ(append(std::vector<double>(40, 1)), done);
    EXPECT_EQ(without("H5Dwrite_chunk", [&] { return append(std::vector<double>(40, 2)); }),
              not_written(-3999, 999, "values 3 8 8 1 -1"));
    EXPECT_EQ(dataset_extents(file, "values"), (std::vector<int64_t>{1, 40}));
    EXPECT_EQ(states(1), std::vector<double>(40, 1));
}

TEST_F(DirectFailures, a_point_in_a_chunk_that_is_not_read_or_not_written_changes_nothing)
{
    const auto values = numbers<int32_t>(100);
    EXPECT_EQ(write(values, Access(whole)), done);
    const Access point{.dims = {100}, .count = {2}, .start = {5, 70}, .mode = point_list};
    std::vector<int32_t> found(100, -1);
    for (const char* function : {"H5Dread_chunk", "H5Dwrite_chunk"}) {
        EXPECT_EQ(without(function,
                          [&] {
                              return write(std::vector<int32_t>{7, 7}, Access(point));
                          }),
                  not_written(-3999, 999, "values 2 4 4 2 -1"));
        EXPECT_EQ(read(found, whole), done);
        EXPECT_EQ(found, values) << function;
    }
    EXPECT_EQ(without("H5Dread_chunk", [&] { return read(found, point); }), not_read(999, "values 2 4 -1"));
    EXPECT_EQ(found, values);
}

TEST_F(DirectFailures, a_chunk_that_is_not_replaced_by_one_of_its_size_keeps_its_values)
{
    const Access packed{.dims = {100}, .flags = 64};
    const auto values = numbers<int32_t>(100), others = numbers<int32_t>(100, 500);
    EXPECT_EQ(write(values, Access(packed)), done);
    EXPECT_EQ(without("H5Dwrite_chunk", [&] { return write(others, Access(packed)); }),
              not_written(-3999, 999, "values 2 4 4 0 -1"));
    std::vector<int32_t> found(100);
    EXPECT_EQ(read(found, packed), done);
    EXPECT_EQ(found, values);
    EXPECT_EQ(write(others, Access(packed)), done);
    EXPECT_EQ(read(found, packed), done);
    EXPECT_EQ(found, others);
}

}  // namespace
}  // namespace vak::test
