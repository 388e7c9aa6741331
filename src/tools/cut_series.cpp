#include "tools/cut_series.h"

#include <algorithm>
#include <array>
#include <map>
#include <new>
#include <set>
#include <span>

#include "storage/storage.h"

namespace vak {

namespace {

using Extents = std::array<hsize_t, H5S_MAX_RANK>;
using Offset = std::vector<hsize_t>;

constexpr int32_t unreadable = -6999;
constexpr int32_t unwritable = -3999;
constexpr size_t piece_bytes = size_t{64} << 20;

// A growing dataset as it is stored. The first axis counts the states.
struct Series {
    Series(hid_t g, const char* n) : group(g), name(n) {}

    hid_t group;
    const char* name;
    Dataset dataset;
    Type type;
    Properties creation;
    size_t rank = 0;
    Extents dims{}, max_dims{}, chunk{};
    int32_t type_code = 0;
    size_t element = 0;
    bool is_lossy = false;
    std::map<hsize_t, std::vector<Offset>> chunks;  // stored ones, by their place on the first axis
    bool out_of_memory = false;
};

int gather_chunk(const hsize_t* offset, unsigned, haddr_t, hsize_t, void* data) noexcept
{
    auto* series = static_cast<Series*>(data);
    try {
        series->chunks[offset[0]].emplace_back(offset, offset + series->rank);
        return H5_ITER_CONT;
    } catch (const std::bad_alloc&) {
        series->out_of_memory = true;
        return H5_ITER_ERROR;
    }
}

bool has_scale_offset(hid_t creation)
{
    size_t n = 0;
    return H5Pget_filter_by_id2(creation, H5Z_FILTER_SCALEOFFSET, nullptr, &n, nullptr, 0, nullptr,
                                nullptr) >= 0;
}

int32_t type_code_of(hid_t type)
{
    switch (H5Tget_class(type)) {
        case H5T_INTEGER: return integer_type;
        case H5T_FLOAT: return real_type;
        default: return 0;
    }
}

bool take_shape(Series& s)
{
    const Space space(H5Dget_space(s.dataset.get()));
    const int rank = H5Sget_simple_extent_ndims(space.get());
    if (rank < 1 || H5Pget_layout(s.creation.get()) != H5D_CHUNKED) return false;
    s.rank = static_cast<size_t>(rank);
    return H5Sget_simple_extent_dims(space.get(), s.dims.data(), s.max_dims.data()) == rank &&
           H5Pget_chunk(s.creation.get(), rank, s.chunk.data()) == rank;
}

// False when it is no series that can be cut.
bool open_series(Series& s)
{
    s.dataset = Dataset(H5Dopen2(s.group, s.name, H5P_DEFAULT));
    if (!s.dataset.valid()) return false;
    s.type = Type(H5Dget_type(s.dataset.get()));
    s.creation = Properties(H5Dget_create_plist(s.dataset.get()));
    s.type_code = type_code_of(s.type.get());
    s.element = H5Tget_size(s.type.get());
    if (s.type_code == 0 || !take_shape(s)) return false;
    s.is_lossy = has_scale_offset(s.creation.get());
    const bool gathered = H5Dchunk_iter(s.dataset.get(), H5P_DEFAULT, gather_chunk, &s) >= 0;
    if (s.out_of_memory) throw std::bad_alloc();
    return gathered;
}

size_t bytes_of(const hsize_t* extents, size_t rank, size_t element)
{
    size_t bytes = element;
    for (size_t i = 0; i < rank; ++i)
        if (__builtin_mul_overflow(bytes, extents[i], &bytes)) throw std::bad_alloc();
    return bytes;
}

size_t chunk_bytes(const Series& s) { return bytes_of(s.chunk.data(), s.rank, s.element); }

// The part of a chunk within the dataset, of one state.
Extents region_of(const Series& s, const Offset& offset)
{
    Extents count{};
    count[0] = 1;
    for (size_t i = 1; i < s.rank; ++i)
        count[i] = std::min(s.chunk[i], s.dims[i] - std::min(s.dims[i], offset[i]));
    return count;
}

int32_t read_values(const Series& s, const Extents& start, const Extents& count, void* values)
{
    uint32_t flags = 0;
    int32_t params[2]{};
    return VAK_H5Dread(s.name, values, s.type_code, s.element, s.dims.data(), static_cast<int32_t>(s.rank),
                       count.data(), start.data(), hyperslab, s.group, &flags, params);
}

int32_t read_region(const Series& s, hsize_t state, const Offset& offset, std::vector<char>& values)
{
    const Extents count = region_of(s, offset);
    Extents start{};
    std::copy(offset.begin(), offset.end(), start.begin());
    start[0] = state;
    values.resize(bytes_of(count.data(), s.rank, s.element));
    return read_values(s, start, count, values.data());
}

std::span<const Offset> chunks_of(const Series& s, hsize_t state)
{
    const auto found = s.chunks.find(state - state % s.chunk[0]);
    return found == s.chunks.end() ? std::span<const Offset>() : found->second;
}

bool is_complete(const Series& s, size_t stored)
{
    size_t n = 1;
    for (size_t i = 1; i < s.rank; ++i)
        if (__builtin_mul_overflow(n, (s.dims[i] + s.chunk[i] - 1) / s.chunk[i], &n)) return false;
    return n == stored;
}

// A whole state, in pieces along the second axis.
int32_t check_state(const Series& s, hsize_t state, std::vector<char>& values)
{
    Extents start{}, count = s.dims;
    start[0] = state;
    count[0] = 1;
    const size_t row = s.rank > 1 ? bytes_of(s.dims.data() + 2, s.rank - 2, s.element) : s.element;
    const hsize_t rows = s.rank > 1 ? s.dims[1] : 1;
    const hsize_t step = std::max<hsize_t>(piece_bytes / std::max<size_t>(row, 1), 1);
    for (hsize_t at = 0; at < rows; at += step) {
        if (s.rank > 1) start[1] = at;
        if (s.rank > 1) count[1] = std::min(step, rows - at);
        values.resize(bytes_of(count.data(), s.rank, s.element));
        if (const int32_t status = read_values(s, start, count, values.data()); status != 0) return status;
    }
    return 0;
}

struct Copy {
    explicit Copy(Series& source) : from(source) {}

