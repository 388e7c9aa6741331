// Where each domain's entities go in the merged block.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <vector>

namespace vak {

using Ids = std::vector<int32_t>;

// A row of a source whose entity other rows have as well, and the place of that entity in the list of shared
// ones.
struct SharedRow {
    int32_t row, slot;
};

// The union of the identifiers of all sources, ascending, and the place of each source's entities in it.
struct Order {
    Ids ids;
    std::vector<std::vector<int32_t>> place;          // by source and its row: the row in the merged block
    std::vector<int32_t> shared;                      // merged rows that more than one row goes to, ascending
    std::vector<std::vector<SharedRow>> shared_rows;  // by source
    std::vector<bool> repeats;                        // by source: one of its identifiers stands there twice

    size_t size() const { return ids.size(); }
};

Order order_of(const std::vector<Ids>& sources);

// Most blocks of a run list the same entities: the order is found once for each distinct set of identifier
// tables.
class OrderCache {
public:
    std::shared_ptr<const Order> find(std::vector<Ids>&& sources);

private:
    struct Entry {
        std::vector<Ids> sources;
        std::shared_ptr<const Order> order;
    };
    std::list<Entry> entries_;  // the last used first
};

}  // namespace vak
