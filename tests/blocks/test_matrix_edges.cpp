// What each kind of matrix has of its own: layouts, large orders, no entries.
#include <limits>

#include "samples/densematrix.h"
#include "samples/sparsematrix.h"
#include "samples/triangularmatrix.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

class MatrixLayouts : public BlockTest {};
class MatrixEdges : public BothFamilies {
protected:
    std::string at(const std::string& path, const char* section, const char* name) const
    {
        return path + "/" + (legacy() ? std::string(section) + "/" : "") + name;
    }
    bool has(const std::string& path) const { return H5Lexists(file, path.c_str(), H5P_DEFAULT) > 0; }
};
INSTANTIATE_TEST_SUITE_P(, MatrixEdges, both_families, family_name);

TEST_F(MatrixLayouts, dense_matrix_is_stored_as_described)
{
    const DenseMatrix matrix;
    EXPECT_EQ(write(matrix), success);
    EXPECT_EQ(matrix.path(), "singlestate/state000000000012/densematrix/SUPER/STIFFNESS4/vakblock");
    EXPECT_EQ(stored(matrix), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A entid int32
A etypvar char[256]
A nrow int32
A ncolumn int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D val float32 [2,3] compact
)");
    EXPECT_EQ(attribute_text(file, matrix.path(), "blocktype"), "densematrix" + std::string(245, '\0'));
}

TEST_F(MatrixLayouts, legacy_complex_dense_matrix_is_stored_as_described)
{
    auto matrix = DenseMatrix::complex_of(Family::legacy);
    matrix.ivsize = 32;
    EXPECT_EQ(write(matrix), success);
    EXPECT_EQ(matrix.path(), "singlestate/state000000000012/densematrix/SUPER/STIFFNESS4");
    EXPECT_EQ(stored(matrix), R"(
G header
A header/block int32
A header/blocktype char[256]
A header/etyp char[256]
A header/entid int32
A header/etypvar char[256]
A header/nrow int32
A header/ncolumn int32
A header/nindex int32
A header/indexic int32
G data
D data/indexident int32 [2] compact
D data/indexval float64 [2] compact
D data/val float64 [2,3,2] compact
)");
}

TEST_F(MatrixLayouts, triangular_matrix_of_order_4_stores_10_values_and_no_entity)
{
    TriangularMatrix matrix;
    matrix.nsize = 4;
    matrix.val.assign(10, 0.5F);
    EXPECT_EQ(write(matrix), success);
    EXPECT_EQ(stored(matrix), R"(
A block int32
A blocktype char[256]
A etypvar char[256]
A nsize int32
A matrixtype int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D val float32 [10] compact
)");
    matrix.state = 13;
    matrix.ivsize = 16;
    matrix.val.assign(20, 0.5F);
    EXPECT_EQ(write(matrix), success);
    EXPECT_THAT(stored(matrix), testing::HasSubstr("D val float32 [10,2] compact\n"));
}

TEST_F(MatrixLayouts, sparse_matrix_is_stored_as_described)
{
    const SparseMatrix matrix;
    EXPECT_EQ(write(matrix), success);
    const std::string nnz = std::to_string(matrix.nnz), rows = std::to_string(matrix.nrow + 1);
    EXPECT_EQ(stored(matrix), R"(
A block int32
A blocktype char[256]
A etypvar char[256]
A nrow int32
A nnz int64
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D colind int32 [)" + nnz + R"(] compact
D rowptr int64 [)" + rows + R"(] compact
D val float32 [)" + nnz + R"(] compact
)");
}

TEST_P(MatrixEdges, entity_below_0_and_blank_names_add_nothing_to_the_path)
{
    auto matrix = sample<DenseMatrix>();
    matrix.etyp = padded("");
    matrix.entid = -1;
    EXPECT_EQ(write(matrix), success);
    EXPECT_TRUE(has("singlestate/state000000000012/densematrix/STIFFNESS"));
}

TEST_P(MatrixEdges, sparse_matrix_of_no_entries_has_row_pointers_alone_and_reads_back)
{
    auto matrix = sample<SparseMatrix>();
    matrix.nnz = 0;
    matrix.colind.clear();
    matrix.val.clear();
    matrix.rowptr.assign(static_cast<size_t>(matrix.nrow) + 1, 0);
    EXPECT_EQ(write(matrix), success);
    EXPECT_EQ(attribute_value<int64_t>(file, at(matrix.path(), "header", "."), "nnz"), 0);
    EXPECT_FALSE(has(at(matrix.path(), "data", "colind")));
    EXPECT_FALSE(has(at(matrix.path(), "data", "val")));
    EXPECT_EQ(dataset_values<int64_t>(file, at(matrix.path(), "data", "rowptr")), matrix.rowptr);
    auto read_back = emptied(matrix);
    EXPECT_EQ(read(read_back, 2), success);
    EXPECT_EQ(listing(read_back), listing(matrix));
}

