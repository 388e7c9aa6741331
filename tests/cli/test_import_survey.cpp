#include <gmock/gmock.h>

#include "cli/frd_text.h"
#include "import/description.h"
#include "import/mesh.h"
#include "import/series_sets.h"
#include "import/survey.h"
#include "import/tensor.h"
#include "support/temp_file.h"

using namespace vak::import;
using namespace vak::test;
using testing::ElementsAre;

namespace {

const NodeValues vectors{{1, {1, 2, 3}}, {2, {4, 5, 6}}};
const NodeValues scalars{{1, {7}}, {2, {8}}};

Survey of(const FrdText& text)
{
    const TempFile file("run.frd");
    write_text(file.path(), FrdText(text).end().text());
    return survey(file.path());
}

FrdText head() { return FrdText().head().nodes({{1, {0, 0, 0}}, {2, {1, 0, 0}}}); }

std::vector<int32_t> state_numbers(const Survey& survey)
{
    std::vector<int32_t> numbers;
    for (const State& state : survey.states) numbers.push_back(state.number);
    return numbers;
}

std::vector<std::string> variable_keys(const Survey& survey)
{
    std::vector<std::string> keys;
    for (const Variable& variable : survey.variables) keys.push_back(variable.key);
    return keys;
}

std::vector<Part> parts(const Survey& survey)
{
    std::vector<Part> found;
    for (const PlannedResult& result : survey.results) found.push_back(result.part);
    return found;
}

vak::frd::Component component(const FrdComponent& c)
{
    return {c.name, c.type, c.row, c.column, c.calculated};
}

std::vector<vak::frd::Component> components(const std::vector<FrdComponent>& list)
{
    std::vector<vak::frd::Component> found;
    for (const FrdComponent& c : list) found.push_back(component(c));
    return found;
}

std::string index_of(std::initializer_list<State> states) { return index_variable(states); }

vak::frd::Description described(std::initializer_list<std::string> lines, std::string title = "")
{
    return {.title = std::move(title), .user_lines = lines};
}

}  // namespace

TEST(Survey, results_of_one_step_and_value_are_one_state)
{
    FrdText text = head();
    text.result("DISP", displacement, vectors, {0.5, 1, 1})
        .result("NDTEMP", temperature, scalars, {0.5, 1, 1});
    text.result("DISP", displacement, vectors, {1.0, 2, 1});
    const Survey found = of(text);
    EXPECT_THAT(state_numbers(found), ElementsAre(1, 2));
    EXPECT_EQ(found.states[0].value, 0.5F);
    EXPECT_EQ(found.states[1].analysis, 1);
    ASSERT_EQ(found.results.size(), 3U);
    EXPECT_EQ(found.results[1].state, 0U);
    EXPECT_EQ(found.results[2].state, 1U);
}

TEST(Survey, state_numbers_are_the_steps_of_the_solver_while_these_ascend)
{
    FrdText text = head();
    for (const int step : {2, 5, 1, 1, 9})
        text.result("NDTEMP", temperature, scalars, {0.25 * step, step, 0});
    EXPECT_THAT(state_numbers(of(text)), ElementsAre(2, 5, 6, 7, 9));
}

TEST(Survey, a_name_that_comes_again_begins_a_state_although_step_and_value_stay)
{
    FrdText text = head();
    text.result("NDTEMP", temperature, scalars).result("DISP", displacement, vectors);
    text.result("NDTEMP", temperature, scalars);
    EXPECT_THAT(state_numbers(of(text)), ElementsAre(1, 2));
}

TEST(Survey, a_step_without_a_number_counts_on)
{
    FrdText text = head();
    text.result("NDTEMP", temperature, scalars, {1, 0, 0}).result("NDTEMP", temperature, scalars, {2, 0, 0});
    EXPECT_THAT(state_numbers(of(text)), ElementsAre(1, 2));
}

TEST(Survey, a_name_and_the_same_with_an_i_are_a_complex_pair)
{
    FrdText text = head();
    text.result("DISP", displacement, vectors).result("DISPI", displacement, vectors);
    text.result("STRESS", stress, {{1, {1, 2, 3, 4, 5, 6}}});
    const Survey found = of(text);
    EXPECT_THAT(parts(found), ElementsAre(Part::real, Part::imaginary, Part::whole));
    EXPECT_THAT(variable_keys(found), ElementsAre("DISP", "STRESS"));
    EXPECT_EQ(found.results[0].variable, found.results[1].variable);
    EXPECT_TRUE(found.states[0].complex);
}

