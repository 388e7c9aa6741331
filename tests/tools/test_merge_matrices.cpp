// Matrices of several domains: those of the lowest file, with a warning where another one differs.
#include <gtest/gtest.h>

#include "samples/densematrix.h"
#include "samples/sparsematrix.h"
#include "samples/triangularmatrix.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeMatrices : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeMatrices() : MergeTest(GetParam()) {}

    template <class S>
    std::vector<float> merged(const S& sample) const
    {
        return dataset_values<float>(target(), sample.path() + data() + "val");
    }
    template <class S>
    void merge_two(const S& first, const S& second)
    {
        restart();
        EXPECT_EQ(first.write(add_domain()), 0);
        EXPECT_EQ(second.write(add_domain()), 0);
        EXPECT_EQ(merge(1 + 4), 0);
        EXPECT_EQ(merged(first), first.val);
        EXPECT_THAT(printed().out, testing::HasSubstr(" target file: create 1 merged \"" +
                                                      std::string(S::type) + "\" block(s)\n"));
    }
    template <class S>
    void expect_warning(const S& first, const S& second)
    {
        merge_two(first, second);
        EXPECT_THAT(
            printed().err,
            testing::EndsWith("VAK WARNING file [1]: block key " + std::to_string(S::key) + " \"" +
                              first.path() + "\" differs in its contents from file [0] and is left out\n"));
    }
    template <class S>
    void expect_no_warning(const S& first, const S& second)
    {
        merge_two(first, second);
        EXPECT_THAT(printed().err, testing::Not(testing::HasSubstr("left out")));
    }
    template <class S>
    void check_kind()
    {
        const auto first = sample_of<S>(family());
        auto other = first;
        expect_no_warning(first, other);
        other.val.back() += 1;
        expect_warning(first, other);
        other = first;
        other.index.indexval[0] += 1;
        expect_warning(first, other);
    }
};

TEST_P(MergeMatrices, are_those_of_the_lowest_file)
{
    check_kind<DenseMatrix>();
    check_kind<TriangularMatrix>();
    check_kind<SparseMatrix>();
}

TEST_P(MergeMatrices, of_another_size_are_left_out_with_a_warning)
{
    const auto first = sample_of<DenseMatrix>(family());
    auto other = first;
    other.nrow = 3;
    other.ncolumn = 2;
    expect_warning(first, other);
}

TEST_P(MergeMatrices, that_only_a_later_file_has_are_copied_from_it)
{
    const auto matrix = sample_of<DenseMatrix>(family());
    add_domain();
    EXPECT_EQ(matrix.write(add_domain()), 0);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(merged(matrix), matrix.val);
}

TEST_P(MergeMatrices, written_in_pieces_with_holes_are_compared_as_they_read)
{
    const auto first = sample_of<DenseMatrix>(family());
    EXPECT_EQ(first.write(add_domain()), 0);
    const hid_t second = add_domain();
    EXPECT_EQ(first.write(second), 0);
    const std::string path = first.path() + data() + "val";
    H5Ldelete(second, path.c_str(), H5P_DEFAULT);
    EXPECT_EQ(merge(), 0);
    EXPECT_THAT(printed().err, testing::HasSubstr("differs in its contents"));
    EXPECT_EQ(merged(first), first.val);
}

TEST_P(MergeMatrices, with_many_rows_are_compared_to_the_end)
{
    auto first = sample_of<DenseMatrix>(family());
    first.nrow = 3000;
    first.ncolumn = 2000;  // 24 MB, compared in pieces
    first.val.assign(size_t{3000} * 2000, 0.5F);
    auto other = first;
    other.val.back() = 1;
    expect_warning(first, other);
}

INSTANTIATE_TEST_SUITE_P(, MergeMatrices, both_families, family_name);

}  // namespace
