// Every kind of block, by the routines that write and read it: what all have in common is tested once for the
// list.
#pragma once

#include <functional>

#include "support/block_test.h"

namespace vak::test {

// Called with made-up arguments: the location, and integers that are all of one value.
struct Routine {
    std::string name;
    std::function<int32_t(hid_t location, int32_t value)> call;
};

// The writer's key is what its reader finds.
struct Kind {
    Routine write;
    Routine read;
};

inline std::ostream& operator<<(std::ostream& stream, const Kind& kind) { return stream << kind.write.name; }

// A new kind is one line in this list.
const std::vector<Kind>& kinds();

// A block in the file, found by its stamp.
struct StoredBlock {
    ObjectId place;
    std::string
        stamped;  // the group with the attribute "block": the block's own or, legacy, its subgroup "header"

    // The block's own group.
    ObjectId group() const;
};

// The groups below a place that carry the attribute "block".
std::vector<std::string> stamped_groups(hid_t place);

class ContractTest : public BlockTest {
protected:
    // The stamp of a block of that kind, as a rule with all its fields, at a place of its own.
    StoredBlock written(const Kind& kind);

    // A new group of the file, for one block.
    ObjectId place();
    static ObjectId group(hid_t location, const std::string& name);

    Result call_at(const Routine& routine, hid_t place, int32_t value);

private:
    int places_ = 0;
};

class KindTest : public ContractTest, public testing::WithParamInterface<Kind> {};

inline const auto kind_name = [](const auto& kind) { return kind.param.write.name; };

}  // namespace vak::test
