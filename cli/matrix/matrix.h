// A matrix as its entries, and its two forms outside memory: Matrix Market files and blocks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "store/catalogue.h"
#include "store/file.h"

namespace vak::matrix {

// What the entries above the diagonal are, when only the others are given. Stored as these numbers.
enum class Symmetry : int32_t { general = 0, symmetric = 1, skew = 2, hermitian = 3 };

struct Matrix {
    int32_t rows = 0, columns = 0;
    bool complex = false;
    Symmetry symmetry = Symmetry::general;
    bool array = false;  // every entry is given (of a symmetric matrix: on and below the diagonal)
    std::vector<int32_t> row, column;  // of each entry, from 0
    std::vector<float> values;         // one or, complex, two for each entry

    size_t entries() const { return row.size(); }
    size_t parts() const { return complex ? 2 : 1; }
};

// market_reader.cpp, market_writer.cpp
Matrix read_market(const std::string& path);
void write_market(const Matrix& matrix, const std::string& comment, std::FILE* file);

// to_block.cpp: below the group of the file, as constant/<kind>matrix/<name>. Kind is sparse, triangular or
// dense.
void write_block(const Matrix& matrix, const std::string& kind, const std::string& name,
                 const store::File& file);

// from_block.cpp
bool is_matrix(int32_t key);
Matrix read_block(const store::File& file, store::Layout layout, const store::BlockEntry& entry);

// The same matrix with every entry given and no symmetry.
Matrix unfolded(const Matrix& matrix);

}  // namespace vak::matrix
