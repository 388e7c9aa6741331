// The legacy variables block (key 30): all variables of one entity type.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 30, .type = "variables"};

struct Variables {
    Arg<char> etypvar;
    Arg<int32_t> idtrans, rank, ndim, ncoo;
    Units units;
    Arg<char> cname;
    Arg<int32_t> cid, comp;
};

void header(Block& io, const Variables& v)
{
    text(io, "etypvar", v.etypvar);
    integer(io, "idtrans", v.idtrans);
    integer(io, "rank", v.rank);
    integer(io, "ndim", v.ndim);
    integer(io, "ncoo", v.ncoo);
}

void data(Block& io, const Variables& v)
{
    enter(io, "data");
    unit_tables(io, v.units, *v.ncoo);
    texts(io, "cname", v.cname, 256, {*v.ncoo});
    integers(io, "cid", v.cid, {*v.ncoo});
    integers(io, "comp", v.comp, {*v.ncoo});
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK1_WRITE_VARIABLES(
    const vak_id* file, const char* etypvar,
    const int32_t* idtrans, const int32_t* rank, const int32_t* ndim, const int32_t* ncoo,
    const int32_t* mbunit, const int32_t* mdunit,
    const int32_t* ubid, const float* ubexp, const int32_t* udid, const float* udexp,
    const char* cname, const int32_t* cid, const int32_t* comp,
    const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Variables v{
        .etypvar = etypvar, .idtrans = idtrans, .rank = rank, .ndim = ndim, .ncoo = ncoo,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .cname = cname, .cid = cid, .comp = comp};
    *ierr = write_block(kind, Family::legacy, *file, {.names = {kind.type, etypvar}},
                        storage_of(flags, params, float_size), [&](Block& io) { header(io, v); data(io, v); });
}

void VAK1_READ_VARIABLES(
    const vak_id* group, const int32_t* ipass, char* etypvar,
    int32_t* idtrans, int32_t* rank, int32_t* ndim, int32_t* ncoo,
    int32_t* mbunit, int32_t* mdunit,
    int32_t* ubid, float* ubexp, int32_t* udid, float* udexp,
    char* cname, int32_t* cid, int32_t* comp,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Variables v{
        .etypvar = etypvar, .idtrans = idtrans, .rank = rank, .ndim = ndim, .ncoo = ncoo,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .cname = cname, .cid = cid, .comp = comp};
    *ierr = read_block(kind, Family::legacy, *group, [&](Block& io) {
        header(io, v);
        check_pass(io, *ipass, {1, 2});
        if (*ipass == 2) {
            data(io, v);
            report_storage(io, flags, params);
        }
    });
}
