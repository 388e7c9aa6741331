// The eraser on series of states: entity results, element results, activation flags.
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class EraseSeries : public EraserTest {
protected:
    void SetUp() override
    {
        EraserTest::SetUp();
        write_frame();
    }
    void TearDown() override
    {
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&one);
        EraserTest::TearDown();
    }
    static void set_chunk_size(int32_t size) { VAK_SET_CHUNK_SIZE(&size); }

    Result erased(const std::string& series_path, int32_t key) const
    {
        std::string warnings = frame_warnings();
        if (series_path.find("_set") == std::string::npos)
            warnings.insert(warnings.find("warning - blockkey 1:"), no_set(key, series_path));
        return {0, {"", warnings}};
    }
    using EraserTest::erased;

    // Appends the states with these first index values one by one.
    template <class S>
    std::vector<S> append(S s, const std::vector<int32_t>& idents)
    {
        std::vector<S> states;
        for (const int32_t ident : idents) {
            s.index.indexident = {ident, 1};
            EXPECT_EQ(write(s), success);
            states.push_back(s);
            s = s.next();
        }
        return states;
    }
    template <class S>
    void expect_states(const std::vector<S>& states, int32_t ierr)
    {
        for (size_t i = 0; i < states.size(); ++i) {
            S expected = states[i];
            expected.ipos = static_cast<int32_t>(i);
            expected.nstate = static_cast<int32_t>(states.size());
            S found = emptied(expected);
            EXPECT_EQ(read(found, 2), status(ierr));
            EXPECT_EQ(listing(found), listing(expected));
        }
    }
    // The first and the third state are kept.
    template <class S>
    void expect_cut(const S& first, int32_t key, int32_t read_status)
    {
        const auto states = append(first, {1, 7, 2, 9});
        const std::string before = stored(first);
        EXPECT_EQ(erase({2}), erased(listed(first), key));
        expect_states(std::vector<S>{states[0], states[2]}, read_status);
        EXPECT_EQ(stored(first), replaced(before, "unlimited\\(4\\)", "unlimited(2)"));
        EXPECT_EQ(attribute_value<int32_t>(file, listed(first), "nstate"), 2);
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseSeries, both_families, family_name);

TEST_P(EraseSeries, entity_results_keep_the_states_up_to_the_index)
{
    for (const int32_t ivsize : {4, 8, 16, 32}) {
        auto s = series({1, 2, 3, 4}, ivsize);
        EXPECT_EQ(write(s), success);
        const std::string before = stored(s);
        EXPECT_EQ(erase({2}), erased());
        expect_series(only(s, {0, 1}));
        EXPECT_EQ(stored(s), replaced(before, "unlimited\\(4\\)", "unlimited(2)"));
        EXPECT_EQ(attribute_value<int32_t>(file, listed(s), "nstate"), 2);
        EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    }
}

TEST_P(EraseSeries, each_state_is_judged_by_its_own_index)
{
    for (const int32_t chunk : {1, 8, 3}) {
        set_chunk_size(chunk);
        const auto s = series({5, 1, 9, 2, 8, 3, 3, 7, 1, 4, 9, 9, 9, 0, 2, 1, 6, 3, 3, 3});
        EXPECT_EQ(write(s), success);
        EXPECT_EQ(erase({3}), erased());
        expect_series(only(s, {1, 3, 5, 6, 8, 13, 14, 15, 17, 18, 19}));
        EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    }
}

TEST_P(EraseSeries, states_that_share_chunks_are_cut_at_every_place)
{
    set_chunk_size(8);
    std::vector<int32_t> idents(20), places;
    for (int32_t i = 0; i < 20; ++i) idents[static_cast<size_t>(i)] = i;
    for (int32_t last = 0; last < 19; ++last) {
        places.push_back(last);
        const auto s = series(idents);
        EXPECT_EQ(write(s), success);
        EXPECT_EQ(erase({last}), erased());
        expect_series(only(s, places));
        EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    }
}

TEST_P(EraseSeries, element_results_are_cut_back)
{
    expect_cut(sample<MultiElementResults>(), 1150, 1150);
    EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    expect_cut(MultiElementResults::complex_of(family()), 1151, 1151);
    EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    auto eight = sample<MultiElementResults>();
    eight.ivsize = 8;
    set_chunk_size(8);
    expect_cut(eight, 1150, 1150);
}

