// How datasets are laid out in the file: the rules for new ones, and parts of any.
#pragma once

#include "storage/shape.h"
#include "storage/storage.h"

namespace vak {

// ---- Rules for new datasets ----

// Datasets without filters and of fixed extents up to this many bytes stand in their object header.
constexpr hsize_t largest_compact = 24000;

struct Filters {
    bool scale_offset = false;
    bool shuffle = false;
    bool deflate = false;
    bool any() const { return scale_offset || shuffle || deflate; }
};

// What the flag word asks for of that element type; short datasets are never filtered.
Filters filters_for(int32_t type, uint32_t flags, hsize_t elements);

// The chunk extent along one dimension, from its maximum extent.
hsize_t chunk_extent(hsize_t maximum, int32_t along_unlimited);

// The chunk of a dataset that can grow.
Extents growing_chunk(std::span<const hsize_t> maximum, int32_t along_unlimited);

// The chunk of a filtered dataset of fixed extents: all of it, where HDF5 allows a chunk of that size.
Extents filtered_chunk(std::span<const hsize_t> dims, size_t element_size);

// ---- Parts of a dataset ----

// What a call takes of a dataset: mode, and for a slab or a list of points count and start.
struct Part {
    int32_t mode;
    int32_t rank;
    const hsize_t* count;  // of all of a dataset: its extents
    const hsize_t* start;

    bool known() const
    {
        return rank == 0 || (count != nullptr && (mode == whole_dataset || start != nullptr));
    }
    std::span<const hsize_t> counts() const { return shape(count, mode == point_list ? 1 : rank); }
    const hsize_t* point(hsize_t n) const { return start + n * static_cast<hsize_t>(rank); }
};

// A dataset without dimensions has no parts; unknown modes mean all of it.
Part part_of(int32_t mode, const hsize_t* dims, int32_t rank, const hsize_t* count, const hsize_t* start);

// Whether a slab is all there is, so that nothing needs to be selected.
bool covers(const Part& part, std::span<const hsize_t> extents);

// Whether a slab of a dataset of these extents is one run of values in each chunk, or a few.
bool in_runs(const Part& part, std::span<const hsize_t> extents);

// Selects the part in the file's space; false when HDF5 refuses.
bool select(hid_t space, const Part& part);

// The caller's array as HDF5 sees it: extents of 1 are dropped, which lets it copy whole runs.
Space memory_space_of(const Part& part);

}  // namespace vak
