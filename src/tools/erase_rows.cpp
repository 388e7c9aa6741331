// The index rows of the blocks that the eraser judges.
#include <algorithm>

#include "blocks/series.h"
#include "tools/erase_block.h"
#include "tools/stored_series.h"

namespace vak {

namespace {

constexpr int32_t unreadable = -6999;

// The attributes are those of the block's own group, or of its "header": the group that the listed path leads
// to.
int32_t read_nindex(const ErasableBlock& b, int32_t* nindex)
{
    const Group header = open_in_file(b, b.path);
    size_t stored = 0;
    return VAK_H5Aread("nindex", nindex, integer_type, sizeof *nindex, nullptr, 0, header.get(), &stored);
}

// A row more than are stored costs nothing in the file; only so many may be made up where rows were left out.
constexpr int64_t rows_left_out = 1 << 20;

// How many rows the dataset has; -1 where they cannot be taken for rows of states.
int64_t stored_rows(hid_t group, const char* name)
{
    StoredSeries series(group, name);
    if (!open_series(series)) return -1;
    const double stored = static_cast<double>(series.chunks.size()) * static_cast<double>(series.chunk[0]);
    if (static_cast<double>(series.dims[0]) > stored + rows_left_out) return -1;
    return static_cast<int64_t>(series.dims[0]);
}

// `nstates` below 0: a single row.
IndexRows read_rows(const ErasableBlock& b, const Group& group, int64_t nstates)
{
    int32_t nindex = 0;
    IndexRows rows;
    rows.status = read_nindex(b, &nindex);
    if (rows.status != 0 || nindex <= 0) return rows;
    const BlockKind kind{.key = b.key, .type = ""};
    Block io(kind, b.family, Direction::read, group.get());
    // Without a place to deliver to, the extents are checked before memory is taken for them.
    const Shape shape = nstates < 0 ? Shape{nindex} : Shape{nstates, nindex};
    const Counts values = counts(io, "indexident", {}, shape);
    rows.status = io.status;
    rows.width = static_cast<size_t>(nindex);
    rows.values.assign(values.begin(), values.end());
    return rows;
}

int64_t complete_states(const ErasableBlock& b)
{
    const BlockKind kind{.key = b.key, .type = ""};
    const Group group = open_in_file(b, b.family == Family::current ? b.path : parent_of(b.path));
    const Block io(kind, b.family, Direction::read, group.get());
    return state_count(io, group_with(b, "status").valid() ? "status" : "res");
}

}  // namespace

IndexRows read_index_row(const ErasableBlock& b)
{
    const Group group = group_with(b, "indexident");
    return group.valid() ? read_rows(b, group, -1) : IndexRows{};
}

IndexRows read_series_rows(const ErasableBlock& b)
{
    const Group group = group_with(b, "indexident");
    if (!group.valid()) return {};
    const int64_t stored = stored_rows(group.get(), "indexident"), states = complete_states(b);
    if (stored < states) return {.status = unreadable, .values = {}};
    IndexRows rows = read_rows(b, group, stored);
    // Rows behind the values are what a failed call left.
    rows.values.resize(std::min(rows.values.size(), rows.width * static_cast<size_t>(states)));
    return rows;
}

}  // namespace vak