    Series& from;
    Dataset to;
    std::vector<char> bytes, fill;
};

int32_t copy_chunk(Copy& c, const Offset& from, const Offset& to)
{
    hsize_t stored = 0;
    uint32_t mask = 0;
    if (H5Dget_chunk_storage_size(c.from.dataset.get(), from.data(), &stored) < 0) return unreadable;
    const size_t nominal = chunk_bytes(c.from);
    if (stored > nominal + nominal / 8 + 65536) return unreadable;
    c.bytes.resize(stored);
    if (H5Dread_chunk(c.from.dataset.get(), H5P_DEFAULT, from.data(), &mask, c.bytes.data()) < 0)
        return unreadable;
    if (H5Dwrite_chunk(c.to.get(), H5P_DEFAULT, mask, to.data(), stored, c.bytes.data()) < 0)
        return unwritable;
    return 0;
}

// Puts the values of one state's region at place `slot` of a whole chunk.
void scatter(const Series& s, const std::vector<char>& values, const Extents& count, hsize_t slot,
             char* chunk)
{
    const size_t run = s.element * (s.rank > 1 ? count[s.rank - 1] : 1);
    Extents at{};
    for (size_t from = 0; from < values.size(); from += run) {
        size_t to = slot;
        for (size_t i = 1; i < s.rank; ++i) to = to * s.chunk[i] + at[i];
        std::copy_n(values.data() + from, run, chunk + to * s.element);
        for (size_t i = s.rank - 1; i-- > 1;) {
            if (++at[i] < count[i]) break;
            at[i] = 0;
        }
    }
}

int32_t write_region(Copy& c, const Offset& to, hsize_t slot, const Extents& count)
{
    const Space memory(H5Screate_simple(static_cast<int>(c.from.rank), count.data(), nullptr));
    const Space file(H5Dget_space(c.to.get()));
    Offset start = to;
    start[0] += slot;
    H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr);
    const bool written =
        H5Dwrite(c.to.get(), c.from.type.get(), memory.get(), file.get(), H5P_DEFAULT, c.bytes.data()) >= 0;
    return written ? 0 : unwritable;
}

// Puts states that do not make up a stored chunk into one. Values that went through scale-offset once are
// stored as they are, past the filters: coding them again in other company would change them.
int32_t recode_chunk(Copy& c, const Offset& to, const hsize_t* states, size_t n)
{
    std::vector<char> chunk;
    if (c.from.is_lossy) {
        chunk.resize(chunk_bytes(c.from));
        for (size_t i = 0; i < chunk.size(); i += c.fill.size())
            std::copy(c.fill.begin(), c.fill.end(), &chunk[i]);
    }
    const Extents count = region_of(c.from, to);
    for (size_t slot = 0; slot < n; ++slot) {
        if (const int32_t status = read_region(c.from, states[slot], to, c.bytes); status != 0) return status;
        if (c.from.is_lossy)
            scatter(c.from, c.bytes, count, slot, chunk.data());
        else if (const int32_t status = write_region(c, to, slot, count); status != 0)
            return status;
    }
    if (!c.from.is_lossy) return 0;
    const uint32_t past_all_filters = ~0U;
    const bool written =
        H5Dwrite_chunk(c.to.get(), H5P_DEFAULT, past_all_filters, to.data(), chunk.size(), chunk.data()) >= 0;
    return written ? 0 : unwritable;
}

bool is_stored_chunk(const Series& s, const hsize_t* states, size_t n)
{
    if (states[0] % s.chunk[0] != 0 || states[n - 1] - states[0] != n - 1) return false;
    return n == s.chunk[0] || states[n - 1] + 1 == s.dims[0];
}

int32_t copy_states(Copy& c, hsize_t row, const hsize_t* states, size_t n)
{
    const bool as_stored = is_stored_chunk(c.from, states, n);
    std::set<Offset> places;
    for (size_t i = 0; i < n; ++i)
        for (Offset offset : chunks_of(c.from, states[i])) {
            offset[0] = row;
            places.insert(std::move(offset));
        }
    for (const Offset& to : places) {
        Offset from = to;
        from[0] = states[0];
        const int32_t status = as_stored ? copy_chunk(c, from, to) : recode_chunk(c, to, states, n);
        if (status != 0) return status;
    }
    return 0;
}

bool create_copy(Copy& c, const char* name, hsize_t nkept)
{
    Series& s = c.from;
    Extents dims = s.dims;
    dims[0] = nkept;
    const Space space(H5Screate_simple(static_cast<int>(s.rank), dims.data(), s.max_dims.data()));
    c.to = Dataset(
        H5Dcreate2(s.group, name, s.type.get(), space.get(), H5P_DEFAULT, s.creation.get(), H5P_DEFAULT));
    c.fill.resize(s.element);
    return c.to.valid() && H5Pget_fill_value(s.creation.get(), s.type.get(), c.fill.data()) >= 0;
}

std::vector<hsize_t> within(const std::vector<hsize_t>& kept, hsize_t extent)
{
    return {kept.begin(), std::lower_bound(kept.begin(), kept.end(), extent)};
}

}  // namespace

