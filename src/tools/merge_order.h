// Where each domain's entities go in the merged block.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <vector>

namespace vak {

using Ids = std::vector<int32_t>;

// A row of a source whose entity other sources have as well, and the place of that entity in the list of
// shared ones.
struct SharedRow {
    int32_t row, slot;
};

// Rows of a source whose places follow each other.
struct Run {
    int32_t row, place, n;
};

// The union of the identifiers of all sources, ascending, and the place of each source's entities in it.
struct Order {
    Ids ids;
    std::vector<std::vector<int32_t>> place;          // by source and its row: the row in the merged block
    std::vector<std::vector<Run>> runs;               // by source; none where they would be short
    std::vector<int32_t> shared;                      // merged rows that more than one source has, ascending
    std::vector<std::vector<SharedRow>> shared_rows;  // by source
    // By source: rows that count for nothing, since a later one has the same identifier. As a rule none.
    std::vector<std::vector<int32_t>> superseded;

    size_t size() const { return ids.size(); }
};

Order order_of(const std::vector<Ids>& sources);

// Most blocks of a run list the same entities: the order is found once for each distinct set of identifier
// tables, of which the last few are kept.
class OrderCache {
    struct Entry {
        std::vector<Ids> sources;
        std::shared_ptr<const Order> order;
    };
    std::list<Entry> entries_;  // the last used first

public:
    // Takes the tables one after the other, each compared while it is at hand. None is copied as long as one
    // of the sets that are known begins like this.
    class Search {
    public:
        explicit Search(OrderCache&);
        void add(std::span<const int32_t> ids);
        std::shared_ptr<const Order> order();

    private:
        using Candidate = std::list<Entry>::iterator;
        bool begins_alike(const Entry&, std::span<const int32_t> ids) const;

        OrderCache& cache_;
        std::vector<Candidate> candidates_;
        std::vector<Ids> own_;  // from when no candidate is left
        size_t n_ = 0;
    };
};

}  // namespace vak
