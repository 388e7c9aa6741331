// The variable group block (key 32, current family): the variables of one entity type.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 32, .type = "variablegroup"};

struct VariableGroup {
    Arg<char> etypvar;
    Arg<int32_t> nvar, ncoo;
    Arg<int32_t> cnt, offs;
    Arg<char> varkey;
};

void header(Block& io, const VariableGroup& g)
{
    text(io, "etypvar", g.etypvar);
    integer(io, "nvar", g.nvar);
    integer(io, "ncoo", g.ncoo);
}

void data(Block& io, const VariableGroup& g)
{
    integers(io, "cnt", g.cnt, {*g.nvar});
    integers(io, "offs", g.offs, {*g.nvar});
    texts(io, "varkey", g.varkey, 256, {*g.nvar});
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_VARIABLEGROUP(
    const vak_id* file, const char* etypvar, const void*, const char* name,
    const int32_t* nvar, const int32_t* ncoo, const int32_t* cnt, const int32_t* offs, const char* varkey,
    const int32_t* flags, const int32_t* params, int32_t* ierr)
{
    const VariableGroup g{
        .etypvar = etypvar, .nvar = nvar, .ncoo = ncoo, .cnt = cnt, .offs = offs, .varkey = varkey};
    *ierr = write_block(kind, Family::current, *file, {.names = {kind.type, name}}, storage_of(flags, params),
                        [&](Block& io) { header(io, g); data(io, g); });
}

void VAK_READ_VARIABLEGROUP(
    const vak_id* group, const int32_t* mode, const void*,
    char* etypvar, int32_t* nvar, int32_t* ncoo, int32_t* cnt, int32_t* offs, char* varkey,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const VariableGroup g{
        .etypvar = etypvar, .nvar = nvar, .ncoo = ncoo, .cnt = cnt, .offs = offs, .varkey = varkey};
    *ierr = read_block(kind, Family::current, *group, [&](Block& io) {
        if (*mode & 1) header(io, g);
        if (*mode & 2) {
            data(io, g);
            report_storage(io, flags, params);
        }
    });
}
