// Shrinking a dataset to extents that it had before.
#include "storage/array_box.h"
#include "storage/chunked_dataset.h"
#include "storage/direct_chunks.h"

namespace vak {
namespace {

using Values = std::vector<unsigned char>;

struct KeptChunk {
    Extents corner{};
    Values values;
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
bool keep(ChunkedDataset& chunks, const Extents& corner, std::vector<KeptChunk>& kept)
{
    Values whole(chunks.chunk_bytes());
    Values cut(chunks.chunk_bytes());
    if (!chunks.read(corner, whole.data())) return false;
    chunks.fill(cut.data());
    const Extents origin{};
    const Extents inside = chunks.inside(corner);
    const BoxPlace place{chunks.chunk().data(), origin.data()};
    const size_t size = chunks.element_size();
    for_each_run({inside.data(), chunks.rank()}, place, place, [&](size_t at, size_t, size_t length) {
        std::copy_n(whole.data() + at * size, length * size, cut.data() + at * size);
    });
    kept.push_back({corner, std::move(cut)});
    return true;
}

bool keep_cut_chunks(ChunkedDataset& chunks, std::span<const hsize_t> maximum, std::vector<KeptChunk>& kept)
{
    const auto steps = [&](size_t i) {
        return (chunks.extents()[i] + chunks.chunk()[i] - 1) / chunks.chunk()[i];
    };
    Extents numbers{};
    for (size_t i = 0; i < chunks.rank(); ++i) numbers[i] = steps(i);
    if (has_entry({numbers.data(), chunks.rank()}, 0)) return true;
    Extents which{};
    do {
        Extents corner{};
        for (size_t i = 0; i < chunks.rank(); ++i) corner[i] = which[i] * chunks.chunk()[i];
        if (is_cut(chunks, corner, maximum) && !keep(chunks, corner, kept)) return false;
    } while (next_in_box(which.data(), numbers.data(), chunks.rank()));
    return true;
}

}  // namespace

bool shrink_dataset(hid_t dataset, std::span<const hsize_t> extents, std::span<const hsize_t> maximum)
{
    ChunkedDataset chunks(dataset, H5I_INVALID_HID, extents);
    std::vector<KeptChunk> kept;
    if (chunks.is_ours() && chunks.has_scale_offset()) keep_cut_chunks(chunks, maximum, kept);
    bool good = H5Dset_extent(dataset, extents.data()) >= 0;
    // HDF5 has not stored its own version of these chunks yet: to it they are where and what they were.
    for (const KeptChunk& chunk : kept)
        good = chunks.write(chunk.corner, chunk.values.data(), true, true) && good;
    return good;
}

}  // namespace vak
