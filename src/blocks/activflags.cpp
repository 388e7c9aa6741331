// The activation flags block (key 2100): which entities of one type are active in a state.
#include "blocks/activflags.h"

#include "vak_sp.h"

namespace vak {

void activ_header(Block& io, const ActivFlags& a)
{
    text(io, "etyp", a.etyp);
    integer(io, "nent", a.nent);
    index_counts(io, a.index);
}

namespace {

constexpr BlockKind kind{.key = 2100, .type = "activflags", .wrong_key = WrongKeyText::wrong_first};

void data(Block& io, const ActivFlags& a)
{
    enter(io, "data");
    integers(io, "entid", a.entid, {*a.nent});
    integers(io, "status", a.status, {*a.nent});
}

int32_t write_state(Family family, hid_t file, const ActivFlags& a, int32_t istate,
                    const StorageOptions& storage)
{
    const auto path = state_path(a.index, istate, kind.type, a.etyp.at);
    return write_block(kind, family, file, path, storage, [&](Block& io) {
        activ_header(io, a);
        index_values(io, a.index);
        data(io, a);
    });
}

int32_t read_state(Family family, hid_t group, int32_t ipass, const ActivFlags& a, int32_t* iopt,
                   int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) {
        check_pass(io, ipass, {0, 1, 2});
        activ_header(io, a);
        if (ipass == 2) data(io, a);
        if (ipass != 1) index_values(io, a.index);
        if (ipass == 2) report_storage(io, iopt, ipar);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_ACTIVFLAGS(
    const vak_id* file,
    const char* etyp, const int32_t* nent,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* status,
    const int32_t* istate, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const ActivFlags a{
        .etyp = etyp, .nent = nent,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .status = status};
    *ierr = write_state(Family::current, *file, a, *istate, storage_of(iopt, ipar, ivsize));
}

void VAK_READ_ACTIVFLAGS(
    const vak_id* group, const int32_t* ipass,
    char* etyp, int32_t* nent,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* status,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const ActivFlags a{
        .etyp = etyp, .nent = nent,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .status = status};
    *ierr = read_state(Family::current, *group, *ipass, a, iopt, ipar);
}

void VAK1_WRITE_ACTIVFLAGS(
    const vak_id* file,
    const char* etyp, const int32_t* nent,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* status,
    const int32_t* istate, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const ActivFlags a{
        .etyp = etyp, .nent = nent,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .status = status};
    *ierr = write_state(Family::legacy, *file, a, *istate, storage_of(iopt, ipar, ivsize));
}

void VAK1_READ_ACTIVFLAGS(
    const vak_id* group, const int32_t* ipass,
    char* etyp, int32_t* nent,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* status,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const ActivFlags a{
        .etyp = etyp, .nent = nent,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .entid = entid, .status = status};
    *ierr = read_state(Family::legacy, *group, *ipass, a, iopt, ipar);
}
