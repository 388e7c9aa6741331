// vak import as a user calls it; what it stored is read back through the library.
#include <gmock/gmock.h>
#include <vak_sp.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "cli/import_test.h"
#include "cli/read_back.h"
#include "store/call.h"
#include "store/file.h"
#include "support/ids.h"

using namespace vak::test;
using nlohmann::json;
using testing::ElementsAre;
using vak::store::Int;

namespace {

std::string text_of(const char* field) { return {field, static_cast<size_t>(VAK_strlen(field, 256))}; }

class Import : public ImportTest {
protected:
    // The one block whose path has the given part, as vak show tells it.
    json shown(const std::string& path) const
    {
        const Said said = vak_says({"show", "--json", "--all", h5, path});
        EXPECT_EQ(said.status, 0) << said;
        const json blocks = json::parse(said.out)["blocks"];
        EXPECT_EQ(blocks.size(), 1U) << path;
        return blocks[0];
    }
};

}  // namespace

TEST_F(Import, the_file_holds_a_group_for_the_model_and_the_header)
{
    EXPECT_EQ(import(head().end().text()), fine);
    const auto file = read_file(h5);
    EXPECT_NO_THROW(open_object(file, "/run/vakheader/vakheader"));
    EXPECT_NO_THROW(open_object(file, "/post/constant/system/vakblock"));
}

TEST_F(Import, the_system_block_tells_who_computed_what_and_when)
{
    import(head().end().text());
    const vak::store::File file = vak::store::File::open(h5);
    const vak::store::Group group(file.root(), "constant/system/vakblock");
    char title[256], sys[256], solver[256], version[256], dates[4][8];
    int32_t base = -1, derived = -1, flags = 0, params[2];
    vak::store::call("reading", VAK_READ_SYSTEM, group.id(), Int{1}, title, sys, solver, version, dates[0],
                     dates[1], dates[2], dates[3], &base, &derived, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &flags, params);
    EXPECT_EQ(text_of(title), "Model: two nodes");
    EXPECT_EQ(text_of(sys), "mill");
    EXPECT_EQ(text_of(solver), "CalculiX");
    EXPECT_EQ(text_of(version), "2.11");
    EXPECT_EQ(std::string(dates[0], 8), "20160731");
    EXPECT_EQ(std::string(dates[1], 8), "134659  ");
    EXPECT_EQ(std::string(dates[2], 8), "20160731");
    EXPECT_EQ(base, 0);
    EXPECT_EQ(derived, 0);
}

TEST_F(Import, the_index_is_the_value_of_the_states)
{
    import(head().result("DISP", displacement, vectors, {440, 1, 2}).end().text());
    const vak::store::File file = vak::store::File::open(h5);
    const vak::store::Group group(file.root(), "constant/indices/vakblock");
    int32_t nindex = 0;
    char variable[256];
    vak::store::call("reading", VAK_READ_INDEX, group.id(), nullptr, &nindex, variable, nullptr, nullptr);
    EXPECT_EQ(nindex, 1);
    EXPECT_EQ(text_of(variable), "FREQUENCY");
    const vak::store::Group described(file.root(), "constant/variable/FREQUENCY/vakblock");
}

TEST_F(Import, a_variable_tells_components_and_tensor_map)
{
    import(head().result("STRESS", stress, {{ 1, { 1, 2, 3, 4, 5, 6 } }}).end().text());
    const vak::store::File file = vak::store::File::open(h5);
    const vak::store::Group group(file.root(), "constant/variable/STRESS/vakblock");
    char key[256], cls[256], name[256], type[256], subscripts[18];
    int32_t ncoo, rank, ndim, tensor, lenb, lend, lvmap, subslen, counts[6], offsets[6], flags, params[2];
    float map[54];
    vak::store::call("reading", VAK_READ_VARIABLE, group.id(), Int{3}, nullptr, key, cls, name, &ncoo, &rank,
                     &ndim, &tensor, type, &lenb, &lend, &lvmap, &subslen, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, subscripts, counts, offsets, map, &flags, params);
    EXPECT_EQ(text_of(key), "STRESS");
    EXPECT_EQ(text_of(name), "STRESS");
    EXPECT_EQ(text_of(cls), "CLASS_DISCRETE");
    EXPECT_EQ(text_of(type), "FLOAT");
    EXPECT_EQ(ncoo, 6);
    EXPECT_EQ(rank, 2);
    EXPECT_EQ(ndim, 3);
    EXPECT_EQ(tensor, 4);
    EXPECT_EQ(std::string(subscripts, 18), "SXXSYYSZZSXYSYZSZX");
    EXPECT_THAT(offsets, ElementsAre(0, 3, 6, 9, 12, 15));
    EXPECT_EQ(map[3 * 9 + 1], 1);
    EXPECT_EQ(map[3 * 9 + 3], 1);
}

