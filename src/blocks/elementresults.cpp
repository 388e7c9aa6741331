// The element results block (keys 1100 and 1101): values at locations inside elements, for one state.
#include "blocks/elementresults.h"

#include "vak_sp.h"

namespace vak {

void element_header(Block& io, const ElementResults& r)
{
    text(io, "etypelem", r.etypelem);
    integer(io, "nele", r.nele);
    text(io, "etypvar", r.etypvar);
    integer(io, "ncoo", r.ncoo);
    integer(io, "numl", r.numl);
    integer(io, "ndim", r.ndim);
    zone_fields(io, r.zone);
    index_counts(io, r.index);
}

// One frame for each element, or with fswitch 2 for each location.
static Shape frames_shape(const ElementResults& r)
{
    Shape shape{*r.nele};
    if (*r.zone.fswitch == 2) shape.add(*r.numl);
    return shape;
}

void element_tables(Block& io, const ElementResults& r)
{
    integers(io, "idele", r.tables.ids, {*r.nele});
    frame_fields(io, r.tables, r.zone, 2, frames_shape(r));
    merge_fields(io, r.tables, r.zone, *r.ncoo, *r.nele);
    reals(io, "eloc", r.eloc, {*r.numl, *r.ndim});
}

Shape element_values(const Block& io, const ElementResults& r)
{
    Shape shape{*r.nele, *r.numl, *r.ncoo};
    if (is_complex(io)) shape.add(2);
    return shape;
}

namespace {

constexpr BlockKind kind{.key = 1100, .type = "elementresults", .complex_key = 1101};

// The callers of this writer expect the block's group to be open when it returns.
void leave_group_open(const Block& io)
{
    if (!io.stopped) H5Iinc_ref(io.group);
}

int32_t write_state(Family family, hid_t file, const ElementResults& r, int32_t iset, int32_t istate,
                    const StorageOptions& storage, int32_t ivsize)
{
    const BlockPath path{.nstate = *r.index.nindex,
                         .states = r.index.indexident.at,
                         .state = istate,
                         .names = {kind.type, r.etypelem.at, r.etypvar.at, r.zone.etypzone.at},
                         .index = *r.zone.zoneid,
                         .set = iset};
    return write_results(kind, family, file, path, storage, [&](Block& io) {
        choose_variant(io, ivsize);
        enter(io, "header");
        identify(io);
        element_header(io, r);
        index_values(io, r.index);
        enter(io, "data");
        element_tables(io, r);
        lossy_reals(io, "res", r.res, element_values(io, r));
        leave_group_open(io);
    });
}

int32_t read_state(Family family, hid_t group, int32_t ipass, const ElementResults& r, int32_t* iopt,
                   int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) {
        check_pass(io, ipass, {0, 1, 2});
        element_header(io, r);
        if (ipass == 2) {
            enter(io, "data");
            element_tables(io, r);
            lossy_reals(io, "res", r.res, element_values(io, r));
        }
        if (ipass != 1) index_values(io, r.index);
        if (ipass == 2) report_storage(io, iopt, ipar);
        finish_with_key(io);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_ELEMENTRESULTS(
    const vak_id* file,
    const char* etypelem, const int32_t* nele, const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* fidglob, const int32_t* fid, const float* eloc,
    const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t* istate,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const ElementResults r{
        .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
        .eloc = eloc, .res = res};
    *ierr = write_state(Family::current, *file, r, *iset, *istate, storage_of(iopt, ipar), *ivsize);
}

void VAK_READ_ELEMENTRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* etypelem, int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* fidglob, int32_t* fid, float* eloc,
    char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const ElementResults r{
        .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
        .eloc = eloc, .res = res};
    *ierr = read_state(Family::current, *group, *ipass, r, iopt, ipar);
}

void VAK1_WRITE_ELEMENTRESULTS(
    const vak_id* file,
    const char* etypelem, const int32_t* nele, const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* fidglob, const int32_t* fid, const float* eloc,
    const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t* istate,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const ElementResults r{
        .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
        .eloc = eloc, .res = res};
    *ierr = write_state(Family::legacy, *file, r, *iset, *istate, storage_of(iopt, ipar), *ivsize);
}

void VAK1_READ_ELEMENTRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* etypelem, int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* fidglob, int32_t* fid, float* eloc,
    char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const ElementResults r{
        .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
        .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
        .eloc = eloc, .res = res};
    *ierr = read_state(Family::legacy, *group, *ipass, r, iopt, ipar);
}
