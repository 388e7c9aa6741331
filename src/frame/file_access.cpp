// The access list with which files are opened and created.
#include "frame/file_access.h"

namespace vak {

namespace {

// Metadata of a block is used once and then no more. A small cache that stays small finds it in a short list
// where HDF5's own grows with the file.
bool set_small_metadata_cache(hid_t list)
{
    constexpr size_t size = size_t{512} * 1024;
    H5AC_cache_config_t cache{};
    cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
    if (H5Pget_mdc_config(list, &cache) < 0) return false;
    cache.set_initial_size = true;
    cache.initial_size = cache.min_size = cache.max_size = size;
    cache.incr_mode = H5C_incr__off;
    cache.flash_incr_mode = H5C_flash_incr__off;
    cache.decr_mode = H5C_decr__off;
    return H5Pset_mdc_config(list, &cache) >= 0;
}

}  // namespace

Properties access_list(unsigned access)
{
    Properties list(H5Pcreate(H5P_FILE_ACCESS));
    if (access == H5F_ACC_RDONLY) set_small_metadata_cache(list.get());
    return list;
}

}  // namespace vak