TEST(Survey, a_pair_need_not_stand_together_and_a_full_name_loses_its_last_letter)
{
    FrdText text = head();
    text.result("TOSTRAIN", stress, {{1, {1, 2, 3, 4, 5, 6}}}).result("DISP", displacement, vectors);
    text.result("TOSTRAII", stress, {{1, {1, 2, 3, 4, 5, 6}}}).result("DISPI", displacement, vectors);
    EXPECT_THAT(parts(of(text)), ElementsAre(Part::real, Part::real, Part::imaginary, Part::imaginary));
}

TEST(Survey, names_that_only_look_like_a_pair_stay_two_variables)
{
    FrdText text = head();
    text.result("DISPI", displacement, vectors).result("DISP", displacement, vectors);  // the wrong way round
    text.result("T", temperature, scalars, {2, 2, 0}).result("TI", displacement, vectors, {2, 2, 0});
    text.result("U", temperature, scalars, {3, 3, 0}).result("UI", temperature, {{1, {1}}}, {3, 3, 0});
    const Survey found = of(text);
    EXPECT_THAT(parts(found), testing::Each(Part::whole));
    EXPECT_THAT(variable_keys(found), ElementsAre("DISPI", "DISP", "T", "TI", "U", "UI"));
}

TEST(Survey, other_components_under_the_same_name_are_another_variable)
{
    FrdText text = head();
    text.result("S", stress, {{1, {1, 2, 3, 4, 5, 6}}}, {1, 1, 0})
        .result("S", temperature, scalars, {2, 2, 0});
    text.result("S", stress, {{1, {1, 2, 3, 4, 5, 6}}}, {3, 3, 0});
    const Survey found = of(text);
    EXPECT_THAT(variable_keys(found), ElementsAre("S", "S_2"));
    EXPECT_EQ(found.results[2].variable, 0U);
}

TEST(Survey, names_become_one_level_of_a_path)
{
    FrdText text = head();
    text.result("A/B", temperature, scalars).result("..", temperature, scalars);
    EXPECT_THAT(variable_keys(of(text)), ElementsAre("A_B", "__"));
}

TEST(IndexVariable, is_the_time_the_frequency_or_the_load_step_where_all_states_agree)
{
    const State steady{.number = 1, .value = 0, .analysis = 0, .step = 1, .complex = false};
    State dynamic = steady, modal = steady, load = steady, harmonic = steady;
    dynamic.analysis = 1;
    modal.analysis = 2;
    load.analysis = 3;
    harmonic.analysis = 1;
    harmonic.complex = true;
    EXPECT_EQ(index_of({steady, dynamic}), "TIME");
    EXPECT_EQ(index_of({modal, harmonic}), "FREQUENCY");
    EXPECT_EQ(index_of({load}), "LOADSTEP");
    EXPECT_EQ(index_of({steady, modal}), "VALUE");
    EXPECT_EQ(index_of({}), "VALUE");
}

TEST(Tensor, a_vector_maps_each_component_to_its_place)
{
    const TensorMap map = tensor_map(components({{"D3", 2, 3, 0}, {"D1", 2, 1, 0}}));
    EXPECT_EQ(map.rank, 1);
    EXPECT_EQ(map.ndim, 3);
    EXPECT_EQ(map.kind, 2);
    EXPECT_THAT(map.map, ElementsAre(0, 0, 1, 1, 0, 0));
}

TEST(Tensor, a_symmetric_tensor_maps_the_off_diagonal_components_twice)
{
    const TensorMap map = tensor_map(components(stress));
    EXPECT_EQ(map.rank, 2);
    ASSERT_EQ(map.map.size(), 54U);
    const auto entries = [&](size_t i) {
        return std::vector<float>(map.map.begin() + static_cast<long>(9 * i),
                                  map.map.begin() + static_cast<long>(9 * i + 9));
    };
    EXPECT_THAT(entries(1), ElementsAre(0, 0, 0, 0, 1, 0, 0, 0, 0));
    EXPECT_THAT(entries(3), ElementsAre(0, 1, 0, 1, 0, 0, 0, 0, 0));
    EXPECT_THAT(entries(5), ElementsAre(0, 0, 1, 0, 0, 0, 1, 0, 0));
}

TEST(Tensor, a_component_with_its_own_mirror_is_mapped_once)
{
    const TensorMap map = tensor_map(components({{"F12", 4, 1, 2}, {"F21", 4, 2, 1}}));
    EXPECT_THAT(map.map, ElementsAre(0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0));
}

