// A file read forward once: numbered text lines, and the bytes of binary blocks between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vak::text {

class Lines {
public:
    explicit Lines(std::string path);

    // Takes the next line; false at the end of the file.
    bool next();
    // Makes the next call of next() give the present line again.
    void put_back() { again_ = true; }
    // The present line without its end, valid until the next call; trailing blanks are cut.
    std::string_view text() const { return text_; }
    int64_t number() const { return number_; }

    // Takes the given number of bytes that follow the present line; false when the file ends before.
    bool bytes(void* to, size_t count);

    // Throws the problem with the file's name and the line.
    [[noreturn]] void fail(const std::string& what) const { fail(what, number_); }
    [[noreturn]] void fail(const std::string& what, int64_t line) const;

private:
    bool refill();

    std::string path_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    std::vector<char> buffer_;
    size_t begin_ = 0, end_ = 0;  // what of the buffer is not taken yet
    std::string_view text_;
    int64_t number_ = 0;
    bool again_ = false;
};

}  // namespace vak::text
