// vak import --domains: cut, written, merged again, a result is what it was.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "cli/deck.h"
#include "cli/domain_set.h"
#include "cli/solid.h"
#include "domains/import_domains.h"
#include "domains/partition.h"
#include "problem.h"

using namespace vak::test;
using testing::HasSubstr;

namespace {

class ImportDomains : public testing::TestWithParam<int> {
protected:
    static std::string written(const TempFolder& folder, const std::string& text)
    {
        write_text(folder.file("run.frd"), text);
        return folder.file("run.frd");
    }

    void expect_same(const std::string& text, int domains, const std::vector<std::string>& more = {})
    {
        const TempFolder folder;
        DomainSet set(written(folder, text));
        set.import(domains, more);
        EXPECT_EQ(set.merge(domains).status, 0);
        set.expect_whole();
    }
};

// The identifiers in a block of each domain.
std::vector<std::vector<int>> identifiers(const DomainSet& set, int domains, const std::string& path,
                                          const std::string& array)
{
    std::vector<std::vector<int>> all;
    for (const std::string& domain : set.domains(domains)) {
        const auto blocks = DomainSet::shown(domain, path);
        all.push_back(blocks.empty() ? std::vector<int>{} : values_in<int>(blocks[0], array));
    }
    return all;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Domains, ImportDomains, testing::Values(1, 2, 4, 17));

TEST_P(ImportDomains, merged_are_the_whole_result_value_by_value)
{
    expect_same(Solid{.nx = 6, .ny = 5, .nz = 4, .states = 3}.text(), GetParam());
}

TEST_P(ImportDomains, merged_are_the_whole_result_in_series_too)
{
    expect_same(Solid{.nx = 5, .ny = 4, .nz = 2, .states = 4}.text(), GetParam(), {"--series", "S"});
}

TEST_P(ImportDomains, merged_are_the_whole_result_of_entities_in_any_order)
{
    FrdText frd;
    NodeValues nodes, temperatures;
    for (int n = 60; n > 0; --n) {
        nodes.push_back({n * 7 % 61, {1.0 * n, 0, 0}});
        temperatures.push_back({n * 11 % 61, {0.25 * n}});
    }
    frd.head().nodes(nodes).begin_elements(59);
    for (int e = 59; e > 0; --e) frd.element(e * 3 % 60 == 0 ? 1000 + e : e, 11, 0, 1, {e, e + 1});
    frd.end_block().result("NDTEMP", temperature, temperatures);
    expect_same(frd.end().text(), GetParam());
}

TEST_P(ImportDomains, an_element_is_in_one_domain_and_a_node_in_each_that_has_an_element_of_it)
{
    const int domains = GetParam();
    const Solid solid{.nx = 6, .ny = 5, .nz = 4, .states = 1};
    const TempFolder folder;
    DomainSet set(written(folder, solid.text()));
    set.import(domains);
    std::map<int, int> files_of;
    for (const auto& ids : identifiers(set, domains, "constant/connectivities/HE8/*", "idele"))
        for (const int id : ids) ++files_of[id];
    EXPECT_EQ(files_of.size(), static_cast<size_t>(solid.brick_count()));
    for (const auto& [id, files] : files_of) EXPECT_EQ(files, 1) << id;

    const auto nodes = identifiers(set, domains, "constant/identifiers/NODE/*", "entid");
    size_t repeated = 0;
    for (int d = 0; d < domains; ++d) {
        std::set<int> needed;
        for (const char* type : {"HE8", "QU4"})
            for (const auto& block : DomainSet::shown(set.domains(domains)[static_cast<size_t>(d)],
                                                      std::string("constant/connectivities/") + type + "/*"))
                for (const int node : values_in<int>(block, "ic")) needed.insert(node);
        if (d == 0) needed.insert(solid.node_count() + 100);  // the one without elements
        const auto& own = nodes[static_cast<size_t>(d)];
        EXPECT_EQ(std::set<int>(own.begin(), own.end()), needed) << "domain " << d;
        EXPECT_FALSE(needed.empty());
        repeated += needed.size();
    }
    const auto whole = static_cast<size_t>(solid.node_count() + 1);
    EXPECT_EQ(repeated > whole, domains > 1) << "there are nodes between the domains";
}

TEST(ImportDomainNames, the_number_stands_where_the_pattern_says)
{
    using vak::domains::file_names;
    EXPECT_EQ(file_names("a/run-%d.h5", 3),
              (std::vector<std::string>{"a/run-0.h5", "a/run-1.h5", "a/run-2.h5"}));
    EXPECT_EQ(file_names("%03d.h5", 2), (std::vector<std::string>{"000.h5", "001.h5"}));
    EXPECT_EQ(file_names("%d", 11).back(), "10");
    for (const char* pattern :
         {"run.h5", "run-%.h5", "run-%s.h5", "%d-%d.h5", "run-%3d.h5", "run%", "run%0", "%d%"})
        EXPECT_THROW(file_names(pattern, 2), vak::cli::Problem) << pattern;
}

TEST(ImportDomainNames, a_name_without_a_place_for_the_number_is_refused)
{
    const TempFolder folder;
    write_text(folder.file("run.frd"), Solid{}.text());
    const Said said =
        vak_says({"import", folder.file("run.frd"), "--domains", "2", "-o", folder.file("run.h5")});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("run.h5: the name needs %d once"));
}

