#include <algorithm>
#include <bit>

#include "matrix/matrix.h"
#include "problem.h"
#include "show/view.h"

namespace vak::matrix {

namespace {

constexpr int32_t dense_key = 10000, triangular_key = 10100, sparse_key = 10200;

int32_t kind_of(int32_t key) { return key - key % 10; }

int32_t attribute(const show::BlockView& block, const std::string& name)
{
    for (const auto& [attribute, value] : block.attributes)
        if (attribute == name && std::holds_alternative<int64_t>(value))
            return static_cast<int32_t>(std::get<int64_t>(value));
    throw cli::Problem(block.entry.path + ": has no " + name + "; the block is damaged");
}

template <class T>
std::vector<T> array(const show::BlockView& block, const std::string& name)
{
    for (const show::ArrayView& found : block.arrays)
        if (found.name == name && std::holds_alternative<std::vector<T>>(found.values))
            return std::get<std::vector<T>>(found.values);
    return {};
}

Symmetry symmetry_of(int32_t code)
{
    return code >= 1 && code <= 3 ? static_cast<Symmetry>(code) : Symmetry::general;
}

void add(Matrix& matrix, int64_t row, int64_t column, const float* value)
{
    matrix.row.push_back(static_cast<int32_t>(row));
    matrix.column.push_back(static_cast<int32_t>(column));
    matrix.values.insert(matrix.values.end(), value, value + matrix.parts());
}

// Column after column, as an array is written.
void read_dense(const show::BlockView& block, Matrix& matrix)
{
    matrix.rows = attribute(block, "nrow");
    matrix.columns = attribute(block, "ncolumn");
    matrix.array = true;
    const auto values = array<float>(block, "val");
    for (int64_t column = 0; column < matrix.columns; ++column)
        for (int64_t row = 0; row < matrix.rows; ++row)
            add(matrix, row, column,
                &values[static_cast<size_t>(row * matrix.columns + column) * matrix.parts()]);
}

// Stored is the lower triangle row by row. Another producer may mean something else by its matrixtype; what
// is not 2 or 3 is taken for a symmetric matrix.
void read_triangular(const show::BlockView& block, Matrix& matrix)
{
    matrix.rows = matrix.columns = attribute(block, "nsize");
    matrix.array = true;
    const Symmetry stored = symmetry_of(attribute(block, "matrixtype"));
    matrix.symmetry = stored == Symmetry::general ? Symmetry::symmetric : stored;
    const auto values = array<float>(block, "val");
    const int64_t below = matrix.symmetry == Symmetry::skew ? 1 : 0;
    for (int64_t column = 0; column < matrix.columns; ++column)
        for (int64_t row = column + below; row < matrix.rows; ++row)
            add(matrix, row, column,
                &values[static_cast<size_t>(row * (row + 1) / 2 + column) * matrix.parts()]);
}

// Rows and columns may count from 0 or 1, as the first row's start tells.
void read_sparse(const show::BlockView& block, Matrix& matrix)
{
    matrix.rows = matrix.columns = attribute(block, "nrow");
    const auto columns = array<int32_t>(block, "colind");
    const auto starts = array<int64_t>(block, "rowptr");
    const auto values = array<float>(block, "val");
    const auto count = static_cast<int64_t>(columns.size());
    const int64_t base = starts.empty() ? 0 : starts[0];
    const auto damaged = [&](const char* what) {
        throw cli::Problem(block.entry.path + ": " + what + "; the block is damaged");
    };
    if (base < 0 || base > 1 || !std::is_sorted(starts.begin(), starts.end()) ||
        (!starts.empty() && starts.back() != count + base))
        damaged("rowptr does not lead through the entries");
    for (int64_t row = 0; row < matrix.rows; ++row)
        for (int64_t at = starts[static_cast<size_t>(row)]; at < starts[static_cast<size_t>(row) + 1]; ++at) {
            const auto entry = static_cast<size_t>(at - base);
            const int64_t column = columns[entry] - base;
            if (column < 0) damaged("a column index is below the first one");
            matrix.columns = std::max(matrix.columns, static_cast<int32_t>(column + 1));
            add(matrix, row, column, &values[entry * matrix.parts()]);
        }
}

// Leaves the entries on and below the diagonal if the others follow from them.
Matrix folded(const Matrix& matrix, Symmetry symmetry)
{
    Matrix lower = matrix;
    lower.symmetry = symmetry;
    lower.row.clear();
    lower.column.clear();
    lower.values.clear();
    for (size_t i = 0; i < matrix.entries(); ++i)
        if (matrix.row[i] > matrix.column[i] ||
            (matrix.row[i] == matrix.column[i] && symmetry != Symmetry::skew))
            add(lower, matrix.row[i], matrix.column[i], &matrix.values[i * matrix.parts()]);
    return lower;
}

// Values by their bits, so that NaN is like itself.
struct Entry {
    int32_t row, column;
    uint32_t real, imaginary;
    auto operator<=>(const Entry&) const = default;
};

std::vector<Entry> sorted_entries(const Matrix& matrix)
{
    std::vector<Entry> entries;
    for (size_t i = 0; i < matrix.entries(); ++i)
        entries.push_back({matrix.row[i], matrix.column[i],
                           std::bit_cast<uint32_t>(matrix.values[i * matrix.parts()]),
                           matrix.complex ? std::bit_cast<uint32_t>(matrix.values[2 * i + 1]) : 0});
    std::sort(entries.begin(), entries.end());
    return entries;
}

}  // namespace

bool is_matrix(int32_t key) { return key >= dense_key && key <= sparse_key + 1 && key % 100 <= 1; }

Matrix read_block(const store::File& file, store::Layout layout, const store::BlockEntry& entry)
{
    const show::BlockView block =
        show::view(file, entry, {.layout = layout, .values = true, .all_values = true});
    Matrix matrix;
    matrix.complex = entry.key % 10 == 1;
    if (kind_of(entry.key) == dense_key) read_dense(block, matrix);
    if (kind_of(entry.key) == triangular_key) read_triangular(block, matrix);
    if (kind_of(entry.key) != sparse_key) return matrix;
    read_sparse(block, matrix);
    const Symmetry stored = symmetry_of(attribute(block, "indexic"));
    if (stored == Symmetry::general || matrix.rows != matrix.columns) return matrix;
    Matrix lower = folded(matrix, stored);
    return sorted_entries(unfolded(lower)) == sorted_entries(matrix) ? lower : matrix;
}

}  // namespace vak::matrix
