// Closing a file with all that is open in it, and flushing.
#include <hdf5.h>

#include <algorithm>
#include <vector>

#include "frame/exported.h"
#include "frame/metadata_cache.h"
#include "storage/hdf5_id.h"
#include "storage/whole_flush.h"
#include "vak_sp.h"

namespace vak {

namespace {

using Close = herr_t (*)(hid_t);

bool flush(hid_t file)
{
    const bool global = flush_whole(file, H5F_SCOPE_GLOBAL);
    const bool local = flush_whole(file, H5F_SCOPE_LOCAL);
    release_room(file, global && local);
    return global && local;
}

// A file whose last flush fails stays open at first. Asked once more HDF5 lets go of it.
bool close_every_reference(hid_t id, Close close)
{
    const int references = H5Iget_ref(id);
    bool sound = references >= 0;
    for (int left = std::max(references, 1) + 1; left > 0 && H5Iis_valid(id) != 0; --left)
        sound = close(id) >= 0 && sound;
    return sound;
}

// `ids` has room for every object that is open in the file.
bool close_kind(hid_t file, unsigned kind, Close close, std::vector<hid_t>& ids)
{
    const ssize_t found = H5Fget_obj_ids(file, kind, ids.size(), ids.data());
    bool sound = found >= 0;
    for (ssize_t i = 0; i < found; ++i)
        sound = close_every_reference(ids[static_cast<size_t>(i)], close) && sound;
    return sound;
}

int32_t close_file(hid_t group)
{
    File file(H5Iget_file_id(group));
    if (!file.valid()) return -1;
    bool sound = flush(file.get());
    const ssize_t open = H5Fget_obj_count(file.get(), H5F_OBJ_ALL);
    std::vector<hid_t> ids(open > 0 ? static_cast<size_t>(open) : 0);
    sound = close_kind(file.get(), H5F_OBJ_GROUP, H5Gclose, ids) && sound;
    sound = close_kind(file.get(), H5F_OBJ_DATASET, H5Dclose, ids) && sound;
    sound = close_kind(file.get(), H5F_OBJ_DATATYPE, H5Tclose, ids) && sound;
    sound = close_kind(file.get(), H5F_OBJ_ATTR, H5Aclose, ids) && sound;
    // The files last, `file` among them.
    const hid_t last = file.release();
    sound = close_kind(last, H5F_OBJ_FILE, H5Fclose, ids) && sound;
    if (H5Iis_valid(last) > 0) H5Fclose(last);
    return sound ? 0 : -1;
}

int32_t flush_scope(hid_t id, int32_t scope)
{
    if (scope == 0) flush_whole(id, H5F_SCOPE_GLOBAL);
    if (scope == 1) flush_whole(id, H5F_SCOPE_LOCAL);
    if (scope == 0 || scope == 1) drop_flushed_metadata(id);
    return 0;
}

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_CLOSE(const vak_id* group_id, int32_t* ierr)
{
    *ierr = vak::exported([&] { return vak::close_file(*group_id); });
}

void VAK1_CLOSE(const vak_id* group_id, int32_t* ierr)
{
    VAK_CLOSE(group_id, ierr);
}

void VAK_FLUSH(const vak_id* id, const int32_t* scope, int32_t* ierr)
{
    *ierr = vak::exported([&] { return vak::flush_scope(*id, *scope); });
}

void VAK1_FLUSH(const vak_id* id, const int32_t* scope, int32_t* ierr)
{
    VAK_FLUSH(id, scope, ierr);
}
