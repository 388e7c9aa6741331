// The entity results block (keys 1000 and 1001): values of one variable on the entities of one type, for one
// state.
#include "blocks/entityresults.h"

#include "vak_sp.h"

namespace vak {

void entity_header(Block& io, const EntityResults& r)
{
    text(io, "etyp", r.etyp);
    integer(io, "nent", r.nent);
    text(io, "etypvar", r.etypvar);
    integer(io, "ncoo", r.ncoo);
    zone_fields(io, r.zone);
    index_counts(io, r.index);
}

void entity_tables(Block& io, const EntityResults& r)
{
    integers(io, "entid", r.tables.ids, {*r.nent});
    frame_fields(io, r.tables, r.zone, 1, {*r.nent});
    merge_fields(io, r.tables, r.zone, *r.ncoo, *r.nent);
}

Shape entity_values(const Block& io, const EntityResults& r)
{
    Shape shape{*r.nent, *r.ncoo};
    if (is_complex(io)) shape.add(2);
    return shape;
}

namespace {

constexpr BlockKind kind{.key = 1000, .type = "entityresults", .complex_key = 1001};

// The values that a call transfers: their size in memory and which of them.
struct Values {
    int32_t data_size = 4;
    int32_t mode = whole_dataset;
    const int64_t* istart = nullptr;
    const int64_t* icount = nullptr;
};

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

// Gives the block the tables of the shared group. A link that cannot be made is not an error of the block.
void link_tables(hid_t shared, hid_t group, const EntityResults& r)
{
    if (has(group, "entid")) return;
    const auto link = [&](const char* name) {
        H5Lcreate_hard(shared, name, group, name, H5P_DEFAULT, H5P_DEFAULT);
    };
    link("entid");
    if (*r.zone.fswitch == 0) link("fidglob");
    if (*r.zone.fswitch == 1) link("fid");
    if (*r.zone.dmpswitch != 1) return;
    link("operator");
    link("weight");
}

void shared_tables(Block& io, hid_t shared, const EntityResults& r)
{
    if (io.stopped) return;
    if (!has(shared, "entid")) {
        Block once(kind, Family::current, Direction::write, shared);
        once.storage = io.storage;
        entity_tables(once, r);
        if (once.stopped) return stop(io, once.status);
    }
    link_tables(shared, current_group(io), r);
}

void values(Block& io, const EntityResults& r, const Values& v)
{
    if (io.stopped) return;
    const Shape shape = entity_values(io, r);
    const auto rank = static_cast<size_t>(shape.rank());
    Transfer part = whole();
    if (v.mode == hyperslab) part = slab(v.icount, v.istart, rank);
    // A point list has the number of points in istart and the coordinates in icount.
    if (v.mode == point_list) part = points(*v.istart, v.icount, rank);
    const RealArray res{.name = "res", .values = r.res.at, .memory_size = static_cast<size_t>(v.data_size)};
    real_part(io, res, shape, std::move(part));
}

void write_fields(Block& io, int32_t parts, const vak_id* gids, const EntityResults& r, const Values& v)
{
    if (parts & what::attributes) {
        enter(io, "header");
        identify(io);
        entity_header(io, r);
    }
    if (parts & what::index) index_values(io, r.index);
    if (parts & (what::tables | what::values)) enter(io, "data");
    if (parts & what::tables) {
        if (parts & what::share)
            shared_tables(io, gids[1], r);
        else
            entity_tables(io, r);
    }
    if (io.stopped || !(parts & what::values)) return;
    if (known_mode(v.mode)) return values(io, r, v);
    refuse_mode(io);
}

int32_t write_parts(Family family, const vak_id* gids, int32_t parts, const EntityResults& r,
                    const StorageOptions& storage, int32_t ivsize, const Values& v)
{
    return write_into(kind, family, gids[0], storage, [&](Block& io) {
        choose_variant(io, ivsize);
        write_fields(io, parts, gids, r, v);
    });
}

int32_t write_state(Family family, hid_t file, const EntityResults& r, int32_t iset, int32_t istate,
                    const StorageOptions& storage, int32_t ivsize)
{
    const BlockPath path{.nstate = *r.index.nindex,
                         .states = r.index.indexident.at,
                         .state = istate,
                         .names = {kind.type, r.etyp.at, r.etypvar.at, r.zone.etypzone.at},
                         .index = *r.zone.zoneid,
                         .set = iset};
    return write_results(kind, family, file, path, storage, [&](Block& io) {
        choose_variant(io, ivsize);
        write_fields(io, what::everything, nullptr, r, {});
    });
}

void read_fields(Block& io, int32_t parts, const EntityResults& r, const Values& v, int32_t* iopt,
                 int32_t* ipar)
{
    if (parts & what::attributes) entity_header(io, r);
    if (parts & what::index) index_values(io, r.index);
    if (parts & (what::tables | what::values)) enter(io, "data");
    if (parts & what::tables) entity_tables(io, r);
    if (parts & what::values) {
        if (!io.stopped && !known_mode(v.mode)) stop(io, -999);
        values(io, r, v);
        report_storage(io, iopt, ipar);
    }
    finish_with_key(io);
}

int32_t read_parts(Family family, hid_t group, int32_t parts, const EntityResults& r, const Values& v,
                   int32_t* iopt, int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) { read_fields(io, parts, r, v, iopt, ipar); });
}

