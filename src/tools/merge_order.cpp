#include "tools/merge_order.h"

#include <algorithm>

namespace vak {

namespace {

constexpr size_t kept_orders = 4;
constexpr size_t shortest_run = 8;  // on average; shorter ones are slower than row by row

struct Range {
    int64_t low = 0, high = -1;
    size_t n = 0;

    size_t span() const { return static_cast<size_t>(high - low + 1); }
};

Range range_of(const std::vector<Ids>& sources)
{
    Range r;
    for (const Ids& ids : sources) {
        if (ids.empty()) continue;
        const auto [low, high] = std::minmax_element(ids.begin(), ids.end());
        r.low = r.n == 0 ? *low : std::min<int64_t>(r.low, *low);
        r.high = r.n == 0 ? *high : std::max<int64_t>(r.high, *high);
        r.n += ids.size();
    }
    return r;
}

// Identifiers in a range that is not much wider than their number are ordered by counting.
class DenseUnion {
public:
    DenseUnion(const std::vector<Ids>& sources, const Range& range) : low_(range.low), row_(range.span(), -1)
    {
        for (const Ids& source : sources)
            for (const int32_t id : source) row_[slot(id)] = 0;
        for (size_t i = 0; i < row_.size(); ++i) {
            if (row_[i] < 0) continue;
            row_[i] = static_cast<int32_t>(ids.size());
            ids.push_back(static_cast<int32_t>(low_ + static_cast<int64_t>(i)));
        }
    }
    int32_t row(int32_t id) const { return row_[slot(id)]; }

    Ids ids;

private:
    size_t slot(int32_t id) const { return static_cast<size_t>(id - low_); }
    int64_t low_;
    std::vector<int32_t> row_;
};

class SortedUnion {
public:
    SortedUnion(const std::vector<Ids>& sources, const Range& range)
    {
        ids.reserve(range.n);
        for (const Ids& source : sources) ids.insert(ids.end(), source.begin(), source.end());
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
        ids.shrink_to_fit();
    }
    int32_t row(int32_t id) const
    {
        return static_cast<int32_t>(std::lower_bound(ids.begin(), ids.end(), id) - ids.begin());
    }

    Ids ids;
};

// Counts the sources that have each merged row, as far as it matters: 0, 1, more.
class Shares {
public:
    explicit Shares(size_t n) : last_(n, none), more_(n, false) {}

