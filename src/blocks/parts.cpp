// The parts block (key 100): the parts of a model that belong to one part entity type.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 100, .type = "parts", .wrong_key = WrongKeyText::error_lower};

// Columns that "off" leaves out.
constexpr int32_t no_mid = 1, no_mtyp = 2, no_pcol = 4;

struct Parts {
    Arg<char> etyppart;
    Arg<int32_t> npart, off, length;
    Index index;
    Arg<int32_t> pid;
    Arg<char> title;
    Arg<int32_t> mid, mtyp, pcol;
};

void header(Block& io, const Parts& p)
{
    text(io, "etyppart", p.etyppart);
    integer(io, "npart", p.npart);
    integer(io, "off", p.off);
    integer(io, "length", p.length);
    index_counts(io, p.index);
}

void columns(Block& io, const Parts& p)
{
    enter(io, "data");
    if (io.stopped) return;
    integers(io, "pid", p.pid, {*p.npart});
    if (*p.length > 0) texts(io, "title", p.title, static_cast<size_t>(*p.length), {*p.npart});
    if (!(*p.off & no_mid)) integers(io, "mid", p.mid, {*p.npart});
    if (!(*p.off & no_mtyp)) integers(io, "mtyp", p.mtyp, {*p.npart});
    if (!(*p.off & no_pcol)) integers(io, "pcol", p.pcol, {*p.npart});
}

int32_t write_parts(Family family, hid_t file, int32_t state, const Parts& p, const StorageOptions& storage)
{
    const BlockPath path = state_path(p.index, state, kind.type, p.etyppart.at);
    return write_block(kind, family, file, path, storage, [&](Block& io) {
        header(io, p);
        index_values(io, p.index, "data");
        columns(io, p);
    });
}

int32_t read_parts(hid_t group, int32_t mode, const Parts& p, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, p);
        if (mode & 2) {
            index_values(io, p.index);
            columns(io, p);
            report_storage(io, flags, params);
        }
    });
}

int32_t read_legacy_parts(hid_t group, int32_t ipass, const Parts& p, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::legacy, group, [&](Block& io) {
        header(io, p);
        check_pass(io, ipass, {0, 1, 2, 3});
        if (ipass != 1) index_values(io, p.index, "data");
        if (ipass >= 2) {
            columns(io, p);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_PARTS(
    const vak_id* file, const char* etyppart,
    const int32_t* npart, const int32_t* off, const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* pid, const char* title, const int32_t* mid, const int32_t* mtyp, const int32_t* pcol,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Parts p{
        .etyppart = etyppart, .npart = npart, .off = off, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .pid = pid, .title = title, .mid = mid, .mtyp = mtyp, .pcol = pcol};
    *ierr = write_parts(Family::current, *file, *state, p, storage_of(flags, params, float_size));
}

void VAK1_WRITE_PARTS(
    const vak_id* file, const char* etyppart,
    const int32_t* npart, const int32_t* off, const int32_t* length,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* pid, const char* title, const int32_t* mid, const int32_t* mtyp, const int32_t* pcol,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Parts p{
        .etyppart = etyppart, .npart = npart, .off = off, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .pid = pid, .title = title, .mid = mid, .mtyp = mtyp, .pcol = pcol};
    *ierr = write_parts(Family::legacy, *file, *state, p, storage_of(flags, params, float_size));
}

void VAK_READ_PARTS(
    const vak_id* group, const int32_t* mode,
    char* etyppart, int32_t* npart, int32_t* off, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* pid, char* title, int32_t* mid, int32_t* mtyp, int32_t* pcol,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Parts p{
        .etyppart = etyppart, .npart = npart, .off = off, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .pid = pid, .title = title, .mid = mid, .mtyp = mtyp, .pcol = pcol};
    *ierr = read_parts(*group, *mode, p, flags, params);
}

void VAK1_READ_PARTS(
    const vak_id* group, const int32_t* ipass,
    char* etyppart, int32_t* npart, int32_t* off, int32_t* length,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* pid, char* title, int32_t* mid, int32_t* mtyp, int32_t* pcol,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Parts p{
        .etyppart = etyppart, .npart = npart, .off = off, .length = length,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .pid = pid, .title = title, .mid = mid, .mtyp = mtyp, .pcol = pcol};
    *ierr = read_legacy_parts(*group, *ipass, p, flags, params);
}
