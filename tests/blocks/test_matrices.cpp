// What the three kinds of matrices have in common.
#include "samples/densematrix.h"
#include "samples/sparsematrix.h"
#include "samples/triangularmatrix.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

template <class Sample, Family family>
struct Case {
    using Matrix = Sample;
    static constexpr Family of = family;
};

template <class Case>
class Matrices : public BlockTest {
protected:
    using Matrix = typename Case::Matrix;

    static Matrix real() { return sample_of<Matrix>(Case::of); }
    static Matrix complex() { return Matrix::complex_of(Case::of); }
    static constexpr bool is_legacy = Case::of == Family::legacy;

    std::string header(const Matrix& m) const { return m.path() + (is_legacy ? "/header" : ""); }
    std::string val(const Matrix& m) const { return m.path() + (is_legacy ? "/data" : "") + "/val"; }
    std::vector<hsize_t> extents(const Matrix& m) const
    {
        const ObjectId dataset = open_object(file, val(m));
        const SpaceId space(H5Dget_space(dataset), "space");
        std::vector<hsize_t> dims(static_cast<size_t>(H5Sget_simple_extent_ndims(space)));
        H5Sget_simple_extent_dims(space, dims.data(), nullptr);
        return dims;
    }
    size_t stored_size(const Matrix& m) const
    {
        const ObjectId dataset = open_object(file, val(m));
        const TypeId type(H5Dget_type(dataset), "type");
        return H5Tget_size(type);
    }
    int32_t key(const Matrix& m) const { return attribute_value<int32_t>(file, header(m), "block"); }

    // One count and one start for each extent of the values.
    SampleTransfer slab(const Matrix& m, int64_t count, int64_t start) const
    {
        SampleTransfer part{1, {}, {}};
        for (const hsize_t extent : extents(m)) {
            const bool is_parts = part.counts.size() + 1 == extents(m).size() && m.ivsize > 8;
            part.counts.push_back(is_parts ? 2 : count);
            part.starts.push_back(is_parts ? 0 : start);
            (void)extent;
        }
        return part;
    }
    // The first and the last value.
    SampleTransfer corners(const Matrix& m) const
    {
        SampleTransfer part{2, {2}, {}};
        for (size_t i = 0; i < extents(m).size(); ++i) part.starts.push_back(0);
        for (const hsize_t extent : extents(m)) part.starts.push_back(static_cast<int64_t>(extent) - 1);
        return part;
    }
};

using Cases = testing::Types<Case<DenseMatrix, Family::current>, Case<DenseMatrix, Family::legacy>,
                             Case<TriangularMatrix, Family::current>, Case<TriangularMatrix, Family::legacy>,
                             Case<SparseMatrix, Family::current>, Case<SparseMatrix, Family::legacy>>;
TYPED_TEST_SUITE(Matrices, Cases);

TYPED_TEST(Matrices, real_and_complex_ones_read_back_what_was_written)
{
    for (auto written : {this->real(), this->complex()}) {
        written.state = written.ivsize;
        EXPECT_EQ(this->write(written), success);
        EXPECT_EQ(this->key(written), written.key + (written.ivsize > 8 ? 1 : 0));
        auto matrix = emptied(written);
        EXPECT_EQ(this->read(matrix, 2), success);
        EXPECT_EQ(listing(matrix), listing(written));
        EXPECT_EQ(matrix.found_flags, 0);
    }
}

TYPED_TEST(Matrices, size_code_tells_size_and_kind_and_falls_back_to_4)
{
    for (const auto& [code, size] : std::initializer_list<std::pair<int32_t, size_t>>{
             {4, 4}, {8, 8}, {16, 4}, {32, 8}, {12, 4}, {0, 4}, {-8, 4}}) {
        SCOPED_TRACE(code);
        const bool is_complex = code == 16 || code == 32;
        auto matrix = is_complex ? this->complex() : this->real();
        matrix.ivsize = code;
        matrix.state = 100 + code;
        EXPECT_EQ(this->write(matrix), success);
        EXPECT_EQ(this->key(matrix), matrix.key + (is_complex ? 1 : 0));
        EXPECT_EQ(this->stored_size(matrix), size);
        if (is_complex) {
            EXPECT_EQ(this->extents(matrix).back(), 2U);
        }
    }
}

