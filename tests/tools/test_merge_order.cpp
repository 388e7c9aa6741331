// The order of the merged entities: against the plainest way of finding it, on identifiers of every kind.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <set>

#include "tools/merge_order.h"
#include "tools/merge_rows.h"

using namespace vak;

namespace {

constexpr int32_t lowest = std::numeric_limits<int32_t>::min(), highest = std::numeric_limits<int32_t>::max();

// Checks everything an order tells.
void expect_order(const std::vector<Ids>& sources)
{
    const Order order = order_of(sources);
    std::map<int32_t, std::set<size_t>> files;  // that have an identifier
    for (size_t s = 0; s < sources.size(); ++s)
        for (const int32_t id : sources[s]) files[id].insert(s);

    ASSERT_EQ(order.size(), files.size());
    size_t at = 0;
    std::vector<int32_t> shared;
    for (const auto& [id, having] : files) {
        EXPECT_EQ(order.ids[at], id);
        if (having.size() > 1) shared.push_back(static_cast<int32_t>(at));
        ++at;
    }
    EXPECT_EQ(order.shared, shared);

    ASSERT_EQ(order.place.size(), sources.size());
    ASSERT_EQ(order.shared_rows.size(), sources.size());
    ASSERT_EQ(order.superseded.size(), sources.size());
    ASSERT_EQ(order.runs.size(), sources.size());
    for (size_t s = 0; s < sources.size(); ++s) {
        ASSERT_EQ(order.place[s].size(), sources[s].size());
        std::vector<SharedRow> expected;
        std::vector<int32_t> superseded;
        for (size_t i = 0; i < sources[s].size(); ++i) {
            const int32_t row = order.place[s][i];
            EXPECT_EQ(order.ids.at(static_cast<size_t>(row)), sources[s][i]);
            const auto slot = std::ranges::find(shared, row);
            const auto behind = sources[s].begin() + static_cast<std::ptrdiff_t>(i) + 1;
            if (std::find(behind, sources[s].end(), sources[s][i]) != sources[s].end())
                superseded.push_back(static_cast<int32_t>(i));
            else if (slot != shared.end())
                expected.push_back({static_cast<int32_t>(i), static_cast<int32_t>(slot - shared.begin())});
        }
        ASSERT_EQ(order.shared_rows[s].size(), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(order.shared_rows[s][i].row, expected[i].row);
            EXPECT_EQ(order.shared_rows[s][i].slot, expected[i].slot);
        }
        EXPECT_EQ(order.superseded[s], superseded);
    }
}

TEST(MergeOrder, of_nothing_is_empty)
{
    expect_order({});
    expect_order({{}});
    expect_order({{}, {}, {}});
}

TEST(MergeOrder, of_one_identifier_is_that_identifier)
{
    for (const int32_t id : {0, -1, 1, lowest, highest}) {
        expect_order({{id}});
        expect_order({{}, {id}, {id}});
    }
}

TEST(MergeOrder, spans_the_whole_range_of_identifiers)
{
    expect_order({{highest, lowest}, {0, highest}, {lowest}});
    expect_order({{lowest, lowest + 1}, {lowest + 2, lowest}});
    expect_order({{highest, highest - 1}, {highest - 2, highest}});
}

TEST(MergeOrder, notices_an_identifier_that_stands_twice_in_a_file)
{
    expect_order({{7, 3, 7}, {3}});
    expect_order({{1}, {2, 2}});
}

// Dense and sparse ranges take different ways; both sides of the line between them.
TEST(MergeOrder, is_that_of_a_plain_sort_on_any_identifiers)
{
    std::mt19937 random(20240229);
    for (const int64_t span : {3LL, 50LL, 1000LL, 65000LL, 66000LL, 70000LL, 1000000LL, 4294967295LL}) {
        for (int round = 0; round < 12; ++round) {
            const int64_t low =
                std::uniform_int_distribution<int64_t>(lowest, static_cast<int64_t>(highest) - span)(random);
            std::uniform_int_distribution<int64_t> id(low, low + span);
            std::vector<Ids> sources(std::uniform_int_distribution<size_t>(1, 6)(random));
            for (Ids& source : sources) {
                source.resize(std::uniform_int_distribution<size_t>(0, 60)(random));
                for (int32_t& value : source) value = static_cast<int32_t>(id(random));
            }
            SCOPED_TRACE("span " + std::to_string(span) + ", round " + std::to_string(round));
            expect_order(sources);
            if (HasFatalFailure()) return;
        }
    }
}

std::shared_ptr<const Order> find(OrderCache& cache, const std::vector<Ids>& tables)
{
    OrderCache::Search search(cache);
    for (const Ids& table : tables) search.add(table);
    const auto order = search.order();
    const Order expected = order_of(tables);
    EXPECT_EQ(order->ids, expected.ids);
    EXPECT_EQ(order->place, expected.place);
    return order;
}

TEST(MergeOrder, is_found_once_for_the_same_tables)
{
    OrderCache cache;
    const std::vector<Ids> tables{{1, 2}, {2, 3}};
    const auto first = find(cache, tables);
    EXPECT_EQ(find(cache, tables), first);
    const auto other = find(cache, {{2, 1}, {2, 3}});
    EXPECT_NE(other, first);
    EXPECT_EQ(other->place[0], (std::vector<int32_t>{1, 0}));
    EXPECT_EQ(find(cache, tables), first);
}

TEST(MergeOrder, tells_tables_apart_that_begin_alike)
{
    OrderCache cache;
    const auto three = find(cache, {{1, 2}, {2, 3}, {4}});
    const auto two = find(cache, {{1, 2}, {2, 3}});
    const auto longer = find(cache, {{1, 2}, {2, 3}, {4}, {}});
    const auto last = find(cache, {{1, 2}, {2, 3}, {5}});
    EXPECT_EQ(find(cache, {{1, 2}, {2, 3}, {4}}), three);
    EXPECT_EQ(find(cache, {{1, 2}, {2, 3}}), two);
    EXPECT_EQ(find(cache, {{1, 2}, {2, 3}, {4}, {}}), longer);
    EXPECT_EQ(find(cache, {{1, 2}, {2, 3}, {5}}), last);
    EXPECT_TRUE(find(cache, {})->ids.empty());
}

TEST(MergeOrder, forgets_the_tables_that_were_not_used_for_longest)
{
    OrderCache cache;
    const auto first = find(cache, {{0}});
    for (int32_t id = 1; id < 20; ++id) EXPECT_EQ(find(cache, {{id}})->ids, (Ids{id}));
    EXPECT_EQ(first->ids, (Ids{0}));
    EXPECT_NE(find(cache, {{0}}), first);
}

// Rows with long runs of neighbours are copied by the run, others one by one.
TEST(MergeOrder, puts_rows_of_any_size_in_their_places)
{
    Ids neighbours(64), scattered(64), both;
    for (int32_t i = 0; i < 64; ++i) {
        neighbours[static_cast<size_t>(i)] = 100 + i;
        scattered[static_cast<size_t>(i)] = i * 37 % 64 * 5;
    }
    both = neighbours;
    both.insert(both.end(), scattered.begin() + 3, scattered.begin() + 9);
    const std::vector<Ids> sources{neighbours, scattered, both, {}};
    const Order order = order_of(sources);
    EXPECT_TRUE(order.runs[1].empty());
    EXPECT_FALSE(order.runs[2].empty());
    for (const size_t bytes : {1U, 4U, 8U, 12U, 16U, 20U, 24U, 32U, 256U}) {
        for (size_t s = 0; s < sources.size(); ++s) {
            std::vector<char> from(sources[s].size() * bytes), to(order.size() * bytes, '?'), expected = to;
            for (size_t i = 0; i < from.size(); ++i) from[i] = static_cast<char>(i * 7 + s);
            for (size_t i = 0; i < sources[s].size(); ++i)
                std::copy_n(&from[i * bytes], bytes,
                            &expected[static_cast<size_t>(order.place[s][i]) * bytes]);
            scatter_rows(order, s, {from.data(), bytes}, {to.data(), bytes});
            EXPECT_EQ(to, expected) << bytes << " bytes, source " << s;
        }
    }
}

}  // namespace
