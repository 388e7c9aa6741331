// The multi-state activation flags block (key 2150): a series of states, one appended by each call.
#include "blocks/activflags.h"
#include "blocks/series.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 2150, .type = "multiactivflags"};

struct MultiActivFlags {
    Series series;
    ActivFlags all;  // of all states, except for the index values and "status", which are of one
};

void header(Block& io, const MultiActivFlags& a)
{
    text(io, "series", a.series.name);
    activ_header(io, a.all);
}

void write_once(Block& io, const MultiActivFlags& a)
{
    enter(io, "header");
    identify(io);
    header(io, a);
    enter(io, "data");
    integers(io, "entid", a.all.entid, {*a.all.nent});
}

void append_state(Block& io, const ActivFlags& a)
{
    const Shape extents{*a.nent};
    const Growth growth = grow(io, "status", extents, {.start = 0, .count = 1});
    append_index(io, a.index, growth);
    enter(io, "data");
    append_integers(io, "status", a.status, extents, growth);
    append_state_count(io, growth);
}

int32_t write_state(Family family, hid_t file, const MultiActivFlags& a, const StorageOptions& storage)
{
    const BlockPath path{.nstate = -1, .names = {a.series.name.at, kind.type, a.all.etyp.at}};
    return write_results(kind, family, file, path, storage, [&](Block& io) {
        if (is_empty_series(io)) write_once(io, a);
        append_state(io, a.all);
    });
}

void read_flags(Block& io, const ActivFlags& a, States state)
{
    const Shape extents{*a.nent};
    enter(io, "data");
    integers(io, "entid", a.entid, extents);
    integer_part(io, "status", a.status, with_states(growing, extents), rows(state, extents));
}

int32_t read_state(Family family, hid_t group, int32_t ipass, const MultiActivFlags& a, int32_t ipos,
                   int32_t* iopt, int32_t* ipar)
{
    return read_block(kind, family, group, [&](Block& io) {
        const States state{.start = ipos, .count = 1};
        check_pass(io, ipass, {0, 1, 2});
        header(io, a);
        read_state_count(io, "status", a.series.nstate);
        if (ipass == 2) read_flags(io, a.all, state);
        if (ipass != 1) read_index(io, a.all.index, state);
        if (ipass == 2) report_storage(io, iopt, ipar);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_MULTIACTIVFLAGS(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* status,
    const int32_t*, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiActivFlags a{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent,
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .entid = entid, .status = status}};
    *ierr = write_state(Family::current, *file, a, storage_of(iopt, ipar, ivsize));
}

void VAK_READ_MULTIACTIVFLAGS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* status,
    const int32_t* ipos, int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiActivFlags a{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent,
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .entid = entid, .status = status}};
    *ierr = read_state(Family::current, *group, *ipass, a, *ipos, iopt, ipar);
}

void VAK1_WRITE_MULTIACTIVFLAGS(
    const vak_id* file,
    const char* series, const char* etyp, const int32_t* nent,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* entid, const int32_t* status,
    const int32_t*, const int32_t* iopt, const int32_t* ipar, const int32_t* ivsize, int32_t* ierr)
{
    const MultiActivFlags a{
        .series = {.name = series, .nstate = {}},
        .all = {
            .etyp = etyp, .nent = nent,
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .entid = entid, .status = status}};
    *ierr = write_state(Family::legacy, *file, a, storage_of(iopt, ipar, ivsize));
}

void VAK1_READ_MULTIACTIVFLAGS(
    const vak_id* group, const int32_t* ipass,
    char* series, char* etyp, int32_t* nent,
    int32_t* nindex, int32_t* nstate, int32_t* indexident, float* indexval,
    int32_t* entid, int32_t* status,
    const int32_t* ipos, int32_t* iopt, int32_t* ipar, int32_t* ierr)
{
    const MultiActivFlags a{
        .series = {.name = series, .nstate = nstate},
        .all = {
            .etyp = etyp, .nent = nent,
            .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
            .entid = entid, .status = status}};
    *ierr = read_state(Family::legacy, *group, *ipass, a, *ipos, iopt, ipar);
}
