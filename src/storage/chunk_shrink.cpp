// Shrinking a dataset to extents that it had before.
#include <limits>

#include "storage/array_box.h"
#include "storage/chunked_dataset.h"
#include "storage/direct_chunks.h"
#include "storage/whole_flush.h"

namespace vak {
namespace {

constexpr size_t cache_slots = 65536;

using Bytes = std::vector<unsigned char>;

struct KeptChunk {
    Extents corner{};
    Bytes stored;  // as it is in the file
    uint32_t mask = 0;
    Bytes values;  // what it is to hold; none if it does
};

// Whether rows of the chunk lie behind the end of a dimension that grows.
bool is_cut(const ChunkedDataset& chunks, const Extents& corner, std::span<const hsize_t> maximum)
{
    for (size_t i = 0; i < chunks.rank(); ++i) {
        const bool beyond = corner[i] + chunks.chunk()[i] > chunks.extents()[i];
        if (beyond && maximum[i] == H5S_UNLIMITED) return true;
    }
    return false;
}

// What the chunk holds within the extents, and fill values behind them.
Bytes cut_values(const ChunkedDataset& chunks, const Extents& corner, const Bytes& whole)
{
    Bytes cut(chunks.chunk_bytes());
    chunks.fill(cut.data());
    const Extents origin{};
    const Extents inside = chunks.inside(corner);
    const BoxPlace place{chunks.chunk().data(), origin.data()};
    const size_t size = chunks.element_size();
    for_each_run({inside.data(), chunks.rank()}, place, place, [&](size_t at, size_t, size_t length) {
        std::copy_n(whole.data() + at * size, length * size, cut.data() + at * size);
    });
    return cut;
}

void keep(ChunkedDataset& chunks, const Extents& corner, std::vector<KeptChunk>& kept)
{
    Bytes whole(chunks.chunk_bytes());
    if (!chunks.read(corner, whole.data())) return;
    const StoredChunk& stored = chunks.held();
    if (stored.size == 0) return;
    Bytes cut = cut_values(chunks, corner, whole);
    if (cut == whole) cut.clear();
    kept.push_back({corner, Bytes(stored.bytes, stored.bytes + stored.size), stored.mask, std::move(cut)});
}

void keep_cut_chunks(ChunkedDataset& chunks, std::span<const hsize_t> maximum, std::vector<KeptChunk>& kept)
{
    const auto steps = [&](size_t i) {
        return (chunks.extents()[i] + chunks.chunk()[i] - 1) / chunks.chunk()[i];
    };
    Extents numbers{};
    for (size_t i = 0; i < chunks.rank(); ++i) numbers[i] = steps(i);
    if (has_entry({numbers.data(), chunks.rank()}, 0)) return;
    Extents which{};
    do {
        Extents corner{};
        for (size_t i = 0; i < chunks.rank(); ++i) corner[i] = which[i] * chunks.chunk()[i];
        if (is_cut(chunks, corner, maximum)) keep(chunks, corner, kept);
    } while (next_in_box(which.data(), numbers.data(), chunks.rank()));
}

// First the bytes that the file has there, so that HDF5 drops its own version and moves nothing.
bool put_back(ChunkedDataset& chunks, const KeptChunk& chunk)
{
    const StoredChunk stored{.bytes = chunk.stored.data(), .size = chunk.stored.size(), .mask = chunk.mask};
    if (!chunks.store(chunk.corner, stored)) return false;
    return chunk.values.empty() || chunks.write(chunk.corner, chunk.values.data(), true, false);
}

}  // namespace

hid_t open_to_shrink(hid_t location, const char* name)
{
    const Properties list(H5Pcreate(H5P_DATASET_ACCESS));
    H5Pset_chunk_cache(list.get(), cache_slots, std::numeric_limits<size_t>::max() / 2, 0);
    return H5Dopen2(location, name, list.get());
}

bool shrink_dataset(hid_t dataset, std::span<const hsize_t> extents, std::span<const hsize_t> maximum)
{
    ChunkedDataset chunks(dataset, H5I_INVALID_HID, extents);
    std::vector<KeptChunk> kept;
    if (chunks.is_ours() && chunks.is_filtered()) keep_cut_chunks(chunks, maximum, kept);
    bool good = H5Dset_extent(dataset, extents.data()) >= 0;
    for (const KeptChunk& chunk : kept) good = put_back(chunks, chunk) && good;
    chunks.finish();
    return flush_whole(dataset, H5F_SCOPE_LOCAL) && good;
}

}  // namespace vak
