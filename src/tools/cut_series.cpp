#include "tools/cut_series.h"

#include <algorithm>
#include <set>

#include "storage/storage.h"
#include "tools/stored_series.h"

namespace vak {

namespace {

constexpr int32_t unreadable = -6999;
constexpr int32_t unwritable = -3999;
constexpr int32_t cannot_create = -2190;
constexpr double read_at_once = 1 << 20;  // of states that are small

struct Copy {
    explicit Copy(const StoredSeries& source) : from(source) {}

    const StoredSeries& from;
    Dataset to;
    uint32_t all_filters = 0;  // as a mask of those left out
    bool is_lossy = false;
    std::vector<char> bytes, fill;
};

int32_t copy_chunk(Copy& c, const StoredChunkPlace& chunk, hsize_t row)
{
    uint32_t mask = 0;
    c.bytes.resize(chunk.bytes);
    if (H5Dread_chunk(c.from.dataset.get(), H5P_DEFAULT, chunk.at.data(), &mask, c.bytes.data()) < 0)
        return unreadable;
    ChunkPlace to = chunk.at;
    to[0] = row;
    const bool written =
        H5Dwrite_chunk(c.to.get(), H5P_DEFAULT, mask, to.data(), c.bytes.size(), c.bytes.data()) >= 0;
    return written ? 0 : unwritable;
}

// How many of the states, which ascend, follow each other without a gap.
size_t run_length(const hsize_t* states, size_t n)
{
    size_t length = 1;
    while (length < n && states[length] == states[0] + length) ++length;
    return length;
}

// The stored form of the values just read.
int32_t to_stored_form(Copy& c)
{
    int32_t type_class = 0;
    hid_t native = H5I_INVALID_HID;
    if (VAK_H5gettype(c.from.type_code, c.from.element, &type_class, &native) < 0) return unreadable;
    const size_t n = c.bytes.size() / c.from.element;
    return H5Tconvert(native, c.from.type.get(), n, c.bytes.data(), nullptr, H5P_DEFAULT) < 0 ? unreadable
                                                                                              : 0;
}

// One state after the other, all of the same place in their chunks.
int32_t read_states(Copy& c, ChunkPlace place, const hsize_t* states, size_t n)
{
    c.bytes.clear();
    for (size_t i = 0, run = 0; i < n; i += run) {
        run = run_length(states + i, n - i);
        place[0] = states[i];
        const int32_t status = read_part(c.from, SeriesPart(c.from, place, run), c.bytes);
        if (status != 0) return status;
    }
    return to_stored_form(c);
}

// The values of a part in a whole chunk, whose other places have the fill value.
std::vector<char> as_chunk(const Copy& c, const SeriesPart& part)
{
    const StoredSeries& s = c.from;
    std::vector<char> chunk(chunk_bytes(s));
    for (size_t i = 0; i < chunk.size(); i += s.element) std::ranges::copy(c.fill, &chunk[i]);
    const size_t run = s.element * part.count[s.rank - 1];
    std::array<hsize_t, H5S_MAX_RANK> at{};
    for (size_t from = 0; from < part.bytes; from += run) {
        size_t to = 0;
        for (size_t i = 0; i < s.rank; ++i) to = to * s.chunk[i] + at[i];
        std::copy_n(&c.bytes[from], run, &chunk[to * s.element]);
        for (size_t i = s.rank - 1; i-- > 0;) {
            if (++at[i] < part.count[i]) break;
            at[i] = 0;
        }
    }
    return chunk;
}

int32_t write_past_filters(Copy& c, const SeriesPart& part)
{
    const std::vector<char> chunk = as_chunk(c, part);
    const bool written = H5Dwrite_chunk(c.to.get(), H5P_DEFAULT, c.all_filters, part.start.data(),
                                        chunk.size(), chunk.data()) >= 0;
    return written ? 0 : unwritable;
}

int32_t write_values(Copy& c, const SeriesPart& part)
{
    const Space memory(H5Screate_simple(static_cast<int>(c.from.rank), part.count.data(), nullptr));
    const Space file(H5Dget_space(c.to.get()));
    H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, part.start.data(), nullptr, part.count.data(), nullptr);
    const bool written =
        H5Dwrite(c.to.get(), c.from.type.get(), memory.get(), file.get(), H5P_DEFAULT, c.bytes.data()) >= 0;
    return written ? 0 : unwritable;
}

// Puts states that do not make up a stored chunk into one. Values that went through scale-offset once are
// stored as they are, past the filters: coding them again in other company would change them.
int32_t recode_chunk(Copy& c, const ChunkPlace& to, const hsize_t* states, size_t n)
{
    if (const int32_t status = read_states(c, to, states, n); status != 0) return status;
    const SeriesPart part(c.from, to, n);
    return c.is_lossy ? write_past_filters(c, part) : write_values(c, part);
}

// Whether the states, which are to make up one chunk, are all of a stored one.
bool is_stored_chunk(const StoredSeries& s, const hsize_t* states, size_t n)
{
    if (states[0] % s.chunk[0] != 0 || states[n - 1] - states[0] != n - 1) return false;
    return n == s.chunk[0] || states[n - 1] + 1 == s.dims[0];
}

// The places of the chunks that any of the states is stored in, moved to the row of states at `row`.
std::set<ChunkPlace> places_of(const StoredSeries& s, hsize_t row, const hsize_t* states, size_t n)
{
    std::set<ChunkPlace> places;
    for (size_t i = 0; i < n; ++i)
        for (const StoredChunkPlace& chunk : chunks_of(s, states[i])) {
            ChunkPlace place = chunk.at;
            place[0] = row;
            places.insert(std::move(place));
        }
    return places;
}

int32_t copy_states(Copy& c, hsize_t row, const hsize_t* states, size_t n)
{
    if (is_stored_chunk(c.from, states, n)) {
        for (const StoredChunkPlace& chunk : chunks_of(c.from, states[0]))
            if (const int32_t status = copy_chunk(c, chunk, row); status != 0) return status;
        return 0;
    }
    for (const ChunkPlace& to : places_of(c.from, row, states, n))
        if (const int32_t status = recode_chunk(c, to, states, n); status != 0) return status;
    return 0;
}

bool create_copy(Copy& c, const char* name, hsize_t nkept)
{
    const StoredSeries& s = c.from;
    std::array<hsize_t, H5S_MAX_RANK> dims = s.dims;
    dims[0] = nkept;
    const Space space(H5Screate_simple(static_cast<int>(s.rank), dims.data(), s.max_dims.data()));
    c.to = Dataset(
        H5Dcreate2(s.group, name, s.type.get(), space.get(), H5P_DEFAULT, s.creation.get(), H5P_DEFAULT));
    c.fill.resize(s.element);
    size_t n = 0;
    c.is_lossy = H5Pget_filter_by_id2(s.creation.get(), H5Z_FILTER_SCALEOFFSET, nullptr, &n, nullptr, 0,
                                      nullptr, nullptr) >= 0;
    const int filters = H5Pget_nfilters(s.creation.get());
    if (filters < 0) return false;
    c.all_filters = static_cast<uint32_t>((uint64_t{1} << filters) - 1);
    H5Pget_fill_value(s.creation.get(), s.type.get(), c.fill.data());  // zeros where there is none
    return c.to.valid();
}

std::vector<hsize_t> within(const std::vector<hsize_t>& kept, hsize_t extent)
{
    return {kept.begin(), std::lower_bound(kept.begin(), kept.end(), extent)};
}

// How many states, in whole rows of chunks, may be read in one go; 0 where a row is large.
hsize_t states_at_once(const StoredSeries& s)
{
    double bytes = static_cast<double>(s.element);
    for (size_t i = 0; i < s.rank; ++i) bytes *= static_cast<double>(i == 0 ? s.chunk[0] : s.dims[i]);
    return bytes > read_at_once ? 0 : s.chunk[0] * static_cast<hsize_t>(read_at_once / std::max(bytes, 1.0));
}

int32_t check_row(const StoredSeries& s, hsize_t state, size_t n, std::vector<char>& values)
{
    for (const StoredChunkPlace& chunk : chunks_of(s, state)) {
        ChunkPlace place = chunk.at;
        place[0] = state;
        values.clear();
        if (const int32_t status = read_part(s, SeriesPart(s, place, n), values); status != 0) return status;
    }
    return 0;
}

int32_t check_run(const StoredSeries& s, hsize_t state, size_t n, bool small, std::vector<char>& values)
{
    if (!small) return check_row(s, state, n, values);
    values.clear();
    ChunkPlace place(s.rank, 0);
    place[0] = state;
    return read_part(s, SeriesPart(s, place, n, true), values);
}

}  // namespace

