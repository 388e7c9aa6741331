#include <gmock/gmock.h>

#include <cmath>

#include "show/statistics.h"

using namespace vak::show;
using testing::ElementsAre;

namespace {

using Named = std::pair<std::string, int64_t>;

std::vector<Named> places(const Extreme& extreme)
{
    std::vector<Named> found;
    for (const Place& place : extreme.places) found.emplace_back(place.axis, place.number);
    return found;
}

}  // namespace

TEST(Statistics, each_component_has_its_own_extremes_with_their_entities)
{
    Statistics statistics({"ec", {3, 2}});
    statistics.add(std::vector<float>{1, -5, 3, 0, 2, 7}, 0);
    const auto found = statistics.extremes({11, 12, 13}, false);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].name, "1");
    EXPECT_EQ(found[0].minimum.value, 1);
    EXPECT_THAT(places(found[0].minimum), ElementsAre(Named{"entity", 11}));
    EXPECT_EQ(found[0].maximum.value, 3);
    EXPECT_THAT(places(found[0].maximum), ElementsAre(Named{"entity", 12}));
    EXPECT_EQ(found[1].minimum.value, -5);
    EXPECT_THAT(places(found[1].maximum), ElementsAre(Named{"entity", 13}));
}

TEST(Statistics, the_first_of_equal_extremes_is_told)
{
    Statistics statistics({"ec", {3, 1}});
    statistics.add(std::vector<int32_t>{4, 4, 4}, 0);
    EXPECT_THAT(places(statistics.extremes({5, 6, 7}, false)[0].maximum), ElementsAre(Named{"entity", 5}));
}

TEST(Statistics, what_is_no_number_is_counted_and_is_no_extreme)
{
    Statistics statistics({"ec", {4, 1}});
    statistics.add(std::vector<float>{NAN, -INFINITY, NAN, 2}, 0);
    const auto found = statistics.extremes({1, 2, 3, 4}, false);
    EXPECT_EQ(found[0].nan, 2);
    EXPECT_EQ(found[0].minimum.value, -INFINITY);
    EXPECT_EQ(found[0].maximum.value, 2);
}

TEST(Statistics, without_any_number_there_are_no_extremes)
{
    Statistics statistics({"ec", {1, 2}});
    statistics.add(std::vector<float>{NAN, 1}, 0);
    const auto found = statistics.extremes({1}, false);
    EXPECT_FALSE(found[0].any);
    EXPECT_TRUE(found[1].any);
}

TEST(Statistics, both_parts_of_complex_values_have_extremes)
{
    Statistics statistics({"ecp", {2, 1, 2}});
    statistics.add(std::vector<float>{1, -1, 2, -2}, 0);
    const auto found = statistics.extremes({8, 9}, false);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].name, "1.re");
    EXPECT_EQ(found[1].name, "1.im");
    EXPECT_THAT(places(found[1].minimum), ElementsAre(Named{"entity", 9}));
}

TEST(Statistics, locations_and_states_are_told_too)
{
    Statistics statistics({"elc", {2, 3, 1}});
    statistics.add(std::vector<float>{0, 0, 0, 0, 0, 9}, 4);
    statistics.add(std::vector<float>{0, -9, 0, 0, 0, 0}, 5);
    const auto found = statistics.extremes({70, 80}, true);
    EXPECT_THAT(places(found[0].maximum),
                ElementsAre(Named{"state", 4}, Named{"entity", 80}, Named{"location", 3}));
    EXPECT_THAT(places(found[0].minimum),
                ElementsAre(Named{"state", 5}, Named{"entity", 70}, Named{"location", 2}));
}

TEST(Statistics, places_in_a_matrix_count_from_1)
{
    Statistics statistics({"ij", {2, 2}});
    statistics.add(std::vector<float>{0, 1, 2, 3}, 0);
    const auto found = statistics.extremes({}, false);
    EXPECT_EQ(found[0].name, "");
    EXPECT_THAT(places(found[0].minimum), ElementsAre(Named{"row", 1}, Named{"column", 1}));
    EXPECT_THAT(places(found[0].maximum), ElementsAre(Named{"row", 2}, Named{"column", 2}));
}
