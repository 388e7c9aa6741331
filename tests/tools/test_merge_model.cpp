// Model blocks of several domains joined: the union of what they list, the lowest file where they differ.
#include <gtest/gtest.h>

#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/parts.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeModel : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeModel() : MergeTest(GetParam()) {}

    template <class S>
    void merge_two(const S& first, const S& second)
    {
        EXPECT_EQ(first.write(add_domain()), 0);
        EXPECT_EQ(second.write(add_domain()), 0);
        EXPECT_EQ(merge(), 0);
    }
    template <class T, class S>
    std::vector<T> merged(const S& sample, const std::string& name) const
    {
        return dataset_values<T>(target(), sample.path() + data() + name);
    }
    template <class S>
    std::vector<int32_t> integers(const S& sample, const std::string& name) const
    {
        return merged<int32_t>(sample, name);
    }
    template <class S>
    std::vector<std::string> texts(const S& sample, const std::string& name) const
    {
        return dataset_texts(target(), sample.path() + data() + name);
    }
    template <class S>
    int32_t attribute(const S& sample, const std::string& name) const
    {
        return attribute_value<int32_t>(target(), sample.path() + header(), name);
    }
    template <class S>
    bool has(const S& sample, const std::string& name) const
    {
        return exists(target(), sample.path() + data() + name);
    }
    template <class S>
    std::string left_out(const S& sample, const std::string& what) const
    {
        return "VAK WARNING file [1]: block key " + std::to_string(S::key) + " \"" + sample.path() +
               "\" differs in " + what + " from file [0] and is left out\n";
    }

    Connectivities elements(std::vector<int32_t> ids, int32_t mark) const
    {
        auto c = sample_of<Connectivities>(family());
        c.nele = static_cast<int32_t>(ids.size());
        c.npele = 2;
        c.nbint = c.nbfloat = 1;
        c.units.mbunit = {1};
        c.units.mdunit = {0};
        c.idele = std::move(ids);
        c.pid.assign(c.idele.size(), mark);
        c.ic.clear();
        c.iparam.clear();
        c.fparam.clear();
        for (const int32_t id : c.idele) {
            c.ic.insert(c.ic.end(), {id, mark});
            c.iparam.push_back(-id);
            c.fparam.push_back(static_cast<float>(mark) + 0.5F);
        }
        return c;
    }
    Attributes titles(std::vector<int32_t> ids, int32_t nuid, int32_t length, const std::string& word) const
    {
        auto a = sample_of<Attributes>(family());
        a.nent = static_cast<int32_t>(ids.size());
        a.nuid = nuid;
        a.length = legacy() ? 256 : length;
        a.entid = std::move(ids);
        a.title.clear();
        for (size_t i = 0; i < a.entid.size(); ++i) a.title += padded(word, static_cast<size_t>(a.length));
        a.uid.assign(a.entid.size() * static_cast<size_t>(nuid), 0);
        for (size_t i = 0; i < a.uid.size(); ++i) a.uid[i] = static_cast<int32_t>(i) + 10 * nuid;
        return a;
    }
};

TEST_P(MergeModel, elements_of_several_domains_are_listed_once)
{
    const Connectivities first = elements({5, 2}, 1), second = elements({3, 5}, 2);
    merge_two(first, second);
    EXPECT_EQ(attribute(first, "nele"), 3);
    EXPECT_EQ(integers(first, "idele"), (std::vector<int32_t>{2, 3, 5}));
    EXPECT_EQ(integers(first, "pid"), (std::vector<int32_t>{1, 2, 1}));
    EXPECT_EQ(integers(first, "ic"), (std::vector<int32_t>{2, 1, 3, 2, 5, 1}));
    EXPECT_EQ(integers(first, "iparam"), (std::vector<int32_t>{-2, -3, -5}));
    EXPECT_EQ(merged<float>(first, "fparam"), (std::vector<float>{1.5F, 2.5F, 1.5F}));
    EXPECT_EQ(printed().err.find("left out"), std::string::npos);
}

TEST_P(MergeModel, elements_of_another_form_are_left_out_with_a_warning)
{
    Connectivities first = elements({5, 2}, 1), second = elements({3, 4}, 2);
    second.npele = 1;
    second.ic = {30, 40};
    merge_two(first, second);
    EXPECT_EQ(integers(first, "idele"), (std::vector<int32_t>{2, 5}));
    EXPECT_THAT(printed().err, testing::EndsWith(left_out(first, "npele")));
}

TEST_P(MergeModel, a_domain_without_elements_takes_nothing_away)
{
    const Connectivities none = elements({}, 1), some = elements({3, 5}, 2);
    merge_two(none, some);
    EXPECT_EQ(integers(some, "idele"), (std::vector<int32_t>{3, 5}));
    EXPECT_EQ(integers(some, "ic"), (std::vector<int32_t>{3, 2, 5, 2}));
    EXPECT_EQ(merged<float>(some, "fparam"), (std::vector<float>{2.5F, 2.5F}));
    restart();
    merge_two(some, none);
    EXPECT_EQ(integers(some, "ic"), (std::vector<int32_t>{3, 2, 5, 2}));
}

