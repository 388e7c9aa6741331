// What the multi-state blocks that take one state with each call have in common, tested alike.
//
// A kind instantiates OneStateSeries with types that give its sample, family and stored names.
#pragma once

#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

template <class Kind>
class OneStateSeries : public BlockTest {
protected:
    using S = typename Kind::Sample;

    static constexpr bool legacy = Kind::family == Family::legacy;
    static S first() { return sample_of<S>(Kind::family); }
    static Result read_well() { return status(Kind::read_status); }

    // The first `n` states of the series.
    std::vector<S> append(int n)
    {
        std::vector<S> states{first()};
        while (states.size() < static_cast<size_t>(n)) states.push_back(states.back().next());
        for (const S& state : states) EXPECT_EQ(this->write(state), success);
        return states;
    }

    std::string header(const S& s) const { return s.path() + (legacy ? "/header" : ""); }
    std::string index(const S& s, const std::string& name) const
    {
        return s.path() + (legacy ? "/index/" : "/") + name;
    }
    std::string data(const S& s, const std::string& name) const
    {
        return s.path() + (legacy ? "/data/" : "/") + name;
    }

    void set_states(const std::string& path, hsize_t states)
    {
        const ObjectId dataset = open_object(file, path);
        std::vector<hsize_t> extents;
        for (const int64_t extent : dataset_extents(file, path))
            extents.push_back(static_cast<hsize_t>(extent));
        extents[0] = states;
        EXPECT_GE(H5Dset_extent(dataset, extents.data()), 0);
    }
    void remove(const std::string& path) { EXPECT_GE(H5Ldelete(file, path.c_str(), H5P_DEFAULT), 0); }
    void remove_attribute(const std::string& object, const char* name)
    {
        EXPECT_GE(H5Adelete_by_name(file, object.c_str(), name, H5P_DEFAULT), 0);
    }

    S read_state(const S& like, int32_t ipass, const Result& expected)
    {
        S state = emptied(like);
        EXPECT_EQ(this->read(state, ipass), expected) << "state " << like.ipos << ", pass " << ipass;
        return state;
    }
    void expect_states(std::vector<S> states)
    {
        for (S& state : states) {
            state.nstate = static_cast<int32_t>(states.size());
            EXPECT_EQ(listing(read_state(state, 2, read_well())), listing(state)) << "state " << state.ipos;
        }
    }

    std::string not_there(const std::string& name) const
    {
        return "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, data_size, error: " + name +
               " 4 0\n";
    }
};

TYPED_TEST_SUITE_P(OneStateSeries);

TYPED_TEST_P(OneStateSeries, states_are_read_back_by_their_place) { this->expect_states(this->append(4)); }

TYPED_TEST_P(OneStateSeries, number_of_states_is_stored_with_each_call)
{
    auto state = this->first();
    for (int32_t n = 1; n <= 3; ++n, state = state.next()) {
        EXPECT_EQ(this->write(state), success);
        EXPECT_EQ(attribute_value<int32_t>(this->file, this->header(state), "nstate"), n);
    }
}

TYPED_TEST_P(OneStateSeries, callers_numbering_leaves_no_gaps)
{
    auto states = this->append(1);
    auto later = states[0].next();
    later.ipos = 100;
    EXPECT_EQ(this->write(later), success);
    later.ipos = 1;
    states.push_back(later);
    this->expect_states(states);
    EXPECT_EQ(dataset_extents(this->file, this->index(later, "indexident")).at(0), 2);
}

TYPED_TEST_P(OneStateSeries, later_calls_write_no_attributes_and_no_tables)
{
    auto states = this->append(1);
    this->remove_attribute(this->header(states[0]), "blocktype");
    this->remove(this->data(states[0], TypeParam::ids));
    EXPECT_EQ(this->write(states[0].next()), success);
    EXPECT_FALSE(exists(this->file, this->data(states[0], TypeParam::ids)));
    EXPECT_EQ(H5Aexists_by_name(this->file, this->header(states[0]).c_str(), "blocktype", H5P_DEFAULT), 0);
    EXPECT_EQ(attribute_value<int32_t>(this->file, this->header(states[0]), "nstate"), 2);
}

TYPED_TEST_P(OneStateSeries, pass_1_reads_the_attributes_alone)
{
    const auto written = this->append(2).at(1);
    const auto state = this->read_state(written, 1, this->read_well());
    EXPECT_EQ(state.series, written.series);
    EXPECT_EQ(state.index.nindex, 2);
    EXPECT_EQ(state.nstate, 2);
    EXPECT_EQ(state.index.indexident, emptied(written).index.indexident);
    EXPECT_EQ(TypeParam::values(state), TypeParam::values(emptied(written)));
    EXPECT_EQ(state.found_flags, untouched);
}

