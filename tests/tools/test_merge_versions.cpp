// The version check of the merge: who counts as compatible, and what ends the merge.
#include <gtest/gtest.h>

#include "samples/activflags.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

const std::string incompatible = "\nVAK WARNING - files maybe incompatible\n";
constexpr size_t record_bytes = 64, signature_bytes = 8;

class MergeVersions : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeVersions() : MergeTest(GetParam()) {}

    // A domain whose header says so.
    hid_t add_version(const std::string& version)
    {
        const hid_t domain = add_domain();
        put_header(domain);
        EXPECT_EQ(sample_of<ActivFlags>(family()).write(domain), 0);
        const ObjectId record = open_object(domain, "vakheader/vakheader");
        const TypeId type{H5Dget_type(record), "type"};
        std::string text(record_bytes, ' ');
        EXPECT_GE(H5Dread(record, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), 0);
        text.replace(signature_bytes, std::string::npos, padded(version, record_bytes - signature_bytes));
        EXPECT_GE(H5Dwrite(record, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, text.data()), 0);
        return domain;
    }

    // The check lines of what was printed.
    std::string checks() const
    {
        std::string lines;
        std::istringstream stream(printed().out);
        for (std::string line; std::getline(stream, line);)
            if (line.starts_with(" VAK check")) lines += line + "\n";
        return lines;
    }
    std::string own() const { return legacy() ? "1 2 0" : "2 2 14"; }
    std::string program() const { return legacy() ? " - program: 1.2.0\n" : " - program: 2.2.14\n"; }
    std::string own_line(int number, int n) const
    {
        return " VAK check file        " + std::to_string(number) + " / " + std::to_string(n) +
               ": OK      - version file: " + (legacy() ? "1.2.0" : "2.2.14") + program();
    }
};

TEST_P(MergeVersions, of_this_library_are_told_above_level_zero)
{
    add_version(own());
    add_version(own());
    EXPECT_EQ(merge(1), 0);
    EXPECT_EQ(checks(), own_line(0, 2) + own_line(1, 2));
    restart();
    add_version(own());
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(checks(), "");
}

TEST_P(MergeVersions, that_differ_behind_the_major_number_are_warned_of_and_compatible)
{
    for (const char* const rest : {" 2 13", " 1 14", " 3 0"}) {
        restart();
        const std::string version = (legacy() ? "1" : "2") + std::string(rest);
        add_version(version);
        EXPECT_EQ(merge(4), 0);
        std::string dotted = version;
        std::ranges::replace(dotted, ' ', '.');
        EXPECT_EQ(checks(), " VAK check file        0 / 1: WARNING - version file: " + dotted + program());
        EXPECT_THAT(printed().err, testing::Not(testing::HasSubstr(incompatible)));
    }
}

TEST_P(MergeVersions, of_another_major_number_are_merged_all_the_same)
{
    add_version(own());
    add_version("3 0 0");
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(checks(), " VAK check file        1 / 2: NOT OK  - version file: 3.0.0" + program());
    EXPECT_THAT(printed().err, testing::StartsWith(incompatible));
    EXPECT_TRUE(exists(target(), sample_of<ActivFlags>(family()).path()));
}

TEST_P(MergeVersions, of_the_other_family_are_not_compatible)
{
    add_version(legacy() ? "2 2 14" : "1 2 0");
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(checks(), " VAK check file        0 / 1: NOT OK  - version file: " +
                            std::string(legacy() ? "2.2.14" : "1.2.0") + program());
}

TEST_P(MergeVersions, that_are_no_three_numbers_are_not_compatible)
{
    add_version("no version");
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(checks(), " VAK check file        0 / 1: NOT OK  - version file: -1.-1.-1" + program());
    EXPECT_THAT(printed().err, testing::StartsWith(incompatible));
}

TEST_P(MergeVersions, are_missed_where_there_is_no_header)
{
    EXPECT_EQ(sample_of<ActivFlags>(family()).write(add_domain()), 0);
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(checks(), "");
    EXPECT_THAT(printed().err,
                testing::StartsWith("\nVAK WARNING file [0]: \"vakheader\" not found\n" + incompatible));
    EXPECT_FALSE(exists(target(), "vakheader"));
}

TEST_P(MergeVersions, are_those_of_one_header_where_a_domain_has_several)
{
    const hid_t domain = add_version(own());
    const ObjectId more(H5Gcreate2(domain, "more", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "more");
    put_header(more);
    EXPECT_EQ(merge(1), 0);
    EXPECT_EQ(checks(), own_line(0, 1));
    EXPECT_THAT(printed().err,
                testing::StartsWith("VAK WARNING file [0] contains multiple \"vakheader\"s!\n"));
}

TEST_P(MergeVersions, that_cannot_be_read_end_the_merge)
{
    add_version(own());
    const hid_t damaged = add_version(own());
    EXPECT_GE(H5Ldelete(damaged, "vakheader/vakheader", H5P_DEFAULT), 0);

    const int32_t status = merge(1);

    EXPECT_LT(status, 0);
    EXPECT_THAT(
        printed().err,
        testing::EndsWith("\nVAK ERROR - incompatible file - error code = " + std::to_string(status) + "\n"));
    EXPECT_THAT(printed().out, testing::Not(testing::HasSubstr("Start file merge")));
    EXPECT_EQ(layout(target(), "."), "\n");
}

TEST_P(MergeVersions, are_those_of_the_header_of_the_target)
{
    const hid_t domain = add_version(own());
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(layout(target(), "vakheader"), layout(domain, "vakheader"));
    EXPECT_EQ(dataset_texts(target(), "vakheader/vakheader"), dataset_texts(domain, "vakheader/vakheader"));
}

INSTANTIATE_TEST_SUITE_P(, MergeVersions, both_families, family_name);

}  // namespace
