// Many domain files are merged by groups; the result is that of merging them at once.
#include <gmock/gmock.h>
#include <vak_sp.h>

#include <filesystem>

#include "cli/domain_set.h"
#include "cli/solid.h"
#include "merge/rounds.h"
#include "store/call.h"
#include "store/file.h"

using namespace vak::test;
using testing::ElementsAre;
using vak::store::call;
using vak::store::Int;

namespace {

std::string field(std::string text) { return text.append(256 - text.size(), ' '); }

constexpr int32_t no_parameters[2] = {0, 0};

// A domain of nodes of which each has a neighbour in common with the domains beside it, and node 1 with all.
void write_shared_results(const std::string& name, int domain)
{
    auto file = vak::store::File::create(name, "run");
    const std::string ops = field("SUM") + field("AVERAGE") + field("min") + field("MAX") + field("FIRST");
    const int32_t nodes[] = {1, 10 + domain, 11 + domain};
    const float weights[] = {static_cast<float>(1 + domain % 3), 2, 6};
    std::vector<float> values;
    for (int n = 0; n < 3; ++n)
        for (int c = 0; c < 5; ++c) values.push_back(static_cast<float>((domain * 7 + n * 3 + c) % 16));
    call("writing", VAK_WRITE_FILEHEADER, file.root(), nullptr, nullptr);
    call("writing", VAK_WRITE_ENTITYRESULTS, file.root(), "NODE", Int{3}, "FORCE", Int{5}, "", Int{-1},
         "GLOBAL", Int{0}, Int{1}, Int{0}, Int{0}, nullptr, nullptr, nodes, Int{0}, nullptr, ops.c_str(),
         weights, values.data(), Int{-1}, Int{-1}, Int{0}, no_parameters, Int{4});
    const int32_t element = 500 - domain, corners[] = {10 + domain, 11 + domain}, part = 1;
    call("writing", VAK_WRITE_CONNECTIVITIES, file.root(), "ELEMENT", "BE2", "PART", "NODE", "", Int{1},
         Int{2}, Int{1}, Int{0}, Int{0}, Int{0}, Int{0}, nullptr, nullptr, &element, &part, corners, nullptr,
         nullptr, Int{-1}, Int{0}, no_parameters, Int{4});
    file.close();
}

class MergeAgain : public testing::Test {
protected:
    std::vector<std::string> domain_files(int n)
    {
        std::vector<std::string> names;
        for (int i = 0; i < n; ++i) {
            names.push_back(folder.file("d" + std::to_string(i) + ".h5"));
            write_shared_results(names.back(), i);
        }
        return names;
    }
    Said merge(const std::vector<std::string>& names, const std::string& target,
               const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"merge", "-o", folder.file(target)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.end(), names.begin(), names.end());
        return vak_says(arguments);
    }

    TempFolder folder;
    const Said alike{.status = 0, .out = "", .err = ""};
};

class MergeRounds : public MergeAgain, public testing::WithParamInterface<int> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Files, MergeRounds, testing::Values(5, 8, 9, 17, 65));

TEST_P(MergeRounds, operators_weights_and_domain_numbers_are_those_of_merging_at_once)
{
    const auto names = domain_files(GetParam());
    ASSERT_EQ(merge(names, "at once.h5").status, 0);
    ASSERT_EQ(merge(names, "rounds.h5", {"--at-once", "4"}).status, 0);
    // The values are small integers and their means have few digits, but rounding comes in other places.
    EXPECT_EQ(
        vak_says({"compare", folder.file("at once.h5"), folder.file("rounds.h5"), "--tolerance", "2e-7"}),
        alike);
    EXPECT_EQ(
        vak_says({"compare", folder.file("at once.h5"), folder.file("rounds.h5"), "--without", "*/FORCE/*"}),
        alike);
    const auto block = DomainSet::shown(folder.file("rounds.h5"), "*/DMPComputeDomainNumber/vakblock");
    for (const auto& shown : block)
        if (shown["key"] == 1000) {
            const auto elements = values_in<int>(shown, "entid");
            const auto numbers = values_in<float>(shown, "res");
            ASSERT_EQ(elements.size(), names.size());
            for (size_t i = 0; i < elements.size(); ++i)
                EXPECT_EQ(numbers[i], static_cast<float>(500 - elements[i]));
        }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}),
              static_cast<std::ptrdiff_t>(names.size()) + 2)
        << "no temporary file is left";
}

