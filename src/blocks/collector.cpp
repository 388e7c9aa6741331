// The collector block (key 400): named sets of entities of several types.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 400, .type = "collector"};

struct Collector {
    Arg<char> etypcoll;
    Arg<int32_t> ncoll, ntyp;
    Arg<int32_t> nenttot;  // the sum of nent
    Index index;
    Arg<int32_t> idcoll;
    Arg<char> etyp;
    Arg<int32_t> nent, entid;
};

void header(Block& io, const Collector& c)
{
    text(io, "etypcoll", c.etypcoll);
    integer(io, "ncoll", c.ncoll);
    integer(io, "ntyp", c.ntyp);
    integer(io, "nenttot", c.nenttot);
    index_counts(io, c.index);
}

void sets(Block& io, const Collector& c)
{
    enter(io, "data");
    integers(io, "idcoll", c.idcoll, {*c.ncoll});
    texts(io, "etyp", c.etyp, 256, {*c.ntyp});
    integers(io, "nent", c.nent, {*c.ncoll, *c.ntyp});
    integers(io, "entid", c.entid, {*c.nenttot});
}

int64_t entities(const Collector& c)
{
    if (*c.ncoll <= 0 || *c.ntyp <= 0) return 0;
    return total(c.nent.at, int64_t{*c.ncoll} * *c.ntyp);
}

int32_t write_collector(Family family, hid_t file, int32_t state, Collector c, const StorageOptions& storage)
{
    const int64_t sum = entities(c);
    if (!fits_count(sum)) return refuse_total(kind);
    const auto nenttot = static_cast<int32_t>(sum);
    c.nenttot = &nenttot;
    const BlockPath path = state_path(c.index, state, kind.type, c.etypcoll.at);
    return write_block(kind, family, file, path, storage, [&](Block& io) {
        header(io, c);
        index_values(io, c.index);
        sets(io, c);
    });
}

int32_t read_collector(Family family, hid_t group, int32_t ipass, const Collector& c, int32_t* flags,
                       int32_t* params)
{
    return read_block(kind, family, group, [&](Block& io) {
        header(io, c);
        check_pass(io, ipass, {0, 1, 2});
        if (ipass == 2) sets(io, c);
        if (ipass != 1) index_values(io, c.index);
        if (ipass == 2) report_storage(io, flags, params);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_COLLECTOR(
    const vak_id* file, const char* etypcoll,
    const int32_t* ncoll, const int32_t* ntyp,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* idcoll, const char* etyp, const int32_t* nent, const int32_t* entid,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Collector c{
        .etypcoll = etypcoll, .ncoll = ncoll, .ntyp = ntyp, .nenttot = {},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .idcoll = idcoll, .etyp = etyp, .nent = nent, .entid = entid};
    *ierr = write_collector(Family::current, *file, *state, c, storage_of(flags, params, real_size));
}

void VAK1_WRITE_COLLECTOR(
    const vak_id* file, const char* etypcoll,
    const int32_t* ncoll, const int32_t* ntyp,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* idcoll, const char* etyp, const int32_t* nent, const int32_t* entid,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Collector c{
        .etypcoll = etypcoll, .ncoll = ncoll, .ntyp = ntyp, .nenttot = {},
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .idcoll = idcoll, .etyp = etyp, .nent = nent, .entid = entid};
    *ierr = write_collector(Family::legacy, *file, *state, c, storage_of(flags, params, real_size));
}

void VAK_READ_COLLECTOR(
    const vak_id* group, const int32_t* ipass,
    int32_t* nenttot, char* etypcoll, int32_t* ncoll, int32_t* ntyp,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* idcoll, char* etyp, int32_t* nent, int32_t* entid,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Collector c{
        .etypcoll = etypcoll, .ncoll = ncoll, .ntyp = ntyp, .nenttot = nenttot,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .idcoll = idcoll, .etyp = etyp, .nent = nent, .entid = entid};
    *ierr = read_collector(Family::current, *group, *ipass, c, flags, params);
}

void VAK1_READ_COLLECTOR(
    const vak_id* group, const int32_t* ipass,
    int32_t* nenttot, char* etypcoll, int32_t* ncoll, int32_t* ntyp,
    int32_t* nindex, int32_t* indexident, float* indexval,
    int32_t* idcoll, char* etyp, int32_t* nent, int32_t* entid,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Collector c{
        .etypcoll = etypcoll, .ncoll = ncoll, .ntyp = ntyp, .nenttot = nenttot,
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .idcoll = idcoll, .etyp = etyp, .nent = nent, .entid = entid};
    *ierr = read_collector(Family::legacy, *group, *ipass, c, flags, params);
}
