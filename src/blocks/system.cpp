// The system block (key 10): title, producing solver, dates and the units of the file.
#include "blocks/fields.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 10, .type = "system"};

struct System {
    Arg<char> title, sys, solver_name, solver_vers, cdate, ctime, mdate, mtime;
    Arg<int32_t> nbunit, ndunit;
    Arg<int32_t> ubid;
    Arg<char> ubtyp, ubnam;
    Arg<float> ubshift, ubcon;
    Arg<int32_t> udid;
    Arg<char> udnam;
    Arg<float> udscal;
    Arg<int32_t> ndbunit, udbid;
    Arg<float> udbexp;
};

void header(Block& io, const System& s)
{
    text(io, "title", s.title);
    text(io, "sys", s.sys);
    text(io, "solver_name", s.solver_name);
    text(io, "solver_vers", s.solver_vers);
    text(io, "cdate", s.cdate, 8);
    text(io, "ctime", s.ctime, 8);
    text(io, "mdate", s.mdate, 8);
    text(io, "mtime", s.mtime, 8);
    integer(io, "nbunit", s.nbunit);
    integer(io, "ndunit", s.ndunit);
}

void units(Block& io, const System& s)
{
    enter(io, "data");
    integers(io, "ubid", s.ubid, {*s.nbunit});
    texts(io, "ubtyp", s.ubtyp, 256, {*s.nbunit});
    texts(io, "ubnam", s.ubnam, 256, {*s.nbunit});
    reals(io, "ubshift", s.ubshift, {*s.nbunit});
    reals(io, "ubcon", s.ubcon, {*s.nbunit});
    integers(io, "udid", s.udid, {*s.ndunit});
    texts(io, "udnam", s.udnam, 256, {*s.ndunit});
    reals(io, "udscal", s.udscal, {*s.ndunit});
    const Counts components = counts(io, "ndbunit", s.ndbunit, {*s.ndunit});
    const int64_t ncomponents = total(io, components);
    integers(io, "udbid", s.udbid, {ncomponents});
    reals(io, "udbexp", s.udbexp, {ncomponents});
}

int32_t write_system(Family family, hid_t file, const System& s, const StorageOptions& storage)
{
    return write_block(kind, family, file, {.names = {kind.type}}, storage, [&](Block& io) {
        header(io, s);
        units(io, s);
    });
}

int32_t read_system(Family family, hid_t group, int32_t ipass, const System& s, int32_t* flags,
                    int32_t* params)
{
    return read_block(kind, family, group, [&](Block& io) {
        header(io, s);
        check_pass(io, ipass, {1, 2});
        if (ipass == 2) {
            units(io, s);
            report_storage(io, flags, params);
        }
    });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_SYSTEM(
    const vak_id* file,
    const char* title, const char* sys, const char* solver_name, const char* solver_vers,
    const char* cdate, const char* ctime, const char* mdate, const char* mtime,
    const int32_t* nbunit, const int32_t* ndunit,
    const int32_t* ubid, const char* ubtyp, const char* ubnam, const float* ubshift, const float* ubcon,
    const int32_t* udid, const char* udnam, const float* udscal,
    const int32_t* ndbunit, const int32_t* udbid, const float* udbexp,
    const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const System s{
        .title = title, .sys = sys, .solver_name = solver_name, .solver_vers = solver_vers,
        .cdate = cdate, .ctime = ctime, .mdate = mdate, .mtime = mtime,
        .nbunit = nbunit, .ndunit = ndunit,
        .ubid = ubid, .ubtyp = ubtyp, .ubnam = ubnam, .ubshift = ubshift, .ubcon = ubcon,
        .udid = udid, .udnam = udnam, .udscal = udscal,
        .ndbunit = ndbunit, .udbid = udbid, .udbexp = udbexp};
    *ierr = write_system(Family::current, *file, s, storage_of(flags, params, float_size));
}

void VAK1_WRITE_SYSTEM(
    const vak_id* file,
    const char* title, const char* sys, const char* solver_name, const char* solver_vers,
    const char* cdate, const char* ctime, const char* mdate, const char* mtime,
    const int32_t* nbunit, const int32_t* ndunit,
    const int32_t* ubid, const char* ubtyp, const char* ubnam, const float* ubshift, const float* ubcon,
    const int32_t* udid, const char* udnam, const float* udscal,
    const int32_t* ndbunit, const int32_t* udbid, const float* udbexp,
    const int32_t* flags, const int32_t* params, const int32_t* float_size, int32_t* ierr)
{
    const System s{
        .title = title, .sys = sys, .solver_name = solver_name, .solver_vers = solver_vers,
        .cdate = cdate, .ctime = ctime, .mdate = mdate, .mtime = mtime,
        .nbunit = nbunit, .ndunit = ndunit,
        .ubid = ubid, .ubtyp = ubtyp, .ubnam = ubnam, .ubshift = ubshift, .ubcon = ubcon,
        .udid = udid, .udnam = udnam, .udscal = udscal,
        .ndbunit = ndbunit, .udbid = udbid, .udbexp = udbexp};
    *ierr = write_system(Family::legacy, *file, s, storage_of(flags, params, float_size));
}

void VAK_READ_SYSTEM(
    const vak_id* group, const int32_t* ipass,
    char* title, char* sys, char* solver_name, char* solver_vers,
    char* cdate, char* ctime, char* mdate, char* mtime,
    int32_t* nbunit, int32_t* ndunit,
    int32_t* ubid, char* ubtyp, char* ubnam, float* ubshift, float* ubcon,
    int32_t* udid, char* udnam, float* udscal,
    int32_t* ndbunit, int32_t* udbid, float* udbexp,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const System s{
        .title = title, .sys = sys, .solver_name = solver_name, .solver_vers = solver_vers,
        .cdate = cdate, .ctime = ctime, .mdate = mdate, .mtime = mtime,
        .nbunit = nbunit, .ndunit = ndunit,
        .ubid = ubid, .ubtyp = ubtyp, .ubnam = ubnam, .ubshift = ubshift, .ubcon = ubcon,
        .udid = udid, .udnam = udnam, .udscal = udscal,
        .ndbunit = ndbunit, .udbid = udbid, .udbexp = udbexp};
    *ierr = read_system(Family::current, *group, *ipass, s, flags, params);
}

void VAK1_READ_SYSTEM(
    const vak_id* group, const int32_t* ipass,
    char* title, char* sys, char* solver_name, char* solver_vers,
    char* cdate, char* ctime, char* mdate, char* mtime,
    int32_t* nbunit, int32_t* ndunit,
    int32_t* ubid, char* ubtyp, char* ubnam, float* ubshift, float* ubcon,
    int32_t* udid, char* udnam, float* udscal,
    int32_t* ndbunit, int32_t* udbid, float* udbexp,
    int32_t* flags, int32_t* params, int32_t* ierr)
{
    const System s{
        .title = title, .sys = sys, .solver_name = solver_name, .solver_vers = solver_vers,
        .cdate = cdate, .ctime = ctime, .mdate = mdate, .mtime = mtime,
        .nbunit = nbunit, .ndunit = ndunit,
        .ubid = ubid, .ubtyp = ubtyp, .ubnam = ubnam, .ubshift = ubshift, .ubcon = ubcon,
        .udid = udid, .udnam = udnam, .udscal = udscal,
        .ndbunit = ndbunit, .udbid = udbid, .udbexp = udbexp};
    *ierr = read_system(Family::legacy, *group, *ipass, s, flags, params);
}