TYPED_TEST(Matrices, slab_into_a_new_block_and_points_into_an_existing_one_complete_it)
{
    for (auto matrix : {this->real(), this->complex()}) {
        matrix.state = matrix.ivsize;
        EXPECT_EQ(this->write(matrix), success);
        const std::vector<float> all = dataset_values<float>(this->file, this->val(matrix));
        auto piece = matrix;
        piece.state += 100;
        piece.part = this->slab(matrix, 1, 1);
        piece.val.assign(2, 77.0F);
        EXPECT_EQ(this->write(piece), success);
        EXPECT_EQ(this->extents(piece), this->extents(matrix));

        auto points = piece;
        points.part = this->corners(matrix);
        points.val = {-1, -2};
        EXPECT_EQ(this->write(points), success);

        const std::vector<float> stored = dataset_values<float>(this->file, this->val(piece));
        ASSERT_EQ(stored.size(), all.size());
        EXPECT_EQ(stored.front(), -1.0F);
        EXPECT_EQ(stored.back(), -2.0F);
        EXPECT_EQ(std::count(stored.begin(), stored.end(), 77.0F), matrix.ivsize > 8 ? 2 : 1);
    }
}

TYPED_TEST(Matrices, second_write_leaves_the_attributes_as_first_written)
{
    const auto first = this->real();
    EXPECT_EQ(this->write(first), success);
    auto second = first;
    second.index.indexic += 1;
    second.part = this->slab(first, 1, 0);
    second.val = {99};
    EXPECT_EQ(this->write(second), success);
    EXPECT_EQ(attribute_value<int32_t>(this->file, this->header(first), "indexic"), first.index.indexic);
    EXPECT_EQ(dataset_values<float>(this->file, this->val(first)).front(), 99.0F);
}

TYPED_TEST(Matrices, slabs_and_points_are_read_alone)
{
    for (auto matrix : {this->real(), this->complex()}) {
        matrix.state = matrix.ivsize;
        EXPECT_EQ(this->write(matrix), success);
        const std::vector<float> all = dataset_values<float>(this->file, this->val(matrix));

        auto slab = matrix;
        slab.found_at = matrix.path();
        slab.etypvar = std::string(256, '?');
        slab.part = this->slab(matrix, 1, 0);
        slab.val.assign(2, 0.0F);
        EXPECT_EQ(this->read(slab, 3), success);
        EXPECT_EQ(slab.val.front(), all.front());
        EXPECT_EQ(slab.etypvar, std::string(256, '?'));
        EXPECT_EQ(slab.found_flags, 0);

        auto points = matrix;
        points.part = this->corners(matrix);
        points.val.assign(2, 0.0F);
        EXPECT_EQ(this->read(points, 4), success);
        EXPECT_EQ(points.val, (std::vector<float>{all.front(), all.back()}));
    }
}

TYPED_TEST(Matrices, part_beyond_the_matrix_is_refused)
{
    auto matrix = this->real();
    EXPECT_EQ(this->write(matrix), success);
    matrix.part = this->slab(matrix, 1, 1000);
    const Result slab = this->read(matrix, 3);
    EXPECT_EQ(slab.ierr, -6031);
    EXPECT_EQ(slab.output.err,
              "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, data_size, error: val 3 4 0\n");
    EXPECT_EQ(this->write(matrix).ierr, -6031);
    matrix.part = {2, {1}, std::vector<int64_t>(this->extents(matrix).size(), 1000)};
    EXPECT_EQ(this->read(matrix, 4).ierr, -6032);
    EXPECT_EQ(this->write(matrix).ierr, -6032);
}

TYPED_TEST(Matrices, mode_1_reads_attributes_and_mode_0_the_index_values_too)
{
    const auto written = this->real();
    EXPECT_EQ(this->write(written), success);
    auto attributes = emptied(written);
    EXPECT_EQ(this->read(attributes, 1), success);
    EXPECT_EQ(trimmed(attributes.etypvar), trimmed(written.etypvar));
    EXPECT_EQ(attributes.index.indexident, emptied(written).index.indexident);
    auto with_index = emptied(written);
    EXPECT_EQ(this->read(with_index, 0), success);
    EXPECT_EQ(with_index.index.indexident, written.index.indexident);
    EXPECT_EQ(with_index.index.indexval, written.index.indexval);
    EXPECT_EQ(with_index.val, emptied(written).val);
    EXPECT_EQ(with_index.found_flags, untouched);
}