TEST_P(EraseSeries, activation_flags_are_cut_back)
{
    expect_cut(sample<MultiActivFlags>(), 2150, 0);
    EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
    set_chunk_size(8);
    expect_cut(sample<MultiActivFlags>(), 2150, 0);
}

TEST_P(EraseSeries, every_kind_that_is_there_is_counted)
{
    EXPECT_THAT(erase({1}, 1).output.out, EndsWith("VAK INFO - 0 singlestate blocks deleted\n"
                                                   "\nVAK INFO - 0 \"multientityresults\" blocks rewritten\n"
                                                   "\nVAK state eraser successfully passed.\n\n"));
    append(sample<MultiElementResults>(), {1, 2});
    append(sample<MultiActivFlags>(), {1, 1});
    EXPECT_THAT(erase({1}, 1).output.out, EndsWith("VAK INFO - 0 singlestate blocks deleted\n"
                                                   "\nVAK INFO - 0 \"multientityresults\" blocks rewritten\n"
                                                   "\nVAK INFO - 1 \"multielementresults\" blocks rewritten\n"
                                                   "\nVAK INFO - 0 \"multiactivflags\" blocks rewritten\n"
                                                   "\nVAK state eraser successfully passed.\n\n"));
}

TEST_P(EraseSeries, a_series_with_nothing_to_cut_is_left_untouched)
{
    const auto s = series({1, 2, 3});
    EXPECT_EQ(write(s), success);
    H5O_info2_t before, after;
    EXPECT_GE(H5Oget_info_by_name3(file, data_of(s, "res").c_str(), &before, H5O_INFO_BASIC, H5P_DEFAULT), 0);
    EXPECT_EQ(erase({3}), erased());
    EXPECT_GE(H5Oget_info_by_name3(file, data_of(s, "res").c_str(), &after, H5O_INFO_BASIC, H5P_DEFAULT), 0);
    int order = 1;
    EXPECT_GE(H5Otoken_cmp(file, &before.token, &after.token, &order), 0);
    EXPECT_EQ(order, 0);
    expect_series(s);
}

TEST_P(EraseSeries, a_series_of_which_no_state_remains_goes_with_its_emptied_parents)
{
    EXPECT_EQ(write(series({5, 6})), success);
    auto other = series({1});
    other.set = 3;
    EXPECT_EQ(write(other), success);
    append(sample<MultiActivFlags>(), {7});
    const Result result = erase({4}, 1);
    EXPECT_THAT(result.output.out, HasSubstr("\nVAK INFO - 0 \"multientityresults\" blocks rewritten\n"));
    EXPECT_FALSE(has(series({5}).path()));
    EXPECT_FALSE(has("multistate/EROSION"));
    expect_series(other);
    EXPECT_THAT(erase({0}, 2).output.out, HasSubstr(" group \"multistate\" deleted \n"));
    EXPECT_FALSE(has("multistate"));
}

TEST_P(EraseSeries, a_series_made_by_appending_alone_is_cut_and_grows_on)
{
    const auto s = series({1, 2, 3, 4});
    const auto append_state = [&](int32_t k) {
        const auto one = s.states(k, 1);
        return run([&] {
            return one.write_chosen(file, -1, {.mode = 1, .count = {1, 3, 2, 2}, .start = {0, 0, 0, 0}});
        });
    };
    for (int32_t k = 0; k < 4; ++k) EXPECT_EQ(append_state(k), success);
    EXPECT_EQ(H5Aexists_by_name(file, listed(s).c_str(), "nstate", H5P_DEFAULT), 0);
    EXPECT_EQ(erase({2}), erased());
    EXPECT_EQ(append_state(3), success);
    expect_series(only(s, {0, 1, 3}));
}

TEST_P(EraseSeries, a_cut_series_takes_further_states)
{
    auto states = append(sample<MultiElementResults>(), {1, 2, 3});
    EXPECT_EQ(erase({1}).ierr, 0);
    EXPECT_EQ(write(states[2]), success);
    expect_states(std::vector<MultiElementResults>{states[0], states[2]}, 1150);
}

