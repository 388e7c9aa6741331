// The multi-state element results block (keys 1150 and 1151): a series of states, one appended by each call.
#include "blocks/elementresults.h"
#include "blocks/series.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 1150, .type = "multielementresults", .complex_key = 1151};

struct MultiElementResults {
    Series series;
    ElementResults all;  // of all states, except for the index values and "res", which are of one
};

void header(Block& io, const MultiElementResults& r)
{
    text(io, "series", r.series.name);
    element_header(io, r.all);
}

void write_once(Block& io, const MultiElementResults& r)
{
    enter(io, "header");
    identify(io);
    header(io, r);
    enter(io, "data");
    element_tables(io, r.all);
}

void append_state(Block& io, const ElementResults& r)
{
    const Shape extents = element_values(io, r);
    const Growth growth = grow(io, "res", extents, {.start = 0, .count = 1});
    append_index(io, r.index, growth);
    enter(io, "data");
    append_reals(io, {.name = "res", .values = r.res.at, .lossy = true}, extents, growth);
    append_state_count(io, growth);
}

int32_t write_state(Family family, hid_t file, const MultiElementResults& r, int32_t iset,
                    const StorageOptions& storage, int32_t ivsize)
{
    const BlockPath path{
        .nstate = -1,
        .names = {r.series.name.at, kind.type, r.all.etypelem.at, r.all.etypvar.at, r.all.zone.etypzone.at},
        .index = *r.all.zone.zoneid,
        .set = iset};
    return write_results(kind, family, file, path, storage, [&](Block& io) {
        choose_variant(io, ivsize);
        if (is_empty_series(io)) write_once(io, r);
        append_state(io, r.all);
    });
}

void read_values(Block& io, const ElementResults& r, States state)
{
    const Shape extents = element_values(io, r);
    enter(io, "data");
    element_tables(io, r);
    real_part(io, {.name = "res", .values = r.res.at}, with_states(growing, extents), rows(state, extents));
}

int32_t read_state(Family family, hid_t group, int32_t ipass, const MultiElementResults& r, int32_t ipos,
                   int32_t* iopt, int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) {
        const States state{.start = ipos, .count = 1};
        check_pass(io, ipass, {0, 1, 2});
        header(io, r);
        read_state_count(io, "res", r.series.nstate);
        if (ipass == 2) read_values(io, r.all, state);
        if (ipass != 1) read_index(io, r.all.index, state);
        if (ipass == 2) report_storage(io, iopt, ipar);
        finish_with_key(io);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_MULTIELEMENTRESULTS(
    const vak_id* file,
    const char* series, const char* etypelem, const int32_t* nele,
    const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* fidglob, const int32_t* fid, const float* eloc,
    const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t*,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiElementResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
            .eloc = eloc, .res = res}};
    *ierr = write_state(Family::current, *file, r, *iset, storage_of(iopt, ipar), *ivsize);
}

void VAK_READ_MULTIELEMENTRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etypelem, int32_t* nele,
    char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* fidglob, int32_t* fid, float* eloc,
    char* op, float* weight, float* res,
    const int32_t* ipos, int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiElementResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
            .eloc = eloc, .res = res}};
    *ierr = read_state(Family::current, *group, *ipass, r, *ipos, iopt, ipar);
}

void VAK1_WRITE_MULTIELEMENTRESULTS(
    const vak_id* file,
    const char* series, const char* etypelem, const int32_t* nele,
    const char* etypvar, const int32_t* ncoo, const int32_t* numl, const int32_t* ndim,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* fidglob, const int32_t* fid, const float* eloc,
    const char* op, const float* weight, const float* res,
    const int32_t* iset, const int32_t*,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiElementResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
            .eloc = eloc, .res = res}};
    *ierr = write_state(Family::legacy, *file, r, *iset, storage_of(iopt, ipar), *ivsize);
}

void VAK1_READ_MULTIELEMENTRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etypelem, int32_t* nele,
    char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* fidglob, int32_t* fid, float* eloc,
    char* op, float* weight, float* res,
    const int32_t* ipos, int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiElementResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etypelem = etypelem, .nele = nele, .etypvar = etypvar, .ncoo = ncoo, .numl = numl, .ndim = ndim,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = idele, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight},
            .eloc = eloc, .res = res}};
    *ierr = read_state(Family::legacy, *group, *ipass, r, *ipos, iopt, ipar);
}
