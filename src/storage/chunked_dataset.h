// A chunked dataset whose chunks are read and written whole, past HDF5's chunk cache and filters.
#pragma once

#include <vector>

#include "storage/chunk_filters.h"
#include "storage/hdf5_id.h"
#include "storage/shape.h"

namespace vak {

class ChunkedDataset {
public:
    // The list must be the dataset's own, in which HDF5 has completed the filters; without one it is asked
    // for.
    ChunkedDataset(hid_t dataset, hid_t list, std::span<const hsize_t> extents);

    // Whether it is chunked, and its filters are ones that we handle ourselves; otherwise nothing else holds.
    bool is_ours() const { return codec_.has_value(); }

    size_t rank() const { return rank_; }
    const Extents& extents() const { return extents_; }
    const Extents& chunk() const { return chunk_; }
    hid_t stored_type() const { return type_.get(); }
    size_t element_size() const { return element_size_; }
    size_t chunk_bytes() const { return chunk_bytes_; }
    bool is_filtered() const { return !codec_->filters().steps.empty(); }
    bool has_scale_offset() const { return codec_->filters().has_scale_offset(); }

    // How much of a chunk lies within the dataset: at its upper ends chunks reach beyond.
    Extents inside(const Extents& corner) const;

    // The values of a chunk in the stored type, fill values where nothing was written; false on failure.
    bool read(const Extents& corner, unsigned char* values);

    // The same in memory of our own, of which no more is taken than the stored bytes can fill. Until the next
    // call; nothing on failure.
    std::optional<ChunkValues> values(const Extents& corner);

    // Without a chunk all are this one, in the stored type.
    const unsigned char* fill_value() const { return fill_value_.data(); }

    // Whether scale-offset rounded nothing in the chunk that was read last.
    bool was_exact() const { return was_exact_; }

    // The bytes of the chunk that was read last, as they are stored; none where there was no chunk. Until the
    // next call.
    const StoredChunk& held() const { return held_; }

    void fill(unsigned char* values) const;

    // `exact`: scale-offset must not round these values. `is_new`: there is no such chunk yet.
    bool write(const Extents& corner, const unsigned char* values, bool exact, bool is_new);

    // Puts such bytes where they were, past what HDF5 has in its cache.
    bool store(const Extents& corner, const StoredChunk& chunk);

    // To be called when all is written.
    void finish() const;

private:
    void describe(hid_t list);
    bool take_layout(hid_t list);
    void take_fill_value(hid_t list);
    bool hold(const Extents& corner, size_t size);
    bool has_room(const StoredChunk& chunk) const;
    bool store_elsewhere(const Extents& corner, const StoredChunk& chunk);
    bool move(const Extents& corner, const StoredChunk& chunk);
    bool replace(const Extents& corner, const StoredChunk& chunk);
    bool read_by_hdf5(const Extents& corner, unsigned char* values) const;

    hid_t dataset_;
    Type type_;
    size_t rank_;
    size_t element_size_ = 0;
    size_t chunk_bytes_ = 0;
    Extents extents_{};
    Extents chunk_{};
    std::vector<unsigned char> fill_value_;
    std::optional<ChunkCodec> codec_;
    Buffer stored_;
    Buffer values_;
    StoredChunk held_;  // what was last read into it, and where from
    Extents held_corner_{};
    bool was_exact_ = true;
    bool is_flushed_ = false;             // all but what is being written
    std::optional<Extents> last_masked_;  // the chunk written last, when a filter is or was left out of it
};

}  // namespace vak