TEST_P(EraseSeries, filters_and_every_kept_value_stay_bit_for_bit)
{
    for (const int32_t chunk : {1, 8})
        for (const int32_t flags : {0, 18, 128, 255})
            for (const int32_t ivsize : {4, 8}) {
                set_chunk_size(chunk);
                auto s = series({1, 9, 2, 3, 9, 9, 4, 1, 2, 3, 4}, ivsize);
                s.flags = flags;
                s.params[0] = 3;
                s.params[1] = 6;
                for (size_t i = 0; i < s.res.size(); ++i) s.res[i] = 1.0F / static_cast<float>(i + 1);
                s.res[20] = 12345.678F;
                EXPECT_EQ(write(s), success);
                auto found = emptied(s);
                EXPECT_EQ(read(found, 2), status(1050));
                const std::string before = stored(s);
                EXPECT_EQ(erase({3}), erased());
                expect_series(only(found, {0, 2, 3, 7, 8, 9}));
                EXPECT_EQ(stored(s), replaced(before, "unlimited\\(11\\)", "unlimited(6)"));
                EXPECT_GE(H5Ldelete(file, "multistate", H5P_DEFAULT), 0);
            }
}

TEST_P(EraseSeries, filtered_flags_keep_their_values)
{
    set_chunk_size(8);
    auto s = sample<MultiActivFlags>();
    s.flags = 255;
    s.params[1] = 6;
    s.status = {1000000000, -1000000000, 0, 5};
    const auto states = append(s, {1, 9, 2, 9, 1});
    EXPECT_EQ(erase({2}).ierr, 0);
    expect_states(std::vector<MultiActivFlags>{states[0], states[2], states[4]}, 0);
}

TEST_P(EraseSeries, numbers_stored_in_the_other_byte_order_stay_the_same)
{
    const auto s = series({1, 9, 2});
    EXPECT_EQ(write(s), success);
    const std::string res = data_of(s, "res");
    EXPECT_GE(H5Ldelete(file, res.c_str(), H5P_DEFAULT), 0);
    const hsize_t dims[3] = {3, 3, 2}, most[3] = {H5S_UNLIMITED, 3, 2}, chunk[3] = {2, 2, 2};
    {
        const SpaceId space(H5Screate_simple(3, dims, most), "space");
        const PropertiesId list(H5Pcreate(H5P_DATASET_CREATE), "list");
        H5Pset_chunk(list, 3, chunk);
        const ObjectId set(
            H5Dcreate2(file, res.c_str(), H5T_IEEE_F32BE, space, H5P_DEFAULT, list, H5P_DEFAULT), res);
        EXPECT_GE(H5Dwrite(set, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, s.res.data()), 0);
    }
    EXPECT_EQ(erase({2}), erased());
    expect_series(only(s, {0, 2}));
    EXPECT_THAT(stored(s), HasSubstr("res float32be [unlimited(2),3,2] chunked(2,2,2)\n"));
}

TEST_P(EraseSeries, a_series_without_index_values_stays)
{
    auto s = series({1, 2});
    s.index.nindex = 0;
    EXPECT_EQ(write(s), success);
    EXPECT_EQ(erase({0}), erased());
    EXPECT_EQ(dataset_extents(file, data_of(s, "res")).at(0), 2);
}

TEST_P(EraseSeries, a_series_under_several_paths_is_cut_once)
{
    const auto s = series({0, 9, 2, 9, 4});
    EXPECT_EQ(write(s), success);
    EXPECT_GE(H5Lcreate_soft("/multistate", file, "again", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_GE(H5Lcreate_hard(file, "multistate", file, "a", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_EQ(erase({4}).ierr, 0);
    expect_series(only(s, {0, 2, 4}));
}

TEST_P(EraseSeries, series_of_another_file_is_not_touched)
{
    const std::string other = path("other.h5");
    const auto s = series({1, 2, 3});
    {
        const FileId far = create_file(other);
        EXPECT_EQ(run([&] { return s.write(far); }), success);
    }
    const std::string before = layout(other, "/");
    EXPECT_GE(H5Lcreate_external(other.c_str(), "/multistate", file, "multistate", H5P_DEFAULT, H5P_DEFAULT),
              0);
    EXPECT_EQ(erase({1}), erased());
    EXPECT_EQ(layout(other, "/"), before);
    expect_series(s);
}

TEST_P(EraseSeries, series_of_many_small_states_is_cut)
{
    std::vector<int32_t> idents(5000), places;
    for (int32_t i = 0; i < 5000; ++i) {
        idents[static_cast<size_t>(i)] = i % 7;
        if (i % 7 <= 3) places.push_back(i);
    }
    set_chunk_size(8);
    const auto s = series(idents);
    EXPECT_EQ(write(s), success);
    EXPECT_EQ(erase({3}), erased());
    expect_series(only(s, places));
}

}  // namespace

}  // namespace vak::test
