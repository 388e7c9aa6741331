// The columns of a merged block that need no combining: identifiers, what is common, rows, and weights.
#include <algorithm>
#include <new>

#include "tools/merge_join.h"

namespace vak {

size_t MergedColumn::row_bytes() const
{
    size_t bytes = element;
    for (const hsize_t extent : row)
        if (__builtin_mul_overflow(bytes, extent, &bytes)) throw std::bad_alloc();
    return bytes;
}

size_t bytes_of(size_t rows, const MergedColumn& c)
{
    size_t bytes = 0;
    if (__builtin_mul_overflow(rows, c.row_bytes(), &bytes)) throw std::bad_alloc();
    return bytes;
}

bool has_states(const Join& join, const Column& c)
{
    return join.kind.is_series && (c.role == Role::values || c.role == Role::flag || c.role == Role::index);
}

bool has_rows(const Column& c) { return c.role != Role::common && c.role != Role::index; }

bool read_failed(Join& join, int32_t status)
{
    if (status != 0) join.read_status = read_failed(join.type(), 2, status);
    return status != 0;
}

Extents source_extents(const Join& join, const SourceBlock& s, const MergedColumn& c, const Extents& row)
{
    Extents extents;
    if (has_states(join, *c.column)) extents.push_back(static_cast<hsize_t>(s.nstate));
    if (has_rows(*c.column)) extents.push_back(static_cast<hsize_t>(s.count));
    extents.insert(extents.end(), row.begin(), row.end());
    return extents;
}

Extents merged_extents(const Join& join, const MergedColumn& c)
{
    Extents extents{join.order->size()};
    extents.insert(extents.end(), c.row.begin(), c.row.end());
    return extents;
}

namespace {

void put_part(Block& io, const MergedColumn& c, const void* values, const Shape& shape, Transfer part)
{
    const char* const name = c.column->name;
    switch (c.column->type) {
        case integer_type:
            integer_part(io, name, static_cast<const int32_t*>(values), shape, std::move(part));
            break;
        case text_type:
            text_part(io, name, static_cast<const char*>(values), c.element, shape, std::move(part));
            break;
        default:
            real_part(io, {name, const_cast<void*>(values), c.element, c.column->is_lossy}, shape,
                      std::move(part));
    }
}

// The lowest file's, as a whole; of a series all states at once, since index rows are short.
void write_common(Join& join, Block& io, const MergedColumn& c)
{
    const Extents extents = source_extents(join, join.ruling(), c, c.row);
    Bytes values;
    if (has_states(join, *c.column)) {
        if (read_failed(join,
                        join.ruling().read_states(*c.column, c.element, extents, 0, extents[0], values)))
            return;
        return put_states(io, c, values.data(), extents);
    }
    if (read_failed(join, join.ruling().read(*c.column, c.element, extents, values))) return;
    put(io, c, values.data(), extents);
}

// The rows of a source may be narrower than the merged ones, or missing.
bool add_rows(Join& join, const MergedColumn& c, size_t i, Bytes& merged)
{
    MergedColumn own = c;
    if (join.kind.widens) {
        const Stored& s = join.sources[i].stored(*c.column);
        if (!s.is_there || !join.sources[i].has(*c.column)) return true;
        own.row.assign(s.dims.begin() + 1, s.dims.end());  // as many as its counts, which were checked
    }
    Bytes& values = join.merge.scratch.read;
    const Extents extents = source_extents(join, join.sources[i], c, own.row);
    if (read_failed(join, join.sources[i].read(*c.column, c.element, extents, values))) return false;
    scatter_rows(*join.order, i, {values.data(), own.row_bytes()}, {merged.data(), c.row_bytes()});
    return true;
}

// From the highest file to the lowest, whose rows then stand.
void write_rows(Join& join, Block& io, const MergedColumn& c)
{
    Bytes& merged = join.merge.scratch.merged;
    merged.assign(bytes_of(join.order->size(), c), c.column->type == text_type ? ' ' : '\0');
    for (size_t i = join.sources.size(); i-- > 0;)
        if (!add_rows(join, c, i, merged)) return;
    put(io, c, merged.data(), merged_extents(join, c));
}

template <class T>
std::vector<double> as_doubles(const Bytes& values)
{
    const auto* const first = reinterpret_cast<const T*>(values.data());
    return {first, first + values.size() / sizeof(T)};
}

bool add_weights(Join& join, const MergedColumn& c, size_t i)
{
    std::vector<double> weights(join.order->place[i].size(), 1.0);
    if (join.sources[i].stored(*c.column).is_there) {
        Bytes values;
        const Extents extents = source_extents(join, join.sources[i], c, c.row);
        if (read_failed(join, join.sources[i].read(*c.column, c.element, extents, values))) return false;
        weights = c.element == sizeof(double) ? as_doubles<double>(values) : as_doubles<float>(values);
    }
    join.weights->add(i, std::move(weights));
    return true;
}

void write_weights(Join& join, Block& io, const MergedColumn& c)
{
    join.weights.emplace(*join.order);
    for (size_t i = 0; i < join.sources.size(); ++i)
        if (!add_weights(join, c, i)) return;
    std::vector<double> sums = join.weights->sums();
    put(io, {c.column, sizeof(double), c.row}, sums.data(), merged_extents(join, c));
}

}  // namespace

void put(Block& io, const MergedColumn& c, const void* values, const Extents& extents)
{
    Shape shape{};
    for (const hsize_t extent : extents) shape.add(static_cast<int64_t>(extent));
    put_part(io, c, values, shape, whole());
}

void put_states(Block& io, const MergedColumn& c, const void* values, const Extents& extents)
{
    Shape shape{growing};
    for (size_t i = 1; i < extents.size(); ++i) shape.add(static_cast<int64_t>(extents[i]));
    put_part(io, c, values, shape, {hyperslab, extents, Extents(extents.size(), 0)});
}

void write_column(Join& join, Block& io, const MergedColumn& c)
{
    if (io.stopped) return;
    switch (c.column->role) {
        case Role::ids: return put(io, c, join.order->ids.data(), merged_extents(join, c));
        case Role::index:
        case Role::common: return write_common(join, io, c);
        case Role::row: return write_rows(join, io, c);
        case Role::weight: return write_weights(join, io, c);
        case Role::flag: return write_flags(join, io, c);
        case Role::values: return write_values(join, io, c);
    }
}

}  // namespace vak