int32_t copy_kept_states(hid_t group, const char* name, const char* copy, const std::vector<hsize_t>& kept)
{
    StoredSeries series(group, name);
    if (!open_series(series)) return unreadable;
    const std::vector<hsize_t> states = within(kept, series.dims[0]);
    Copy c(series);
    if (!create_copy(c, copy, states.size())) return cannot_create;
    for (size_t at = 0; at < states.size(); at += series.chunk[0]) {
        const size_t n = std::min<size_t>(series.chunk[0], states.size() - at);
        if (const int32_t status = copy_states(c, at, &states[at], n); status != 0) return status;
    }
    return c.to.close() ? 0 : unwritable;
}

int32_t check_kept_states(hid_t group, const char* name, const std::vector<hsize_t>& kept)
{
    StoredSeries s(group, name);
    if (!open_series(s)) return unreadable;
    const std::vector<hsize_t> states = within(kept, s.dims[0]);
    const hsize_t at_once = states_at_once(s);
    const hsize_t step = std::max(at_once, s.chunk[0]);
    std::vector<char> values;
    for (size_t i = 0, n = 0; i < states.size(); i += n) {
        n = run_length(&states[i], std::min<size_t>(states.size() - i, step - states[i] % step));
        if (const int32_t status = check_run(s, states[i], n, at_once > 0, values); status != 0)
            return status;
    }
    return 0;
}

}  // namespace vak