TEST_P(MergeModel, elements_of_no_domain_make_an_empty_block)
{
    const Connectivities none = elements({}, 1);
    merge_two(none, none);
    EXPECT_EQ(attribute(none, "nele"), 0);
    EXPECT_FALSE(has(none, "idele"));
    EXPECT_FALSE(has(none, "ic"));
}

TEST_P(MergeModel, an_element_twice_in_one_file_is_merged_into_one_with_a_warning)
{
    const Connectivities first = elements({5, 2, 5}, 1);
    EXPECT_EQ(first.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(integers(first, "idele"), (std::vector<int32_t>{2, 5}));
    EXPECT_EQ(attribute(first, "nele"), 2);
    EXPECT_THAT(printed().err, testing::EndsWith("VAK WARNING file [0]: block key 300 \"" + first.path() +
                                                 "\" lists an entity more than once, merged into one\n"));
}

TEST_P(MergeModel, double_precision_in_any_domain_is_kept)
{
    Connectivities first = elements({1}, 1), second = elements({2}, 2);
    second.real_size = 8;
    merge_two(first, second);
    EXPECT_THAT(layout(target(), first.path()), testing::HasSubstr("fparam float64 [2,1]"));
    EXPECT_THAT(layout(target(), first.path()), testing::HasSubstr("indexval float64"));
}

TEST_P(MergeModel, the_real_size_of_the_call_is_the_least_one)
{
    real_size = 8;
    const Connectivities first = elements({1}, 1);
    merge_two(first, elements({2}, 2));
    EXPECT_THAT(layout(target(), first.path()), testing::HasSubstr("fparam float64 [2,1]"));
}

TEST_P(MergeModel, parts_are_joined_and_keep_every_column_that_a_domain_has)
{
    auto first = sample_of<Parts>(family()), second = first;
    first.npart = second.npart = 2;
    first.pid = {12, 11};
    first.title = fields({"twelve", "eleven"}, 8);
    first.off = 1 + 4;  // no materials, no colours
    first.mtyp = {120, 110};
    second.pid = {12, 13};
    second.length = 10;
    second.title = fields({"not this", "thirteenth"}, 10);
    second.off = 2 + 4;
    second.mid = {1200, 1300};
    merge_two(first, second);
    EXPECT_EQ(attribute(first, "npart"), 3);
    EXPECT_EQ(attribute(first, "length"), 10);
    EXPECT_EQ(attribute(first, "off"), 4);
    EXPECT_EQ(integers(first, "pid"), (std::vector<int32_t>{11, 12, 13}));
    EXPECT_EQ(texts(first, "title"), (std::vector<std::string>{"eleven    ", "twelve    ", "thirteenth"}));
    EXPECT_EQ(integers(first, "mid"), (std::vector<int32_t>{0, 1200, 1300}));
    EXPECT_EQ(integers(first, "mtyp"), (std::vector<int32_t>{110, 120, 0}));
    EXPECT_FALSE(has(first, "pcol"));
}

TEST_P(MergeModel, attributes_are_as_wide_as_the_widest_domain)
{
    const Attributes first = titles({7, 3}, 1, 4, "ab"), second = titles({3, 4}, 2, 6, "cdefgh");
    merge_two(first, second);
    EXPECT_EQ(attribute(first, "nent"), 3);
    EXPECT_EQ(attribute(first, "nuid"), 2);
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{3, 4, 7}));
    EXPECT_EQ(integers(first, "uid"), (std::vector<int32_t>{11, 0, 22, 23, 10, 0}));
    const size_t length = legacy() ? 256 : 6;
    EXPECT_EQ(texts(first, "title"), (std::vector<std::string>{padded("ab", length), padded("cdefgh", length),
                                                               padded("ab", length)}));
    if (legacy()) return;
    EXPECT_EQ(attribute(first, "length"), 6);
}

TEST_P(MergeModel, attributes_without_titles_join_those_with)
{
    const Attributes first = titles({7, 3}, 0, 0, ""), second = titles({4}, 2, 6, "four");
    merge_two(first, second);
    EXPECT_EQ(integers(first, "uid"), (std::vector<int32_t>{0, 0, 20, 21, 0, 0}));
    EXPECT_EQ(trimmed(texts(first, "title").at(1)), "four");
    EXPECT_EQ(trimmed(texts(first, "title").at(0)), "");
}