TYPED_TEST_P(OneStateSeries, pass_0_reads_the_index_values_of_the_state_too)
{
    for (const auto& written : this->append(3)) {
        const auto state = this->read_state(written, 0, this->read_well());
        EXPECT_EQ(state.nstate, 3);
        EXPECT_EQ(state.index.indexident, written.index.indexident);
        EXPECT_EQ(state.index.indexval, written.index.indexval);
        EXPECT_EQ(TypeParam::values(state), TypeParam::values(emptied(written)));
        EXPECT_EQ(state.found_flags, untouched);
    }
}

// As a flush leaves them that was cut off after the extents were written.
TYPED_TEST_P(OneStateSeries, states_without_values_in_the_file_do_not_count)
{
    auto states = this->append(3);
    auto lost = states[2].next();
    this->set_states(this->data(lost, TypeParam::values_name), 5);
    for (const char* name : {"indexident", "indexval"}) this->set_states(this->index(lost, name), 5);
    this->expect_states(states);
    this->read_state(lost, 2, failure(-6031, this->not_there(TypeParam::values_message)));
    this->read_state(lost, 0, failure(-6031, this->not_there("indexident 2")));

    EXPECT_EQ(this->write(lost), success);
    states.push_back(lost);
    this->expect_states(states);
    EXPECT_EQ(dataset_extents(this->file, this->data(lost, TypeParam::values_name)).at(0), 4);
}

TYPED_TEST_P(OneStateSeries, another_pass_is_refused)
{
    const auto written = this->append(1).at(0);
    for (const int32_t pass : {-1, 3, 15})
        EXPECT_EQ(listing(this->read_state(written, pass, failure(-3, TypeParam::pass_message))),
                  listing(emptied(written)));
}

TYPED_TEST_P(OneStateSeries, state_that_is_not_there_is_reported)
{
    auto state = this->append(2).at(1);
    for (const int32_t place : {2, 2147483647, -1, -2147483647 - 1}) {
        state.ipos = place;
        this->read_state(state, 0, failure(-6031, this->not_there("indexident 2")));
        this->read_state(state, 2, failure(-6031, this->not_there(TypeParam::values_message)));
        EXPECT_EQ(this->read_state(state, 1, this->read_well()).nstate, 2);
    }
}

TYPED_TEST_P(OneStateSeries, stored_states_count_whatever_the_attribute_says)
{
    const auto states = this->append(3);
    this->falsify_attribute(this->header(states[0]), "nstate", 99);
    this->expect_states(states);
    this->remove_attribute(this->header(states[0]), "nstate");
    this->expect_states(states);
}

TYPED_TEST_P(OneStateSeries, attribute_counts_where_a_state_stores_nothing)
{
    auto state = TypeParam::without_values();
    EXPECT_EQ(this->write(state), success);
    EXPECT_EQ(this->write(state), success);
    EXPECT_FALSE(exists(this->file, this->data(state, TypeParam::values_name)));
    EXPECT_FALSE(exists(this->file, this->index(state, "indexident")));
    EXPECT_EQ(this->read_state(state, 2, this->read_well()).nstate, 2);
    this->remove_attribute(this->header(state), "nstate");
    EXPECT_EQ(this->read_state(state, 2, this->read_well()).nstate, 0);
}

TYPED_TEST_P(OneStateSeries, index_counts_where_a_state_has_no_values)
{
    auto state = TypeParam::without_values();
    state.index.nindex = 2;
    EXPECT_EQ(this->write(state), success);
    EXPECT_EQ(this->write(state), success);
    this->remove_attribute(this->header(state), "nstate");
    EXPECT_EQ(this->write(state), success);
    EXPECT_EQ(this->read_state(state, 2, this->read_well()).nstate, 3);
}

// The index rows of a state whose values could not be stored.
TYPED_TEST_P(OneStateSeries, state_that_failed_is_not_counted_and_gives_way)
{
    auto states = this->append(2);
    const auto failed = TypeParam::too_large(states[1].next());
    EXPECT_EQ(this->write(failed).ierr, -6031);
    EXPECT_EQ(dataset_extents(this->file, this->index(failed, "indexident")).at(0), 3);
    EXPECT_EQ(attribute_value<int32_t>(this->file, this->header(failed), "nstate"), 2);
    this->expect_states(states);
    states.push_back(states[1].next());
    for (float& value : states[2].index.indexval) value = -5;
    EXPECT_EQ(this->write(states[2]), success);
    this->expect_states(states);
    EXPECT_EQ(dataset_extents(this->file, this->index(failed, "indexval")).at(0), 3);
}

