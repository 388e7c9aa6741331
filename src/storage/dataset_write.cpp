// Writing datasets: all of one, or a slab or list of points of one that may grow.
#include "storage/dataset_write.h"

#include <cstdio>

#include "storage/chunk_check.h"
#include "storage/direct_chunks.h"
#include "storage/element_type.h"
#include "storage/rows_in_file.h"
#include "storage/whole_flush.h"

namespace vak {

int32_t fail(const DatasetWrite& w, int32_t number, int64_t error, int32_t code)
{
    std::fprintf(
        stderr,
        "VAK INTERNAL ERROR (%d) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: %s %d %zu %zu %d %d\n",
        number, w.name, w.type, w.data_size, w.vak_size, w.mode, static_cast<int32_t>(error));
    return code;
}

namespace {

int32_t place_whole(const DatasetWrite& w, const Extents& present)
{
    for (size_t i = 0; i < w.dims.size(); ++i)
        if (w.dims[i] != present[i]) return fail(w, 30, static_cast<int64_t>(i), -6030);
    return 0;
}

int32_t place_slab(DatasetWrite& w, const Extents& present)
{
    for (size_t i = 0; i < w.dims.size(); ++i) {
        const auto begin = checked_sum(w.start[i], w.unlimited(i) ? present[i] : 0);
        const auto end = begin ? checked_sum(*begin, w.part.count[i]) : std::nullopt;
        if (!w.unlimited(i)) {
            if (!end || *end > present[i]) return fail(w, 31, static_cast<int64_t>(i), -6031);
            w.dims[i] = present[i];
        } else {
            if (!end) return fail(w, 999, -1, -3999);
            w.dims[i] = *end;
            w.start[i] = *begin;
        }
    }
    return 0;
}

int32_t place_along(DatasetWrite& w, size_t i, hsize_t present)
{
    hsize_t largest = 0;
    for (hsize_t n = 0; n < w.part.count[0]; ++n) {
        hsize_t& coordinate = w.start[n * w.dims.size() + i];
        if (!w.unlimited(i)) {
            if (coordinate >= present) return fail(w, 32, static_cast<int64_t>(i), -6032);
            continue;
        }
        const auto shifted = checked_sum(coordinate, present);
        if (!shifted) return fail(w, 999, -1, -3999);
        coordinate = *shifted;
        largest = std::max(largest, *shifted);
    }
    // The extent is the largest coordinate, not one more: required as it stands.
    if (w.unlimited(i)) w.dims[i] = largest;
    return 0;
}

// HDF5 would take a coordinate that equals the extent, and overwrite other values with it.
bool points_beyond(const DatasetWrite& w)
{
    for (size_t i = 0; i < w.dims.size(); ++i)
        for (hsize_t n = 0; w.unlimited(i) && n < w.part.count[0]; ++n)
            if (w.part.point(n)[i] >= w.dims[i]) return true;
    return false;
}

// Where values did not reach the file, nothing may be read in their place: rows made for them go again, and
// so does a dataset made for them.
void take_back(const DatasetWrite& w, Target& target)
{
    if (target.is_new) {
        target.dataset.close();
        H5Ldelete(w.location.id, w.name, H5P_DEFAULT);
    } else if (w.extendible()) {
        if (!target.dataset.valid()) target.dataset = Dataset(open_to_shrink(w.location.id, w.name));
        shrink_dataset(target.dataset.get(), {target.before.data(), w.dims.size()},
                       {w.maximum.data(), w.dims.size()});
    }
}

// Only growth is asked of HDF5: extents in dims that are smaller than the present ones stay.
int32_t grow(const DatasetWrite& w, Target& target, Extents present)
{
    bool grows = false;
    for (size_t i = 0; i < w.dims.size(); ++i) {
        grows = grows || w.dims[i] > present[i];
        present[i] = std::max(present[i], w.dims[i]);
    }
    if (!grows) return 0;
    herr_t status = H5Dset_extent(target.dataset.get(), present.data());
    if (status >= 0)
        status = H5Sset_extent_simple(target.space.get(), static_cast<int>(w.dims.size()), present.data(),
                                      nullptr);
    if (status >= 0) return 0;
    take_back(w, target);
    return fail(w, 100, status, -3100);
}

// Whether chunks that the file has already may be packed anew.
bool repacks(const DatasetWrite& w, const Target& target)
{
    if (!target.list.valid()) return false;
    if (!w.extendible() || w.part.mode != hyperslab) return true;
    Extents chunk{};
    if (H5Pget_chunk(target.list.get(), H5S_MAX_RANK, chunk.data()) < 0) return false;
    for (size_t i = 0; i < w.dims.size(); ++i)
        if (w.start[i] / chunk[i] * chunk[i] >= target.before[i]) return false;
    return true;
}

// Rows that a flush has lost give way to what is written now.
int32_t give_up_lost_rows(const DatasetWrite& w, Target& target, std::span<const hsize_t> maximum)
{
    const hid_t dataset = target.dataset.get();
    const auto rows = rows_in_file(dataset, {target.before.data(), maximum.size()}, maximum);
    if (!rows) return fail(w, 999, -1, -3999);
    if (*rows == target.before[0]) return 0;
    target.before[0] = *rows;
    if (H5Dset_extent(dataset, target.before.data()) < 0) return fail(w, 100, -1, -3100);
    target.space = Space(H5Dget_space(dataset));
    return target.space.valid() ? 0 : fail(w, 110, -1, -3110);
}

int32_t open_dataset(DatasetWrite& w, Target& target)
{
    target.dataset = Dataset(H5Dopen2(w.location.id, w.name, H5P_DEFAULT));
    const hid_t dataset = target.dataset.get();
    if (dataset < 0) return fail(w, 10, dataset, -3010);
    FoundType found(H5Dget_type(dataset));
    if (found.type_class != w.type_class) return fail(w, 10, found.type_class, -3010);
    target.space = Space(H5Dget_space(dataset));
    Extents& present = target.before;
    Extents maximum{};
    const int32_t rank = H5Sget_simple_extent_dims(target.space.get(), present.data(), maximum.data());
    const auto axes = static_cast<size_t>(std::max(rank, 0));
    FoundLayout layout(dataset, last_row({present.data(), axes}, {maximum.data(), axes}));
    if (!layout.is_usable) return fail(w, 999, -1, -3999);
    if (!target.space.valid()) return fail(w, 110, target.space.get(), -3110);
    if (rank != static_cast<int32_t>(w.dims.size())) return fail(w, 20, rank, -3020);
    if (H5Sget_simple_extent_type(target.space.get()) == H5S_NULL) return fail(w, 999, -1, -3999);
    if (w.extendible() && !layout.has_row)
        if (const int32_t status = give_up_lost_rows(w, target, {maximum.data(), axes})) return status;
    if (const int32_t status = place(w, present)) return status;
    if (!chunks_are_plausible(dataset, layout, w.part, {present.data(), w.dims.size()}, found.size))
        return fail(w, 999, -1, -3999);
    w.memory_type = memory_type_beside(found, w.type, w.memory_type, w.data_size);
    target.found_type = std::move(found.id);
    target.list = std::move(layout.list);
    target.repacks = repacks(w, target);
    return 0;
}

int32_t give_up(const DatasetWrite& w, Target& target, int32_t number, int64_t error)
{
    take_back(w, target);
    return fail(w, number, error, -3000 - number);
}

int32_t write_by_hdf5(const DatasetWrite& w, Target& target)
{
    Space memory;
    hid_t memory_space = H5S_ALL;
    hid_t file_space = H5S_ALL;
    if (!covers(w.part, w.dims)) {
        memory = memory_space_of(w.part);
        memory_space = memory.get();
        file_space = target.space.get();
        if (!memory.valid() || !select(file_space, w.part)) return give_up(w, target, 120, -1);
    }
    const herr_t status =
        H5Dwrite(target.dataset.get(), w.memory_type, memory_space, file_space, H5P_DEFAULT, w.data);
    return status < 0 ? give_up(w, target, 999, status) : 0;
}

Direct write_by_chunks(const DatasetWrite& w, const Target& target, Chunks which)
{
    Extents extents{};
    for (size_t i = 0; i < w.dims.size(); ++i) extents[i] = std::max(w.dims[i], target.before[i]);
    return write_chunks({.dataset = target.dataset.get(),
                         .list = target.list.get(),
                         .list_is_its_own = !target.is_new,
                         .repacks = target.repacks,
                         .which = which,
                         .type = w.type,
                         .data_size = w.data_size,
                         .memory_type = w.memory_type,
                         .part = w.part,
                         .extents = {extents.data(), w.dims.size()},
                         .maximum = {w.maximum.data(), w.dims.size()},
                         .before = {target.before.data(), w.dims.size()}},
                        w.data);
}

int32_t give_up_chunks(const DatasetWrite& w, Target& target)
{
    target.dataset.close();  // HDF5 forgets where it wanted to put the chunk that failed
    return give_up(w, target, 999, -1);
}

int32_t write_values(const DatasetWrite& w, Target& target)
{
    const bool is_refused = w.part.mode == point_list && points_beyond(w);
    Chunks rest = Chunks::all;
    if (target.repacks && !is_refused) {
        const Direct direct = write_by_chunks(w, target, Chunks::present);
        if (direct == Direct::failed) return give_up_chunks(w, target);
        if (direct == Direct::done) rest = Chunks::added;
        // HDF5 would unpack them.
        if (direct == Direct::left && !chunks_are_sound(target.dataset.get(), target.list.get(), w.part,
                                                        {target.before.data(), w.dims.size()}))
            return fail(w, 999, -1, -3999);
    }
    if (w.extendible() && !target.is_new)
        if (const int32_t status = grow(w, target, target.before)) return status;
    if (is_refused) return fail(w, 999, -1, -3999);
    const Direct direct = write_by_chunks(w, target, rest);
    if (direct == Direct::failed) return give_up_chunks(w, target);
    if (direct == Direct::left)
        if (const int32_t status = write_by_hdf5(w, target)) return status;
    // Errors of the disk often show only when HDF5 writes out what it holds, on closing.
    return target.dataset.close() ? 0 : give_up(w, target, 999, -1);
}

// Whether several of them would use up the room that is kept from block to block.
bool is_large(const DatasetWrite& w)
{
    constexpr hsize_t fewest_bytes = 16384;
    return elements_of(w.part.counts(), w.vak_size).value_or(0) >=
           fewest_bytes / std::max(w.vak_size, size_t{1});
}

// What must hold before the file is touched.
int32_t check(DatasetWrite& w)
{
    int32_t stored_class;
    hid_t number;
    if (VAK_H5gettype(w.type, w.data_size, &w.type_class, &w.memory_type) < 0) return fail(w, 2, -1, -3001);
    if (VAK_H5gettype(w.type, w.vak_size, &stored_class, &number) < 0) return fail(w, 3, -1, -3002);
    if (w.type != real_type && w.vak_size < w.data_size) return fail(w, 4, 0, -3003);
    const bool countable = elements_of(w.part.counts(), std::max(w.data_size, w.vak_size)).has_value();
    return countable && w.data != nullptr && is_writable(w.location.id) ? 0 : fail(w, 999, -1, -3999);
}

}  // namespace

int32_t place(DatasetWrite& w, const Extents& present)
{
    if (w.part.mode == whole_dataset) return place_whole(w, present);
    if (w.part.mode == hyperslab) return place_slab(w, present);
    for (size_t i = 0; i < w.dims.size(); ++i)
        if (const int32_t status = place_along(w, i, present[i])) return status;
    return 0;
}

int32_t VAK_H5Dwrite(const char* name, const void* data, int32_t type, size_t data_size, size_t vak_size,
                     hsize_t* dims, int32_t rank, const hsize_t* count, hsize_t* start, int32_t mode,
                     const Location& location, uint32_t flags, const uint32_t* params)
{
    SharedIds own;
    const bool known = known_shape(dims, rank);
    DatasetWrite w{name, data, type, data_size, vak_size, location, location.shared ? *location.shared : own};
    w.dims = {dims, known ? static_cast<size_t>(rank) : 0};
    w.part = part_of(mode, dims, rank, count, start);
    w.start = start;
    w.mode = mode;
    w.flags = flags;
    w.params = params;
    if (dims == nullptr) return fail(w, 0, -3000, -3000);
    if (!known) return fail(w, 40, -1, -2040);
    if (has_entry(w.dims, 0)) return 0;
    std::copy(w.dims.begin(), w.dims.end(), w.maximum.begin());
    if (w.extendible() && w.part.mode == whole_dataset) return fail(w, 1, -3000, -3000);
    if (!w.part.known()) return fail(w, 999, -1, -3999);
    if (has_entry(w.part.counts(), 0)) return 0;
    if (const int32_t status = check(w)) return status;
    Target target;
    const bool exists = !location.is_new && H5Lexists(location.id, name, H5P_DEFAULT) > 0;
    if (const int32_t status = exists ? open_dataset(w, target) : create_dataset(w, target)) return status;
    try {
        const int32_t status = write_values(w, target);
        if (is_large(w)) keep_room(location.id);  // what follows has it again
        return status;
    } catch (const std::bad_alloc&) {
        target.dataset.close();
        take_back(w, target);
        throw;
    }
}

}  // namespace vak