// What the merged counts promise is stored.
TEST_P(MergeModel, a_domain_without_entities_has_its_say_in_the_widths)
{
    const Attributes none = titles({}, 5, 9, ""), some = titles({7, 3}, 2, 6, "some"),
                     plain = titles({4, 1}, 0, 0, "");
    const auto expect_readable = [&](const Attributes& first, const Attributes& second, int32_t nent) {
        restart();
        merge_two(first, second);
        EXPECT_EQ(attribute(first, "nuid"), 5);
        Attributes merged = first;
        merged.nent = nent;
        merged.entid.assign(static_cast<size_t>(nent), 0);
        merged.uid.assign(static_cast<size_t>(nent) * 5, -1);
        merged.title.assign(static_cast<size_t>(nent) * 256, '?');
        EXPECT_GE(merged.read(open_object(target(), first.path()), legacy() ? 2 : 11), 0) << printed();
        return merged.uid;
    };
    const std::vector<int32_t> uids{22, 23, 0, 0, 0, 20, 21, 0, 0, 0};
    EXPECT_EQ(expect_readable(none, some, 2), uids);
    EXPECT_EQ(expect_readable(some, none, 2), uids);
    EXPECT_EQ(expect_readable(none, plain, 2), std::vector<int32_t>(10, 0));
    EXPECT_EQ(expect_readable(plain, none, 2), std::vector<int32_t>(10, 0));
    EXPECT_TRUE(expect_readable(none, none, 0).empty());
}

TEST_P(MergeModel, parts_of_a_domain_without_any_make_no_column_that_is_missing)
{
    auto none = sample_of<Parts>(family()), some = none;
    none.npart = 0;
    none.pid = none.mid = none.mtyp = none.pcol = {};
    none.title.clear();
    none.off = 0;
    some.off = 7;
    merge_two(some, none);
    EXPECT_EQ(attribute(some, "off"), 0);
    Parts merged = sample_of<Parts>(family());
    EXPECT_GE(merged.read(open_object(target(), some.path()), 3), 0) << printed();
    EXPECT_EQ(integers(some, "mid"), std::vector<int32_t>(some.pid.size(), 0));
}

TEST_P(MergeModel, collectors_are_joined_without_repeats)
{
    auto first = sample_of<Collector>(family()), second = first;
    first.ncoll = second.ncoll = 2;
    first.ntyp = second.ntyp = 2;
    first.idcoll = {9, 4};
    first.etyp = fields({"NODE", "SHELL"});
    first.nent = {2, 1, 1, 0};
    first.entid = {5, 1, 30, 8};
    second.idcoll = {9, 7};
    second.etyp = fields({"BEAM", "NODE"});
    second.nent = {1, 2, 0, 1};
    second.entid = {60, 5, 2, 3};
    merge_two(first, second);
    EXPECT_EQ(attribute(first, "ncoll"), 3);
    EXPECT_EQ(attribute(first, "ntyp"), 3);
    EXPECT_EQ(attribute(first, "nenttot"), 7);
    EXPECT_EQ(integers(first, "idcoll"), (std::vector<int32_t>{4, 7, 9}));
    EXPECT_EQ(texts(first, "etyp"),
              (std::vector<std::string>{padded("NODE"), padded("SHELL"), padded("BEAM")}));
    EXPECT_EQ(integers(first, "nent"), (std::vector<int32_t>{1, 0, 0, 1, 0, 0, 3, 1, 1}));
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{8, 3, 1, 2, 5, 30, 60}));
}

TEST_P(MergeModel, collectors_without_entities_stay)
{
    auto none = sample_of<Collector>(family());
    none.ncoll = 1;
    none.ntyp = 1;
    none.idcoll = {3};
    none.etyp = padded("NODE");
    none.nent = {0};
    none.entid = {};
    merge_two(none, none);
    EXPECT_EQ(integers(none, "idcoll"), (std::vector<int32_t>{3}));
    EXPECT_EQ(attribute(none, "nenttot"), 0);
    EXPECT_FALSE(has(none, "entid"));
}

TEST_P(MergeModel, blocks_of_other_states_and_names_stay_apart)
{
    Attributes first = titles({1}, 1, 4, "one"), later = titles({2}, 1, 4, "two"),
               other = titles({3}, 1, 4, "x");
    later.state = 13;
    other.etyp = padded("SHELL");
    const hid_t domain = add_domain();
    EXPECT_EQ(first.write(domain), 0);
    EXPECT_EQ(later.write(domain), 0);
    EXPECT_EQ(other.write(add_domain()), 0);
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_THAT(printed().out, testing::HasSubstr(" target file: create 3 merged \"attributes\" block(s)\n"));
    EXPECT_EQ(integers(first, "entid"), (std::vector<int32_t>{1}));
    EXPECT_EQ(integers(later, "entid"), (std::vector<int32_t>{2}));
    EXPECT_EQ(integers(other, "entid"), (std::vector<int32_t>{3}));
}

INSTANTIATE_TEST_SUITE_P(, MergeModel, both_families, family_name);

}  // namespace
