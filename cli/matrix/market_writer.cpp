#include <charconv>
#include <cstdio>
#include <string>

#include "matrix/matrix.h"
#include "problem.h"

namespace vak::matrix {

namespace {

const char* symmetry_word(Symmetry symmetry)
{
    constexpr const char* words[] = {"general", "symmetric", "skew-symmetric", "hermitian"};
    return words[static_cast<int32_t>(symmetry)];
}

// With as many digits as single precision needs.
void append(std::string& line, float value)
{
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::general);
    line.append(text, end);
}

}  // namespace

void write_market(const Matrix& matrix, const std::string& comment, std::FILE* file)
{
    std::fprintf(file, "%%%%MatrixMarket matrix %s %s %s\n%% %s\n%d %d",
                 matrix.array ? "array" : "coordinate", matrix.complex ? "complex" : "real",
                 symmetry_word(matrix.symmetry), comment.c_str(), matrix.rows, matrix.columns);
    if (!matrix.array) std::fprintf(file, " %zu", matrix.entries());
    std::fputc('\n', file);
    std::string line;
    for (size_t i = 0; i < matrix.entries(); ++i) {
        line.clear();
        if (!matrix.array)
            line += std::to_string(matrix.row[i] + 1) + " " + std::to_string(matrix.column[i] + 1) + " ";
        append(line, matrix.values[i * matrix.parts()]);
        if (matrix.complex) append(line += ' ', matrix.values[2 * i + 1]);
        line += '\n';
        std::fputs(line.c_str(), file);
    }
    if (std::fflush(file) != 0 || std::ferror(file))
        throw cli::Problem("the matrix could not be written; is the disk full?");
}

}  // namespace vak::matrix
