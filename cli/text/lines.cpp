#include "text/lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "problem.h"

namespace vak::text {

namespace {

constexpr size_t buffer_size = size_t{1} << 18;  // also the longest line taken

std::string_view without_trailing_blanks(std::string_view text)
{
    const size_t last = text.find_last_not_of(" \t\r");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace

Lines::Lines(std::string path)
    : path_(std::move(path)), file_(std::fopen(path_.c_str(), "rb"), &std::fclose), buffer_(buffer_size)
{
    if (!file_) throw cli::Problem(path_ + ": cannot be read (" + std::strerror(errno) + ")");
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

void Lines::fail(const std::string& what, int64_t line) const
{
    throw cli::Problem(path_ + ", line " + std::to_string(line) + ": " + what);
}

// Moves what is left to the front and fills the rest; false when nothing could be added.
bool Lines::refill()
{
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    const size_t taken = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_.get());
    if (taken == 0 && std::ferror(file_.get()))
        throw cli::Problem(path_ + ": cannot be read (" + std::strerror(errno) + ")");
    end_ += taken;
    return taken > 0;
}

bool Lines::next()
{
    if (again_) {
        again_ = false;
        return true;
    }
    const void* line_end = nullptr;
    size_t searched = 0;
    while (!(line_end = std::memchr(buffer_.data() + begin_ + searched, '\n', end_ - begin_ - searched))) {
        searched = end_ - begin_;
        if (searched == buffer_.size()) fail("the line is too long for a text file", number_ + 1);
        if (!refill()) break;
    }
    if (begin_ == end_) return false;
    const char* from = buffer_.data() + begin_;
    const size_t length =
        line_end ? static_cast<size_t>(static_cast<const char*>(line_end) - from) : end_ - begin_;
    begin_ += length + (line_end ? 1 : 0);
    text_ = without_trailing_blanks({from, length});
    ++number_;
    return true;
}

bool Lines::bytes(void* to, size_t count)
{
    auto* out = static_cast<char*>(to);
    while (count > 0) {
        if (begin_ == end_ && !refill()) return false;
        const size_t part = std::min(count, end_ - begin_);
        std::memcpy(out, buffer_.data() + begin_, part);
        begin_ += part;
        out += part;
        count -= part;
    }
    return true;
}

}  // namespace vak::text