TYPED_TEST_P(OneStateSeries, first_state_that_failed_gives_way)
{
    const auto state = this->append(1).at(0);
    this->remove(this->data(state, TypeParam::values_name));
    auto second = state.next();
    EXPECT_EQ(this->write(second), success);
    second.ipos = 0;
    this->expect_states({second});
}

TYPED_TEST_P(OneStateSeries, first_call_that_failed_is_made_good_by_the_next)
{
    const auto state = this->first();
    EXPECT_NE(this->write(TypeParam::fails_halfway(state)).ierr, 0);
    EXPECT_EQ(H5Aexists_by_name(this->file, this->header(state).c_str(), "nstate", H5P_DEFAULT), 0);
    EXPECT_EQ(this->write(state), success);
    this->expect_states({state});
}

TYPED_TEST_P(OneStateSeries, index_rows_stay_beside_their_values)
{
    auto states = this->append(2);
    this->remove(this->index(states[0], "indexval"));
    this->set_states(this->index(states[0], "indexident"), 1);
    states.push_back(states[1].next());
    EXPECT_EQ(this->write(states[2]), success);
    const auto last = this->read_state(states[2], 2, this->read_well());
    EXPECT_EQ(last.nstate, 3);
    EXPECT_EQ(listing(last), listing(states[2]));
}

TYPED_TEST_P(OneStateSeries, more_states_than_can_be_counted_are_refused)
{
    const auto state = this->append(1).at(0);
    this->set_states(this->data(state, TypeParam::values_name), 2147483647);
    EXPECT_EQ(this->write(state.next()), failure(-3, TypeParam::writing_message));
    EXPECT_EQ(dataset_extents(this->file, this->index(state, "indexident")).at(0), 1);
    EXPECT_EQ(this->read_state(state, 1, this->read_well()).nstate, 2147483647);
    this->set_states(this->data(state, TypeParam::values_name), 5000000000);
    EXPECT_EQ(this->read_state(state, 1, this->read_well()).nstate, 2147483647);
}

TYPED_TEST_P(OneStateSeries, chunk_size_setting_is_the_number_of_states_in_a_chunk)
{
    const int32_t eight = 8, one = 1;
    VAK_SET_CHUNK_SIZE(&eight);
    const auto states = this->append(3);
    VAK_SET_CHUNK_SIZE(&one);
    EXPECT_THAT(this->stored(states[0]),
                testing::HasSubstr("indexident int32 [unlimited(3),2] chunked(8,2)\n"));
    EXPECT_THAT(this->stored(states[0]), testing::HasSubstr(TypeParam::chunks_of_8));
    this->expect_states(states);
}

TYPED_TEST_P(OneStateSeries, filters_are_found)
{
    auto state = TypeParam::large();
    state.flags = 255;
    state.params[0] = 2;
    state.params[1] = 6;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(this->write(state), success);
    EXPECT_THAT(this->stored(state), testing::HasSubstr(TypeParam::filtered_values));
    EXPECT_THAT(this->stored(state),
                testing::HasSubstr("indexval float32 [unlimited(2),8] chunked(1,8) shuffle deflate(6)\n"));
    EXPECT_THAT(
        this->stored(state),
        testing::HasSubstr("indexident int32 [unlimited(2),8] chunked(1,8) scaleoffset(int,0) shuffle "
                           "deflate(6) fill=10000\n"));
    state.nstate = 2;
    const auto found = this->read_state(state, 2, this->read_well());
    EXPECT_EQ(listing(found), listing(state));
    EXPECT_EQ(found.found_flags, TypeParam::filters);
    EXPECT_EQ(found.found_params[1], 6);
}

TYPED_TEST_P(OneStateSeries, reals_of_8_bytes_are_stored_so)
{
    auto state = this->first();
    state.ivsize = 8;
    EXPECT_EQ(this->write(state), success);
    EXPECT_THAT(this->stored(state), testing::HasSubstr("indexval float64 [unlimited(1),2]"));
    this->expect_states({state});
}

