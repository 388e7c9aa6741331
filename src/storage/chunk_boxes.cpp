// Slabs and whole datasets, chunk by chunk.
#include "storage/array_box.h"
#include "storage/chunk_list.h"
#include "storage/chunk_moves.h"
#include "storage/element_copy.h"

namespace vak {
namespace {

// The box of a transfer within the dataset; the caller's array has its extents.
struct Box {
    explicit Box(const ChunkTransfer& t) : rank(t.extents.size())
    {
        const bool whole = t.part.mode == whole_dataset;
        std::copy_n(whole ? t.extents.data() : t.part.count, rank, count.begin());
        if (!whole) std::copy_n(t.part.start, rank, first.begin());
    }

    size_t rank;
    Extents first{};
    Extents count{};
};

// What of a box lies in one chunk.
struct Overlap {
    Overlap(const Box& box, const Extents& chunk, const Extents& which) : rank(box.rank)
    {
        for (size_t i = 0; i < rank; ++i) {
            corner[i] = (box.first[i] / chunk[i] + which[i]) * chunk[i];
            const hsize_t begin = std::max(corner[i], box.first[i]);
            const hsize_t end = std::min(corner[i] + chunk[i], box.first[i] + box.count[i]);
            in_chunk[i] = begin - corner[i];
            in_box[i] = begin - box.first[i];
            count[i] = end - begin;
        }
    }

    std::span<const hsize_t> counts() const { return {count.data(), rank}; }

    size_t rank;
    Extents corner{};    // of the chunk within the dataset
    Extents in_chunk{};  // where it begins in the chunk
    Extents in_box{};    // and in the caller's array
    Extents count{};
};

// Calls one(overlap) for each chunk that the box touches, until one gives false.
template <class One>
bool every_chunk(const Box& box, const Extents& chunk, One one)
{
    Extents chunks{};
    for (size_t i = 0; i < box.rank; ++i)
        chunks[i] = (box.first[i] + box.count[i] - 1) / chunk[i] - box.first[i] / chunk[i] + 1;
    Extents which{};
    do {
        if (!one(Overlap(box, chunk, which))) return false;
    } while (next_in_box(which.data(), chunks.data(), box.rank));
    return true;
}

// What the two directions have in common.
struct BoxMove {
    BoxMove(const ChunkTransfer& t, ChunkedDataset& d) : transfer(t), chunks(d), box(t) {}

    bool is_whole(const Overlap& o) const { return o.count == chunks.chunk(); }
    bool is_all_there_is(const Overlap& o) const { return o.count == chunks.inside(o.corner); }

    // Whether the caller's array holds the chunk as it is in the dataset.
    bool matches(const Overlap& o) const
    {
        return is_whole(o) && transfer.data_size == chunks.element_size() &&
               one_run(o.counts(), box.count.data());
    }

    size_t offset(const Overlap& o) const
    {
        return offset_in(box.count.data(), o.in_box.data(), box.rank) * transfer.data_size;
    }

    BoxPlace in_array(const Overlap& o) const { return {box.count.data(), o.in_box.data()}; }
    BoxPlace in_chunk(const Overlap& o) const { return {chunks.chunk().data(), o.in_chunk.data()}; }