TEST(ImportDomainNames, the_result_file_itself_is_never_written_over)
{
    const TempFolder folder;
    write_text(folder.file("run-1.frd"), Solid{}.text());
    const Said said =
        vak_says({"import", folder.file("run-1.frd"), "--domains", "2", "-o", folder.file("run-%d.frd")});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("run-1.frd: is the file to read"));
    EXPECT_EQ(contents(folder.file("run-1.frd")), Solid{}.text());
}

TEST(ImportDomainCut, more_domains_than_elements_are_refused_and_nothing_is_left)
{
    const TempFolder folder;
    write_text(folder.file("run.frd"), Solid{.nx = 1, .ny = 1, .nz = 1}.text());
    const Said said =
        vak_says({"import", folder.file("run.frd"), "--domains", "3", "-o", folder.file("run-%d.h5")});
    EXPECT_EQ(said,
              (Said{.status = 2,
                    .out = "",
                    .err = "vak import: the mesh has 2 elements, which cannot be cut into 3 domains\n"}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(ImportDomainCut, as_many_domains_as_elements_have_one_each)
{
    vak::frd::Mesh mesh;
    auto& beams = mesh.elements[11];
    for (int e = 1; e <= 9; ++e) {
        beams.ids.push_back(e);
        beams.nodes.insert(beams.nodes.end(), {e, e + 1});
    }
    auto cut = vak::domains::partition(mesh, 9);
    std::sort(cut.begin(), cut.end());
    EXPECT_THAT(cut, testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
}

TEST(ImportDomainCut, damage_that_shows_in_the_values_leaves_no_domain_file)
{
    const TempFolder folder;
    std::string text = Solid{}.text();
    text.replace(text.rfind("E+"), 2, "X+");
    write_text(folder.file("run.frd"), text);
    const Said said =
        vak_says({"import", folder.file("run.frd"), "--domains", "2", "-o", folder.file("run-%d.h5")});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

// Decks with the numbers of domains that they are cut into.
using Deck = std::pair<const char*, std::vector<int>>;
class ImportDomainsOfDecks : public testing::TestWithParam<Deck> {};
INSTANTIATE_TEST_SUITE_P(Decks, ImportDomainsOfDecks,
                         testing::Values(Deck{"beamp", {2, 4, 17}}, Deck{"thermomech", {2, 4, 17}},
                                         Deck{"segment", {4}}),
                         [](const auto& deck) { return std::string(deck.param.first); });

// What the solver itself computes: bricks, several states, complex modes.
TEST_P(ImportDomainsOfDecks, merged_are_the_whole_result)
{
    const std::string deck = GetParam().first;
    if (!deck_is_there(deck) || !solver_is_installed()) GTEST_SKIP() << solver_is_missing(deck);
    const TempFolder folder;
    ASSERT_NO_FATAL_FAILURE(solve(folder, deck));
    for (const int domains : GetParam().second) {
        DomainSet set(folder.file(deck + ".frd"));
        set.import(domains);
        EXPECT_EQ(set.merge(domains).status, 0);
        set.expect_whole();
    }
}