TYPED_TEST_P(OneStateSeries, null_arrays_are_checked_and_not_delivered)
{
    const auto written = this->append(1).at(0);
    auto state = emptied(written);
    state.wants_arrays = false;
    EXPECT_EQ(this->read(state, 2), this->read_well());
    EXPECT_EQ(state.nstate, 1);
    EXPECT_EQ(state.found_flags, 0);
    EXPECT_EQ(TypeParam::values(state), TypeParam::values(emptied(written)));
    this->remove(this->index(written, "indexval"));
    EXPECT_EQ(this->read(state, 2), failure(-6002,
                                            "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, "
                                            "data_size, error: indexval 3 4 -1\n"));
}

TYPED_TEST_P(OneStateSeries, no_group_is_reported)
{
    auto state = this->first();
    EXPECT_EQ(this->run([&] { return state.read(H5I_INVALID_HID, 2); }),
              failure(-1, "VAK ERROR - header not found\n"));
}

TYPED_TEST_P(OneStateSeries, file_that_is_none_gives_the_status_of_opening)
{
    const auto state = this->first();
    const Result result = this->run([&] { return state.write(H5I_INVALID_HID); });
    EXPECT_LT(result.ierr, 0);
    EXPECT_THAT(result.output.err, testing::StartsWith("VAK"));
}

TYPED_TEST_P(OneStateSeries, wrong_key_is_reported_before_a_wrong_pass)
{
    const auto written = this->append(1).at(0);
    this->falsify_attribute(this->header(written), "block", 1100);
    for (const int32_t pass : {2, 5}) this->read_state(written, pass, failure(-1, TypeParam::key_message));
}

TYPED_TEST_P(OneStateSeries, missing_key_is_reported)
{
    const auto written = this->append(1).at(0);
    this->remove_attribute(this->header(written), "block");
    this->read_state(written, 1,
                     failure(-4002,
                             "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, "
                             "data_size, error: block 2 4 -1\n"));
}

TYPED_TEST_P(OneStateSeries, missing_subgroups_of_the_legacy_family_are_reported)
{
    for (const std::string section : {"data", "index", "header"}) {
        const auto written = this->append(1).at(0);
        EXPECT_EQ(exists(this->file, written.path() + "/" + section), this->legacy);
        if (!this->legacy) continue;
        this->remove(written.path() + "/" + section);
        this->read_state(written, 2, failure(-1, "VAK ERROR - " + section + " not found\n"));
        this->remove("multistate");
    }
}

TYPED_TEST_P(OneStateSeries, subgroup_that_cannot_be_had_is_reported_and_the_states_before_stay)
{
    if (!this->legacy) return;
    for (const std::string section : {"data", "index", "header"}) {
        auto states = this->append(2);
        const std::string block = states[0].path() + "/";
        EXPECT_GE(H5Lmove(this->file, (block + section).c_str(), this->file, (block + "kept").c_str(),
                          H5P_DEFAULT, H5P_DEFAULT),
                  0);
        H5Lcreate_soft("/nowhere", this->file, (block + section).c_str(), H5P_DEFAULT, H5P_DEFAULT);
        EXPECT_EQ(this->write(states[1].next()), failure(-1, TypeParam::writing_message)) << section;
        this->remove(block + section);
        EXPECT_GE(H5Lmove(this->file, (block + "kept").c_str(), this->file, (block + section).c_str(),
                          H5P_DEFAULT, H5P_DEFAULT),
                  0);
        this->expect_states(states);
        this->remove("multistate");
    }
}

REGISTER_TYPED_TEST_SUITE_P(
    OneStateSeries, states_are_read_back_by_their_place, number_of_states_is_stored_with_each_call,
    callers_numbering_leaves_no_gaps, later_calls_write_no_attributes_and_no_tables,
    pass_1_reads_the_attributes_alone, pass_0_reads_the_index_values_of_the_state_too,
    another_pass_is_refused, state_that_is_not_there_is_reported,
    stored_states_count_whatever_the_attribute_says, attribute_counts_where_a_state_stores_nothing,
    index_counts_where_a_state_has_no_values, state_that_failed_is_not_counted_and_gives_way,
    first_state_that_failed_gives_way, first_call_that_failed_is_made_good_by_the_next,
    states_without_values_in_the_file_do_not_count, index_rows_stay_beside_their_values,
    more_states_than_can_be_counted_are_refused, chunk_size_setting_is_the_number_of_states_in_a_chunk,
    filters_are_found, reals_of_8_bytes_are_stored_so, null_arrays_are_checked_and_not_delivered,
    no_group_is_reported, file_that_is_none_gives_the_status_of_opening,
    wrong_key_is_reported_before_a_wrong_pass, missing_key_is_reported,
    missing_subgroups_of_the_legacy_family_are_reported,
    subgroup_that_cannot_be_had_is_reported_and_the_states_before_stay);

}  // namespace vak::test
