// When metadata leaves memory for the file.
#include "frame/metadata_cache.h"

#include <algorithm>

#include "storage/whole_flush.h"

namespace vak {

namespace {

using Cache = H5AC_cache_config_t;

// Measured; see docs/reliability.md. HDF5 begins with 2 MiB and grows to 32.
constexpr size_t kibibyte = 1024;
constexpr size_t size_to_read = 512 * kibibyte;
constexpr size_t size_to_update = 2048 * kibibyte;
constexpr size_t held_back_at_most = 512 * kibibyte;
constexpr size_t left_after_a_flush = 128 * kibibyte;
constexpr size_t hdf5_limit = 128 * kibibyte * kibibyte;

Cache fixed(Cache cache, size_t size, bool evictions)
{
    cache.set_initial_size = true;
    cache.initial_size = cache.min_size = cache.max_size = size;
    cache.incr_mode = H5C_incr__off;
    cache.flash_incr_mode = H5C_flash_incr__off;
    cache.decr_mode = H5C_decr__off;
    cache.evictions_enabled = evictions;
    return cache;
}

bool is_fixed(const Cache& cache)
{
    return cache.incr_mode == H5C_incr__off && cache.decr_mode == H5C_decr__off &&
           cache.min_size == cache.max_size;
}

bool awaits_first_change(const Cache& cache)
{
    return is_fixed(cache) && cache.evictions_enabled && cache.max_size == size_to_update;
}

bool holds_back(const Cache& cache) { return is_fixed(cache) && !cache.evictions_enabled; }

bool get(hid_t file, Cache& cache)
{
    cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
    return H5Fget_mdc_config(file, &cache) >= 0;
}

bool set(hid_t file, Cache cache) { return H5Fset_mdc_config(file, &cache) >= 0; }

size_t size_in_use(hid_t file)
{
    size_t size = 0;
    return H5Fget_mdc_size(file, nullptr, nullptr, &size, nullptr) < 0 ? 0 : size;
}

// HDF5 comes down to a reduced size at the next access. What remains is in use; when that is much, twice as
// much may gather before the next flush, or each block would bring one.
void drop_unchanged(hid_t file, const Cache& cache)
{
    set(file, fixed(cache, left_after_a_flush, true));
    H5G_info_t access{};
    H5Gget_info(file, &access);
    set(file, fixed(cache, std::clamp(2 * size_in_use(file), held_back_at_most, hdf5_limit), false));
}

bool flush_when_large(hid_t file, const Cache& cache)
{
    if (size_in_use(file) <= cache.max_size) return true;
    if (!flush_whole(file, H5F_SCOPE_LOCAL)) return false;
    drop_unchanged(file, cache);
    return true;
}

size_t initial_size(FileUse use)
{
    switch (use) {
        case FileUse::read: return size_to_read;
        case FileUse::update: return size_to_update;
        default: return held_back_at_most;
    }
}

}  // namespace

Properties access_list(FileUse use)
{
    Properties list(H5Pcreate(H5P_FILE_ACCESS));
    Cache cache{};
    cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
    if (H5Pget_mdc_config(list.get(), &cache) >= 0) {
        cache = fixed(cache, initial_size(use), use != FileUse::create);
        H5Pset_mdc_config(list.get(), &cache);
    }
    return list;
}

bool hold_metadata_back(hid_t location)
{
    const File file(H5Iget_file_id(location));
    Cache cache{};
    if (!file.valid() || !get(file.get(), cache)) return true;
    // A file that is only read, though opened for update, keeps a cache of limited size.
    if (awaits_first_change(cache)) return set(file.get(), fixed(cache, held_back_at_most, false));
    if (!holds_back(cache)) return true;
    return keep_room(file.get()) != Room::shut && flush_when_large(file.get(), cache);
}

void drop_flushed_metadata(hid_t object)
{
    const File file(H5Iget_file_id(object));
    Cache cache{};
    if (file.valid() && get(file.get(), cache) && holds_back(cache)) drop_unchanged(file.get(), cache);
}

}  // namespace vak
