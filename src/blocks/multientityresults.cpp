// The multi-state entity results block (keys 1050 and 1051): a series of states of one variable on one list
// of entities.
#include <cstdio>
#include <unordered_set>

#include "blocks/entityresults.h"
#include "blocks/series.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 1050, .type = "multientityresults", .complex_key = 1051};

struct MultiEntityResults {
    Series series;
    EntityResults all;
};

// The states or values that a call transfers.
struct Values {
    int32_t data_size = 4;
    int32_t nstates = 0;  // whole series, on writing
    int32_t mode = whole_dataset;
    const int64_t* count = nullptr;
    const int64_t* start = nullptr;
};

// Slabs have an entry for each extent; a point list has the number of points in count, the coordinates in
// start.
Transfer part_of(const Values& v, const Shape& extents)
{
    const auto rank = static_cast<size_t>(extents.rank()) + 1;
    if (v.mode == hyperslab) return slab(v.count, v.start, rank);
    if (v.mode == point_list) return points(v.count != nullptr ? v.count[0] : 0, v.start, rank);
    return whole();
}

States states_of(const Values& v)
{
    if (v.count == nullptr || v.start == nullptr) return {.start = 0, .count = 0};
    return {.start = v.start[0], .count = v.count[0]};
}

RealArray res(const MultiEntityResults& r, const Values& v)
{
    return {.name = "res",
            .values = r.all.res.at,
            .memory_size = static_cast<size_t>(v.data_size),
            .lossy = true};
}

void header(Block& io, const MultiEntityResults& r)
{
    text(io, "series", r.series.name);
    entity_header(io, r.all);
}

void write_once(Block& io, const MultiEntityResults& r)
{
    enter(io, "header");
    identify(io);
    header(io, r);
    enter(io, "data");
    entity_tables(io, r.all);
}

bool has_tables(const Block& io)
{
    return !io.is_new && H5Lexists(io.group, legacy(io) ? "data/entid" : "entid", H5P_DEFAULT) > 0;
}

void append_series(Block& io, const MultiEntityResults& r, const Values& v)
{
    const Shape extents = entity_values(io, r.all);
    const Growth growth = grow(io, "res", extents, {.start = 0, .count = v.nstates});
    append_index(io, r.all.index, growth);
    enter(io, "data");
    append_reals(io, res(r, v), extents, growth);
    append_state_count(io, growth);
}

void append_slab(Block& io, const MultiEntityResults& r, const Values& v)
{
    const Shape extents = entity_values(io, r.all);
    append_index(io, r.all.index, grow(io, "res", extents, states_of(v)));
    enter(io, "data");
    real_part(io, res(r, v), with_states(growing, extents), part_of(v, extents));
}

// The states that the points lie in, each once, in order of first appearance.
std::vector<int64_t> states_of_points(const Transfer& list, size_t rank)
{
    std::vector<int64_t> states;
    std::unordered_set<hsize_t> seen;
    for (size_t i = 0; i < list.start.size(); i += rank)
        if (seen.insert(list.start[i]).second) states.push_back(static_cast<int64_t>(list.start[i]));
    return states;
}

Transfer index_points(const std::vector<int64_t>& states, int64_t nindex)
{
    std::vector<int64_t> coordinates;
    for (const int64_t state : states)
        for (int64_t i = 0; i < nindex; ++i) coordinates.insert(coordinates.end(), {state, i});
    return points(static_cast<int64_t>(coordinates.size() / 2), coordinates.data(), 2);
}

void append_points(Block& io, const MultiEntityResults& r, const Values& v)
{
    if (io.stopped) return;
    const Shape extents = entity_values(io, r.all);
    const Transfer list = part_of(v, extents);
    if (list.count[0] < 1) return;
    const size_t rank = static_cast<size_t>(extents.rank()) + 1;
    const Transfer index = index_points(states_of_points(list, rank), *r.all.index.nindex);
    index_parts(io, r.all.index, growing, index, index);
    enter(io, "data");
    real_part(io, res(r, v), with_states(growing, extents), list);
}

