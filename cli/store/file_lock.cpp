#include "store/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vak::store {

namespace {

int open_regular(const std::string& file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat info {};
    if (descriptor < 0 || (fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode))) return descriptor;
    ::close(descriptor);
    return -1;
}

}  // namespace

bool is_in_use(const std::string& file, Use use)
{
    const int descriptor = open_regular(file);
    if (descriptor < 0) return false;
    const bool busy =
        flock(descriptor, (use == Use::writing ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(descriptor);
    return busy;
}

ReadLock::ReadLock(const std::string& file)
    : descriptor_(open_regular(file)), held_(descriptor_ >= 0 && flock(descriptor_, LOCK_SH | LOCK_NB) == 0)
{
}

ReadLock::~ReadLock()
{
    if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace vak::store
