// Reads the result file of the CalculiX solver (.frd) block by block, ASCII short and long and binary.
// Whatever is not as it should be throws the problem with the line.
#pragma once

#include <optional>
#include <string>

#include "frd/records.h"
#include "text/lines.h"

namespace vak::frd {

class Reader {
public:
    explicit Reader(const std::string& path);

    // Goes to the next block of data, past what was not read of the present one.
    BlockKind next();

    // What the lines before the present block told.
    const Description& description() const { return description_; }
    // The parameter lines (1P...) that stand directly before the present block.
    const std::vector<std::string>& parameters() const { return parameters_; }
    // The head of the present result block.
    const ResultHead& result() const { return result_; }

    // Read the present block; nodes and elements are added to what the mesh has, values replace.
    void read_nodes(Mesh& mesh);
    void read_elements(Mesh& mesh);
    void read_values(Values& values);

private:
    enum class Format { ascii_short, ascii_long, binary_float, binary_double };

    // heads of blocks: reader.cpp
    void need_line(const char* missing);
    std::string_view need_record(const char* key, const char* missing);
    void open_block();
    BlockKind result_head();
    void component_line();
    void keep_stored_components();
    BlockKind end_of_file();
    int32_t column_number(std::string_view field, const char* what) const;

    // data of blocks: data.cpp
    bool binary() const { return format_ >= Format::binary_float; }
    size_t id_width() const { return format_ == Format::ascii_short ? 5 : 10; }
    // A binary block has no lines; its problems are told with the line of its head.
    [[noreturn]] void fail_record(const std::string& what) const
    {
        lines_.fail(what, binary() ? block_line_ : record_line_);
    }
    int32_t identifier(std::optional<int64_t> value, const char* what) const;
    void skip();
    bool next_record();
    bool next_ascii_record();
    bool next_binary_record(size_t reals);
    bool next_element(int32_t& type);
    bool next_binary_element(int32_t& type);
    void element_head(std::string_view body, int32_t& type);
    int32_t material_number(std::string_view text) const;
    void end_block();
    template <class T>
    T binary_value();

    text::Lines lines_;
    Description description_;
    std::vector<std::string> parameters_;
    ResultHead result_;

    // the present block
    BlockKind kind_ = BlockKind::end;
    Format format_ = Format::ascii_short;
    bool inside_ = false;  // not all of its data are taken
    int64_t block_line_ = 0;
    int64_t announced_ = -1;  // records in it, -1 when its head does not tell
    int64_t taken_ = 0;       // records taken

    // the present record
    int64_t record_line_ = 0;
    bool record_ahead_ = false;  // taken already, to be given again
    std::optional<int64_t> id_;
    std::vector<float> values_;
    int32_t group_ = 0, material_ = 0;
    std::vector<int64_t> nodes_;
};

}  // namespace vak::frd