    const ChunkTransfer& transfer;
    ChunkedDataset& chunks;
    Box box;
    Buffer buffer{};
};

// Whether the values of a chunk must not be rounded now, so that none is rounded twice: more can be added to
// it, or what is written is not `all` of it, and what stands beside that was rounded before or may be changed
// again.
bool must_stay_exact(const ChunkTransfer& t, const ChunkedDataset& chunks, const Extents& corner, bool all)
{
    bool grows = false;
    for (size_t i = 0; i < chunks.rank(); ++i) {
        if (t.maximum[i] != H5S_UNLIMITED) continue;
        if (corner[i] + chunks.chunk()[i] > chunks.extents()[i]) return true;
        grows = true;
    }
    const bool completed = grows && !t.is_new(corner) && chunks.was_exact();
    return !all && !completed;
}

const std::vector<unsigned char> none;

std::vector<unsigned char> converted(const ElementForm& form, const unsigned char* element)
{
    std::vector<unsigned char> one(form.to);
    copy_elements(form, element, one.data(), 1);
    return one;
}

bool write_one(BoxMove& m, const Overlap& o, const unsigned char* data)
{
    const bool is_new = m.transfer.is_new(o.corner);
    if (m.matches(o)) return m.chunks.write(o.corner, data + m.offset(o), false, is_new);
    unsigned char* values = m.buffer.room(m.chunks.chunk_bytes());
    const bool all = m.is_all_there_is(o);
    if (!all && !is_new) {
        if (!m.chunks.read(o.corner, values)) return false;
    } else if (!m.is_whole(o)) {
        m.chunks.fill(values);
    }
    const ElementForm form{m.transfer.type, m.transfer.data_size, m.chunks.element_size()};
    for_each_run(o.counts(), m.in_array(o), m.in_chunk(o), [&](size_t from, size_t to, size_t length) {
        copy_elements(form, data + from * form.from, values + to * form.to, length);
    });
    return m.chunks.write(o.corner, values, must_stay_exact(m.transfer, m.chunks, o.corner, all), is_new);
}

bool read_one(BoxMove& m, const Overlap& o, unsigned char* data)
{
    if (m.matches(o)) return m.chunks.read(o.corner, data + m.offset(o));
    const auto values = m.chunks.values(o.corner);
    if (!values) return false;
    const ElementForm form{m.transfer.type, m.chunks.element_size(), m.transfer.data_size};
    const std::vector<unsigned char> same = values->are_same ? converted(form, values->bytes) : none;
    for_each_run(o.counts(), m.in_chunk(o), m.in_array(o), [&](size_t from, size_t to, size_t length) {
        if (values->are_same)
            repeat_element(same.data(), form.to, data + to * form.to, length);
        else
            copy_elements(form, values->bytes + from * form.from, data + to * form.to, length);
    });
    return true;
}

// What was never written has the fill value; all else is in the chunks that there are.
bool read_sparse(BoxMove& m, const std::vector<Extents>& corners, unsigned char* data)
{
    const ElementForm form{m.transfer.type, m.chunks.element_size(), m.transfer.data_size};
    const auto fill = converted(form, m.chunks.fill_value());
    repeat_element(fill.data(), form.to, data, elements_of({m.box.count.data(), m.box.rank}, 1).value_or(0));
    return std::ranges::all_of(corners, [&](const Extents& corner) {
        Extents which{};
        for (size_t i = 0; i < m.box.rank; ++i)
            which[i] = corner[i] / m.chunks.chunk()[i] - m.box.first[i] / m.chunks.chunk()[i];
        return read_one(m, Overlap(m.box, m.chunks.chunk(), which), data);
    });
}

ChunkBox chunk_box(const Box& box, const Extents& chunk)
{
    ChunkBox cut{.rank = box.rank, .chunk = chunk, .first = box.first};
    for (size_t i = 0; i < box.rank; ++i) cut.end[i] = box.first[i] + box.count[i];
    return cut;
}

}  // namespace

bool write_box(const ChunkTransfer& transfer, ChunkedDataset& chunks, const void* data)
{
    BoxMove move(transfer, chunks);
    const bool good = every_chunk(move.box, chunks.chunk(), [&](const Overlap& o) {
        return transfer.skips(o.corner) || write_one(move, o, static_cast<const unsigned char*>(data));
    });
    chunks.finish();
    return good;
}

bool read_box(const ChunkTransfer& transfer, ChunkedDataset& chunks, void* data)
{
    BoxMove move(transfer, chunks);
    const auto sparse = sparse_chunks(transfer.dataset, chunk_box(move.box, chunks.chunk()));
    if (sparse.is_sparse)
        return sparse.is_known && read_sparse(move, sparse.corners, static_cast<unsigned char*>(data));
    return every_chunk(move.box, chunks.chunk(), [&](const Overlap& o) {
        return read_one(move, o, static_cast<unsigned char*>(data));
    });
}

bool is_sparse(const ChunkTransfer& transfer, const ChunkedDataset& chunks)
{
    return sparse_chunks(transfer.dataset, chunk_box(Box(transfer), chunks.chunk())).is_sparse;
}

bool takes_whole_chunks(const ChunkTransfer& transfer, const ChunkedDataset& chunks)
{
    return every_chunk(Box(transfer), chunks.chunk(),
                       [&](const Overlap& o) { return o.count == chunks.inside(o.corner); });
}

}  // namespace vak
