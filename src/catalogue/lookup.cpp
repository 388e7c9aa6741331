// Lists of all blocks below a group.
#include "catalogue/block_list.h"
#include "frame/exported.h"
#include "vak_sp.h"

namespace vak {

namespace {

int32_t look_up(const BlockList& list, Family family, hid_t start, const char* routine)
{
    return exported([&] {
        return list_blocks_into(list, family, start, routine, [](const FoundBlock&) { return true; });
    });
}

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void vak_lookup(
    const vak_id* loc_id,
    const int32_t* collect, const int32_t* verbose, int32_t* capacity, int64_t* pool_size,
    int32_t* nblocks, int64_t* total_len, int32_t** keys, int64_t** offsets, char** paths, int32_t* ierr)
{
    const vak::BlockList list{
        .collect = *collect, .verbose = *verbose, .capacity = capacity, .pool_size = pool_size,
        .nblocks = nblocks, .total_len = total_len, .keys = keys, .offsets = offsets, .paths = paths};
    *ierr = vak::look_up(list, vak::Family::current, *loc_id, "VAK_LOOKUP");
}

void vak1_lookup(
    const vak_id* loc_id,
    const int32_t* collect, const int32_t* verbose, int32_t* capacity, int64_t* pool_size,
    int32_t* nblocks, int64_t* total_len, int32_t** keys, int64_t** offsets, char** paths, int32_t* ierr)
{
    const vak::BlockList list{
        .collect = *collect, .verbose = *verbose, .capacity = capacity, .pool_size = pool_size,
        .nblocks = nblocks, .total_len = total_len, .keys = keys, .offsets = offsets, .paths = paths};
    *ierr = vak::look_up(list, vak::Family::legacy, *loc_id, "VAK1_LOOKUP");
}
