// The result variable that tells for each element the domain it came from.
#include <gtest/gtest.h>

#include "samples/connectivities.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

const std::string variable = "constant/variable/DMPComputeDomainNumber/vakblock";
const std::string group = "constant/variablegroup/Domain/vakblock";

std::string numbers(const std::string& etyp)
{
    return "constant/entityresults/" + etyp + "/DMPComputeDomainNumber/vakblock";
}

class MergeDomainNumbers : public MergeTest {
protected:
    MergeDomainNumbers() : MergeTest(Family::current) {}

    static Connectivities elements(std::vector<int32_t> ids, const std::string& etypelem,
                                   const std::string& etyp = "ELEMENT")
    {
        Connectivities c;
        c.etyp = padded(etyp);
        c.etypelem = padded(etypelem);
        c.nele = static_cast<int32_t>(ids.size());
        c.npele = 1;
        c.nbint = c.nbfloat = 0;
        c.ic = ids;
        c.pid = ids;
        c.idele = std::move(ids);
        return c;
    }
    std::vector<int32_t> ids(const std::string& etyp) const
    {
        return dataset_values<int32_t>(target(), numbers(etyp) + "/entid");
    }
    std::vector<float> files(const std::string& etyp) const
    {
        return dataset_values<float>(target(), numbers(etyp) + "/res");
    }
};

TEST_F(MergeDomainNumbers, are_those_of_the_lowest_file_with_the_element)
{
    const hid_t first = add_domain(), second = add_domain(), third = add_domain();
    EXPECT_EQ(elements({30, 10}, "HEXA").write(first), 0);
    EXPECT_EQ(elements({20, 30}, "HEXA").write(second), 0);
    EXPECT_EQ(elements({5, 20}, "TETRA").write(third), 0);
    EXPECT_EQ(elements({7}, "BEAM", "BAR").write(third), 0);

    EXPECT_EQ(merge(0), 0);

    EXPECT_EQ(ids("ELEMENT"), (std::vector<int32_t>{5, 10, 20, 30}));
    EXPECT_EQ(files("ELEMENT"), (std::vector<float>{2, 0, 1, 0}));
    EXPECT_EQ(ids("BAR"), (std::vector<int32_t>{7}));
    EXPECT_EQ(files("BAR"), (std::vector<float>{2}));
}

TEST_F(MergeDomainNumbers, are_described_by_a_variable_and_its_group)
{
    EXPECT_EQ(elements({1}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(elements({2}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(merge(0), 0);
    EXPECT_EQ(attribute_text(target(), variable, "varkey"), padded("DMPComputeDomainNumber"));
    EXPECT_EQ(attribute_text(target(), variable, "varnam"), padded("DMPComputeDomainNumber"));
    EXPECT_EQ(attribute_text(target(), variable, "varclass"), padded("CLASS_DISCRETE"));
    EXPECT_EQ(attribute_text(target(), variable, "type"), padded("FLOAT"));
    EXPECT_EQ(attribute_value<int32_t>(target(), variable, "ncoo"), 1);
    EXPECT_EQ(attribute_value<int32_t>(target(), variable, "rank"), 0);
    EXPECT_EQ(attribute_text(target(), group, "etypvar"), padded("Domain"));
    EXPECT_EQ(dataset_texts(target(), group + "/varkey"),
              (std::vector<std::string>{padded("DMPComputeDomainNumber")}));
}

TEST_F(MergeDomainNumbers, are_stored_as_any_result)
{
    EXPECT_EQ(elements({1}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(elements({2}, "HEXA").write(add_domain()), 0);
    real_size = 8;
    EXPECT_EQ(merge(0), 0);
    EXPECT_EQ(layout(target(), numbers("ELEMENT")), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A nent int32
A etypvar char[256]
A ncoo int32
A etypzone char[256]
A zoneid int32
A etypframe char[256]
A fswitch int32
A dmpswitch int32
A nindex int32
A indexic int32
D entid int32 [2] compact
D fidglob int32 compact
D res float64 [2,1] compact
)");
}

TEST_F(MergeDomainNumbers, of_one_file_are_not_added)
{
    EXPECT_EQ(elements({1}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(merge(0), 0);
    EXPECT_FALSE(exists(target(), variable));
    EXPECT_FALSE(exists(target(), group));
    EXPECT_FALSE(exists(target(), numbers("ELEMENT")));
}

TEST_F(MergeDomainNumbers, are_not_added_with_option_four)
{
    EXPECT_EQ(elements({1}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(elements({2}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(merge(4), 0);
    EXPECT_FALSE(exists(target(), variable));
    EXPECT_FALSE(exists(target(), numbers("ELEMENT")));
}

TEST_F(MergeDomainNumbers, without_elements_have_their_variable_alone)
{
    add_domain();
    add_domain();
    EXPECT_EQ(merge(0), 0);
    EXPECT_TRUE(exists(target(), variable));
    EXPECT_FALSE(exists(target(), "constant/entityresults"));
}

TEST_F(MergeDomainNumbers, leave_what_an_earlier_merge_described)
{
    for (int i = 0; i < 2; ++i) EXPECT_EQ(elements({i}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(merge(0), 0);
    for (const std::string& path : {std::string("constant/connectivities"), std::string("singlestate")})
        if (exists(target(), path)) H5Ldelete(target(), path.c_str(), H5P_DEFAULT);
    H5Ldelete(target(), "constant/entityresults", H5P_DEFAULT);

    EXPECT_EQ(merge(0), 0);

    EXPECT_THAT(printed().err, testing::HasSubstr("VAK WARNING target file: \"" + variable +
                                                  "\" is there already and stays\n"));
    EXPECT_THAT(printed().err, testing::HasSubstr("VAK WARNING target file: \"" + group +
                                                  "\" is there already and stays\n"));
    EXPECT_EQ(files("ELEMENT"), (std::vector<float>{0, 1}));
}

TEST_F(MergeDomainNumbers, of_domains_that_were_merged_before_stay)
{
    for (int i = 0; i < 2; ++i) EXPECT_EQ(elements({i}, "HEXA").write(add_domain()), 0);
    EXPECT_EQ(merge(0), 0);
    const hid_t merged_before = create_domain();
    EXPECT_GE(H5Ocopy(target(), "constant", merged_before, "constant", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_GE(H5Ocopy(target(), "singlestate", merged_before, "singlestate", H5P_DEFAULT, H5P_DEFAULT), 0);
    restart();
    adopt(merged_before);
    EXPECT_EQ(elements({9}, "HEXA").write(add_domain()), 0);

    EXPECT_EQ(merge(0), 0);

    EXPECT_EQ(ids("ELEMENT"), (std::vector<int32_t>{0, 1}));
    EXPECT_EQ(files("ELEMENT"), (std::vector<float>{0, 1}));
    EXPECT_THAT(printed().err, testing::EndsWith("VAK WARNING target file: \"" + numbers("ELEMENT") +
                                                 "\" is there already and stays\n"));
}

class MergeLegacyDomains : public MergeTest {
protected:
    MergeLegacyDomains() : MergeTest(Family::legacy) {}
};

TEST_F(MergeLegacyDomains, have_no_domain_numbers)
{
    const auto block = sample_of<Connectivities>(Family::legacy);
    EXPECT_EQ(block.write(add_domain()), 0);
    EXPECT_EQ(block.write(add_domain()), 0);
    EXPECT_EQ(merge(0), 0);
    EXPECT_FALSE(exists(target(), "constant"));
}

}  // namespace
