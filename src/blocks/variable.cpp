// The variable block (key 30, current family): one result variable with its components, units and tensor map.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 30, .type = "variable"};

struct Variable {
    Arg<char> varkey, varclass, varnam;
    Arg<int32_t> ncoo, rank, ndim, tensor;
    Arg<char> type;
    Arg<int32_t> lenb, lend, lvmap, subslen;
    Units units;  // of the components
    Arg<char> subscr;
    Arg<int32_t> subscnt, subsoffs;
    Arg<float> vmap;
};

void header(Block& io, const Variable& v)
{
    text(io, "varkey", v.varkey);
    text(io, "varclass", v.varclass);
    text(io, "varnam", v.varnam);
    integer(io, "ncoo", v.ncoo);
    integer(io, "rank", v.rank);
    integer(io, "ndim", v.ndim);
    integer(io, "tensor", v.tensor);
    text(io, "type", v.type);
    integer(io, "lenb", v.lenb);
    integer(io, "lend", v.lend);
    integer(io, "lvmap", v.lvmap);
    integer(io, "subslen", v.subslen);
}

void subscripts(Block& io, const Variable& v)
{
    texts(io, "subscr", v.subscr, 1, {*v.subslen});
    integers(io, "subscnt", v.subscnt, {*v.ncoo});
    integers(io, "subsoffs", v.subsoffs, {*v.ncoo});
}

Shape map_shape(const Variable& v)
{
    Shape shape{*v.ncoo};
    for (int32_t i = 0; i < *v.rank && i < H5S_MAX_RANK; ++i) shape.add(*v.ndim);
    return shape;
}

void data(Block& io, const Variable& v)
{
    if (io.stopped) return;
    integers(io, "mbunit", v.units.mbunit, {*v.ncoo});
    integers(io, "mdunit", v.units.mdunit, {*v.ncoo});
    unit_lists(io, v.units, *v.lenb, *v.lend);
    if (*v.subslen > 0) subscripts(io, v);
    if (*v.lvmap > 0 && *v.rank > 0) reals(io, "vmap", v.vmap, map_shape(v));
}

int32_t write_variable(hid_t file, Variable v, const StorageOptions& storage)
{
    const int64_t nbase = total(v.units.mbunit.at, *v.ncoo);
    const int64_t nderived = total(v.units.mdunit.at, *v.ncoo);
    if (!fits_count(nbase) || !fits_count(nderived)) return refuse_total(kind);
    auto lenb = static_cast<int32_t>(nbase);
    auto lend = static_cast<int32_t>(nderived);
    v.lenb = &lenb;
    v.lend = &lend;
    return write_block(kind, Family::current, file, {.names = {kind.type, v.varkey.at}}, storage,
                       [&](Block& io) {
                           header(io, v);
                           data(io, v);
                       });
}

int32_t read_variable(hid_t group, int32_t mode, const Variable& v, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::current, group, [&](Block& io) {
        if (mode & 1) header(io, v);
        if (mode & 2) {
            data(io, v);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_VARIABLE(
    const vak_id* file, const void*, const void*,
    const char* varkey, const char* varclass, const char* varnam,
    const int32_t* ncoo, const int32_t* rank, const int32_t* ndim, const int32_t* tensor, const char* type,
    const int32_t* lvmap, const int32_t* subslen,
    const int32_t* mbunit, const int32_t* mdunit,
    const int32_t* ubid, const float* ubexp, const int32_t* udid, const float* udexp,
    const char* subscr, const int32_t* subscnt, const int32_t* subsoffs, const float* vmap,
    const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Variable v{
        .varkey = varkey, .varclass = varclass, .varnam = varnam,
        .ncoo = ncoo, .rank = rank, .ndim = ndim, .tensor = tensor, .type = type,
        .lenb = {}, .lend = {}, .lvmap = lvmap, .subslen = subslen,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .subscr = subscr, .subscnt = subscnt, .subsoffs = subsoffs, .vmap = vmap};
    *ierr = write_variable(*file, v, storage_of(flags, params, float_size));
}

void VAK_READ_VARIABLE(
    const vak_id* group, const int32_t* mode, const void*,
    char* varkey, char* varclass, char* varnam,
    int32_t* ncoo, int32_t* rank, int32_t* ndim, int32_t* tensor, char* type,
    int32_t* lenb, int32_t* lend, int32_t* lvmap, int32_t* subslen,
    int32_t* mbunit, int32_t* mdunit,
    int32_t* ubid, float* ubexp, int32_t* udid, float* udexp,
    char* subscr, int32_t* subscnt, int32_t* subsoffs, float* vmap,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Variable v{
        .varkey = varkey, .varclass = varclass, .varnam = varnam,
        .ncoo = ncoo, .rank = rank, .ndim = ndim, .tensor = tensor, .type = type,
        .lenb = lenb, .lend = lend, .lvmap = lvmap, .subslen = subslen,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp},
        .subscr = subscr, .subscnt = subscnt, .subsoffs = subsoffs, .vmap = vmap};
    *ierr = read_variable(*group, *mode, v, flags, params);
}
