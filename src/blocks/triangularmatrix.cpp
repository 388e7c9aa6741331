// The triangular matrix block (keys 10100 and 10101): a symmetric matrix as its packed triangle, in the order
// in which the caller packs it.
#include "blocks/matrix.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr BlockKind kind{.key = 10100, .type = "triangularmatrix", .complex_key = 10101};

struct TriangularMatrix {
    Arg<char> etypvar;
    Arg<int32_t> nsize, matrixtype;
    Index index;
    Arg<float> val;
};

// 64-bit: from order 65,536 on the triangle has more than 2^31-1 values.
int64_t packed_length(int64_t order) { return order > 0 ? order * (order + 1) / 2 : 0; }

void header(Block& io, const TriangularMatrix& m)
{
    text(io, "etypvar", m.etypvar);
    integer(io, "nsize", m.nsize);
    integer(io, "matrixtype", m.matrixtype);
    index_counts(io, m.index);
}

int32_t write(const MatrixWrite& w, const TriangularMatrix& m)
{
    return write_matrix(kind, w, m.val, {packed_length(*m.nsize)}, [&](Block& io) {
        header(io, m);
        index_values(io, m.index, "data");
    });
}

int32_t read(const MatrixRead& r, const TriangularMatrix& m)
{
    return read_matrix(
        kind, r, m.val, [&](Block& io) { header(io, m); },
        [&](Block& io, bool) { index_values(io, m.index, "data"); },
        [&] { return Shape{packed_length(*m.nsize)}; });
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_WRITE_TRIANGULARMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nsize, const int32_t* matrixtype,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const TriangularMatrix m{
        .etypvar = etypvar, .nsize = nsize, .matrixtype = matrixtype,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixWrite w{
        .family = Family::current, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK_READ_TRIANGULARMATRIX(
    const vak_id* group, const int32_t* mode,
    char*, int32_t*, char* etypvar, int32_t* nsize, int32_t* matrixtype,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const TriangularMatrix m{
        .etypvar = etypvar, .nsize = nsize, .matrixtype = matrixtype,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixRead r{.family = Family::current, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}

void VAK1_WRITE_TRIANGULARMATRIX(
    const vak_id* file,
    const char* etyp, const int32_t* entid, const char* etypvar, const int32_t* nsize, const int32_t* matrixtype,
    const int32_t* nindex, const int32_t* indexic, const int32_t* indexident, const float* indexval, const float* val,
    const int32_t* state, const int32_t* flags, const int32_t* params, const int32_t* ivsize,
    const int32_t* mode, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const TriangularMatrix m{
        .etypvar = etypvar, .nsize = nsize, .matrixtype = matrixtype,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixWrite w{
        .family = Family::legacy, .file = *file, .etyp = etyp, .entid = entid, .etypvar = etypvar,
        .index = m.index, .state = *state, .storage = storage_of(flags, params), .ivsize = *ivsize,
        .part = {.mode = *mode, .counts = counts, .starts = starts}};
    *ierr = write(w, m);
}

void VAK1_READ_TRIANGULARMATRIX(
    const vak_id* group, const int32_t* mode,
    char*, int32_t*, char* etypvar, int32_t* nsize, int32_t* matrixtype,
    int32_t* nindex, int32_t* indexic, int32_t* indexident, float* indexval, float* val,
    int32_t* flags, int32_t* params, const int64_t* counts, const int64_t* starts, int32_t* ierr)
{
    const TriangularMatrix m{
        .etypvar = etypvar, .nsize = nsize, .matrixtype = matrixtype,
        .index = {.nindex = nindex, .indexic = indexic, .indexident = indexident, .indexval = indexval},
        .val = val};
    const MatrixRead r{.family = Family::legacy, .group = *group, .mode = *mode,
                       .counts = counts, .starts = starts, .flags = flags, .params = params};
    *ierr = read(r, m);
}