int32_t copy_kept_states(hid_t group, const char* name, const char* copy, const std::vector<hsize_t>& kept)
{
    Series series(group, name);
    if (!open_series(series)) return unreadable;
    const std::vector<hsize_t> states = within(kept, series.dims[0]);
    Copy c(series);
    if (!create_copy(c, copy, states.size())) return -2190;
    for (size_t at = 0; at < states.size(); at += series.chunk[0]) {
        const size_t n = std::min<size_t>(series.chunk[0], states.size() - at);
        if (const int32_t status = copy_states(c, at, &states[at], n); status != 0) return status;
    }
    return c.to.close() ? 0 : unwritable;
}

int32_t check_kept_states(hid_t group, const char* name, const std::vector<hsize_t>& kept)
{
    Series s(group, name);
    if (!open_series(s)) return unreadable;
    std::vector<char> values;
    for (const hsize_t state : within(kept, s.dims[0])) {
        const std::span<const Offset> stored = chunks_of(s, state);
        int32_t status = 0;
        if (is_complete(s, stored.size()))
            status = check_state(s, state, values);
        else
            for (size_t i = 0; i < stored.size() && status == 0; ++i)
                status = read_region(s, state, stored[i], values);
        if (status != 0) return status;
    }
    return 0;
}

}  // namespace vak