TEST_P(MergeRounds, without_domain_numbers_there_are_none_in_any_round)
{
    const auto names = domain_files(GetParam());
    ASSERT_EQ(merge(names, "rounds.h5", {"--at-once", "4", "--no-domain-number"}).status, 0);
    EXPECT_THAT(vak_says({"list", folder.file("rounds.h5")}).out, testing::Not(testing::HasSubstr("Domain")));
}

TEST_P(MergeRounds, a_limit_of_open_files_is_kept)
{
    const auto names = domain_files(GetParam());
    ASSERT_EQ(merge(names, "at once.h5", {"--no-domain-number"}).status, 0);
    std::string all;
    for (const auto& name : names) all += " '" + name + "'";
    const std::string limited = "ulimit -n 48; " VAK_PROGRAM " merge --no-domain-number -o '" +
                                folder.file("limited.h5") + "'" + all + " 2>/dev/null";
    ASSERT_EQ(std::system(limited.c_str()), 0);
    EXPECT_EQ(
        vak_says({"compare", folder.file("at once.h5"), folder.file("limited.h5"), "--tolerance", "2e-7"}),
        alike);
}

TEST(MergeRoundsOfResults, a_whole_result_comes_back_bit_by_bit)
{
    const TempFolder folder;
    write_text(folder.file("run.frd"), Solid{.nx = 6, .ny = 4, .nz = 3}.text());
    DomainSet set(folder.file("run.frd"));
    set.import(30);
    ASSERT_EQ(set.merge(30, {"--at-once", "5"}).status, 0);
    set.expect_whole();
}

// Numbers that an earlier merge has stored tell the domains of that merge.
TEST_F(MergeAgain, merged_files_are_merged_again)
{
    const auto names = domain_files(4);
    ASSERT_EQ(merge({names[0], names[1]}, "a.h5").status, 0);
    ASSERT_EQ(merge({names[2], names[3]}, "b.h5").status, 0);
    const Said said = merge({folder.file("a.h5"), folder.file("b.h5")}, "again.h5");
    EXPECT_EQ(said.status, 0) << said.err;
}

TEST(MergeGroups, are_of_neighbours_and_never_of_a_single_file)
{
    using vak::merge::group_sizes;
    EXPECT_THAT(group_sizes(5, 4), ElementsAre(3, 2));
    EXPECT_THAT(group_sizes(8, 4), ElementsAre(4, 4));
    EXPECT_THAT(group_sizes(9, 4), ElementsAre(3, 3, 3));
    EXPECT_EQ(group_sizes(2000, 700), (std::vector<size_t>{667, 667, 666}));
    for (size_t n = 5; n < 300; ++n)
        for (size_t at_once = 4; at_once < n; ++at_once)
            for (const size_t size : group_sizes(n, at_once)) {
                ASSERT_GE(size, 2U) << n << " files, " << at_once << " at once";
                ASSERT_LE(size, at_once);
            }
}

TEST(MergeGroups, rounds_are_counted)
{
    using vak::merge::round_count;
    EXPECT_EQ(round_count(1, 4), 1);
    EXPECT_EQ(round_count(4, 4), 1);
    EXPECT_EQ(round_count(5, 4), 2);
    EXPECT_EQ(round_count(16, 4), 2);
    EXPECT_EQ(round_count(17, 4), 3);
    EXPECT_EQ(round_count(2000, 700), 2);
}
