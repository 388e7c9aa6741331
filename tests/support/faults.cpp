#include "support/faults.h"

#include <dlfcn.h>
#include <hdf5.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>

namespace vak::test {

void Disk::fail(Fault kind, long write)
{
    *this = Disk();
    fault = kind;
    at = write;
}

Disk& disk()
{
    static Disk* const shared =
        new (mmap(nullptr, sizeof(Disk), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Disk();
    return *shared;
}

namespace {

// What becomes of the write that is asked for now.
Fault fate()
{
    Disk& d = disk();
    const long now = d.writes++;
    if (d.fault == Fault::none || now < d.at) return Fault::none;
    if (now > d.at) return d.fault == Fault::full_from_here ? d.fault : Fault::none;
    d.hit = true;
    d.hit_in_flush = d.flushing > 0;
    if (d.fault == Fault::killed) raise(SIGKILL);
    return d.fault;
}

ssize_t refused(int error)
{
    errno = error;
    return -1;
}

ssize_t write_on(int file, const void* bytes, size_t count, off_t at)
{
    const auto room = static_cast<size_t>(std::max(disk().end - at, off_t{0}));
    if (count > 0 && room == 0) return refused(ENOSPC);
    return syscall(SYS_pwrite64, file, bytes, std::min(count, room), at);
}

// Half of it, in whole numbers.
size_t half(size_t count) { return count / 2 / 8 * 8; }

ssize_t write_on_this_disk(int file, const void* bytes, size_t count, off_t at)
{
    switch (fate()) {
        case Fault::none:
        case Fault::killed: return write_on(file, bytes, count, at);
        case Fault::full_from_here: return refused(ENOSPC);
        case Fault::short_once: return write_on(file, bytes, half(count) > 0 ? half(count) : count, at);
        case Fault::torn_once: write_on(file, bytes, half(count), at); [[fallthrough]];
        case Fault::io_error_once: break;
    }
    return refused(EIO);
}

int set_length_on_this_disk(int file, off_t length)
{
    switch (fate()) {
        case Fault::none:
        case Fault::killed:
        case Fault::short_once: return static_cast<int>(syscall(SYS_ftruncate, file, length));
        case Fault::full_from_here: return static_cast<int>(refused(ENOSPC));
        case Fault::torn_once:
        case Fault::io_error_once: break;
    }
    return static_cast<int>(refused(EIO));
}

}  // namespace

}  // namespace vak::test

// HDF5 and the library call these instead of the true ones, under whichever name they were built with.
#define VAK_STANDS_IN extern "C" __attribute__((visibility("default")))
VAK_STANDS_IN ssize_t pwrite(int file, const void* bytes, size_t count, off_t at)
{
    return vak::test::write_on_this_disk(file, bytes, count, at);
}
VAK_STANDS_IN ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t at)
{
    return vak::test::write_on_this_disk(file, bytes, count, at);
}
VAK_STANDS_IN int ftruncate(int file, off_t length) noexcept
{
    return vak::test::set_length_on_this_disk(file, length);
}
VAK_STANDS_IN int ftruncate64(int file, off64_t length) noexcept
{
    return vak::test::set_length_on_this_disk(file, length);
}
VAK_STANDS_IN herr_t H5Fflush(hid_t object, H5F_scope_t scope)
{
    static const auto flush = reinterpret_cast<herr_t (*)(hid_t, H5F_scope_t)>(dlsym(RTLD_NEXT, "H5Fflush"));
    const vak::test::Flushing now;
    return flush(object, scope);
}
