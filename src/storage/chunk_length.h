// Whether a chunk that HDF5 is to unpack becomes as long as a chunk is. HDF5 takes whatever comes out of its
// filters for one, and its scale-offset reads as far as it has to.
#pragma once

#include <optional>
#include <vector>

#include "storage/chunk_filters.h"

namespace vak {

class ChunkLength {
public:
    // Of any filters that HDF5 brings, in any order; `chunk_bytes` is what a chunk should have.
    ChunkLength(hid_t creation_list, size_t chunk_bytes);

    // Whether the filters are ones that can be followed.
    bool is_known() const { return is_known_; }

    bool is_right(const StoredChunk& chunk);

private:
    struct Step {
        H5Z_filter_t id = 0;
        size_t count = 0;  // scale-offset: values of a chunk, and bytes of each
        size_t size = 0;
        bool keeps_all = false;
    };
    static std::optional<Step> step_of(hid_t list, unsigned index);
    bool undo(const Step& step, StoredChunk& chunk, Buffer& to);
    bool inflate(StoredChunk& chunk, Buffer& to);

    bool is_known_ = false;
    size_t chunk_bytes_;
    size_t longest_;  // that a chunk may be between two filters
    std::vector<Step> steps_;
    Buffer buffers_[2];
    Inflater inflater_;
};

}  // namespace vak
