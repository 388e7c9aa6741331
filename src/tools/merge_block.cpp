// Blocks of several domains joined into one: first the sizes, then the union of their entities, column by
// column.
#include "tools/merge_block.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "blocks/fields.h"
#include "tools/merge_join.h"

namespace vak {

namespace {

// ---- what the sources are

bool agrees(const Join& join, const SourceBlock& block)
{
    if (join.sources.empty()) return true;
    const SourceBlock& ruling = join.ruling();
    for (size_t i = 0; i < join.kind.agreeing.size(); ++i)
        if (block.agreeing[i] != ruling.agreeing[i])
            return warn_left_out(block.source, join.kind.agreeing[i], ruling.source), false;
    if (block.nstate == ruling.nstate) return true;
    return warn_left_out(block.source, "number of states", ruling.source), false;
}

int32_t open_sources(Join& join)
{
    for (const DomainBlock& source : join.target.sources) {
        SourceBlock block(join.merge, join.kind, source);
        if (const int32_t status = block.read_counts(); status != 0)
            return read_failed(join.type(), 1, status);
        if (block.nindex > max_index) return refuse_index(join.merge, block.nindex);
        if (agrees(join, block)) join.sources.push_back(std::move(block));
    }
    const int32_t status = join.ruling().check_needed();
    return status == 0 ? 0 : read_failed(join.type(), 1, status);
}

void warn_of_repeats(const DomainBlock& s)
{
    std::fprintf(
        stderr,
        "VAK WARNING file [%d]: block key %d \"%s\" lists an entity more than once, merged into one\n",
        s.file, s.key, s.path.c_str());
}

// Before so many are read. What the arrays do not bear out, reading them tells.
bool has_too_many_rows(Join& join, const Column& ids)
{
    int64_t rows = 0;
    for (SourceBlock& s : join.sources)
        if (s.stored(ids).dims == Extents{static_cast<hsize_t>(s.count)}) rows += s.count;
    return !fits_count(rows);
}

int32_t find_order(Join& join)
{
    const Column& column = *std::ranges::find(join.kind.columns, Role::ids, &Column::role);
    if (has_too_many_rows(join, column)) return write_failed(join.type(), refuse_total(join.kind.kind));
    OrderCache::Search search(join.merge.orders);
    Bytes& ids = join.merge.scratch.read;
    for (SourceBlock& s : join.sources) {
        const int32_t status = s.read(column, sizeof(int32_t), {static_cast<hsize_t>(s.count)}, ids);
        if (status != 0) return read_failed(join.type(), 2, status);
        search.add({reinterpret_cast<const int32_t*>(ids.data()), ids.size() / sizeof(int32_t)});
    }
    join.order = search.order();
    for (size_t i = 0; i < join.sources.size(); ++i)
        if (!join.order->superseded[i].empty()) warn_of_repeats(join.sources[i].source);
    return 0;
}

// ---- what the merged columns are

constexpr int32_t text_size = 256;  // of texts that have no length of their own

// The size of one value in memory: a text's by the block's "length", where that has one. A stored text that
// is longer is left to the reader to refuse.
size_t memory_size(SourceBlock& source, const Column& c, size_t stored)
{
    if (c.type == integer_type) return sizeof(int32_t);
    if (c.type == text_type)
        return c.when.attribute == nullptr || c.role != Role::row
                   ? text_size
                   : static_cast<size_t>(source.integer_attribute("length").value_or(text_size));
    return stored > sizeof(float) ? sizeof(double) : sizeof(float);
}

// The lowest file's; one that has nothing stored tells nothing.
FoundStorage found_filters(Join& join)
{
    FoundStorage found;
    for (SourceBlock& source : join.sources)
        if (found = source.filters(&source == &join.ruling()); found.flags != 0) break;
    return found;
}

void widen(MergedColumn& merged, const MergedColumn& other, bool rows)
{
    merged.element = std::max(merged.element, other.element);
    if (!rows || merged.row.size() != other.row.size()) return;
    for (size_t i = 0; i < merged.row.size(); ++i) merged.row[i] = std::max(merged.row[i], other.row[i]);
}

// The length of lists of which another column tells the counts; those were checked before.
hsize_t total_of(const Join& join, SourceBlock& source, const Column& c)
{
    const Column& of = *std::ranges::find(join.kind.columns, std::string_view(c.total_of), &Column::name);
    Bytes counts;
    if (source.read(of, sizeof(int32_t), source.stored(of).dims, counts) != 0) return impossible_length;
    const auto n = static_cast<int64_t>(counts.size() / sizeof(int32_t));
    return static_cast<hsize_t>(total(reinterpret_cast<const int32_t*>(counts.data()), n));
}

// The extents of one row by the block's own counts.
Extents row_of(const Join& join, SourceBlock& source, const Column& c)
{
    if (c.total_of != nullptr) return {total_of(join, source, c)};
    if (c.row_when != nullptr && source.integer_attribute(c.row_when) != 2) return {};
    Extents row;
    for (const char* const name : c.row)
        if (name != nullptr)
            row.push_back(static_cast<hsize_t>(std::max(source.integer_attribute(name).value_or(0), 0)));
    if (c.role == Role::values && source.source.key == join.kind.kind.complex_key) row.push_back(2);
    return row;
}

bool is_empty(const Extents& extents) { return std::ranges::find(extents, hsize_t{0}) != extents.end(); }

// Nothing is sized by a count that the array does not bear out. Index rows may go on behind the last state.
int32_t check_extents(const Join& join, SourceBlock& source, const MergedColumn& c, const Stored& s)
{
    const Extents counted = source_extents(join, source, c, c.row);
    const bool may_go_on = has_states(join, *c.column) && c.column->role == Role::index;
    if (is_empty(counted) || s.dims == counted || (s.is_there && may_go_on)) return 0;
    return read_failed(join.type(), 2, source.check(*c.column, c.element, counted));
}

int32_t attribute_failure(const Join& join, const SourceBlock& source)
{
    const int32_t status = source.attribute_status();
    return status == 0 ? 0 : read_failed(join.type(), 1, status);
}

// What the column of one source adds to the merged one. One without entities stores no array, but where rows
// take the widest shape its counts tell.
int32_t add_source(const Join& join, SourceBlock& source, const Column& c,
                   std::optional<MergedColumn>& merged)
{
    if (!source.has(c)) return attribute_failure(join, source);
    const Stored& s = source.stored(c);
    if (s.is_lost) return read_failed(join.type(), 1, lost_column);
    if (!s.is_there && c.is_optional) return 0;
    MergedColumn found{&c, memory_size(source, c, s.element), row_of(join, source, c)};
    int32_t status = attribute_failure(join, source);
    if (status == 0) status = check_extents(join, source, found, s);
    if (!s.is_there && !join.kind.widens) return status;
    if (merged)
        widen(*merged, found, join.kind.widens);
    else
        merged = std::move(found);
    return status;
}

// Identifiers are always there; weights where the values are joined by operators.
bool is_always_there(Join& join, const Column& c)
{
    return c.role == Role::ids || (c.role == Role::weight && join.ruling().has(c));
}

int32_t find_columns(Join& join)
{
    size_t widest = 0;
    for (const Column& c : join.kind.columns) {
        std::optional<MergedColumn> merged;
        if (is_always_there(join, c)) merged = MergedColumn{&c, sizeof(int32_t), {}};
        for (SourceBlock& source : join.sources) {
            if (c.role == Role::ids || (!has_rows(c) && &source != &join.ruling())) break;
            if (const int32_t status = add_source(join, source, c, merged); status != 0) return status;
        }
        if (!merged) continue;
        if (c.type == real_type) widest = std::max(widest, merged->element);
        join.columns.push_back(std::move(*merged));
    }
    const std::string variable = join.ruling().text_attribute("etypvar");
    if (const int32_t status = attribute_failure(join, join.ruling()); status != 0) return status;
    join.storage = merged_storage(join.merge, join.type(), found_filters(join), variable.c_str());
    join.storage.real_size = std::max(join.storage.real_size, widest);
    return 0;
}

// ---- the block

void write_nstate(const Join& join, Block& io)
{
    auto nstate = static_cast<int32_t>(join.ruling().nstate);
    enter(io, "header");
    integer(io, "nstate", &nstate);
}

bool refuse_existing(const Join& join)
{
    if (!exists_in_target(join.merge, join.target.path)) return false;
    std::fprintf(stderr, "VAK INTERNAL ERROR writing block key %d - \"%s\" already exists.\n",
                 join.kind.kind.key, join.type());
    return true;
}

int32_t write_fields(Join& join, Block& io)
{
    write_attributes(join, io);
    for (const MergedColumn& c : join.columns) {
        if (join.read_status != 0) return join.read_status;
        enter(io, c.column->role == Role::index && !join.kind.index_in_data ? "index" : "data");
        write_column(join, io, c);
    }
    if (join.kind.is_series) write_nstate(join, io);
    return join.read_status;
}

int32_t write(Join& join)
{
    if (refuse_existing(join)) return write_failed(join.type(), -1);
    OpenedGroup opened = open_or_create_group(join.merge.target, join.target.path);
    if (opened.status < 0) return write_failed(join.type(), opened.status);
    Block io(join.kind.kind, join.merge.family, Direction::write, opened.group.get());
    io.is_new = opened.status > 0;
    io.storage = join.storage;
    io.key = join.ruling().source.key;
    if (const int32_t status = write_fields(join, io); status != 0) return status;
    const int32_t status = end_writing(io, std::move(opened.group));
    return status == 0 ? 0 : write_failed(join.type(), status);
}

// For the domain numbers.
int32_t note_elements(Join& join)
{
    if (join.kind.kind.key != 300 || !join.merge.adds_domain_number) return 0;
    const std::string etyp = join.ruling().text_attribute("etyp");
    if (const int32_t status = attribute_failure(join, join.ruling()); status != 0) return status;
    std::vector<Ids>& elements = join.merge.elements[etyp];
    elements.resize(join.merge.domains.size());
    for (size_t i = 0; i < join.sources.size(); ++i)
        for (const int32_t row : join.order->place[i])
            elements[static_cast<size_t>(join.sources[i].source.file)].push_back(
                join.order->ids[static_cast<size_t>(row)]);
    return 0;
}

}  // namespace

int32_t join_blocks(Merge& merge, const MergedKind& kind, const TargetBlock& target)
{
    Join join{.merge = merge,
              .kind = kind,
              .target = target,
              .sources = {},
              .order = {},
              .columns = {},
              .storage = {},
              .weights = {}};
    int32_t status = open_sources(join);
    if (status == 0) status = find_order(join);
    if (status != 0) return status;
    status = find_columns(join);
    if (status == 0) status = write(join);
    return status == 0 ? note_elements(join) : status;
}

}  // namespace vak
