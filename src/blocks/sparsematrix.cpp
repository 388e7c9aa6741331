// The sparse matrix block (keys 10200 and 10201): compressed rows.
#include "blocks/matrix.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 10200, .type = "sparsematrix", .complex_key = 10201};

struct SparseMatrix {
    Arg<char> etypvar;
    Arg<int32_t> nrow;
    Arg<int64_t> nnz;
    Index index;
    Arg<int32_t> colind;
    Arg<int64_t> rowptr;
    Arg<float> val;
};

void header(Block& io, const SparseMatrix& m)
{
    text(io, "etypvar", m.etypvar);
    integer(io, "nrow", m.nrow);
    integer64(io, "nnz", m.nnz);
    index_counts(io, m.index);
}

void rows(Block& io, const SparseMatrix& m)
{
    enter(io, "data");
    if (io.stopped) return;
    integers(io, "colind", m.colind, {*m.nnz});
    integers64(io, "rowptr", m.rowptr, {int64_t{*m.nrow} + 1});
}

int32_t write(const MatrixWrite& w, const SparseMatrix& m)
{
    return write_matrix(kind, w, m.val, {*m.nnz}, [&](Block& io) {
        header(io, m);
        index_values(io, m.index, "data");
        rows(io, m);
    });
}

int32_t read(const MatrixRead& r, const SparseMatrix& m)
{
    return read_matrix(
        kind, r, m.val, [&](Block& io) { header(io, m); },
        [&](Block& io, bool whole) {
            index_values(io, m.index, "data");
            if (whole) rows(io, m);
        },
        [&] { return Shape{*m.nnz}; });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_SPARSEMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nrow, const int64_t* nnz,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* colind, const int64_t* rowptr, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const SparseMatrix m{
        .etypvar = etypvar, .nrow = nrow, .nnz = nnz,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .colind = colind, .rowptr = rowptr, .val = val};
    const MatrixWrite w{
        .family = Family::current, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK_READ_SPARSEMATRIX(
    const vak_id* group, const int32_t* mode,
    char*, int32_t*, char* etypvar, int32_t* nrow, int64_t* nnz,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* colind, int64_t* rowptr, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const SparseMatrix m{
        .etypvar = etypvar, .nrow = nrow, .nnz = nnz,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .colind = colind, .rowptr = rowptr, .val = val};
    const MatrixRead r{.family = Family::current, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}

void VAK1_WRITE_SPARSEMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nrow, const int64_t* nnz,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval,
    const int32_t* colind, const int64_t* rowptr, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const SparseMatrix m{
        .etypvar = etypvar, .nrow = nrow, .nnz = nnz,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .colind = colind, .rowptr = rowptr, .val = val};
    const MatrixWrite w{
        .family = Family::legacy, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK1_READ_SPARSEMATRIX(
    const vak_id* group, const int32_t* mode,
    char*, int32_t*, char* etypvar, int32_t* nrow, int64_t* nnz,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval,
    int32_t* colind, int64_t* rowptr, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const SparseMatrix m{
        .etypvar = etypvar, .nrow = nrow, .nnz = nnz,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .colind = colind, .rowptr = rowptr, .val = val};
    const MatrixRead r{.family = Family::legacy, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}
