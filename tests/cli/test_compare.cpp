// vak compare: what it finds, what it says, what it answers with.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "cli/frd_text.h"
#include "cli/program.h"
#include "compare/differences.h"

using namespace vak::test;
using testing::ElementsAre;
using testing::IsEmpty;
using vak::compare::differences;
using vak::show::ArrayView;
using vak::show::BlockView;

namespace {

BlockView results(std::vector<int32_t> nodes, std::vector<float> values)
{
    const auto n = static_cast<int64_t>(nodes.size());
    const auto width = n == 0 ? 1 : static_cast<int64_t>(values.size()) / n;
    BlockView block;
    block.entry.key = 1000;
    block.attributes = {{"nent", n}, {"etypvar", std::string("DISP")}};
    block.arrays = {
        {.name = "entid", .type = "int32", .shape = {n}, .values = std::move(nodes), .components = {}},
        {.name = "res",
         .type = "float32",
         .shape = {n, width},
         .values = std::move(values),
         .components = {}}};
    return block;
}

BlockView series(std::vector<int32_t> nodes, std::vector<float> values)
{
    BlockView block = results(std::move(nodes), std::move(values));
    block.entry.key = 1050;
    auto& shape = block.arrays[1].shape;
    shape = {shape[1], shape[0], 1};
    return block;
}

const auto no_number = std::numeric_limits<float>::quiet_NaN();
const auto infinity = std::numeric_limits<float>::infinity();

}  // namespace

TEST(Compare, the_same_values_do_not_differ)
{
    EXPECT_THAT(differences(results({1, 2}, {3, no_number}), results({1, 2}, {3, no_number}), 0), IsEmpty());
    EXPECT_THAT(differences(results({}, {}), results({}, {}), 0), IsEmpty());
}

TEST(Compare, the_first_value_that_differs_is_told_with_both)
{
    EXPECT_THAT(differences(results({1, 2, 3}, {3, 4, 5}), results({1, 2, 3}, {3, 4.5F, 6}), 0),
                ElementsAre("res: 2 of 3 values differ, first value 2: 4 and 4.5"));
    EXPECT_THAT(differences(results({1}, {3}), results({1}, {no_number}), 0),
                ElementsAre("res: 1 of 1 values differ, first value 1: 3 and nan"));
}

TEST(Compare, entities_are_matched_by_their_identifiers)
{
    EXPECT_THAT(differences(results({7, 1, 3}, {70, 71, 10, 11, 30, 31}),
                            results({3, 7, 1}, {30, 31, 70, 71, 10, 11}), 0),
                IsEmpty());
    EXPECT_THAT(differences(results({7, 1}, {70, 10}), results({1, 7}, {70, 10}), 0),
                ElementsAre("res: 2 of 2 values differ, first value 1: 10 and 70"));
}

TEST(Compare, each_state_of_a_series_is_matched_by_the_identifiers)
{
    EXPECT_THAT(differences(series({2, 1}, {20, 10, 21, 11}), series({1, 2}, {10, 20, 11, 21}), 0),
                IsEmpty());
    EXPECT_THAT(differences(series({2, 1}, {20, 10, 21, 11}), series({1, 2}, {10, 20, 21, 11}), 0),
                ElementsAre("res: 2 of 4 values differ, first value 3: 11 and 21"));
}

TEST(Compare, other_identifiers_and_other_numbers_of_them_differ)
{
    EXPECT_THAT(differences(results({1, 2}, {5, 5}), results({1, 3}, {5, 5}), 0),
                ElementsAre("entid: 1 of 2 values differ, first value 2: 2 and 3"));
    EXPECT_THAT(differences(results({1, 2}, {5, 5}), results({1}, {5}), 0),
                ElementsAre("nent: 2 and 1", "entid: shapes [2] and [1]", "res: shapes [2, 1] and [1, 1]"));
}

TEST(Compare, the_tolerance_is_a_share_of_the_largest_value)
{
    const auto a = results({1, 2}, {1000, 1}), b = results({1, 2}, {1000, 1.5F});
    EXPECT_THAT(differences(a, b, 1e-3), IsEmpty());
    EXPECT_THAT(differences(a, b, 1e-4), testing::SizeIs(1));
    EXPECT_THAT(differences(results({1, 2}, {infinity, 1}), results({1, 2}, {5, 1}), 1), testing::SizeIs(1));
}

TEST(Compare, how_values_are_stored_is_no_difference)
{
    BlockView packed = results({1}, {5});
    packed.attributes.emplace_back("flags", int64_t{135});
    EXPECT_THAT(differences(results({1}, {5}), packed, 0), IsEmpty());
}

TEST(Compare, what_only_one_block_has_differs)
{
    BlockView a = results({1}, {5}), b = a;
    a.attributes.emplace_back("ncoo", int64_t{1});
    b.arrays.push_back(
        {.name = "fid", .type = "int32", .shape = {1}, .values = std::vector<int32_t>{0}, .components = {}});
    EXPECT_THAT(differences(a, b, 0), ElementsAre("ncoo: only in one of them", "fid: only in one of them"));
    b.entry.key = 1001;
    EXPECT_THAT(differences(a, b, 0), ElementsAre("keys 1000 and 1001"));
}

class CompareProgram : public testing::Test {
protected:
    void import(const std::string& name, double value, const std::string& variable = "DISP")
    {
        write_text(folder.file("run.frd"), FrdText()
                                               .head()
                                               .nodes({{1, {0, 0, 0}}})
                                               .result(variable, displacement, {{1, {1, 2, value}}})
                                               .end()
                                               .text());
        ASSERT_EQ(vak_says({"import", folder.file("run.frd"), "-o", folder.file(name)}).status, 0);
    }
    Said compare(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"compare", folder.file("a.h5"), folder.file("b.h5")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return vak_says(arguments);
    }
    TempFolder folder;
};

TEST_F(CompareProgram, alike_files_print_nothing_and_give_0)
{
    import("a.h5", 3);
    import("b.h5", 3);
    EXPECT_EQ(compare(), (Said{.status = 0, .out = "", .err = ""}));
}

TEST_F(CompareProgram, differences_are_lines_on_standard_output_and_give_1)
{
    import("a.h5", 3);
    import("b.h5", 4);
    const std::string path = "singlestate/state000000000001/entityresults/NODE/DISP/vakblock";
    EXPECT_EQ(compare(), (Said{.status = 1,
                               .out = path + ": res: 1 of 3 values differ, first value 3: 3 and 4\n",
                               .err = ""}));
    EXPECT_EQ(compare({"--without", "*/DISP/*"}), (Said{.status = 0, .out = "", .err = ""}));
    EXPECT_EQ(compare({"--tolerance", "0.4"}), (Said{.status = 0, .out = "", .err = ""}));
}

TEST_F(CompareProgram, blocks_that_only_one_file_has_are_told)
{
    import("a.h5", 3);
    import("b.h5", 3, "FORC");
    const Said said = compare();
    EXPECT_EQ(said.status, 1);
    const std::string state = "singlestate/state000000000001/entityresults/NODE/";
    EXPECT_THAT(said.out, testing::HasSubstr(state + "DISP/vakblock: only in " + folder.file("a.h5") + "\n"));
    EXPECT_THAT(said.out, testing::HasSubstr(state + "FORC/vakblock: only in " + folder.file("b.h5") + "\n"));
}

TEST_F(CompareProgram, a_file_that_cannot_be_read_gives_2)
{
    import("a.h5", 3);
    const Said said = compare();
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, testing::HasSubstr("b.h5: cannot be opened: no such file"));
}
