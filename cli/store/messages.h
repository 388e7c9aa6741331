// The library's lines on standard error, kept so that they become part of our one line.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace vak::store {

// While it lives, what is printed to stderr is kept; what goes to the descriptor directly is not touched.
class LibraryMessages {
public:
    LibraryMessages();
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;
    ~LibraryMessages();

    // Everything printed so far as one line, or the status when nothing was.
    std::string text(int32_t status);

private:
    char* printed_ = nullptr;
    size_t length_ = 0;
    std::FILE* kept_;
    std::FILE* original_;
};

}  // namespace vak::store
