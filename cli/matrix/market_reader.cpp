// Reads a Matrix Market file: the banner, comments, the sizes, then an entry a line (coordinate) or a value a
// line, column after column (array).
#include <algorithm>
#include <cctype>
#include <limits>

#include "matrix/matrix.h"
#include "text/lines.h"
#include "text/numbers.h"

namespace vak::matrix {

namespace {

using Words = std::vector<std::string_view>;

Words words_of(std::string_view line)
{
    constexpr const char* blanks = " \t";
    Words words;
    for (size_t at = line.find_first_not_of(blanks); at < line.size();
         at = line.find_first_not_of(blanks, at)) {
        const size_t end = std::min(line.find_first_of(blanks, at), line.size());
        words.push_back(line.substr(at, end - at));
        at = end;
    }
    return words;
}

class Market {
public:
    explicit Market(const std::string& path) : lines_(path) {}

    Matrix read()
    {
        banner();
        sizes();
        while (matrix_.entries() < static_cast<size_t>(count_)) {
            next_line("entry " + std::to_string(matrix_.entries() + 1) + " of " + std::to_string(count_));
            if (matrix_.array)
                array_value();
            else
                coordinate();
        }
        while (lines_.next())
            if (!lines_.text().empty()) lines_.fail("more entries than the sizes tell");
        return std::move(matrix_);
    }

private:
    void banner()
    {
        const bool any = lines_.next();
        std::string line(any ? lines_.text() : "");
        std::transform(line.begin(), line.end(), line.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        const Words words = words_of(line);
        if (words.size() != 5 || words[0] != "%%matrixmarket" || words[1] != "matrix")
            lines_.fail("no Matrix Market file: it does not begin with %%MatrixMarket matrix and three words",
                        1);
        matrix_.array = words[2] == "array";
        if (!matrix_.array && words[2] != "coordinate")
            lines_.fail("the form is neither coordinate nor array");
        matrix_.complex = words[3] == "complex";
        pattern_ = words[3] == "pattern" && !matrix_.array;
        if (!matrix_.complex && !pattern_ && words[3] != "real" && words[3] != "integer")
            lines_.fail("the values are neither real, integer, complex nor (coordinate) pattern");
        const std::vector<std::string_view> known{"general", "symmetric", "skew-symmetric", "hermitian"};
        const auto at = std::find(known.begin(), known.end(), words[4]);
        if (at == known.end())
            lines_.fail("the symmetry is neither general, symmetric, skew-symmetric nor hermitian");
        matrix_.symmetry = static_cast<Symmetry>(at - known.begin());
    }

    // The next line that is not blank, nor a comment.
    void next_line(const std::string& missing)
    {
        do {
            if (!lines_.next()) lines_.fail("the file ends before " + missing);
            words_ = words_of(lines_.text());
        } while (words_.empty() || words_[0].starts_with('%'));
    }

    int32_t number(size_t word, int64_t least, int64_t most) const
    {
        const auto value = text::integer(words_[word]);
        if (!value || *value < least || *value > most)
            lines_.fail(std::string(words_[word]) + " is no integer from " + std::to_string(least) + " to " +
                        std::to_string(most));
        return static_cast<int32_t>(*value);
    }

    void sizes()
    {
        next_line("the sizes");
        if (words_.size() != (matrix_.array ? 2U : 3U)) lines_.fail("the sizes cannot be read");
        constexpr int64_t most = std::numeric_limits<int32_t>::max() - 1;
        matrix_.rows = number(0, 0, most);
        matrix_.columns = number(1, 0, most);
        if (matrix_.symmetry != Symmetry::general && matrix_.rows != matrix_.columns)
            lines_.fail("a matrix with a symmetry has as many rows as columns");
        count_ = matrix_.array ? array_count() : text::integer(words_[2]).value_or(-1);
        if (count_ < 0) lines_.fail("the number of entries cannot be read");
        row_ = first_row(0);
    }

    bool skew() const { return matrix_.symmetry == Symmetry::skew; }

    // The first entry of a column that an array gives.
    int32_t first_row(int32_t column) const
    {
        return matrix_.symmetry == Symmetry::general ? 0 : column + (skew() ? 1 : 0);
    }

    int64_t array_count() const
    {
        const int64_t n = matrix_.rows;
        if (matrix_.symmetry == Symmetry::general) return n * matrix_.columns;
        return skew() ? n * (n - 1) / 2 : n * (n + 1) / 2;
    }

    void values(size_t first)
    {
        if (words_.size() != first + (pattern_ ? 0 : matrix_.parts()))
            lines_.fail("the entry cannot be read");
        if (pattern_) matrix_.values.push_back(1);
        for (size_t word = first; word < words_.size(); ++word) {
            const auto value = text::real(words_[word]);
            if (!value) lines_.fail(std::string(words_[word]) + " is no number of single precision");
            matrix_.values.push_back(*value);
        }
    }

    void coordinate()
    {
        if (words_.size() < 2) lines_.fail("the entry cannot be read");
        const int32_t row = number(0, 1, matrix_.rows), column = number(1, 1, matrix_.columns);
        if (matrix_.symmetry != Symmetry::general && (row < column || (skew() && row == column)))
            lines_.fail("an entry that follows from the symmetry; only those below the diagonal are given" +
                        std::string(skew() ? "" : ", and those on it"));
        matrix_.row.push_back(row - 1);
        matrix_.column.push_back(column - 1);
        values(2);
    }

    void array_value()
    {
        matrix_.row.push_back(row_);
        matrix_.column.push_back(column_);
        values(0);
        if (++row_ < matrix_.rows) return;
        ++column_;
        row_ = first_row(column_);
    }

    text::Lines lines_;
    Words words_;
    Matrix matrix_;
    bool pattern_ = false;
    int64_t count_ = 0;
    int32_t row_ = 0, column_ = 0;  // of the next value of an array
};

}  // namespace

Matrix read_market(const std::string& path) { return Market(path).read(); }

}  // namespace vak::matrix
