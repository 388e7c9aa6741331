#include <vak_sp.h>

#include <algorithm>
#include <numeric>

#include "import/conventions.h"
#include "matrix/matrix.h"
#include "problem.h"
#include "store/call.h"

namespace vak::matrix {

namespace {

using import::no_filters;
using import::no_parameters;
using import::none;
using import::zero;
using store::call;
using store::Int;

Int value_form(const Matrix& matrix) { return {matrix.complex ? 16 : 4}; }

// Compressed rows; within a row in the order of the columns, as many entries at one place as there were.
void write_sparse(const Matrix& folded, const std::string& name, const store::File& file)
{
    if (folded.rows != folded.columns)
        throw cli::Problem(
            name + ": has not as many rows as columns, which a sparse block cannot tell; use --matrix dense");
    const Matrix matrix = unfolded(folded);
    std::vector<size_t> order(matrix.entries());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return std::pair(matrix.row[a], matrix.column[a]) < std::pair(matrix.row[b], matrix.column[b]);
    });
    std::vector<int64_t> starts(static_cast<size_t>(matrix.rows) + 1, 0);
    std::vector<int32_t> columns;
    std::vector<float> values;
    for (const size_t entry : order) {
        ++starts[static_cast<size_t>(matrix.row[entry]) + 1];
        columns.push_back(matrix.column[entry]);
        for (size_t part = 0; part < matrix.parts(); ++part)
            values.push_back(matrix.values[entry * matrix.parts() + part]);
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    const auto count = static_cast<int64_t>(order.size());
    call("writing the sparse matrix " + name, VAK_WRITE_SPARSEMATRIX, file.root(), "", none, name.c_str(),
         Int{matrix.rows}, &count, zero, Int{static_cast<int32_t>(folded.symmetry)}, nullptr, nullptr,
         columns.data(), starts.data(), values.data(), none, no_filters, no_parameters, value_form(matrix),
         zero, nullptr, nullptr);
}

// Adds every entry to its place, which the function tells; entries at one place are summed.
template <class Place>
std::vector<float> placed(const Matrix& matrix, int64_t places, Place place)
{
    std::vector<float> values(static_cast<size_t>(places) * matrix.parts(), 0.0F);
    for (size_t i = 0; i < matrix.entries(); ++i)
        for (size_t part = 0; part < matrix.parts(); ++part)
            values[static_cast<size_t>(place(matrix.row[i], matrix.column[i])) * matrix.parts() + part] +=
                matrix.values[i * matrix.parts() + part];
    return values;
}

// The lower triangle, row by row.
void write_triangular(const Matrix& matrix, const std::string& name, const store::File& file)
{
    if (matrix.symmetry == Symmetry::general)
        throw cli::Problem(name + ": is not symmetric; use --matrix dense or sparse");
    const auto row_start = [](int64_t row) { return row * (row + 1) / 2; };
    const auto values = placed(matrix, row_start(matrix.rows),
                               [&](int64_t row, int64_t column) { return row_start(row) + column; });
    call("writing the triangular matrix " + name, VAK_WRITE_TRIANGULARMATRIX, file.root(), "", none,
         name.c_str(), Int{matrix.rows}, Int{static_cast<int32_t>(matrix.symmetry)}, zero, zero, nullptr,
         nullptr, values.data(), none, no_filters, no_parameters, value_form(matrix), zero, nullptr, nullptr);
}

void write_dense(const Matrix& folded, const std::string& name, const store::File& file)
{
    const Matrix matrix = unfolded(folded);
    const auto values = placed(matrix, int64_t{matrix.rows} * matrix.columns,
                               [&](int64_t row, int64_t column) { return row * matrix.columns + column; });
    call("writing the dense matrix " + name, VAK_WRITE_DENSEMATRIX, file.root(), "", none, name.c_str(),
         Int{matrix.rows}, Int{matrix.columns}, zero, zero, nullptr, nullptr, values.data(), none, no_filters,
         no_parameters, value_form(matrix), zero, nullptr, nullptr);
}

}  // namespace

Matrix unfolded(const Matrix& matrix)
{
    Matrix all = matrix;
    all.symmetry = Symmetry::general;
    if (matrix.symmetry == Symmetry::general) return all;
    for (size_t i = 0; i < matrix.entries(); ++i) {
        if (matrix.row[i] == matrix.column[i]) continue;
        all.row.push_back(matrix.column[i]);
        all.column.push_back(matrix.row[i]);
        const float sign = matrix.symmetry == Symmetry::skew ? -1.0F : 1.0F;
        all.values.push_back(sign * matrix.values[i * matrix.parts()]);
        const float other = matrix.symmetry == Symmetry::hermitian ? -1.0F : sign;
        if (matrix.complex) all.values.push_back(other * matrix.values[2 * i + 1]);
    }
    return all;
}

void write_block(const Matrix& matrix, const std::string& kind, const std::string& name,
                 const store::File& file)
{
    if (kind == "sparse") return write_sparse(matrix, name, file);
    if (kind == "triangular") return write_triangular(matrix, name, file);
    write_dense(matrix, name, file);
}

}  // namespace vak::matrix
