// The dense matrix block (keys 10000 and 10001): a full matrix, written and read whole or in pieces.
#include "blocks/matrix.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 10000, .type = "densematrix", .complex_key = 10001};

struct DenseMatrix {
    Arg<char> etyp;
    Arg<int32_t> entid;
    Arg<char> etypvar;
    Arg<int32_t> nrow, ncolumn;
    Index index;
    Arg<float> val;
};

void header(Block& io, const DenseMatrix& m)
{
    text(io, "etyp", m.etyp);
    integer(io, "entid", m.entid);
    text(io, "etypvar", m.etypvar);
    integer(io, "nrow", m.nrow);
    integer(io, "ncolumn", m.ncolumn);
    index_counts(io, m.index);
}

int32_t write(const MatrixWrite& w, const DenseMatrix& m)
{
    return write_matrix(kind, w, m.val, {*m.nrow, *m.ncolumn}, [&](Block& io) {
        header(io, m);
        index_values(io, m.index, "data");
    });
}

int32_t read(const MatrixRead& r, const DenseMatrix& m)
{
    return read_matrix(
        kind, r, m.val, [&](Block& io) { header(io, m); },
        [&](Block& io, bool) { index_values(io, m.index, "data"); },
        [&] {
            return Shape{*m.nrow, *m.ncolumn};
        });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_DENSEMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nrow, const int32_t* ncolumn,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const DenseMatrix m{
        .etyp = etyp, .entid = entid, .etypvar = etypvar, .nrow = nrow, .ncolumn = ncolumn,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixWrite w{
        .family = Family::current, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK_READ_DENSEMATRIX(
    const vak_id* group, const int32_t* mode,
    char* etyp, int32_t* entid, char* etypvar, int32_t* nrow, int32_t* ncolumn,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const DenseMatrix m{
        .etyp = etyp, .entid = entid, .etypvar = etypvar, .nrow = nrow, .ncolumn = ncolumn,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixRead r{.family = Family::current, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}

void VAK1_WRITE_DENSEMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nrow, const int32_t* ncolumn,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const DenseMatrix m{
        .etyp = etyp, .entid = entid, .etypvar = etypvar, .nrow = nrow, .ncolumn = ncolumn,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixWrite w{
        .family = Family::legacy, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK1_READ_DENSEMATRIX(
    const vak_id* group, const int32_t* mode,
    char* etyp, int32_t* entid, char* etypvar, int32_t* nrow, int32_t* ncolumn,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const DenseMatrix m{
        .etyp = etyp, .entid = entid, .etypvar = etypvar, .nrow = nrow, .ncolumn = ncolumn,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixRead r{.family = Family::legacy, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}
