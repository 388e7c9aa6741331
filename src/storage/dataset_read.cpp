// Reading datasets: class, size, shape and filters are checked before anything reaches the caller's memory.
#include "storage/dataset_read.h"

#include <cstdio>

#include "storage/chunk_check.h"
#include "storage/direct_chunks.h"

namespace vak {

namespace {

int32_t fail(const DatasetRead& r, int32_t number, int64_t error)
{
    std::fprintf(stderr,
                 "VAK INTERNAL ERROR (%d) in VAK_H5Dread - name, vak_type, data_size, error: %s %d %zu %d\n",
                 number, r.name, r.type, r.data_size, static_cast<int32_t>(error));
    return -6000 - number;
}

int32_t check_size(const DatasetRead& r, size_t stored)
{
    if (r.type == real_type || stored <= r.data_size) return 0;
    return fail(r, r.type == text_type ? 10 : 11, static_cast<int64_t>(stored));
}

bool beyond(const DatasetRead& r, size_t i, hsize_t extent)
{
    if (r.part.mode == hyperslab)
        return r.part.count[i] > extent || r.part.start[i] > extent - r.part.count[i];
    if (r.part.mode == whole_dataset) return r.part.count[i] != extent;
    for (hsize_t n = 0; n < r.part.count[0]; ++n)
        if (r.part.point(n)[i] >= extent) return true;
    return false;
}

int32_t check_part(const DatasetRead& r, const Source& source)
{
    constexpr int32_t number[] = {30, 31, 32};  // by mode
    if (r.part.rank != static_cast<int32_t>(source.rank))
        return fail(r, 20, static_cast<int64_t>(source.rank));
    for (size_t i = 0; i < source.rank; ++i)
        if (beyond(r, i, source.extents[i])) return fail(r, number[r.part.mode], static_cast<int64_t>(i));
    return elements_of(r.part.counts(), r.data_size) ? 0 : fail(r, 999, -1);
}

void report(const DatasetRead& r, uint32_t flag_of_integers, uint32_t flag_of_reals, uint32_t flag_of_texts)
{
    if (r.flags == nullptr) return;
    *r.flags |= r.type == text_type      ? flag_of_texts
                : r.type == integer_type ? flag_of_integers
                                         : flag_of_reals;
}

void raise(const DatasetRead& r, size_t i, uint32_t found)
{
    if (r.params != nullptr) r.params[i] = std::max(r.params[i], static_cast<int32_t>(found));
}

int32_t take_scale_offset(const DatasetRead& r, uint32_t scale_type, uint32_t factor)
{
    const auto found = static_cast<int32_t>(scale_type);
    if (r.type == text_type) return fail(r, 60, found);
    if (r.type == integer_type && found != H5Z_SO_INT) return fail(r, 40, found);
    if (r.type == real_type && found != H5Z_SO_FLOAT_DSCALE) return fail(r, 50, found);
    report(r, scale_offset_integers, scale_offset_reals, 0);
    if (r.type == real_type) raise(r, 0, factor);
    return 0;
}

int32_t take_filters(const DatasetRead& r, const FoundLayout& layout)
{
    for (int i = 0; i < layout.filters; ++i) {
        unsigned flags = 0;
        unsigned values[2] = {0, 0};
        size_t n = std::size(values);
        const H5Z_filter_t filter = H5Pget_filter2(layout.list.get(), static_cast<unsigned>(i), &flags, &n,
                                                   values, 0, nullptr, nullptr);
        if (filter < 0) return fail(r, 999, filter);
        if (filter == H5Z_FILTER_SCALEOFFSET)
            if (const int32_t status = take_scale_offset(r, values[0], values[1])) return status;
        if (filter == H5Z_FILTER_SHUFFLE) report(r, shuffle_integers, shuffle_reals, shuffle_texts);
        if (filter != H5Z_FILTER_DEFLATE) continue;
        report(r, deflate_integers, deflate_reals, deflate_texts);
        raise(r, 1, values[0]);
    }
    return 0;
}

int32_t read_by_hdf5(const DatasetRead& r, const Source& source)
{
    Space memory;
    hid_t memory_space = H5S_ALL;
    hid_t file_space = H5S_ALL;
    if (source.has_lost_rows || !covers(r.part, source.shape())) {
        memory = memory_space_of(r.part);
        memory_space = memory.get();
        file_space = source.space.get();
        if (!memory.valid() || !select(file_space, r.part)) return fail(r, 120, -1);
    }
    const herr_t status =
        H5Dread(source.dataset.get(), r.memory_type, memory_space, file_space, H5P_DEFAULT, r.data);
    return status < 0 ? fail(r, 999, status) : 0;
}

Direct read_by_chunks(const DatasetRead& r, const Source& source)
{
    if (r.data == nullptr) return Direct::left;
    return read_chunks({.dataset = source.dataset.get(),
                        .list = source.layout.list.get(),
                        .type = r.type,
                        .data_size = r.data_size,
                        .memory_type = r.memory_type,
                        .part = r.part,
                        .has_bare_chunks = source.layout.has_bare_chunks,
                        .extents = source.shape(),
                        .maximum = {source.maximum.data(), source.rank}},
                       r.data);
}

int32_t read_values(const DatasetRead& r, const Source& source)
{
    const Direct direct = read_by_chunks(r, source);
    if (direct == Direct::failed) return fail(r, 999, -1);
    if (direct == Direct::done) return 0;
    const hid_t dataset = source.dataset.get();
    const bool are_right =
        r.data == nullptr
            ? chunks_are_plausible(dataset, source.layout, r.part, source.shape(), source.type.size)
            : chunks_are_sound(dataset, source.layout.list.get(), r.part, source.shape());
    if (!are_right) return fail(r, 999, -1);
    return r.data == nullptr ? 0 : read_by_hdf5(r, source);
}

// A dataset that is asked for a single value gives its first element, whatever its shape.
constexpr Extents first_place{};
constexpr Extents one_each = [] {
    Extents ones{};
    ones.fill(1);
    return ones;
}();

int32_t take_first(DatasetRead& r, const Source& source)
{
    const bool none =
        H5Sget_simple_extent_type(source.space.get()) == H5S_NULL || has_entry(source.shape(), 0);
    if (none) return fail(r, 999, -1);
    r.part =
        part_of(hyperslab, nullptr, static_cast<int32_t>(source.rank), one_each.data(), first_place.data());
    return 0;
}

int32_t check_space(DatasetRead& r, Source& source)
{
    if (source.rank_or_error < 0) return fail(r, 999, source.rank_or_error);
    if (!source.layout.has_row) {
        const auto rows =
            rows_in_file(source.dataset.get(), source.shape(), {source.maximum.data(), source.rank});
        if (!rows) return fail(r, 999, -1);
        source.has_lost_rows = *rows < source.extents[0];
        source.extents[0] = *rows;
    }
    if (r.part.rank == 0)
        if (const int32_t status = take_first(r, source)) return status;
    const int32_t status = check_part(r, source);
    if (status == 0 && source.has_lost_rows && r.part.mode == whole_dataset)
        r.part = part_of(hyperslab, nullptr, r.part.rank, r.part.count, first_place.data());
    return status;
}

// HDF5 gives a chunk in its cache as much memory as a damaged file notes for it, and reads as much from there
// as the chunk has. Chunks without filters need no cache: past it they are read from where they stand.
bool open_past_cache(const DatasetRead& r, Source& source, hid_t location, hid_t access)
{
    source.dataset.close();
    source.dataset = Dataset(H5Dopen2(location, r.name, access));
    return source.dataset.valid();
}

int32_t read_opened(DatasetRead& r, Source& source)
{
    if (!source.layout.is_usable) return fail(r, 999, -1);
    if (const int32_t status = check_space(r, source)) return status;
    if (const int32_t status = take_filters(r, source.layout)) return status;
    r.memory_type = memory_type_beside(source.type, r.type, r.memory_type, r.data_size);
    return read_values(r, source);
}

}  // namespace

int32_t refuse_reading(const char* name, int32_t type, size_t data_size)
{
    return fail({name, nullptr, type, data_size, {}, nullptr, nullptr}, 999, -1);
}

int32_t VAK_H5Dread(const char* name, void* data, int32_t type, size_t data_size, const hsize_t* dims,
                    int32_t rank, const hsize_t* count, const hsize_t* start, int32_t mode,
                    const Location& location, uint32_t* flags, int32_t* params)
{
    const bool known = known_rank(rank);
    const Part part = part_of(mode, dims, known ? rank : 0, count, start);
    DatasetRead r{name, data, type, data_size, part, flags, params};
    if (!known) return fail(r, 20, -1);
    if (!r.part.known()) return fail(r, 999, -1);
    if (has_entry(r.part.counts(), 0)) return 0;
    int32_t type_class;
    if (VAK_H5gettype(type, data_size, &type_class, &r.memory_type) < 0) return fail(r, 1, -1);
    SharedIds own;
    SharedIds& ids = location.shared != nullptr ? *location.shared : own;
    // What is read in part is chunked as a rule.
    const bool past_cache = r.part.mode != whole_dataset || ids.expects_chunks;
    Dataset dataset(H5Dopen2(location.id, name, past_cache ? ids.uncached() : H5P_DEFAULT));
    if (!dataset.valid()) return fail(r, 2, -1);
    FoundType found(H5Dget_type(dataset.get()));
    if (found.type_class != type_class) return fail(r, 3, found.type_class);
    if (const int32_t status = check_size(r, found.size)) return status;
    Source source(std::move(dataset), std::move(found));
    ids.expects_chunks = ids.expects_chunks || source.layout.has_bare_chunks;
    if (source.layout.has_bare_chunks && !past_cache &&
        !open_past_cache(r, source, location.id, ids.uncached()))
        return fail(r, 2, -1);
    return read_opened(r, source);
}

}  // namespace vak
