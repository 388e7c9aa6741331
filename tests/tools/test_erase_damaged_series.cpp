// The eraser on series that are damaged, or that a run that ended early left behind.
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class EraseDamagedSeries : public EraserTest {
protected:
    void SetUp() override
    {
        EraserTest::SetUp();
        write_frame();
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseDamagedSeries, both_families, family_name);

TEST_P(EraseDamagedSeries, rows_that_a_failed_call_left_behind_are_no_states)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    {
        const ObjectId res = open_object(file, data_of(s, "res"));
        const hsize_t two[3] = {2, 3, 2};
        EXPECT_GE(H5Dset_extent(res, two), 0);
    }
    EXPECT_EQ(erase({1}), erased());
    expect_series(only(s, {0}));
    EXPECT_EQ(dataset_extents(file, index_of(s, "indexident")).at(0), 1);
    EXPECT_EQ(attribute_value<int32_t>(file, listed(s), "nstate"), 1);
}

// As a flush leaves them that was cut off after the extents were written.
TEST_P(EraseDamagedSeries, states_without_values_in_the_file_are_no_states)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    const hsize_t counted[3] = {5, 3, 2}, rows[2] = {6, 2};
    EXPECT_GE(H5Dset_extent(open_object(file, data_of(s, "res")), counted), 0);
    for (const char* name : {"indexident", "indexval"})
        EXPECT_GE(H5Dset_extent(open_object(file, index_of(s, name)), rows), 0);
    EXPECT_EQ(erase({2}), erased());
    expect_series(only(s, {0, 1}));
    EXPECT_EQ(dataset_extents(file, data_of(s, "res")).at(0), 2);
    EXPECT_EQ(dataset_extents(file, index_of(s, "indexident")).at(0), 2);
}

// The rows of the index and the values say different numbers of states.
TEST_P(EraseDamagedSeries, fewer_index_rows_than_states_end_the_run_before_anything_is_changed)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    write_states(1, 2);
    {
        const ObjectId rows = open_object(file, index_of(s, "indexident"));
        const hsize_t two[2] = {2, 2};
        EXPECT_GE(H5Dset_extent(rows, two), 0);
    }
    EXPECT_EQ(erase({1}),
              failure(-6999,
                      frame_warnings() +
                          "\nVAK ERROR reading \"multientityresults\" block pass 1 - error code = -6999 \n"));
    EXPECT_EQ(dataset_extents(file, data_of(s, "res")).at(0), 3);
    EXPECT_TRUE(has(state(2).path()));
}

TEST_P(EraseDamagedSeries, wrong_width_of_the_index_rows_ends_the_run)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    falsify_attribute(listed(s), "nindex", 3);
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, -6030);
    EXPECT_THAT(result.output.err,
                EndsWith("\nVAK ERROR reading \"multientityresults\" block pass 1 - error code = -6030 \n"));
    EXPECT_EQ(dataset_extents(file, data_of(s, "res")).at(0), 3);
}

TEST_P(EraseDamagedSeries, extents_without_anything_stored_take_no_memory)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    for (const std::string& name : {index_of(s, "indexident"), data_of(s, "res")}) {
        const ObjectId set = open_object(file, name);
        const hsize_t many = hsize_t{1} << 31;
        const hsize_t extents[3] = {many, name.back() == 't' ? 2U : 3U, 2};
        EXPECT_GE(H5Dset_extent(set, extents), 0);
    }
    const Result result = erase({1});
    EXPECT_EQ(result.ierr, -6999);
    EXPECT_THAT(result.output.err, EndsWith("pass 1 - error code = -6999 \n"));
}

TEST_P(EraseDamagedSeries, values_in_one_piece_or_of_another_class_end_the_run)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    const std::string res = data_of(s, "res");
    for (const bool text : {false, true}) {
        EXPECT_GE(H5Ldelete(file, res.c_str(), H5P_DEFAULT), 0);
        const hsize_t dims[3] = {3, 3, 2};
        {
            const SpaceId space(H5Screate_simple(3, dims, nullptr), "space");
            const ObjectId set(H5Dcreate2(file, res.c_str(), text ? H5T_C_S1 : H5T_IEEE_F32LE, space,
                                          H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                               res);
        }
        EXPECT_EQ(
            erase({1}),
            failure(-6999,
                    frame_warnings() +
                        "\nVAK ERROR reading \"multientityresults\" block pass 2 - error code = -6999 \n"));
    }
}

// A kept state whose bytes are no compressed ones any more.
TEST_P(EraseDamagedSeries, values_that_cannot_be_read_end_the_run_before_anything_is_changed)
{
    auto s = series({1, 2, 3});
    s.flags = 2;
    s.params[1] = 6;
    EXPECT_EQ(write(s), success);
    write_states(1, 2);
    const std::string res = data_of(s, "res");
    const std::string rubbish(30, 'x');
    const hsize_t second[3] = {1, 0, 0};
    {
        const ObjectId set = open_object(file, res);
        EXPECT_GE(H5Dwrite_chunk(set, H5P_DEFAULT, 0, second, rubbish.size(), rubbish.data()), 0);
    }
    const Result result = erase({2});
    EXPECT_EQ(result.ierr, -6999);
    EXPECT_THAT(result.output.err,
                EndsWith("\nVAK ERROR reading \"multientityresults\" block pass 2 - error code = -6999 \n"));
    EXPECT_EQ(dataset_extents(file, res).at(0), 3);
    EXPECT_TRUE(has(state(2).path()));
    EXPECT_EQ(erase({1}), erased());
    expect_series(only(s, {0}));
}

TEST_P(EraseDamagedSeries, a_chunk_stored_with_far_more_bytes_than_it_holds_is_refused)
{
    auto s = series({1, 2, 3});
    s.nent = 300;
    s.tables.ids.assign(300, 7);
    s.tables.fid.assign(300, 8);
    s.tables.weight.assign(300, 1);
    s.res = some_values(1800);
    s.flags = 2;
    s.params[1] = 6;
    EXPECT_EQ(write(s), success);
    const std::string rubbish(1 << 20, 'x');
    const hsize_t second[3] = {1, 0, 0};
    {
        const ObjectId set = open_object(file, data_of(s, "res"));
        EXPECT_GE(H5Dwrite_chunk(set, H5P_DEFAULT, 0, second, rubbish.size(), rubbish.data()), 0);
    }
    EXPECT_EQ(erase({1}).ierr, -6999);
    EXPECT_EQ(dataset_extents(file, data_of(s, "res")).at(0), 3);
}

TEST_P(EraseDamagedSeries, what_a_killed_run_left_behind_is_removed)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    for (const char* left : {" states being rewritten", " states being replaced"})
        for (const std::string& name : {data_of(s, "res"), index_of(s, "indexident")})
            EXPECT_GE(H5Ocopy(file, name.c_str(), file, (name + left).c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_EQ(erase({2}), erased());
    expect_series(only(s, {0, 1}));
    EXPECT_THAT(stored(s), testing::Not(HasSubstr("states being")));
}

}  // namespace

}  // namespace vak::test
