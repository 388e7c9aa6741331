// What stands at a path, asked without blocking and without changing it.
#include "frame/file_probe.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vak {

FileProbe::FileProbe(const std::string& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
{
}

FileProbe::~FileProbe()
{
    if (readable()) ::close(descriptor_);
}

bool FileProbe::regular() const
{
    struct stat status {};
    return readable() && fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
}

// HDF5 locks every file that it opens: shared to read, exclusively to write. The lock taken here goes with
// the descriptor; where the file system has no locks nobody can be asked.
bool FileProbe::in_use() const { return flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; }

}  // namespace vak
