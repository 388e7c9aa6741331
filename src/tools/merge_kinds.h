// What the merger knows of each kind whose entities it joins: which field identifies them, and how the fields
// of an entity that several domains have become one.
#pragma once

#include <array>
#include <span>

#include "blocks/block.h"

namespace vak {

enum class Role {
    index,   // of the state: the lowest file's
    common,  // one for the whole block: the lowest file's
    ids,     // identifies the entities: their union
    row,     // one row for each entity: that of the lowest file that has it
    flag,    // active in one file is active
    weight,  // summed; 1 where a file has none
    values   // by the operators of their components, where the block has them
};

// Stored only where this holds for an attribute of the block; where the block has no such attribute too.
struct When {
    const char* attribute = nullptr;
    bool (*holds)(int32_t) = nullptr;
};

struct Column {
    const char* name;
    int32_t type;
    Role role;
    std::array<const char*, 2> row{};  // the attributes that give the extents of one row
    bool is_lossy = false;             // its writer keeps the scale-offset bit
    const char* total_of = nullptr;    // or the column whose sum is its extent
    When when{};
    const char* row_when = nullptr;  // the row's extents are there only where this attribute is 2
    bool is_optional = false;        // readers do without
    bool is_legacy = false;          // the current family has none
};

enum class Way {
    join,     // by the columns
    collect,  // collectors: sets of entities
    copy      // matrices: the lowest file's
};

struct MergedKind {
    BlockKind kind;
    Way way = Way::join;
    const char* count = nullptr;                // attribute: number of entities
    std::span<const char* const> agreeing{};    // attributes in which blocks that become one must agree
    std::span<const char* const> needed{};      // further attributes without which no reader reads the block
    std::span<const char* const> needed_now{};  // the same, in the current family alone
    const char* variable_with = nullptr;        // or "etypvar" where this count is not 0
    std::span<const Column> columns{};          // in the order in which they are written
    bool is_series = false;                     // index, flags and values have a leading axis of states
    int32_t last_fswitch = 0;                   // of results: the largest frame switch that there is
    bool widens = false;                        // rows take the widest of the files' shapes
    bool index_in_data = false;                 // legacy: no subgroup "index"
    bool is_rare = false;                       // reported only where there are such blocks
};

// In the order in which they are merged.
std::span<const MergedKind> merged_kinds();

}  // namespace vak
