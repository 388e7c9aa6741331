// The matrix blocks.
#include <vak_sp.h>

#include "show/kinds.h"
#include "show/read.h"

namespace vak::show {

namespace {

Reals matrix_values(const Reading& reading, Shape shape, const std::string& letters)
{
    if (reading.complex()) shape.push_back(2);
    Reals val("val", std::move(shape));
    val.along(reading.complex() ? letters + "p" : letters);
    return val;
}

}  // namespace

void show_densematrix(Reading& reading)
{
    Pass mode{1, 2};
    Text etyp("etyp"), etypvar("etypvar");
    Integer entid("entid"), nrow("nrow"), ncolumn("ncolumn");
    Index index;
    Reals val = matrix_values(reading, {nrow, ncolumn}, "ij");
    Ignored whole;
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_DENSEMATRIX : VAK_READ_DENSEMATRIX, mode, mode, etyp,
               entid, etypvar, nrow, ncolumn, index.nindex, index.indexic, index.indexident, index.indexval,
               val, found.flags, found.params, whole, whole);
}

void show_triangularmatrix(Reading& reading)
{
    Pass mode{1, 2};
    Text etypvar("etypvar");
    Integer nsize("nsize"), matrixtype("matrixtype");
    Index index;
    const Extent packed([&] { return int64_t{nsize.value} * (int64_t{nsize.value} + 1) / 2; });
    Reals val = matrix_values(reading, {packed}, "k");
    Ignored untouched, whole;
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_TRIANGULARMATRIX : VAK_READ_TRIANGULARMATRIX, mode, mode,
               untouched, untouched, etypvar, nsize, matrixtype, index.nindex, index.indexic,
               index.indexident, index.indexval, val, found.flags, found.params, whole, whole);
}

void show_sparsematrix(Reading& reading)
{
    Pass mode{1, 2};
    Text etypvar("etypvar");
    Integer nrow("nrow");
    Long nnz("nnz");
    Index index;
    Integers colind("colind", {nnz});
    Longs rowptr("rowptr", {Extent([&] { return int64_t{nrow.value} + 1; })});
    Reals val = matrix_values(reading, {nnz}, "k");
    Ignored untouched, whole;
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_SPARSEMATRIX : VAK_READ_SPARSEMATRIX, mode, mode,
               untouched, untouched, etypvar, nrow, nnz, index.nindex, index.indexic, index.indexident,
               index.indexval, colind, rowptr, val, found.flags, found.params, whole, whole);
}

}  // namespace vak::show