TEST_F(Import, node_coordinates_are_constant_entity_results)
{
    import(head().end().text());
    const ReadBack read = read_back(h5, "constant/entityresults/NODE/COORD/vakblock");
    EXPECT_EQ(read.key, 1000);
    EXPECT_EQ(read.ncoo, 3);
    EXPECT_EQ(read.frame, "GLOBAL");
    EXPECT_THAT(read.nodes, ElementsAre(1, 7));
    EXPECT_THAT(read.values, ElementsAre(0, 0, 0, 1, 0.5F, -2));
}

TEST_F(Import, a_result_block_holds_the_components_that_the_records_hold)
{
    import(head().result("DISP", displacement, vectors, {0.25, 3, 1}).end().text());
    const ReadBack read = read_back(h5, "singlestate/state000000000003/entityresults/NODE/DISP/vakblock");
    EXPECT_EQ(read.key, 1000);
    EXPECT_EQ(read.etyp, "NODE");
    EXPECT_EQ(read.variable, "DISP");
    EXPECT_EQ(read.ncoo, 3);
    EXPECT_EQ(read.state, 3);
    EXPECT_EQ(read.value, 0.25F);
    EXPECT_EQ(read.analysis, 1);
    EXPECT_THAT(read.nodes, ElementsAre(1, 7));
    EXPECT_THAT(read.values, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(Import, a_complex_pair_becomes_one_complex_block)
{
    FrdText text = head();
    text.result("DISP", displacement, vectors).result("NDTEMP", temperature, {{1, {20}}});
    import(text.result("DISPI", displacement, {{1, { -1, -2, -3 }}, { 7, { -4, -5, -6 } }}).end().text());
    const ReadBack read = read_back(h5, "singlestate/state000000000001/entityresults/NODE/DISP/vakblock");
    EXPECT_EQ(read.key, 1001);
    EXPECT_THAT(read.values, ElementsAre(1, -1, 2, -2, 3, -3, 4, -4, 5, -5, 6, -6));
    EXPECT_EQ(read_back(h5, "singlestate/state000000000001/entityresults/NODE/NDTEMP/vakblock").key, 1000);
    EXPECT_THROW(open_object(read_file(h5), "/post/singlestate/state000000000001/entityresults/NODE/DISPI"),
                 std::runtime_error);
}

TEST_F(Import, a_result_on_some_nodes_only_holds_these)
{
    import(head().result("CONTACT", temperature, {{ 7, { 2.5 } }}).end().text());
    const ReadBack read = read_back(h5, "singlestate/state000000000001/entityresults/NODE/CONTACT/vakblock");
    EXPECT_THAT(read.nodes, ElementsAre(7));
    EXPECT_THAT(read.values, ElementsAre(2.5F));
}

TEST_F(Import, the_mesh_is_stored_by_element_type)
{
    FrdText text = head();
    text.begin_elements(3)
        .element(5, 11, 0, 1, {1, 7})
        .element(6, 12, 0, 1, {1, 7, 8})
        .element(9, 11, 0, 1, {7, 1});
    EXPECT_EQ(import(text.end_block().end().text()), fine);
    const auto two_nodes_each = shown("connectivities/BE2");
    EXPECT_EQ(two_nodes_each["attributes"], (json{{"etyp", "ELEMENT"},
                                                  {"etypelem", "BE2"},
                                                  {"etyppart", "PART"},
                                                  {"etypnode", "NODE"},
                                                  {"nele", 2},
                                                  {"npele", 2},
                                                  {"ndim", 1},
                                                  {"nbint", 0},
                                                  {"nbfloat", 0},
                                                  {"nindex", 0},
                                                  {"indexic", 0}}));
    EXPECT_EQ(two_nodes_each["arrays"]["idele"]["values"], (json{5, 9}));
    EXPECT_EQ(two_nodes_each["arrays"]["pid"]["values"], (json{1, 1}));
    EXPECT_EQ(two_nodes_each["arrays"]["ic"]["values"], (json{1, 7, 7, 1}));
    EXPECT_EQ(shown("connectivities/BE3")["arrays"]["ic"]["values"], (json{1, 7, 8}));
    EXPECT_EQ(shown("identifiers/NODE")["arrays"]["entid"]["values"], (json{1, 7}));
}

TEST_F(Import, every_element_type_is_stored_under_its_name_with_its_dimension)
{
    const std::vector<std::pair<std::string, int>> types{{"HE8", 3},  {"PE6", 3},  {"TE4", 3}, {"HE20", 3},
                                                         {"PE15", 3}, {"TE10", 3}, {"TR3", 2}, {"TR6", 2},
                                                         {"QU4", 2},  {"QU8", 2},  {"BE2", 1}, {"BE3", 1}};
    constexpr int nodes[] = {8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3};
    FrdText text = head();
    text.begin_elements(12);
    for (int type = 1; type <= 12; ++type)
        text.element(type, type, 0, 1, std::vector<int>(static_cast<size_t>(nodes[type - 1]), 7));
    import(text.end_block().end().text());
    for (size_t i = 0; i < types.size(); ++i) {
        const auto block = shown("connectivities/" + types[i].first + "/");
        EXPECT_EQ(block["attributes"]["ndim"], types[i].second) << types[i].first;
        EXPECT_EQ(block["attributes"]["npele"], nodes[i]) << types[i].first;
        EXPECT_EQ(block["arrays"]["idele"]["values"], (json{i + 1})) << types[i].first;
    }
}

TEST_F(Import, materials_and_groups_are_parts_and_groups_are_collectors_too)
{
    FrdText text = head();
    text.begin_elements(4)
        .element(1, 11, 0, 1, {1, 7})
        .element(2, 11, 3, 1, {1, 7})
        .element(3, 12, 3, 1, {1, 7, 1});
    import(text.element(4, 11, 8, 2, {1, 7}).end_block().end().text());
    const auto parts = shown("parts/PART");
    EXPECT_EQ(parts["arrays"]["pid"]["values"], (json{1, 2, 3}));
    EXPECT_EQ(parts["arrays"]["title"]["values"], (json{"STEEL", "STEEL, group 3", "material 2, group 8"}));
    EXPECT_EQ(parts["arrays"]["mid"]["values"], (json{1, 1, 2}));
    EXPECT_FALSE(parts["arrays"].contains("mtyp"));
    EXPECT_EQ(shown("connectivities/BE2")["arrays"]["pid"]["values"], (json{1, 2, 3}));
    const auto groups = shown("collector/GROUP");
    EXPECT_EQ(groups["arrays"]["idcoll"]["values"], (json{3, 8}));
    EXPECT_EQ(groups["arrays"]["etyp"]["values"], (json{"BE2", "BE3"}));
    EXPECT_EQ(groups["arrays"]["nent"]["values"], (json{1, 1, 1, 0}));
    EXPECT_EQ(groups["arrays"]["entid"]["values"], (json{2, 3, 4}));
}

TEST_F(Import, without_groups_there_is_no_collector)
{
    FrdText text = head();
    import(text.begin_elements(1).element(1, 11, 0, 1, {1, 7}).end_block().end().text());
    EXPECT_EQ(vak_says({"show", h5, "collector"}).status, 2);
}

TEST_F(Import, the_lines_of_the_run_and_of_each_state_are_texts)
{
    FrdText text = head();
    text.line("    1PMODE                         1").result("DISP", displacement, vectors, {1, 4, 2});
    text.line("    1PMODE                         1").result("NDTEMP", temperature, {{1, {20}}}, {1, 4, 2});
    import(text.result("DISP", displacement, vectors, {2, 5, 2}).end().text());
    const auto run = shown("constant/text/RUN");
    EXPECT_EQ(run["arrays"]["line"]["values"][0], "1UModel: two nodes");
    EXPECT_EQ(run["arrays"]["line"]["values"][6], "1UVERSION           Version 2.11");
    EXPECT_EQ(run["attributes"]["nlines"], 8);
    const auto state = shown("state000000000004/text/PARAMETERS");
    EXPECT_EQ(state["arrays"]["line"]["values"],
              (json{"1PMODE                         1",
                    "1PSTEP                         4           4           1"}));
    EXPECT_EQ(state["arrays"]["indexval"]["values"], (json{1.0}));
    EXPECT_EQ(shown("state000000000005/text/PARAMETERS")["attributes"]["nlines"], 1);
}

TEST_F(Import, a_series_holds_all_states_of_a_variable_in_one_block)
{
    FrdText text = head();
    for (int step = 1; step <= 3; ++step)
        text.result("NDTEMP", temperature, {{1, {1.0 * step}}, {7, {10.0 * step}}}, {0.5 * step, step, 1});
    EXPECT_EQ(import(text.end().text(), {"--series", "RUN"}), fine);
    const auto block = shown("multistate/RUN/multientityresults/NODE/NDTEMP");
    EXPECT_EQ(block["attributes"]["nstate"], 3);
    EXPECT_EQ(block["arrays"]["indexident"]["values"], (json{1, 2, 3}));
    EXPECT_EQ(block["arrays"]["indexval"]["values"], (json{0.5, 1.0, 1.5}));
    EXPECT_EQ(block["arrays"]["entid"]["values"], (json{1, 7}));
    EXPECT_EQ(block["arrays"]["res"]["values"], (json{1, 10, 2, 20, 3, 30}));
    EXPECT_EQ(vak_says({"show", h5, "singlestate/*/entityresults"}).status, 2);
}

TEST_F(Import, a_series_whose_nodes_or_form_change_goes_on_in_further_sets)
{
    FrdText text = head();
    text.result("NDTEMP", temperature, {{1, {1}}, {7, {2}}}, {1, 1, 1})
        .result("NDTEMP", temperature, {{7, {3}}}, {2, 2, 1});
    text.result("NDTEMP", temperature, {{7, {4}}}, {3, 3, 1})
        .result("NDTEMP", temperature, {{1, {5}}, {7, {6}}}, {4, 4, 1});
    text.result("NDTEMP", temperature, {{7, {7}}}, {5, 5, 1})
        .result("NDTEMPI", temperature, {{7, {8}}}, {5, 5, 1});
    EXPECT_EQ(import(text.end().text(), {"--series", "RUN"}), fine);
    const std::string place = "multistate/RUN/multientityresults/NODE/NDTEMP";
    EXPECT_EQ(shown(place + "/vakblock")["arrays"]["res"]["values"], (json{1, 2, 5, 6}));
    EXPECT_EQ(shown(place + "/vakblock")["arrays"]["indexident"]["values"], (json{1, 4}));
    EXPECT_EQ(shown(place + "_set2/vakblock")["arrays"]["res"]["values"], (json{3, 4}));
    EXPECT_EQ(shown(place + "_set3/vakblock")["key"], 1051);
    EXPECT_EQ(shown(place + "_set3/vakblock")["arrays"]["res"]["values"], (json{7, 8}));
}

TEST_F(Import, not_a_number_and_infinity_are_stored_as_they_are)
{
    FrdText text = head();
    text.result_head("NDTEMP", temperature, 2, {})
        .line(" -1         1         NaN")
        .line(" -1         7         INF");
    EXPECT_EQ(import(text.line(" -3").end().text()), fine);
    const ReadBack read = read_back(h5, "singlestate/state000000000001/entityresults/NODE/NDTEMP/vakblock");
    EXPECT_TRUE(std::isnan(read.values[0]));
    EXPECT_EQ(read.values[1], std::numeric_limits<float>::infinity());
}

TEST_F(Import, a_file_without_nodes_and_results_imports)
{
    EXPECT_EQ(import(FrdText().head().end().text()), fine);
    EXPECT_EQ(import(head().result("DISP", displacement, {}).end().text()), fine);
}

// HDF5 keeps the second of its making with every dataset: a message of 8 bytes, version 1 and the time.
std::string without_times(std::string bytes)
{
    const std::string message("\x12\0\x08\0\0\0\0\0\1\0\0\0", 12);
    for (size_t at = 0; (at = bytes.find(message, at)) != std::string::npos; at += message.size())
        bytes.replace(at + message.size(), 4, 4, '\0');
    return bytes;
}

TEST_F(Import, the_same_input_gives_the_same_bytes_but_for_the_time)
{
    import(head().result("DISP", displacement, vectors).end().text());
    const std::string first = contents(h5);
    import(contents(frd));
    EXPECT_NE(without_times(first), first);
    EXPECT_EQ(without_times(contents(h5)), without_times(first));
}