int32_t read_state(Family family, hid_t group, int32_t ipass, const EntityResults& r, int32_t* iopt,
                   int32_t* ipar)
{
    return read_block(kind, family, group,
                      [&](Block& io) { read_fields(io, parts_of_pass(io, ipass), r, {}, iopt, ipar); });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_ENTITYRESULTS(
    const vak_id* file,
    const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t* istate,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    *ierr = write_state(Family::current, *file, r, *iset, *istate, storage_of(iopt, ipar), *ivsize);
}

void VAK_WRITE_ENTITYRESULTS2(
    const vak_id* gids, const int32_t* parts, const void*,
    const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* data_size, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* istart, const int64_t* icount, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    const Values v{.data_size = *data_size, .mode = *mode, .istart = istart, .icount = icount};
    *ierr = write_parts(Family::current, gids, *parts, r, storage_of(iopt, ipar), *ivsize, v);
}

void VAK_READ_ENTITYRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    *ierr = read_state(Family::current, *group, *ipass, r, iopt, ipar);
}

void VAK_READ_ENTITYRESULTS2(
    const vak_id* group, const int32_t* parts, const void*,
    char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    const int32_t* data_size, int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* istart, const int64_t* icount, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    const Values v{.data_size = *data_size, .mode = *mode, .istart = istart, .icount = icount};
    *ierr = read_parts(Family::current, *group, *parts, r, v, iopt, ipar);
}

void VAK1_WRITE_ENTITYRESULTS(
    const vak_id* file,
    const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t* istate,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    *ierr = write_state(Family::legacy, *file, r, *iset, *istate, storage_of(iopt, ipar), *ivsize);
}

void VAK1_WRITE_ENTITYRESULTS2(
    const vak_id* gids, const int32_t* parts, const void*,
    const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* data_size, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* istart, const int64_t* icount, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    const Values v{.data_size = *data_size, .mode = *mode, .istart = istart, .icount = icount};
    *ierr = write_parts(Family::legacy, gids, *parts, r, storage_of(iopt, ipar), *ivsize, v);
}

void VAK1_READ_ENTITYRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    *ierr = read_state(Family::legacy, *group, *ipass, r, iopt, ipar);
}

void VAK1_READ_ENTITYRESULTS2(
    const vak_id* group, const int32_t* parts, const void*,
    char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    const int32_t* data_size, int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* istart, const int64_t* icount, int32_t* ierr)
{
    const EntityResults r{
        .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res};
    const Values v{.data_size = *data_size, .mode = *mode, .istart = istart, .icount = icount};
    *ierr = read_parts(Family::legacy, *group, *parts, r, v, iopt, ipar);
}
