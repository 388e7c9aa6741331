#include "tools/stored_series.h"

#include <algorithm>
#include <new>

#include "storage/chunk_filters.h"
#include "storage/rows_in_file.h"
#include "storage/storage.h"

namespace vak {

namespace {

struct Gathering {
    StoredSeries* series;
    bool out_of_memory = false;
};

int gather_chunk(const hsize_t* place, unsigned, haddr_t, hsize_t bytes, void* data) noexcept
{
    auto* g = static_cast<Gathering*>(data);
    try {
        g->series->chunks.push_back({ChunkPlace(place, place + g->series->rank), bytes});
        return H5_ITER_CONT;
    } catch (const std::bad_alloc&) {
        g->out_of_memory = true;
        return H5_ITER_ERROR;
    }
}

bool earlier(const StoredChunkPlace& a, const StoredChunkPlace& b) { return a.at[0] < b.at[0]; }

bool gather_chunks(StoredSeries& s)
{
    Gathering gathering{.series = &s};
    const bool gathered = H5Dchunk_iter(s.dataset.get(), H5P_DEFAULT, gather_chunk, &gathering) >= 0;
    if (gathering.out_of_memory) throw std::bad_alloc();
    std::ranges::sort(s.chunks, earlier);
    return gathered;
}

int32_t type_code_of(hid_t type)
{
    switch (H5Tget_class(type)) {
        case H5T_INTEGER: return H5Tget_sign(type) == H5T_SGN_2 ? integer_type : 0;
        case H5T_FLOAT: return real_type;
        default: return 0;
    }
}

bool take_shape(StoredSeries& s)
{
    const Space space(H5Dget_space(s.dataset.get()));
    const int rank = extents_in_file(s.dataset.get(), space.get(), s.dims, s.max_dims);
    if (rank < 1 || H5Pget_layout(s.creation.get()) != H5D_CHUNKED) return false;
    s.rank = static_cast<size_t>(rank);
    return H5Pget_chunk(s.creation.get(), rank, s.chunk.data()) == rank;
}

size_t bytes_of(const StoredSeries& s, const hsize_t* extents)
{
    size_t bytes = s.element;
    for (size_t i = 0; i < s.rank; ++i)
        if (__builtin_mul_overflow(bytes, extents[i], &bytes)) throw std::bad_alloc();
    return bytes;
}

bool has_plausible_chunks(const StoredSeries& s)
{
    const size_t largest = largest_stored(chunk_bytes(s));
    return std::ranges::all_of(s.chunks, [&](const StoredChunkPlace& c) { return c.bytes <= largest; });
}

}  // namespace

bool open_series(StoredSeries& s)
{
    // What is opened again to be read shares the cache, and must have none.
    s.dataset = Dataset(H5Dopen2(s.group, s.name, SharedIds().uncached()));
    if (!s.dataset.valid()) return false;
    s.type = Type(H5Dget_type(s.dataset.get()));
    s.creation = Properties(H5Dget_create_plist(s.dataset.get()));
    s.type_code = type_code_of(s.type.get());
    s.element = H5Tget_size(s.type.get());
    return s.type_code != 0 && take_shape(s) && gather_chunks(s) && has_plausible_chunks(s);
}

std::span<const StoredChunkPlace> chunks_of(const StoredSeries& s, hsize_t state)
{
    const StoredChunkPlace row{{state - state % s.chunk[0]}, 0};
    const auto [first, last] = std::equal_range(s.chunks.begin(), s.chunks.end(), row, earlier);
    return {first, last};
}

size_t chunk_bytes(const StoredSeries& s) { return bytes_of(s, s.chunk.data()); }

SeriesPart::SeriesPart(const StoredSeries& s, const ChunkPlace& place, hsize_t states, bool whole_width)
{
    start[0] = place[0];
    count[0] = states;
    for (size_t i = 1; i < s.rank; ++i) {
        start[i] = whole_width ? 0 : place[i];
        count[i] = whole_width ? s.dims[i] : std::min(s.chunk[i], s.dims[i] - std::min(s.dims[i], place[i]));
    }
    bytes = bytes_of(s, count.data());
}

int32_t read_part(const StoredSeries& s, const SeriesPart& part, std::vector<char>& values)
{
    const size_t before = values.size();
    values.resize(before + part.bytes);
    uint32_t flags = 0;
    int32_t params[2]{};
    return VAK_H5Dread(s.name, values.data() + before, s.type_code, s.element, s.dims.data(),
                       static_cast<int32_t>(s.rank), part.count.data(), part.start.data(), hyperslab, s.group,
                       &flags, params);
}

}  // namespace vak
