// The connectivities block (key 300): the elements of one element type.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 300, .type = "connectivities", .empty_read = EmptyRead::gives_key};

struct Connectivities {
    Arg<char> etyp, etypelem, etyppart, etypnode, etypvar;  // legacy: no etyp, no etypvar
    Arg<int32_t> nele, npele, ndim, nbint, nbfloat;
    Index index;
    Arg<int32_t> idele, pid, ic;
    Units units;  // of the columns of fparam; legacy only
    Arg<int32_t> iparam;
    Arg<float> fparam;
};

void header(Block& io, const Connectivities& c)
{
    if (current(io)) text(io, "etyp", c.etyp);
    text(io, "etypelem", c.etypelem);
    text(io, "etyppart", c.etyppart);
    text(io, "etypnode", c.etypnode);
    integer(io, "nele", c.nele);
    integer(io, "npele", c.npele);
    integer(io, "ndim", c.ndim);
    integer(io, "nbint", c.nbint);
    integer(io, "nbfloat", c.nbfloat);
    if (current(io) && !io.stopped && *c.nbfloat > 0) text(io, "etypvar", c.etypvar);
    index_counts(io, c.index);
}

void elements(Block& io, const Connectivities& c)
{
    enter(io, "data");
    integers(io, "idele", c.idele, {*c.nele});
    integers(io, "pid", c.pid, {*c.nele});
}

void parameters(Block& io, const Connectivities& c)
{
    integers(io, "ic", c.ic, {*c.nele, *c.npele});
    if (legacy(io)) unit_tables(io, c.units, *c.nbfloat);
    integers(io, "iparam", c.iparam, {*c.nele, *c.nbint});
    reals(io, "fparam", c.fparam, {*c.nele, *c.nbfloat});
}

int32_t write_connectivities(Family family, hid_t file, int32_t state, const Connectivities& c,
                             const StorageOptions& storage)
{
    const BlockPath path = state_path(c.index, state, kind.type, c.etypelem.at);
    return write_block(kind, family, file, path, storage, [&](Block& io) {
        header(io, c);
        index_values(io, c.index);
        elements(io, c);
        parameters(io, c);
    });
}

int32_t read_connectivities(hid_t group, int32_t mode, const Connectivities& c, int32_t* flags,
                            int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, c);
        if (mode & 2) index_values(io, c.index);
        if (mode & 4) elements(io, c);
        if (mode & 8) {
            parameters(io, c);
            report_storage(io, flags, params);
        }
    });
}

int32_t read_legacy_connectivities(hid_t group, int32_t ipass, const Connectivities& c, int32_t* flags,
                                   int32_t* params)
{
    return read_block(kind, Family::legacy, group, [&](Block& io) {
        header(io, c);
        check_pass(io, ipass, {0, 1, 2});
        if (ipass == 2) {
            elements(io, c);
            parameters(io, c);
        }
        if (ipass != 1) index_values(io, c.index);
        if (ipass == 2) report_storage(io, flags, params);
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_CONNECTIVITIES(
    const vak_id* file,
    const char* etyp, const char* etypelem, const char* etyppart, const char* etypnode, const char* etypvar,
    const int32_t* nele, const int32_t* npele, const int32_t* ndim, const int32_t* nbint, const int32_t* nbfloat,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* pid, const int32_t* ic, const int32_t* iparam, const float* fparam,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Connectivities c{
        .etyp = etyp, .etypelem = etypelem, .etyppart = etyppart, .etypnode = etypnode, .etypvar = etypvar,
        .nele = nele, .npele = npele, .ndim = ndim, .nbint = nbint, .nbfloat = nbfloat,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .idele = idele, .pid = pid, .ic = ic, .units = {}, .iparam = iparam, .fparam = fparam};
    *ierr = write_connectivities(Family::current, *file, *state, c, storage_of(flags, params, real_size));
}

void VAK1_WRITE_CONNECTIVITIES(
    const vak_id* file,
    const char* etypelem, const char* etyppart, const char* etypnode,
    const int32_t* nele, const int32_t* npele, const int32_t* ndim, const int32_t* nbint, const int32_t* nbfloat,
    const int32_t* nindex, const int32_t* indexident, const float* indexval,
    const int32_t* idele, const int32_t* pid, const int32_t* ic,
    const int32_t* mbunit, const int32_t* mdunit,
    const int32_t* ubid, const float* ubexp, const int32_t* udid, const float* udexp,
    const int32_t* iparam, const float* fparam,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* real_size, int32_t* ierr)
{
    const Connectivities c{
        .etyp = {}, .etypelem = etypelem, .etyppart = etyppart, .etypnode = etypnode, .etypvar = {},
        .nele = nele, .npele = npele, .ndim = ndim, .nbint = nbint, .nbfloat = nbfloat,
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .idele = idele, .pid = pid, .ic = ic,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .iparam = iparam, .fparam = fparam};
    *ierr = write_connectivities(Family::legacy, *file, *state, c, storage_of(flags, params, real_size));
}

void VAK_READ_CONNECTIVITIES(
    const vak_id* group, const int32_t* mode,
    char* etyp, char* etypelem, char* etyppart, char* etypnode, char* etypvar,
    int32_t* nele, int32_t* npele, int32_t* ndim, int32_t* nbint, int32_t* nbfloat,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* pid, int32_t* ic, int32_t* iparam, float* fparam,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Connectivities c{
        .etyp = etyp, .etypelem = etypelem, .etyppart = etyppart, .etypnode = etypnode, .etypvar = etypvar,
        .nele = nele, .npele = npele, .ndim = ndim, .nbint = nbint, .nbfloat = nbfloat,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .idele = idele, .pid = pid, .ic = ic, .units = {}, .iparam = iparam, .fparam = fparam};
    *ierr = read_connectivities(*group, *mode, c, flags, params);
}

void VAK1_READ_CONNECTIVITIES(
    const vak_id* group, const int32_t* ipass,
    char* etypelem, char* etyppart, char* etypnode,
    int32_t* nele, int32_t* npele, int32_t* ndim, int32_t* nbint, int32_t* nbfloat,
    int32_t* nindex, int32_t* indexident, float* indexval,
    int32_t* idele, int32_t* pid, int32_t* ic,
    int32_t* mbunit, int32_t* mdunit,
    int32_t* ubid, float* ubexp, int32_t* udid, float* udexp,
    int32_t* iparam, float* fparam,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Connectivities c{
        .etyp = {}, .etypelem = etypelem, .etyppart = etyppart, .etypnode = etypnode, .etypvar = {},
        .nele = nele, .npele = npele, .ndim = ndim, .nbint = nbint, .nbfloat = nbfloat,
        .index = {.nindex = nindex, .indexic = {}, .indexident = indexident, .indexval = indexval},
        .idele = idele, .pid = pid, .ic = ic,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .iparam = iparam, .fparam = fparam};
    *ierr = read_legacy_connectivities(*group, *ipass, c, flags, params);
}