    // False when this source has been at the row before.
    bool add(int32_t row, int32_t source)
    {
        const auto r = static_cast<size_t>(row);
        if (last_[r] == source) return false;
        more_[r] = more_[r] || last_[r] != none;
        last_[r] = source;
        return true;
    }
    std::vector<int32_t> rows() const
    {
        std::vector<int32_t> shared;
        for (size_t i = 0; i < more_.size(); ++i)
            if (more_[i]) shared.push_back(static_cast<int32_t>(i));
        return shared;
    }

private:
    static constexpr int32_t none = -1;
    std::vector<int32_t> last_;
    std::vector<bool> more_;
};

// Rows whose place a later row takes as well, ascending.
std::vector<int32_t> superseded_rows(const std::vector<int32_t>& place, size_t merged_rows)
{
    std::vector<bool> taken(merged_rows, false);
    std::vector<int32_t> rows;
    for (size_t i = place.size(); i-- > 0;) {
        const auto at = static_cast<size_t>(place[i]);
        if (taken[at]) rows.push_back(static_cast<int32_t>(i));
        taken[at] = true;
    }
    std::ranges::reverse(rows);
    return rows;
}

std::vector<SharedRow> shared_rows_of(const std::vector<int32_t>& place,
                                      const std::vector<int32_t>& superseded,
                                      const std::vector<int32_t>& slot)
{
    std::vector<SharedRow> rows;
    auto next = superseded.begin();
    for (size_t i = 0; i < place.size(); ++i) {
        const auto row = static_cast<int32_t>(i);
        if (next != superseded.end() && *next == row)
            ++next;
        else if (const int32_t at = slot[static_cast<size_t>(place[i])]; at >= 0)
            rows.push_back({row, at});
    }
    return rows;
}

std::vector<Run> runs_of(const std::vector<int32_t>& place)
{
    std::vector<Run> runs;
    for (size_t i = 0; i < place.size(); ++i) {
        if (!runs.empty() && place[i] == runs.back().place + runs.back().n) {
            ++runs.back().n;
            continue;
        }
        if (runs.size() == place.size() / shortest_run) return {};
        runs.push_back({static_cast<int32_t>(i), place[i], 1});
    }
    return runs;
}

void find_shared_rows(Order& order)
{
    std::vector<int32_t> slot(order.size(), -1);
    for (size_t i = 0; i < order.shared.size(); ++i)
        slot[static_cast<size_t>(order.shared[i])] = static_cast<int32_t>(i);
    for (size_t s = 0; s < order.place.size(); ++s)
        order.shared_rows.push_back(shared_rows_of(order.place[s], order.superseded[s], slot));
}

template <class Union>
Order place_all(const std::vector<Ids>& sources, Union&& all)
{
    Order order;
    Shares shares(all.ids.size());
    for (size_t s = 0; s < sources.size(); ++s) {
        std::vector<int32_t> place(sources[s].size());
        bool repeats = false;
        for (size_t i = 0; i < place.size(); ++i) {
            place[i] = all.row(sources[s][i]);
            if (!shares.add(place[i], static_cast<int32_t>(s))) repeats = true;
        }
        order.runs.push_back(runs_of(place));
        order.place.push_back(std::move(place));
        order.superseded.push_back(repeats ? superseded_rows(order.place.back(), all.ids.size()) : Ids());
    }
    order.shared = shares.rows();
    order.ids = std::move(all.ids);
    find_shared_rows(order);
    return order;
}

}  // namespace

Order order_of(const std::vector<Ids>& sources)
{
    const Range range = range_of(sources);
    if (range.n == 0 || range.span() <= 4 * range.n + 65536)
        return place_all(sources, DenseUnion(sources, range));
    return place_all(sources, SortedUnion(sources, range));
}

OrderCache::Search::Search(OrderCache& cache) : cache_(cache)
{
    for (auto entry = cache.entries_.begin(); entry != cache.entries_.end(); ++entry)
        candidates_.push_back(entry);
}

bool OrderCache::Search::begins_alike(const Entry& entry, std::span<const int32_t> ids) const
{
    return n_ < entry.sources.size() && std::ranges::equal(entry.sources[n_], ids);
}

void OrderCache::Search::add(std::span<const int32_t> ids)
{
    if (!candidates_.empty()) {
        const Candidate last = candidates_.front();
        std::erase_if(candidates_, [&](Candidate entry) { return !begins_alike(*entry, ids); });
        // What was alike up to here is taken from there.
        if (candidates_.empty())
            own_.assign(last->sources.begin(), last->sources.begin() + static_cast<std::ptrdiff_t>(n_));
    }
    if (candidates_.empty()) own_.emplace_back(ids.begin(), ids.end());
    ++n_;
}

std::shared_ptr<const Order> OrderCache::Search::order()
{
    std::list<Entry>& entries = cache_.entries_;
    for (const Candidate entry : candidates_) {
        if (entry->sources.size() != n_) continue;
        entries.splice(entries.begin(), entries, entry);
        return entry->order;
    }
    if (!candidates_.empty()) {
        const auto& sources = candidates_.front()->sources;
        own_.assign(sources.begin(), sources.begin() + static_cast<std::ptrdiff_t>(n_));
    }
    if (entries.size() == kept_orders) entries.pop_back();
    auto order = std::make_shared<const Order>(order_of(own_));
    entries.push_front({std::move(own_), order});
    return order;
}

}  // namespace vak
