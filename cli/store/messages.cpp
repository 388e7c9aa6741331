#include "store/messages.h"

#include <cstdlib>
#include <new>

namespace vak::store {

// In the C library of Debian stderr is a variable that may be set.
LibraryMessages::LibraryMessages() : kept_(open_memstream(&printed_, &length_)), original_(stderr)
{
    if (kept_ == nullptr) throw std::bad_alloc();
    stderr = kept_;
}

LibraryMessages::~LibraryMessages()
{
    stderr = original_;
    std::fclose(kept_);
    std::free(printed_);
}

std::string LibraryMessages::text(int32_t status)
{
    std::fflush(kept_);
    std::string line;
    for (const char c : std::string(printed_, length_)) {
        const bool blank = c == '\n' || c == ' ';
        if (!blank)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    if (!line.empty() && line.back() == ' ') line.pop_back();
    return line.empty() ? "status " + std::to_string(status) : line;
}

}  // namespace vak::store
