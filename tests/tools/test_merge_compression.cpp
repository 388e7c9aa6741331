// How merged blocks are stored: as they were, as the call says, and by the exponents of the variables.
#include <gtest/gtest.h>

#include "samples/attributes.h"
#include "samples/connectivities.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;
using testing::HasSubstr;
using testing::Not;

namespace {

class MergeCompression : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeCompression() : MergeTest(GetParam()) {}

    void use_exponents(const std::vector<std::pair<std::string_view, int32_t>>& table)
    {
        names.clear();
        exponents.clear();
        for (const auto& [name, exponent] : table) {
            names += padded(name);
            exponents.push_back(exponent);
        }
        nvar = static_cast<int32_t>(table.size());
    }

    MultiEntityResults series() const
    {
        auto r = MultiEntityResults::of_states(family(), 2);
        r.zone.dmpswitch = 0;
        return r;
    }
    int32_t merge_one(const MultiEntityResults& r, int32_t options)
    {
        EXPECT_EQ(r.write(add_domain()), 0);
        return merge(options + 4);
    }
    std::string stored(const std::string& path) const { return layout(target(), path); }

    // "kind" is cut or filled to 20 characters, the variable is a field of 256.
    static std::string line(const std::string& kind, const std::string& rest, const std::string& variable)
    {
        return " >-< float scaleoffset " + padded(kind, 20) + ": flag exp aggr: " + rest + " \"" +
               padded(variable) + "\"\n";
    }
};

TEST_P(MergeCompression, is_that_of_the_call_where_a_block_has_none)
{
    flags = 2;
    params[1] = 6;
    const MultiEntityResults r = series();
    EXPECT_EQ(merge_one(r, 0), 0);
    EXPECT_THAT(stored(r.path()), HasSubstr("res float32 [unlimited(2),3,2] chunked(1,3,2) deflate(6)"));
}

TEST_P(MergeCompression, is_that_of_the_block_where_it_has_one)
{
    flags = 2;
    params[1] = 6;
    MultiEntityResults r = series();
    r.flags = 2 + 16;
    r.params[1] = 3;
    EXPECT_EQ(merge_one(r, 0), 0);
    EXPECT_THAT(stored(r.path()),
                HasSubstr("res float32 [unlimited(2),3,2] chunked(1,3,2) shuffle deflate(3)"));
}

