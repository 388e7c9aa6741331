// The index block (key 20): how many index values the file's states have, and of which kind.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 20, .type = "indices"};

struct Indices {
    Arg<int32_t> nindex;
    Arg<char> etypvar;    // current family
    Arg<char> etypindex;  // legacy: a name for each index, and its unit
    Units units;
};

void header(Block& io, const Indices& x)
{
    integer(io, "nindex", x.nindex);
    if (current(io)) text(io, "etypvar", x.etypvar);
}

void data(Block& io, const Indices& x)
{
    enter(io, "data");
    texts(io, "etypindex", x.etypindex, 256, {*x.nindex});
    unit_tables(io, x.units, *x.nindex);
}

int32_t write_index(Family family, hid_t file, const Indices& x, const StorageOptions& storage)
{
    return write_block(kind, family, file, {.names = {kind.type}}, storage, [&](Block& io) {
        header(io, x);
        if (legacy(io)) data(io, x);
    });
}

int32_t read_legacy_index(hid_t group, int32_t ipass, const Indices& x, int32_t* flags, int32_t* params)
{
    return read_block(kind, Family::legacy, group, [&](Block& io) {
        header(io, x);
        check_pass(io, ipass, {1, 2});
        if (ipass == 2) {
            data(io, x);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_INDEX(
    const vak_id* file, const int32_t* nindex, const char* etypvar,
    const void*, const void*, int32_t* ierr)
{
    const Indices x{.nindex = nindex, .etypvar = etypvar, .etypindex = {}, .units = {}};
    *ierr = write_index(Family::current, *file, x, {});
}

void VAK_READ_INDEX(
    const vak_id* group, const void*, int32_t* nindex, char* etypvar,
    const void*, const void*, int32_t* ierr)
{
    const Indices x{.nindex = nindex, .etypvar = etypvar, .etypindex = {}, .units = {}};
    *ierr = read_block(kind, Family::current, *group, [&](Block& io) { header(io, x); });
}

void VAK1_WRITE_INDEX(
    const vak_id* file, const int32_t* nindex, const char* etypindex,
    const int32_t* mbunit, const int32_t* mdunit,
    const int32_t* ubid, const float* ubexp, const int32_t* udid, const float* udexp,
    const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const Indices x{
        .nindex = nindex, .etypvar = {}, .etypindex = etypindex,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp}};
    *ierr = write_index(Family::legacy, *file, x, storage_of(flags, params, float_size));
}

void VAK1_READ_INDEX(
    const vak_id* group, const int32_t* ipass, int32_t* nindex, char* etypindex,
    int32_t* mbunit, int32_t* mdunit,
    int32_t* ubid, float* ubexp, int32_t* udid, float* udexp,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const Indices x{
        .nindex = nindex, .etypvar = {}, .etypindex = etypindex,
        .units = {.mbunit = mbunit, .mdunit = mdunit, .ubid = ubid, .ubexp = ubexp, .udid = udid, .udexp = udexp}};
    *ierr = read_legacy_index(*group, *ipass, x, flags, params);
}
