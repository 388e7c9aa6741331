// Blocks of several domains while they are joined into one.
#pragma once

#include <memory>
#include <optional>

#include "tools/merge_rows.h"
#include "tools/merge_source.h"

namespace vak {

// A column of the merged block: element size in memory and the extents of one row.
struct MergedColumn {
    const Column* column;
    size_t element;
    std::vector<hsize_t> row;

    size_t row_bytes() const;
    size_t width() const { return row_bytes() / element; }  // values in a row
};

struct Join {
    Merge& merge;
    const MergedKind& kind;
    const TargetBlock& target;
    std::vector<SourceBlock> sources;  // those that agree with the first, which rules
    std::shared_ptr<const Order> order;
    std::vector<MergedColumn> columns;
    StorageOptions storage;
    std::optional<Weights> weights;
    int32_t read_status = 0;  // of the read that failed while columns were written

    const char* type() const { return kind.kind.type; }
    SourceBlock& ruling() { return sources.front(); }
    const SourceBlock& ruling() const { return sources.front(); }
};

// Bytes of so many rows; memory that cannot be counted cannot be had.
size_t bytes_of(size_t rows, const MergedColumn&);

bool has_states(const Join&, const Column&);  // a leading axis of states
bool has_rows(const Column&);                 // an axis of entities

// Notes a read that failed, and tells so.
bool read_failed(Join&, int32_t status);

// Writes the attributes of the merged block, "nstate" of a series excepted, which comes last.
void write_attributes(Join&, Block&);

// Writes a column of the merged block, reading it from the sources.
void write_column(Join&, Block&, const MergedColumn&);

// Parts of it.
using Extents = std::vector<hsize_t>;
Extents source_extents(const Join&, const SourceBlock&, const MergedColumn&, const Extents& row);
Extents merged_extents(const Join&, const MergedColumn&);
void put(Block&, const MergedColumn&, const void* values, const Extents&);
void put_states(Block&, const MergedColumn&, const void* values,
                const Extents&);  // appends; the first extent counts them
void write_flags(Join&, Block&, const MergedColumn&);
void write_values(Join&, Block&, const MergedColumn&);

}  // namespace vak
