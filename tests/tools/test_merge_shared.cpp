// Blocks that all domains share: copied once, from the first file that has them.
#include <gtest/gtest.h>

#include "samples/indices.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeShared : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeShared() : MergeTest(GetParam()) {}

    hid_t add_domain_with_header()
    {
        const hid_t domain = add_domain();
        put_header(domain);
        return domain;
    }

    Text text(const std::string& name) const
    {
        Text t = sample_of<Text>(family());
        t.name = padded(name);
        return t;
    }

    // Between the start of the merge and the first merged kind.
    std::string copy_lines() const
    {
        const std::string out = printed().out, start = "Start file merge\n\n";
        const size_t from = out.find(start) + start.size();
        return out.substr(from, out.find(" target file: create") - from);
    }

    std::string title_in_target() const
    {
        return trimmed(attribute_text(target(), sample_of<System>(family()).path() + header(), "title"));
    }
};

TEST_P(MergeShared, are_those_of_the_first_file)
{
    for (const char* const title : {"first", "second"}) {
        System system = sample_of<System>(family());
        system.title = padded(title);
        EXPECT_EQ(system.write(add_domain_with_header()), 0);
    }
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(title_in_target(), "first");
}

TEST_P(MergeShared, that_the_first_file_lacks_come_from_the_first_that_has_them)
{
    add_domain_with_header();
    const hid_t second = add_domain_with_header(), third = add_domain_with_header();
    System system = sample_of<System>(family());
    for (const auto& [domain, title] : {std::pair(second, "second"), std::pair(third, "third")}) {
        system.title = padded(title);
        EXPECT_EQ(system.write(domain), 0);
    }
    EXPECT_EQ(text("log").write(third), 0);

    EXPECT_EQ(merge(1), 0);

    EXPECT_EQ(title_in_target(), "second");
    EXPECT_TRUE(exists(target(), text("log").path()));
    const std::string variables =
        legacy()
            ? " target file: copy \"variables\" blocks from file  [0]\n\n 0 \"variables\" block(s) found\n"
            : " target file: copy \"variablegroup\" blocks from file  [0]\n\n 0 \"variablegroup\" block(s) found\n"
              " target file: copy \"variable\" blocks from file  [0]\n\n 0 \"variable\" block(s) found\n";
    EXPECT_EQ(copy_lines(),
              " target file: copy \"system\" block from file  [0]\n"
              " block not found"
              " target file: copy \"system\" block from file  [1]\n"
              " target file: copy \"indices\" block from file  [0]\n"
              " block not found" +
                  variables +
                  " target file: copy \"text\" blocks from file  [0]\n"
                  "\n 0 \"text\" block(s) found\n"
                  " target file: copy \"text\" blocks from file  [2]\n");
}

TEST_P(MergeShared, of_several_names_are_all_copied)
{
    const hid_t first = add_domain_with_header(), second = add_domain_with_header();
    EXPECT_EQ(text("a").write(first), 0);
    EXPECT_EQ(text("b").write(first), 0);
    EXPECT_EQ(text("b").write(second), 0);
    EXPECT_EQ(text("c").write(second), 0);

    EXPECT_EQ(merge(1), 0);

    for (const char* const name : {"a", "b", "c"}) EXPECT_TRUE(exists(target(), text(name).path())) << name;
    EXPECT_THAT(copy_lines(), testing::EndsWith(" target file: copy \"text\" blocks from file  [0]\n"
                                                "\n 2 \"text\" block(s) found\n"
                                                " target file: copy \"text\" blocks from file  [1]\n"));
}

TEST_P(MergeShared, that_should_be_single_are_warned_of)
{
    const hid_t domain = add_domain_with_header();
    const System system = sample_of<System>(family());
    EXPECT_EQ(system.write(domain), 0);
    EXPECT_GE(H5Ocopy(domain, "constant/system", domain, "constant/system2", H5P_DEFAULT, H5P_DEFAULT), 0);

    EXPECT_EQ(merge(), 0);

    EXPECT_THAT(printed().err, testing::HasSubstr("\nVAK WARNING file [0]: multiple \"system\" blocks\n"));
    EXPECT_TRUE(exists(target(), "constant/system"));
    EXPECT_TRUE(exists(target(), "constant/system2"));
}

TEST_P(MergeShared, stay_in_the_target_as_they_are)
{
    System own = sample_of<System>(family());
    own.title = padded("own");
    EXPECT_EQ(own.write(target()), 0);
    EXPECT_EQ(sample_of<System>(family()).write(add_domain_with_header()), 0);

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(title_in_target(), "own");
    EXPECT_THAT(printed().err, testing::HasSubstr("VAK WARNING target file: block key 10 \"" + own.path() +
                                                  "\" is there already and stays\n"));
}

TEST_P(MergeShared, reached_by_a_link_are_copied_themselves)
{
    const hid_t domain = add_domain_with_header();
    const Text t = text("log");
    EXPECT_EQ(t.write(domain), 0);
    const std::string line = t.path() + data() + "line";
    EXPECT_GE(H5Lmove(domain, line.c_str(), domain, "elsewhere", H5P_DEFAULT, H5P_DEFAULT), 0);
    EXPECT_GE(H5Lcreate_soft("/elsewhere", domain, line.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(dataset_texts(target(), line), dataset_texts(domain, line));
}

INSTANTIATE_TEST_SUITE_P(, MergeShared, both_families, family_name);

}  // namespace
