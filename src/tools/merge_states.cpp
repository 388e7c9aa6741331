// Flags and values of a merged block, a slice of states at a time.
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "tools/merge_join.h"

namespace vak {

namespace {

// What is held stays far below the limit of one block's data, and whole chunks are written.
constexpr size_t slice_bytes = size_t{64} << 20;
constexpr int32_t data_limit = 1073741824;

struct Slice {
    hsize_t first, n;  // states
};

hsize_t states_of(const Join& join, const Column& c)
{
    return has_states(join, c) ? static_cast<hsize_t>(join.ruling().nstate) : 1;
}

void tell_slices(const Join& join, hsize_t states)
{
    std::printf(
        " VAK INFO - \"%s\" data size limit of %d Byte exceeded -> i/o + merge in blocks of %d states - block: \"%s\"\n",
        join.type(), data_limit, static_cast<int>(states), join.target.path.c_str());
}

hsize_t states_per_slice(const Join& join, const MergedColumn& c)
{
    const hsize_t states = std::max<hsize_t>(states_of(join, *c.column), 1);
    const size_t state_bytes = std::max<size_t>(bytes_of(join.order->size(), c), 1);
    const hsize_t allowed = std::clamp<hsize_t>(data_limit / state_bytes, 1, states);
    if (allowed < states && join.merge.level > 0) tell_slices(join, allowed);
    const auto chunk = static_cast<hsize_t>(std::max(chunk_size(), 1));
    return std::min(allowed, std::max<hsize_t>(slice_bytes / state_bytes / chunk, 1) * chunk);
}

int32_t read_slice(Join& join, size_t i, const MergedColumn& c, const Slice& slice, Bytes& values)
{
    SourceBlock& source = join.sources[i];
    const Extents extents = source_extents(join, source, c, c.row);
    if (!has_states(join, *c.column)) return source.read(*c.column, c.element, extents, values);
    return source.read_states(*c.column, c.element, extents, slice.first, slice.n, values);
}

// Calls merge_slice(slice, merged), which sets every byte, for each slice and writes what it made; false from
// it ends the column.
template <class MergeSlice>
void write_slices(Join& join, Block& io, const MergedColumn& c, MergeSlice merge_slice)
{
    const hsize_t states = states_of(join, *c.column), step = states_per_slice(join, c);
    for (hsize_t at = 0; at < states && !io.stopped; at += step) {
        const Slice slice{at, std::min(step, states - at)};
        Bytes& merged = join.merge.scratch.merged;
        merged.resize(bytes_of(join.order->size() * slice.n, c));
        if (!merge_slice(slice, merged)) return;
        Extents extents = merged_extents(join, c);
        if (!has_states(join, *c.column)) return put(io, c, merged.data(), extents);
        extents.insert(extents.begin(), slice.n);
        put_states(io, c, merged.data(), extents);
        io.is_new = io.section_is_new = false;  // the next slice finds the dataset there
    }
}

// Active in one file is active.
void add_flags(const std::vector<int32_t>& place, const int32_t* from, int32_t* merged)
{
    for (size_t i = 0; i < place.size(); ++i) {
        int32_t& flag = merged[place[i]];
        if (flag == 0) flag = from[i];
    }
}

std::vector<Operator> operators_of(Join& join, const MergedColumn& c)
{
    const auto is_operator = [](const MergedColumn& m) {
        return std::string_view(m.column->name) == "operator";
    };
    const auto column = std::ranges::find_if(join.columns, is_operator);
    if (column == join.columns.end() || !join.weights) return {};
    Bytes fields;
    if (read_failed(join, join.ruling().read(*column->column, 256, column->row, fields))) return {};
    const bool is_complex = join.ruling().source.key == join.kind.kind.complex_key;
    const size_t parts = is_complex ? 2 : 1, ncoo = std::max<size_t>(fields.size() / 256, 1);
    std::vector<Operator> ops(fields.empty() ? 0 : c.width());
    for (size_t k = 0; k < ops.size(); ++k) ops[k] = operator_of(&fields[k / parts % ncoo * 256]);
    return ops;
}

template <class T>
bool merge_values(Join& join, const MergedColumn& c, const std::vector<Operator>& ops, const Slice& slice,
                  Bytes& merged)
{
    const size_t state_bytes = bytes_of(join.order->size(), c), row_bytes = c.row_bytes();
    std::vector<SharedValues> shared;
    for (hsize_t state = 0; state < slice.n && !ops.empty() && !join.order->shared.empty(); ++state)
        shared.emplace_back(*join.order, ops);
    Bytes& values = join.merge.scratch.read;
    // Each row of the merged block is some source's, so none is left as it was.
    for (size_t i = join.sources.size(); i-- > 0;) {
        if (read_failed(join, read_slice(join, i, c, slice, values))) return false;
        const size_t source_bytes = join.order->place[i].size() * row_bytes;
        for (hsize_t state = 0; state < slice.n; ++state) {
            const char* const from = values.data() + state * source_bytes;
            scatter_rows(*join.order, i, {from, row_bytes}, {merged.data() + state * state_bytes, row_bytes});
            if (!shared.empty()) shared[state].add(i, reinterpret_cast<const T*>(from), *join.weights);
        }
    }
    for (size_t state = 0; state < shared.size(); ++state)
        shared[state].store(reinterpret_cast<T*>(merged.data() + state * state_bytes));
    return true;
}

}  // namespace

void write_flags(Join& join, Block& io, const MergedColumn& c)
{
    write_slices(join, io, c, [&](const Slice& slice, Bytes& merged) {
        Bytes& values = join.merge.scratch.read;
        std::ranges::fill(merged, '\0');
        for (size_t i = 0; i < join.sources.size(); ++i) {
            if (read_failed(join, read_slice(join, i, c, slice, values))) return false;
            const std::vector<int32_t>& place = join.order->place[i];
            for (hsize_t state = 0; state < slice.n; ++state)
                add_flags(place, reinterpret_cast<const int32_t*>(values.data()) + state * place.size(),
                          reinterpret_cast<int32_t*>(merged.data()) + state * join.order->size());
        }
        return true;
    });
}

void write_values(Join& join, Block& io, const MergedColumn& c)
{
    const std::vector<Operator> ops = operators_of(join, c);
    if (join.read_status != 0) return;
    write_slices(join, io, c, [&](const Slice& slice, Bytes& merged) {
        return c.element == sizeof(double) ? merge_values<double>(join, c, ops, slice, merged)
                                           : merge_values<float>(join, c, ops, slice, merged);
    });
}

}  // namespace vak