TEST_P(MatrixEdges, number_of_entries_above_31_bits_is_stored_exactly)
{
    auto matrix = sample<SparseMatrix>();
    matrix.nnz = 5'000'000'000;
    // There is no such array here: what matters is the attribute, written before the arrays are asked for.
    matrix.colind.clear();
    const Result result = run([&] {
        matrix.colind.shrink_to_fit();
        return matrix.write(file);
    });
    EXPECT_EQ(result.ierr, -3999);
    EXPECT_EQ(attribute_value<int64_t>(file, at(matrix.path(), "header", "."), "nnz"), 5'000'000'000);
    auto read_back = emptied(matrix);
    EXPECT_EQ(read(read_back, 1), success);
    EXPECT_EQ(read_back.nnz, 5'000'000'000);
}

TEST_P(MatrixEdges, row_pointers_are_64_bit_values)
{
    auto matrix = sample<SparseMatrix>();
    matrix.rowptr.back() = 9'000'000'000;
    EXPECT_EQ(write(matrix), success);
    auto read_back = emptied(matrix);
    EXPECT_EQ(read(read_back, 2), success);
    EXPECT_EQ(read_back.rowptr.back(), 9'000'000'000);
}

TEST_P(MatrixEdges, triangle_of_more_than_31_bits_of_values_is_written_in_pieces)
{
    for (const int32_t order : {46341, 65536, 70000}) {
        SCOPED_TRACE(order);
        const int64_t n = int64_t{order} * (order + 1) / 2;
        auto matrix = sample<TriangularMatrix>();
        matrix.nsize = order;
        matrix.state = order;
        matrix.part = {1, {3}, {n - 3}};
        matrix.val = {7, 8, 9};
        // Without a filter the values have their place in the file, as a hole until they are written.
        EXPECT_EQ(write(matrix), success);
        auto read_back = emptied(matrix);
        read_back.nsize = order;
        read_back.part = matrix.part;
        EXPECT_EQ(read(read_back, 3), success);
        EXPECT_EQ(read_back.val, matrix.val);
    }
}

TEST_P(MatrixEdges, filtered_matrix_beyond_one_chunk_s_limit_is_stored_in_several)
{
    auto matrix = sample<TriangularMatrix>();
    matrix.nsize = 70000;
    const int64_t n = int64_t{70000} * 70001 / 2;
    matrix.flags = 2;
    matrix.params[1] = 6;
    matrix.part = {1, {3}, {n - 3}};
    matrix.val = {7, 8, 9};
    EXPECT_EQ(write(matrix), success);
    EXPECT_THAT(stored(matrix), testing::HasSubstr("chunked(1"));
    auto read_back = emptied(matrix);
    read_back.nsize = 70000;
    read_back.part = matrix.part;
    EXPECT_EQ(read(read_back, 3), success);
    EXPECT_EQ(read_back.val, matrix.val);
    EXPECT_EQ(read_back.found_flags, 2);
}

TEST_P(MatrixEdges, more_points_than_memory_can_hold_are_refused)
{
    auto matrix = sample<DenseMatrix>();
    EXPECT_EQ(write(matrix), success);
    matrix.part = {.mode = 2, .counts = {std::numeric_limits<int64_t>::max()}, .starts = {0, 0}};
    EXPECT_EQ(write(matrix), failure(-1, "VAK ERROR - out of memory\n"));
    EXPECT_EQ(read(matrix, 4), failure(-1, "VAK ERROR - out of memory\n"));
}

TEST_P(MatrixEdges, negative_sizes_are_lengths_of_0)
{
    auto matrix = sample<DenseMatrix>();
    matrix.nrow = -2;
    EXPECT_EQ(write(matrix), success);
    EXPECT_FALSE(has(at(matrix.path(), "data", "val")));
    auto triangle = sample<TriangularMatrix>();
    triangle.nsize = -7;
    EXPECT_EQ(write(triangle), success);
    EXPECT_FALSE(has(at(triangle.path(), "data", "val")));
}

TEST_P(MatrixEdges, attributes_and_entity_of_the_triangle_and_sparse_readers_stay_untouched)
{
    const auto triangle = sample<TriangularMatrix>();
    const auto sparse = sample<SparseMatrix>();
    EXPECT_EQ(write(triangle), success);
    EXPECT_EQ(write(sparse), success);
    auto t = emptied(triangle);
    auto s = emptied(sparse);
    t.etyp = s.etyp = padded("MINE");
    t.entid = s.entid = 4711;
    EXPECT_EQ(read(t, 2), success);
    EXPECT_EQ(read(s, 2), success);
    EXPECT_EQ(t.etyp, padded("MINE"));
    EXPECT_EQ(s.etyp, padded("MINE"));
    EXPECT_EQ(t.entid, 4711);
    EXPECT_EQ(s.entid, 4711);
}

TEST_P(MatrixEdges, missing_legacy_subgroup_is_told)
{
    if (!legacy()) return;
    const auto matrix = sample<DenseMatrix>();
    EXPECT_EQ(write(matrix), success);
    H5Ldelete(file, (matrix.path() + "/data").c_str(), H5P_DEFAULT);
    auto read_back = emptied(matrix);
    EXPECT_EQ(read(read_back, 2), failure(-1, "VAK ERROR - data not found\n"));
    H5Ldelete(file, (matrix.path() + "/header").c_str(), H5P_DEFAULT);
    EXPECT_EQ(read(read_back, 2), failure(-1, "VAK ERROR - header not found\n"));
}

}  // namespace

}  // namespace vak::test
