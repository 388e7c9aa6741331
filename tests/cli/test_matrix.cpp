// Matrix Market files in and out, as a user calls it.
#include <gmock/gmock.h>
#include <vak_sp.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <sstream>
#include <vector>

#include "cli/deck.h"
#include "cli/frd_text.h"
#include "cli/program.h"
#include "store/call.h"
#include "store/file.h"

using namespace vak::test;
using nlohmann::json;
using testing::HasSubstr;
using vak::store::Int;

namespace {

constexpr int32_t no_parameters[2] = {};

class MatrixMarket : public testing::Test {
protected:
    Said import(const std::string& kind, const std::string& text)
    {
        write_text(mtx, text);
        return vak_says({"import", "--matrix", kind, mtx, "-o", h5});
    }

    std::string exported(const std::string& path)
    {
        const Said said = vak_says({"export", h5, "--matrix", path});
        EXPECT_EQ(said.status, 0) << said;
        return said.out;
    }

    // What comes out when the text goes in.
    std::string round_trip(const std::string& kind, const std::string& text)
    {
        const Said said = import(kind, text);
        EXPECT_EQ(said, (Said{.status = 0, .out = "", .err = ""}));
        return exported(kind + "matrix/K");
    }

    // Two rows with the values 1, 2, ..., as a program may write them.
    void store_matrix(decltype(&VAK_WRITE_SPARSEMATRIX) write, const std::vector<int32_t>& colind,
                      const std::vector<int64_t>& rowptr, int32_t symmetric = 0)
    {
        vak::store::File file = vak::store::File::create(h5, "model");
        const auto nnz = static_cast<int64_t>(colind.size());
        std::vector<float> values(colind.size());
        std::iota(values.begin(), values.end(), 1.0F);
        vak::store::call("writing", write, file.root(), "", Int{-1}, "K", Int{2}, &nnz, Int{0},
                         Int{symmetric}, nullptr, nullptr, colind.data(), rowptr.data(), values.data(),
                         Int{-1}, Int{0}, no_parameters, Int{4}, Int{0}, nullptr, nullptr);
        file.close();
    }

    json shown(const std::string& path)
    {
        return json::parse(vak_says({"show", "--json", "--all", h5, path}).out)["blocks"][0];
    }

    // The line of the problem in the text.
    std::string problem(const std::string& kind, const std::string& text)
    {
        const Said said = import(kind, text);
        EXPECT_EQ(said.status, 2) << said;
        EXPECT_FALSE(std::filesystem::exists(h5));
        EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
        const std::string before = "vak import: " + mtx;
        return said.err.starts_with(before) ? said.err.substr(before.size()) : said.err;
    }

    TempFolder folder;
    std::string mtx = folder.file("K.mtx"), h5 = folder.file("K.h5");
};

std::string banner(const std::string& words, const std::string& kind)
{
    return "%%MatrixMarket matrix " + words + "\n% constant/" + kind + "matrix/K/vakblock\n";
}

// The entries of a coordinate file by row and column.
std::map<std::pair<int, int>, float> entries(const std::string& text)
{
    std::map<std::pair<int, int>, float> found;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line) && line.starts_with('%')) {
    }
    int row = 0, column = 0;
    std::string value;
    while (lines >> row >> column >> value) found[{row, column}] = std::strtof(value.c_str(), nullptr);
    return found;
}

}  // namespace

TEST_F(MatrixMarket, a_general_matrix_comes_back_row_by_row)
{
    EXPECT_EQ(round_trip("sparse",
                         "%%MatrixMarket matrix coordinate real general\n% a comment\n\n3 3 4\n"
                         "3 1 -2.5\n1 1 1e10\n  1\t3   0.1  \n\n2 2 0\n"),
              banner("coordinate real general", "sparse") + "3 3 4\n1 1 1e+10\n1 3 0.1\n2 2 0\n3 1 -2.5\n");
    const json block = shown("sparsematrix/K");
    EXPECT_EQ(block["attributes"],
              (json{{"etypvar", "K"}, {"nrow", 3}, {"nnz", 4}, {"nindex", 0}, {"indexic", 0}}));
    EXPECT_EQ(block["arrays"]["rowptr"]["values"], (json{0, 2, 3, 4}));
    EXPECT_EQ(block["arrays"]["colind"]["values"], (json{0, 2, 1, 0}));
}