TEST_P(MergeCompression, of_the_call_serves_model_blocks_too)
{
    flags = 1;
    params[1] = 5;
    const auto block = sample_of<Attributes>(family());
    EXPECT_EQ(block.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_THAT(stored(block.path()), HasSubstr("uid int32 [4,3] chunked(4,3) deflate(5)"));
}

TEST_P(MergeCompression, of_a_first_domain_without_entities_is_that_of_the_next)
{
    MultiEntityResults none = series(), some = series();
    none.nent = 0;
    none.tables.ids.clear();
    none.res.clear();
    some.flags = 2;
    some.params[1] = 7;
    EXPECT_EQ(none.write(add_domain()), 0);
    EXPECT_EQ(merge_one(some, 0), 0);
    EXPECT_THAT(stored(some.path()), HasSubstr("res float32 [unlimited(2),3,2] chunked(1,3,2) deflate(7)"));
}

TEST_P(MergeCompression, by_exponent_takes_the_name_of_the_variable)
{
    use_exponents({{"VELOCITY", 9}, {"DISPLACEMENT", 2}, {"DISPLACE", 7}});
    const MultiEntityResults r = series();
    EXPECT_EQ(merge_one(r, 2), 0);
    EXPECT_THAT(stored(r.path()),
                HasSubstr("res float32 [unlimited(2),3,2] chunked(1,3,2) scaleoffset(float,2) fill=10000"));
    EXPECT_THAT(printed().out,
                HasSubstr(" block(s)\n" +
                          line("multientityresults", "   128 10000000      2      0:", "DISPLACEMENT")));
}

TEST_P(MergeCompression, by_exponent_is_told_at_level_two_alone)
{
    use_exponents({{"DISPLACEMENT", 2}});
    EXPECT_EQ(merge_one(series(), 1), 0);
    EXPECT_THAT(printed().out, Not(HasSubstr(">-<")));
    restart();
    EXPECT_EQ(merge_one(series(), 0), 0);
    EXPECT_EQ(printed().out, "");
    restart();
    EXPECT_EQ(merge_one(series(), 1 + 2), 0) << "the second bit counts";
    EXPECT_THAT(printed().out, HasSubstr(">-<"));
}

TEST_P(MergeCompression, without_an_exponent_for_the_variable_stays_as_it_was)
{
    use_exponents({{"VELOCITY", 9}, {"DISPLACEMENTS", 1}});
    const MultiEntityResults r = series();
    EXPECT_EQ(merge_one(r, 2), 0);
    EXPECT_THAT(stored(r.path()), Not(HasSubstr("scaleoffset")));
    EXPECT_THAT(printed().out, Not(HasSubstr(">-<")));
}

TEST_P(MergeCompression, by_exponent_is_added_to_that_of_the_block)
{
    use_exponents({{"DISPLACEMENT", 4}});
    MultiEntityResults r = series();
    r.flags = 2 + 16 + 1;
    r.params[1] = 3;
    EXPECT_EQ(merge_one(r, 2), 0);
    EXPECT_THAT(stored(r.path()),
                HasSubstr("chunked(1,3,2) scaleoffset(float,4) shuffle deflate(3) fill=10000"));
    EXPECT_THAT(printed().out,
                HasSubstr(line("multientityresults", "   146 10010010      4      0:", "DISPLACEMENT")));
}

TEST_P(MergeCompression, that_was_lossy_stays_so_and_is_told)
{
    MultiEntityResults r = series();
    r.flags = 128;
    r.params[0] = 3;
    EXPECT_EQ(merge_one(r, 2), 0);
    EXPECT_THAT(stored(r.path()), HasSubstr("scaleoffset(float,3) fill=10000"));
    EXPECT_THAT(printed().out,
                HasSubstr(line("multientityresults", "   128 10000000      3      0:", "DISPLACEMENT")));
}

// Whatever the kind, which may have no values that are rounded.
TEST_P(MergeCompression, by_exponent_is_told_of_model_blocks_too)
{
    use_exponents({{"SECTION", 2}});
    auto elements = sample_of<Connectivities>(family());
    if (legacy()) return;  // they name no variable
    ASSERT_GT(elements.nbfloat, 0);
    elements.etypvar = padded("SECTION");
    EXPECT_EQ(elements.write(add_domain()), 0);
    EXPECT_EQ(merge(2 + 4), 0);
    EXPECT_THAT(printed().out,
                HasSubstr(line("connectivities", "   128 10000000      2      0:", "SECTION")));
    EXPECT_EQ(dataset_values<float>(target(), elements.path() + data() + "fparam"), elements.fparam);
}

// Their writer never rounds values: the line is all that an exponent gives.
TEST_P(MergeCompression, by_exponent_leaves_the_values_of_one_state_exact)
{
    use_exponents({{"DISPLACEMENT", 2}});
    auto r = sample_of<EntityResults>(family());
    r.nent = 4;
    r.zone.dmpswitch = r.zone.fswitch = 0;
    r.tables.ids = {1, 2, 3, 4};
    r.res = some_values(8, 0.001F);
    EXPECT_EQ(r.write(add_domain()), 0);
    EXPECT_EQ(merge(2 + 4), 0);
    EXPECT_THAT(stored(r.path()), Not(HasSubstr("scaleoffset")));
    EXPECT_EQ(dataset_values<float>(target(), r.path() + data() + "res"), r.res);
    EXPECT_THAT(printed().out,
                HasSubstr(line("entityresults", "   128 10000000      2      0:", "DISPLACEMENT")));
}

TEST_P(MergeCompression, by_exponent_serves_element_results)
{
    use_exponents({{"STRESS", 1}});
    const auto r = sample_of<ElementResults>(family());
    const hid_t domain = add_domain();
    EXPECT_EQ(r.write(domain), 0);
    hid_t group = H5I_INVALID_HID;
    ASSERT_EQ(H5Fget_obj_ids(domain, H5F_OBJ_GROUP, 1, &group), 1);
    H5Gclose(group);
    EXPECT_EQ(merge(2 + 4), 0);
    EXPECT_THAT(stored(r.path()),
                HasSubstr("res float32 [3,2,2] chunked(3,2,2) scaleoffset(float,1) fill=10000"));
    EXPECT_THAT(printed().out, HasSubstr(line("elementresults", "   128 10000000      1      0:", "STRESS")));
}

TEST_P(MergeCompression, that_the_filter_cannot_do_ends_the_merge)
{
    for (const int32_t exponent : {-1, 257}) {
        restart();
        use_exponents({{"DISPLACEMENT", exponent}});
        auto r = series();
        r.nent = 8;
        r.ncoo = 1;
        r.tables.ids = {1, 2, 3, 4, 5, 6, 7, 8};
        r.tables.fid.assign(8, 1);
        r.res = some_values(16);
        EXPECT_EQ(merge_one(r, 0), -2130);
        EXPECT_THAT(printed().err,
                    testing::EndsWith("\nVAK ERROR writing \"multientityresults\" block - error "
                                      "code = -2130\n"));
    }
}

TEST_P(MergeCompression, with_the_largest_exponent_is_done)
{
    use_exponents({{"DISPLACEMENT", 256}});
    const MultiEntityResults r = series();
    EXPECT_EQ(merge_one(r, 2), 0);
    EXPECT_THAT(stored(r.path()), HasSubstr("scaleoffset(float,256)"));
    EXPECT_EQ(dataset_values<float>(target(), r.path() + data() + "res"), r.res);
}

INSTANTIATE_TEST_SUITE_P(, MergeCompression, both_families, family_name);

}  // namespace