TEST(Tensor, everything_else_has_rank_0_and_no_map)
{
    for (const auto& list : {std::vector<FrdComponent>{{"T", 1, 1, 0}},
                             {{"MAG1", 12, 1, 0}, {"PHA1", 12, 4, 0}},
                             {{"D1", 2, 1, 0}, {"T", 1, 1, 0}},
                             {{"D4", 2, 4, 0}},
                             {}}) {
        const TensorMap map = tensor_map(components(list));
        EXPECT_EQ(map.rank, 0);
        EXPECT_EQ(map.ndim, 0);
        EXPECT_TRUE(map.map.empty());
    }
}

TEST(Tensor, the_names_of_the_components_stand_one_behind_the_other)
{
    const Subscripts names = subscripts(components({{"D1", 2, 1, 0}, {"ALL", 2, 0, 0}, {"X", 1, 0, 0}}));
    EXPECT_EQ(names.characters, "D1ALLX");
    EXPECT_THAT(names.lengths, ElementsAre(2, 3, 1));
    EXPECT_THAT(names.offsets, ElementsAre(0, 2, 5));
}

TEST(Description, solver_version_host_and_date_come_from_the_user_lines)
{
    const auto run = describe(
        described({"USER", "DATE              31.july.2016", "TIME              03:46:59",
                   "HOST              mill", "PGM               CalculiX", "VERSION           Version 2.11"}),
        "wing");
    EXPECT_EQ(run.solver, "CalculiX");
    EXPECT_EQ(run.version, "2.11");
    EXPECT_EQ(run.host, "mill");
    EXPECT_EQ(run.date, "20160731");
    EXPECT_EQ(run.time, "034659  ");
}

TEST(Description, the_title_is_that_of_the_file_or_the_heading_or_the_name_of_the_model)
{
    EXPECT_EQ(describe(described({"USER", "Model: beam"}, "a title"), "wing").title, "a title");
    EXPECT_EQ(describe(described({"USER", "  ", "Model: beam", "second line"}), "wing").title, "Model: beam");
    EXPECT_EQ(describe(described({"USER", "MAT    1STEEL"}), "wing").title, "wing");
}

TEST(Description, dates_in_figures_are_understood_and_others_are_blank)
{
    const auto date = [](const char* text) {
        return describe(described({std::string("DATE   ") + text}), "").date;
    };
    EXPECT_EQ(date("01.12.2020"), "20201201");
    EXPECT_EQ(date("yesterday"), "        ");
    EXPECT_EQ(date("31.foo.2020"), "        ");
    EXPECT_EQ(describe({}, "").date, "        ");
    EXPECT_EQ(describe({}, "").time, "        ");
}

TEST(SeriesSets, states_on_other_nodes_or_of_another_form_go_into_further_sets)
{
    SeriesSets sets;
    EXPECT_EQ(sets.set_of(0, 4, {1, 2, 3}), -1);
    EXPECT_EQ(sets.set_of(0, 4, {1, 2}), 2);
    EXPECT_EQ(sets.set_of(0, 16, {1, 2, 3}), 3);
    EXPECT_EQ(sets.set_of(0, 4, {1, 2, 3}), -1);
    EXPECT_EQ(sets.set_of(0, 4, {1, 2}), 2);
    EXPECT_EQ(sets.set_of(7, 4, {1, 2}), -1) << "another variable has its own sets";
}

TEST(Parts, are_what_has_one_group_and_one_material)
{
    vak::frd::Mesh mesh;
    mesh.elements[1] = {.ids = {1, 2, 3}, .groups = {0, 5, 0}, .materials = {2, 1, 1}, .nodes = {}};
    mesh.elements[4] = {.ids = {4}, .groups = {0}, .materials = {2}, .nodes = {}};
    const auto parts = part_numbers(mesh);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts.at({0, 1}), 1);
    EXPECT_EQ(parts.at({0, 2}), 2);
    EXPECT_EQ(parts.at({5, 1}), 3);
}

TEST(Parts, are_titled_by_material_and_group)
{
    const auto lines = described({"USER", "MAT    1STEEL", "MAT   12CAST IRON"});
    EXPECT_EQ(part_title(lines, {0, 1}), "STEEL");
    EXPECT_EQ(part_title(lines, {3, 12}), "CAST IRON, group 3");
    EXPECT_EQ(part_title(lines, {0, 2}), "material 2");
}