TEST_F(MatrixMarket, a_symmetric_matrix_is_stored_in_full_and_comes_back_folded)
{
    const std::string entries = "3 3 3\n1 1 2\n3 1 -1\n3 3 4\n";
    EXPECT_EQ(round_trip("sparse", "%%MatrixMarket matrix coordinate real symmetric\n" + entries),
              banner("coordinate real symmetric", "sparse") + entries);
    const json block = shown("sparsematrix/K");
    EXPECT_EQ(block["attributes"]["nnz"], 4);
    EXPECT_EQ(block["attributes"]["indexic"], 1);
    EXPECT_EQ(block["arrays"]["colind"]["values"], (json{0, 2, 0, 2}));
    EXPECT_EQ(block["arrays"]["val"]["values"], (json{2, -1, -1, 4}));
}

TEST_F(MatrixMarket, skew_and_hermitian_matrices_come_back_as_they_went_in)
{
    const std::string skew = "3 3 2\n2 1 5\n3 2 -7\n", hermitian = "2 2 2\n1 1 3 0\n2 1 1 -2\n";
    EXPECT_EQ(round_trip("sparse", "%%MatrixMarket matrix coordinate real skew-symmetric\n" + skew),
              banner("coordinate real skew-symmetric", "sparse") + skew);
    EXPECT_EQ(shown("sparsematrix/K")["arrays"]["val"]["values"], (json{-5, 5, 7, -7}));
    EXPECT_EQ(round_trip("sparse", "%%MatrixMarket matrix coordinate complex hermitian\n" + hermitian),
              banner("coordinate complex hermitian", "sparse") + hermitian);
    EXPECT_EQ(shown("sparsematrix/K")["key"], 10201);
    EXPECT_EQ(shown("sparsematrix/K")["arrays"]["val"]["values"], (json{3, 0, 1, 2, 1, -2}));
}

TEST_F(MatrixMarket, entries_at_one_place_stay_apart_in_a_sparse_block_and_are_summed_in_a_full_one)
{
    const std::string twice = "%%MatrixMarket matrix coordinate real general\n1 1 2\n1 1 2\n1 1 3\n";
    EXPECT_THAT(round_trip("sparse", twice), HasSubstr("1 1 2\n1 1 2\n1 1 3\n"));
    EXPECT_THAT(round_trip("dense", twice), HasSubstr("1 1\n5\n"));
}

TEST_F(MatrixMarket, patterns_and_integers_become_reals)
{
    EXPECT_THAT(round_trip("sparse", "%%MatrixMarket matrix coordinate pattern general\n2 2 1\n2 1\n"),
                HasSubstr("\n2 1 1\n"));
    EXPECT_THAT(round_trip("sparse", "%%MatrixMarket matrix coordinate integer general\n2 2 1\n2 1 -12\n"),
                HasSubstr("\n2 1 -12\n"));
}

TEST_F(MatrixMarket, an_array_of_any_shape_is_a_dense_block)
{
    const std::string values = "2 3\n1\n2\n3\n4\n5\n6\n";
    EXPECT_EQ(round_trip("dense", "%%MatrixMarket matrix array real general\n" + values),
              banner("array real general", "dense") + values);
    const json block = shown("densematrix/K");
    EXPECT_EQ(block["attributes"]["ncolumn"], 3);
    EXPECT_EQ(block["arrays"]["val"]["values"], (json{1, 3, 5, 2, 4, 6})) << "row by row";
}

TEST_F(MatrixMarket, a_complex_array_is_a_complex_dense_block)
{
    const std::string values = "1 2\n1 -1\n0.5 2\n";
    EXPECT_EQ(round_trip("dense", "%%MatrixMarket matrix array complex general\n" + values),
              banner("array complex general", "dense") + values);
    EXPECT_EQ(shown("densematrix/K")["key"], 10001);
}

TEST_F(MatrixMarket, a_sparse_file_fills_a_dense_block_with_zeros)
{
    EXPECT_EQ(round_trip("dense", "%%MatrixMarket matrix coordinate real symmetric\n2 2 1\n2 1 3\n"),
              banner("array real general", "dense") + "2 2\n0\n3\n3\n0\n");
}