void append_states(Block& io, const MultiEntityResults& r, const Values& v)
{
    switch (v.mode) {
        case whole_dataset: return append_series(io, r, v);
        case hyperslab: return append_slab(io, r, v);
        case point_list: return append_points(io, r, v);
        default:
            if (io.stopped) return;
            std::fprintf(stderr, "VAK ERROR writing block %s - invalid mode %d\n", kind.type, v.mode);
            stop(io, -999);
    }
}

void write_fields(Block& io, const MultiEntityResults& r, const Values& v, int32_t ivsize)
{
    choose_variant(io, ivsize);
    if (!has_tables(io)) write_once(io, r);
    append_states(io, r, v);
}

int32_t write_states(Family family, hid_t file, const MultiEntityResults& r, int32_t set,
                     const StorageOptions& storage, int32_t ivsize, const Values& v)
{
    const BlockPath path{
        .nstate = -1,
        .names = {r.series.name.at, kind.type, r.all.etyp.at, r.all.etypvar.at, r.all.zone.etypzone.at},
        .index = *r.all.zone.zoneid,
        .set = set};
    return write_results(kind, family, file, path, storage,
                         [&](Block& io) { write_fields(io, r, v, ivsize & ~1024); });
}

int32_t write_series(Family family, hid_t file, const MultiEntityResults& r, int32_t set, int32_t place,
                     const StorageOptions& storage, int32_t ivsize)
{
    if (place >= 0) return write_states(family, file, r, set, storage, ivsize, {.nstates = place});
    const std::array<int64_t, 4> count{1, *r.all.nent, *r.all.ncoo, 2}, start{-int64_t{place}, 0, 0, 0};
    return write_states(family, file, r, set, storage, ivsize,
                        {.mode = hyperslab, .count = count.data(), .start = start.data()});
}

// Hands back in `nstate` how many states there are then; when it fails, how many there were before.
int32_t write_states_into(Family family, hid_t group, const MultiEntityResults& r,
                          const StorageOptions& storage, int32_t ivsize, const Values& v)
{
    *r.series.nstate = 0;
    if (v.mode == whole_dataset && v.nstates < 0) {
        std::fprintf(stderr, "VAK ERROR writing block %s\n", kind.type);
        return -999;
    }
    return write_into(kind, family, group, storage, [&](Block& io) {
        if (has_tables(io)) *r.series.nstate = state_count(io, "res");
        write_fields(io, r, v, ivsize);
        if (!io.stopped) *r.series.nstate = state_count(io, "res");
    });
}

void read_values(Block& io, const MultiEntityResults& r, const Values& v)
{
    if (!io.stopped && !known_mode(v.mode)) stop(io, -999);
    if (io.stopped) return;
    const Shape extents = entity_values(io, r.all);
    real_part(io, res(r, v), with_states(*r.series.nstate, extents), part_of(v, extents));
}

void read_fields(Block& io, int32_t parts, const MultiEntityResults& r, const Values& v, int32_t* iopt,
                 int32_t* ipar)
{
    if (parts & what::attributes) {
        header(io, r);
        read_state_count(io, "res", r.series.nstate);
    }
    if (parts & what::index) {
        if (v.mode == hyperslab)
            read_index(io, r.all.index, states_of(v));
        else
            read_index(io, r.all.index, *r.series.nstate, "res");
    }
    if (parts & (what::tables | what::values)) enter(io, "data");
    if (parts & what::tables) entity_tables(io, r.all);
    if (parts & what::values) {
        read_values(io, r, v);
        report_storage(io, iopt, ipar);
    }
    finish_with_key(io);
}

int32_t read_parts(Family family, hid_t group, int32_t parts, const MultiEntityResults& r, const Values& v,
                   int32_t* iopt, int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) { read_fields(io, parts, r, v, iopt, ipar); });
}