TYPED_TEST(Matrices, unknown_mode_is_refused_with_both_keys_and_reads_nothing)
{
    const auto written = this->real();
    EXPECT_EQ(this->write(written), success);
    for (const int32_t mode : {5, -1}) {
        auto matrix = emptied(written);
        const std::string before = listing(matrix);
        EXPECT_EQ(this->read(matrix, mode),
                  failure(-3, "VAK INTERNAL ERROR reading block with key " + std::to_string(matrix.key) +
                                  " or " + std::to_string(matrix.key + 1) + "\n"));
        EXPECT_EQ(listing(matrix), before);
    }
}

TYPED_TEST(Matrices, invalid_group_is_told_as_a_missing_header)
{
    auto matrix = this->real();
    EXPECT_EQ(this->run([&] { return matrix.read(-5, 2); }), failure(-1, "VAK ERROR - header not found\n"));
}

TYPED_TEST(Matrices, file_that_is_none_ends_the_writer_with_the_opener_s_status)
{
    auto matrix = this->real();
    const Result result = this->run([&] { return matrix.write(-1); });
    EXPECT_LT(result.ierr, 0);
    EXPECT_EQ(result.output.err.substr(0, 31), "VAK ERROR - vak_h5gopen - code ");
}

TYPED_TEST(Matrices, index_of_no_values_places_it_under_constant_and_is_stored_as_no_dataset)
{
    auto matrix = this->real();
    matrix.index.nindex = 0;
    EXPECT_EQ(this->write(matrix), success);
    EXPECT_EQ(matrix.path().substr(0, 9), "constant/");
    EXPECT_EQ(H5Lexists(this->file, (this->val(matrix) + "x").c_str(), H5P_DEFAULT), 0);
    auto read_back = emptied(matrix);
    EXPECT_EQ(this->read(read_back, 2), success);
    EXPECT_EQ(read_back.val, matrix.val);
}

TYPED_TEST(Matrices, values_keep_lossy_compression_and_index_values_do_not)
{
    auto matrix = this->real();
    matrix.index.nindex = 8;
    matrix.index.indexident.assign(8, 1);
    matrix.index.indexval = {1.23456F, 2, 3, 4, 5, 6, 7, 8};
    matrix.flags = 128 | 2;
    matrix.params[0] = 1;
    matrix.params[1] = 6;
    EXPECT_EQ(this->write(matrix), success);
    const std::string where = this->is_legacy ? "data/" : "";
    EXPECT_THAT(this->stored(matrix),
                testing::HasSubstr("D " + where + "indexval float32 [8] chunked(8) deflate(6)"));
    if (matrix.val.size() >= 8) {
        EXPECT_THAT(this->stored(matrix), testing::HasSubstr("scaleoffset"));
    }
}

TYPED_TEST(Matrices, null_arrays_are_checked_and_not_delivered)
{
    const auto written = this->real();
    EXPECT_EQ(this->write(written), success);
    auto matrix = emptied(written);
    matrix.wants_arrays = false;
    EXPECT_EQ(this->read(matrix, 2), success);
    EXPECT_EQ(matrix.val, emptied(written).val);
}

TYPED_TEST(Matrices, another_kind_is_refused_with_both_keys)
{
    const auto written = this->real();
    EXPECT_EQ(this->write(written), success);
    const auto refused = [&](auto other) {
        other.found_at = written.path();
        return this->read(other, 2);
    };
    const auto line = [&](int32_t key) {
        return failure(-1, "VAK ERROR - wrong block key " + std::to_string(written.key) + ", " +
                               std::to_string(key) + " or " + std::to_string(key + 1) + " expected\n");
    };
    if (written.key != 10000) {
        EXPECT_EQ(refused(sample_of<DenseMatrix>(written.family)), line(10000));
    }
    if (written.key != 10100) {
        EXPECT_EQ(refused(sample_of<TriangularMatrix>(written.family)), line(10100));
    }
    if (written.key != 10200) {
        EXPECT_EQ(refused(sample_of<SparseMatrix>(written.family)), line(10200));
    }
}

}  // namespace

}  // namespace vak::test