TEST_F(MatrixMarket, a_triangular_block_is_the_lower_triangle_row_by_row)
{
    const std::string values = "3 3\n11\n21\n31\n22\n32\n33\n";
    EXPECT_EQ(round_trip("triangular", "%%MatrixMarket matrix array real symmetric\n" + values),
              banner("array real symmetric", "triangular") + values);
    const json block = shown("triangularmatrix/K");
    EXPECT_EQ(block["attributes"]["nsize"], 3);
    EXPECT_EQ(block["attributes"]["matrixtype"], 1);
    EXPECT_EQ(block["arrays"]["val"]["values"], (json{11, 21, 22, 31, 32, 33}));
}

TEST_F(MatrixMarket, skew_and_hermitian_triangles_come_back)
{
    const std::string skew = "3 3\n21\n31\n32\n", hermitian = "2 2\n1 0\n2 -3\n4 0\n";
    EXPECT_EQ(round_trip("triangular", "%%MatrixMarket matrix array real skew-symmetric\n" + skew),
              banner("array real skew-symmetric", "triangular") + skew);
    EXPECT_EQ(round_trip("triangular", "%%MatrixMarket matrix array complex hermitian\n" + hermitian),
              banner("array complex hermitian", "triangular") + hermitian);
}

TEST_F(MatrixMarket, a_matrix_without_entries_comes_back)
{
    const std::string empty = "2 2 0\n";
    EXPECT_EQ(round_trip("sparse", "%%MatrixMarket matrix coordinate real general\n" + empty),
              banner("coordinate real general", "sparse") + empty);
}

TEST_F(MatrixMarket, several_matrices_go_into_one_file_under_their_names)
{
    write_text(mtx, "%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 2\n");
    write_text(folder.file("M.mtx"), "%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 3\n");
    EXPECT_EQ(vak_says({"import", "--matrix", "sparse", mtx, folder.file("M.mtx"), "-o", h5}).status, 0);
    EXPECT_THAT(exported("sparsematrix/M"), HasSubstr("\n1 1 3\n"));
    EXPECT_EQ(vak_says({"export", h5, "--matrix", "sparse"}).err,
              "vak export: " + h5 + ": more than one matrix matches sparse; give a whole path\n");
    EXPECT_THAT(vak_says({"import", "--matrix", "dense", mtx, mtx, "-o", h5}).err,
                HasSubstr("there is another matrix of that name"));
}

TEST_F(MatrixMarket, an_export_to_a_file_is_complete_or_not_there)
{
    import("sparse", "%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 2\n");
    const std::string out = folder.file("out.mtx");
    EXPECT_EQ(vak_says({"export", h5, "--matrix", "K", "-o", out}),
              (Said{.status = 0, .out = "", .err = ""}));
    EXPECT_EQ(contents(out), exported("K"));
    EXPECT_EQ(vak_says({"export", h5, "--matrix", "none", "-o", folder.file("no.mtx")}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(folder.file("no.mtx")));
    EXPECT_EQ(vak_says({"export", h5}).err,
              "vak export: --matrix is required (vak export --help tells the usage)\n");
}

TEST_F(MatrixMarket, legacy_blocks_and_indices_from_1_are_exported)
{
    store_matrix(VAK1_WRITE_SPARSEMATRIX, {1, 2, 2}, {1, 3, 4});
    EXPECT_THAT(exported("sparsematrix/K"), HasSubstr("\n2 2 3\n1 1 1\n1 2 2\n2 2 3\n"));
}

TEST_F(MatrixMarket, a_block_marked_symmetric_that_is_not_is_exported_in_full)
{
    store_matrix(VAK_WRITE_SPARSEMATRIX, {1, 0}, {0, 1, 2}, 1);
    EXPECT_THAT(exported("sparsematrix/K"), HasSubstr("coordinate real general\n"));
}

TEST_F(MatrixMarket, a_damaged_block_is_told_in_one_line)
{
    store_matrix(VAK_WRITE_SPARSEMATRIX, {1, 0}, {0, 2, 1});
    EXPECT_EQ(
        vak_says({"export", h5, "--matrix", "K"}),
        (Said{
            .status = 2,
            .out = "",
            .err =
                "vak export: constant/sparsematrix/K/vakblock: rowptr does not lead through the entries; the "
                "block is damaged\n"}));
}

TEST_F(MatrixMarket, what_cannot_be_read_is_told_with_its_line)
{
    const std::string general = "%%MatrixMarket matrix coordinate real general\n";
    EXPECT_THAT(problem("sparse", ""), HasSubstr(", line 1: no Matrix Market file"));
    EXPECT_THAT(problem("sparse", "1 1 1\n"), HasSubstr(", line 1: no Matrix Market file"));
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix cube real general\n"),
                HasSubstr(", line 1: the form is neither"));
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix array pattern general\n"),
                HasSubstr(", line 1: the values are neither"));
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix array real odd\n"),
                HasSubstr(", line 1: the symmetry is neither"));
    EXPECT_EQ(problem("sparse", general), ", line 1: the file ends before the sizes\n");
    EXPECT_EQ(problem("sparse", general + "1 1\n"), ", line 2: the sizes cannot be read\n");
    EXPECT_EQ(problem("sparse", general + "-1 1 1\n"), ", line 2: -1 is no integer from 0 to 2147483646\n");
    EXPECT_EQ(problem("sparse", general + "1 1 1\n"), ", line 2: the file ends before entry 1 of 1\n");
    EXPECT_EQ(problem("sparse", general + "2 2 1\n3 1 5\n"), ", line 3: 3 is no integer from 1 to 2\n");
    EXPECT_EQ(problem("sparse", general + "2 2 1\n1 1\n"), ", line 3: the entry cannot be read\n");
    EXPECT_EQ(problem("sparse", general + "2 2 1\n1 1 x\n"),
              ", line 3: x is no number of single precision\n");
    EXPECT_EQ(problem("sparse", general + "2 2 1\n1 1 1e39\n"),
              ", line 3: 1e39 is no number of single precision\n");
    EXPECT_EQ(problem("sparse", general + "2 2 1\n1 1 1\n2 2 2\n"),
              ", line 4: more entries than the sizes tell\n");
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix coordinate real symmetric\n2 2 1\n1 2 1\n"),
                HasSubstr(", line 3: an entry that follows from the symmetry"));
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix coordinate real symmetric\n2 3 1\n1 2 1\n"),
                HasSubstr(", line 2: a matrix with a symmetry has as many rows as columns"));
}