int32_t read_pass(Family family, hid_t group, int32_t ipass, const MultiEntityResults& r, const Values& v,
                  int32_t* iopt, int32_t* ipar)
{
    return read_block(kind, family, group,
                      [&](Block& io) { read_fields(io, parts_of_pass(io, ipass), r, v, iopt, ipar); });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_MULTIENTITYRESULTS(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* set, const int32_t* place,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    *ierr = write_series(Family::current, *file, r, *set, *place, storage_of(iopt, ipar), *ivsize);
}

void VAK_WRITE_MULTIENTITYRESULTC(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* set, const int32_t* place,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.mode = *mode, .count = count, .start = start};
    *ierr = *place < 0 && *mode != whole_dataset
                ? write_states(Family::current, *file, r, *set, storage_of(iopt, ipar), *ivsize, v)
                : write_series(Family::current, *file, r, *set, *place, storage_of(iopt, ipar), *ivsize);
}

void VAK_WRITE_MULTIENTITYRESULTS2(
    const vak_id* group, const void*, const void*,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* res_size, const int32_t* nstates,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* nstate, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.data_size = *res_size, .nstates = *nstates, .mode = *mode, .count = count, .start = start};
    *ierr = write_states_into(Family::current, *group, r, storage_of(iopt, ipar), *ivsize, v);
}

void VAK_READ_MULTIENTITYRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    *ierr = read_pass(Family::current, *group, *ipass, r, {}, iopt, ipar);
}

void VAK_READ_MULTIENTITYRESULTC(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.mode = *mode, .count = count, .start = start};
    *ierr = read_pass(Family::current, *group, *ipass, r, v, iopt, ipar);
}

void VAK_READ_MULTIENTITYRESULTS2(
    const vak_id* group, const int32_t* parts, const void*,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    const int32_t* data_size, int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.data_size = *data_size, .mode = *mode, .count = count, .start = start};
    *ierr = read_parts(Family::current, *group, *parts, r, v, iopt, ipar);
}

void VAK1_WRITE_MULTIENTITYRESULTS(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* set, const int32_t* place,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    *ierr = write_series(Family::legacy, *file, r, *set, *place, storage_of(iopt, ipar), *ivsize);
}

void VAK1_WRITE_MULTIENTITYRESULTC(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* set, const int32_t* place,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.mode = *mode, .count = count, .start = start};
    *ierr = *place < 0 && *mode != whole_dataset
                ? write_states(Family::legacy, *file, r, *set, storage_of(iopt, ipar), *ivsize, v)
                : write_series(Family::legacy, *file, r, *set, *place, storage_of(iopt, ipar), *ivsize);
}

void VAK1_WRITE_MULTIENTITYRESULTS2(
    const vak_id* group, const void*, const void*,
    const char* series, const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
    const char* etypzone, const int32_t* zoneid, const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* fidglob, const int32_t* fid, const char* op, const float* weight, const float* res,
    const int32_t* res_size, const int32_t* nstates,
    const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* nstate, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.data_size = *res_size, .nstates = *nstates, .mode = *mode, .count = count, .start = start};
    *ierr = write_states_into(Family::legacy, *group, r, storage_of(iopt, ipar), *ivsize, v);
}

void VAK1_READ_MULTIENTITYRESULTS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    *ierr = read_pass(Family::legacy, *group, *ipass, r, {}, iopt, ipar);
}

void VAK1_READ_MULTIENTITYRESULTC(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.mode = *mode, .count = count, .start = start};
    *ierr = read_pass(Family::legacy, *group, *ipass, r, v, iopt, ipar);
}

void VAK1_READ_MULTIENTITYRESULTS2(
    const vak_id* group, const int32_t* parts, const void*,
    char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
    char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* fidglob, int32_t* fid, char* op, float* weight, float* res,
    const int32_t* data_size, int32_t* iopt, int32_t* ipar,
    const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* ierr)
{
    const MultiEntityResults r{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent, .etypvar = etypvar, .ncoo = ncoo,
            .zone = {.etypzone = etypzone, .zoneid = zoneid, .etypframe = etypframe, .fswitch = fswitch, .dmpswitch = dmpswitch},
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .tables = {.ids = entid, .fidglob = fidglob, .fid = fid, .op = op, .weight = weight}, .res = res}};
    const Values v{.data_size = *data_size, .mode = *mode, .count = count, .start = start};
    *ierr = read_parts(Family::legacy, *group, *parts, r, v, iopt, ipar);
}
