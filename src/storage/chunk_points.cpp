// Lists of points: chunk by chunk, whatever their order in the list.
#include <numeric>

#include "storage/array_box.h"
#include "storage/chunk_moves.h"
#include "storage/element_copy.h"

namespace vak {
namespace {

using Points = std::span<const hsize_t>;

struct PointMove {
    PointMove(const ChunkTransfer& t, ChunkedDataset& d) : transfer(t), chunks(d) {}

    Extents corner(hsize_t point) const
    {
        Extents at{};
        for (size_t i = 0; i < chunks.rank(); ++i)
            at[i] = transfer.part.point(point)[i] / chunks.chunk()[i] * chunks.chunk()[i];
        return at;
    }

    size_t place_in_chunk(hsize_t point) const
    {
        Extents place{};
        for (size_t i = 0; i < chunks.rank(); ++i)
            place[i] = transfer.part.point(point)[i] % chunks.chunk()[i];
        return offset_in(chunks.chunk().data(), place.data(), chunks.rank());
    }

    const ChunkTransfer& transfer;
    ChunkedDataset& chunks;
    Buffer buffer{};
};

// Calls one(corner, points) for each chunk with points in it. Of points that are named twice the order is
// kept.
template <class One>
bool every_chunk(const PointMove& move, One one)
{
    std::vector<hsize_t> order(move.transfer.part.count[0]);
    std::iota(order.begin(), order.end(), hsize_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](hsize_t a, hsize_t b) { return move.corner(a) < move.corner(b); });
    for (auto first = order.begin(); first != order.end();) {
        const Extents corner = move.corner(*first);
        const auto end =
            std::find_if(first, order.end(), [&](hsize_t p) { return move.corner(p) != corner; });
        if (!one(corner, Points(first, end))) return false;
        first = end;
    }
    return true;
}

bool write_one(PointMove& m, const Extents& corner, Points points, const unsigned char* data)
{
    unsigned char* values = m.buffer.room(m.chunks.chunk_bytes());
    const bool is_new = m.transfer.is_new(corner);
    if (is_new) {
        m.chunks.fill(values);
    } else if (!m.chunks.read(corner, values)) {
        return false;
    }
    const ElementForm form{m.transfer.type, m.transfer.data_size, m.chunks.element_size()};
    for (const hsize_t p : points)
        copy_elements(form, data + p * form.from, values + m.place_in_chunk(p) * form.to, 1);
    // Points are parts of chunks that may be changed again, so none is rounded.
    return m.chunks.write(corner, values, true, is_new);
}

bool read_one(PointMove& m, const Extents& corner, Points points, unsigned char* data)
{
    const auto values = m.chunks.values(corner);
    if (!values) return false;
    const ElementForm form{m.transfer.type, m.chunks.element_size(), m.transfer.data_size};
    for (const hsize_t p : points) {
        const size_t place = values->are_same ? 0 : m.place_in_chunk(p);
        copy_elements(form, values->bytes + place * form.from, data + p * form.to, 1);
    }
    return true;
}

}  // namespace

bool write_points(const ChunkTransfer& transfer, ChunkedDataset& chunks, const void* data)
{
    PointMove move(transfer, chunks);
    const bool good = every_chunk(move, [&](const Extents& corner, Points points) {
        return transfer.skips(corner) ||
               write_one(move, corner, points, static_cast<const unsigned char*>(data));
    });
    chunks.finish();
    return good;
}

bool read_points(const ChunkTransfer& transfer, ChunkedDataset& chunks, void* data)
{
    PointMove move(transfer, chunks);
    return every_chunk(move, [&](const Extents& corner, Points points) {
        return read_one(move, corner, points, static_cast<unsigned char*>(data));
    });
}

}  // namespace vak