TEST_F(MatrixMarket, a_kind_that_cannot_hold_the_matrix_says_which_can)
{
    EXPECT_THAT(problem("sparse", "%%MatrixMarket matrix coordinate real general\n2 3 0\n"),
                HasSubstr("use --matrix dense"));
    EXPECT_THAT(problem("triangular", "%%MatrixMarket matrix coordinate real general\n2 2 0\n"),
                HasSubstr("use --matrix dense or sparse"));
    EXPECT_EQ(vak_says({"import", "--matrix", "round", mtx, "-o", h5}).status, 2);
}

// The stiffness and mass of a cantilever beam, 720 degrees of freedom, as the solver assembles them.
TEST_F(MatrixMarket, the_matrices_of_the_solver_come_back_from_every_kind)
{
    if (!solver_is_installed() || !deck_is_there("beamf")) GTEST_SKIP() << solver_is_missing("beamf");
    solve(folder, "beamf", "s/^\\*FREQUENCY.*/*FREQUENCY,SOLVER=MATRIXSTORAGE/I");
    for (const std::string extension : {".sti", ".mas"}) {
        std::string text;
        size_t count = 0;
        std::istringstream lines(contents(folder.file("beamf" + extension)));
        for (std::string row, column, value; lines >> row >> column >> value; ++count)
            text += column + " " + row + " " + value + "\n";  // the solver writes the upper triangle
        ASSERT_GT(count, 30000U);
        text =
            "%%MatrixMarket matrix coordinate real symmetric\n720 720 " + std::to_string(count) + "\n" + text;
        const auto expected = entries(text);
        const std::string sparse = round_trip("sparse", text);
        EXPECT_THAT(sparse, testing::StartsWith("%%MatrixMarket matrix coordinate real symmetric\n"));
        EXPECT_EQ(entries(sparse.substr(sparse.find("\n720") + 5 + std::to_string(count).size() + 4)),
                  expected);
        for (const std::string kind : {"triangular", "dense"}) {
            std::istringstream values(round_trip(kind, text));
            for (std::string line; std::getline(values, line) && line != "720 720";) {
            }
            for (int column = 1; column <= 720; ++column)
                for (int row = kind == "dense" ? 1 : column; row <= 720; ++row) {
                    std::string value;
                    values >> value;
                    const auto at = expected.find({std::max(row, column), std::min(row, column)});
                    ASSERT_EQ(std::strtof(value.c_str(), nullptr), at == expected.end() ? 0 : at->second)
                        << kind << ' ' << row << ' ' << column;
                }
        }
    }
}
