#include "store/open_files.h"

#include <sys/resource.h>

#include <algorithm>

namespace vak::store {

namespace {

constexpr rlim_t always_open = 32;  // standard streams, libraries, the output

}  // namespace

size_t allow_open_files(size_t wanted)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return wanted;
    const rlim_t needed = wanted + always_open;
    if (limit.rlim_cur < needed && limit.rlim_cur < limit.rlim_max) {
        rlimit raised = limit;
        raised.rlim_cur = std::min(needed, limit.rlim_max);
        if (setrlimit(RLIMIT_NOFILE, &raised) == 0) limit = raised;
    }
    return limit.rlim_cur > always_open ? static_cast<size_t>(limit.rlim_cur - always_open) : 1;
}

}  // namespace vak::store
