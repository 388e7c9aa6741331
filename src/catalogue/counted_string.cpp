// Character fields that are blank padded or end at a zero byte, for callers of the library.
#include <algorithm>
#include <cstring>

#include "frame/paths.h"
#include "vak_sp.h"

namespace vak {

namespace {

std::string_view significant(const char* field, int32_t n)
{
    return n < 1 ? std::string_view() : counted(field, static_cast<size_t>(n));
}

}  // namespace

}  // namespace vak

// Exported routines.
// clang-format off

int32_t VAK_strlen(const char* field, int32_t n)
{
    return static_cast<int32_t>(vak::significant(field, n).size());
}

int32_t VAK_strncmp(const char* a, const char* b, int32_t n)
{
    const std::string_view left = vak::significant(a, n), right = vak::significant(b, n);
    const int32_t order = std::strncmp(a, b, std::min(left.size(), right.size()));
    return order != 0 ? order : static_cast<int32_t>(left.size()) - static_cast<int32_t>(right.size());
}

int32_t VAK_putc(const char* field, int32_t n, FILE* stream)
{
    int32_t written = 0;
    for (const char c : vak::significant(field, n)) written += std::fputc(c, stream) == EOF ? 0 : 1;
    return written;
}
