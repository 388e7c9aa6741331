#include "blocks/series.h"

#include <algorithm>
#include <string>

#include "storage/rows_in_file.h"

namespace vak {

namespace {

// Where a field stands below the block's group.
std::string path_of(const Block& io, const char* section, const char* name)
{
    return legacy(io) ? std::string(section) + "/" + name : name;
}

const char* header_of(const Block& io) { return legacy(io) ? "header" : "."; }

bool has_state_count(const Block& io)
{
    return H5Aexists_by_name(io.group, header_of(io), "nstate", H5P_DEFAULT) > 0;
}

Dataset open(const Block& io, const char* section, const char* name)
{
    return Dataset(H5Dopen2(io.group, path_of(io, section, name).c_str(), H5P_DEFAULT));
}

constexpr int64_t none = -1, not_told = -2;

// Whether a link stands there, or where its section should be, that leads to nothing which can be had.
bool is_out_of_reach(const Block& io, const char* section, const char* name)
{
    const auto is_linked = [&](const char* path) { return H5Lexists(io.group, path, H5P_DEFAULT) > 0; };
    if (legacy(io) && is_linked(section) && H5Oexists_by_name(io.group, section, H5P_DEFAULT) <= 0)
        return true;
    return is_linked(path_of(io, section, name).c_str());
}

// The rows of a dataset; `none` where there is no dataset.
int64_t states_in(const Block& io, const char* section, const char* name)
{
    const Dataset dataset = open(io, section, name);
    if (!dataset.valid()) return is_out_of_reach(io, section, name) ? not_told : none;
    const Space space(H5Dget_space(dataset.get()));
    Extents extents{};
    Extents maximum{};
    const int rank = extents_in_file(dataset.get(), space.get(), extents, maximum);
    if (rank < 1) return rank < 0 ? not_told : none;
    return static_cast<int64_t>(extents[0]);
}

// The extent of the values, else of the index rows.
int64_t stored_states(const Block& io, const char* values)
{
    for (const auto& [section, name] :
         {std::pair{"data", values}, std::pair{"index", "indexval"}, std::pair{"index", "indexident"}}) {
        const int64_t states = states_in(io, section, name);
        if (states >= 0) return states;
    }
    return none;
}

// The attribute as the header has it; 0 where it cannot be had.
int64_t counted_states(const Block& io)
{
    if (!has_state_count(io)) return 0;
    const Object header(H5Oopen(io.group, header_of(io), H5P_DEFAULT));
    int32_t nstate = 0;
    size_t size = 0;
    const int32_t status =
        VAK_H5Aread("nstate", &nstate, integer_type, sizeof nstate, nullptr, 0, header.get(), &size);
    return status == 0 ? nstate : 0;
}

constexpr int64_t most_states = std::numeric_limits<int32_t>::max();  // "nstate" has 32 bits

bool countable(int64_t end, States s)
{
    return s.start <= most_states && s.count <= most_states &&
           end + std::max(s.start, int64_t{0}) + std::max(s.count, int64_t{0}) <= most_states;
}

void keep_states(Block& io, const char* name, int64_t states)
{
    const Dataset dataset = open(io, "index", name);
    const Space space(H5Dget_space(dataset.get()));
    std::array<hsize_t, H5S_MAX_RANK> extents{};
    H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
    extents[0] = static_cast<hsize_t>(states);
    if (H5Dset_extent(dataset.get(), extents.data()) < 0) fail_writing(io, -3);
}

// Rows go behind those of their own array, which as a rule ends where the series ends: the extent that comes
// back tells. If not, as after a call that failed, they are taken back and written once more, beside their
// values.
template <class Write>
void append_rows(Block& io, const char* name, const Growth& g, Write write)
{
    const int64_t after = write(g.added);
    const bool nothing_written = io.stopped || after < 0;
    if (nothing_written || after == g.after()) return;
    const int64_t kept = std::min(after - g.added.start - g.added.count, g.end);
    keep_states(io, name, kept);
    write({g.added.start + g.end - kept, g.added.count});
}

// Values that are still missing belong to no complete state; without any values the index rows count.
int64_t complete_states(const Block& io, const char* values, bool has_values)
{
    const int64_t states = has_values ? states_in(io, "data", values) : state_count(io, values);
    return states == none ? 0 : states;
}

// All states; the first ones where a failed call has left rows behind them.
Transfer complete(const Block& io, const char* name, int64_t nstate, const char* values, const Shape& extents)
{
    const bool longer = states_in(io, "index", name) > nstate;
    return longer && state_count(io, values) == nstate ? rows({0, nstate}, extents) : whole();
}

}  // namespace

bool is_empty_series(const Block& io) { return io.is_new || !has_state_count(io); }

Growth grow(Block& io, const char* values, Shape extents, States added)
{
    if (io.stopped) return {};
    const int64_t end = io.is_new ? 0 : complete_states(io, values, !extents.empty());
    // Rows would go to another place than that behind the last state.
    if (end == not_told)
        fail_writing(io, -1);
    else if (!countable(end, added))
        fail_writing(io, -3);
    return {end, added};
}

void index_parts(Block& io, const Index& x, int64_t states, Transfer idents, Transfer vals)
{
    if (io.stopped || (reading(io) && *x.nindex <= 0)) return;
    const Shape shape{states, *x.nindex};
    enter(io, "index");
    integer_part(io, "indexident", x.indexident, shape, std::move(idents));
    real_part(io, {.name = "indexval", .values = x.indexval.at}, shape, std::move(vals));
}

void append_index(Block& io, const Index& x, const Growth& g)
{
    const Shape extents{*x.nindex}, shape = with_states(growing, extents);
    enter(io, "index");
    append_rows(io, "indexident", g, [&](States s) {
        return integer_part(io, "indexident", x.indexident, shape, rows(s, extents));
    });
    append_rows(io, "indexval", g, [&](States s) {
        return real_part(io, {.name = "indexval", .values = x.indexval.at}, shape, rows(s, extents));
    });
}

void append_reals(Block& io, const RealArray& a, Shape extents, const Growth& g)
{
    real_part(io, a, with_states(growing, extents), rows(g.added, extents));
}

void append_integers(Block& io, const char* name, Arg<int32_t> values, Shape extents, const Growth& g)
{
    integer_part(io, name, values, with_states(growing, extents), rows(g.added, extents));
}

void append_state_count(Block& io, const Growth& g)
{
    auto nstate = static_cast<int32_t>(g.after());
    enter(io, "header");
    integer(io, "nstate", &nstate);
}

int32_t state_count(const Block& io, const char* values)
{
    const int64_t stored = stored_states(io, values);
    const int64_t states = stored == none ? counted_states(io) : stored;
    return static_cast<int32_t>(std::clamp(states, int64_t{0}, most_states));
}

void read_state_count(Block& io, const char* values, Arg<int32_t> nstate)
{
    io.shared.expects_chunks = true;
    if (io.stopped) return;
    if (stored_states(io, values) == none && has_state_count(io)) return integer(io, "nstate", nstate);
    *nstate = state_count(io, values);
}

void read_index(Block& io, const Index& x, int32_t nstate, const char* values)
{
    const auto place = [&](const char* name) { return complete(io, name, nstate, values, {*x.nindex}); };
    index_parts(io, x, nstate, place("indexident"), place("indexval"));
}

void read_index(Block& io, const Index& x, States s)
{
    index_parts(io, x, growing, rows(s, {*x.nindex}), rows(s, {*x.nindex}));
}

Shape with_states(int64_t states, Shape extents)
{
    Shape shape{states};
    for (int32_t i = 0; i < extents.rank(); ++i) shape.add(static_cast<int64_t>(extents.extents()[i]));
    return shape;
}

Transfer rows(States s, Shape extents)
{
    const auto rank = static_cast<size_t>(extents.rank());
    std::vector<int64_t> count{s.count}, start(rank + 1, 0);
    count.insert(count.end(), extents.extents(), extents.extents() + rank);
    start[0] = s.start;
    return slab(count.data(), start.data(), rank + 1);
}

}  // namespace vak
