#include "support/faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <hdf5.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>
#include <new>
#include <set>

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
    const bool lasts = d.fault == Fault::full_from_here || d.fault == Fault::no_more_blocks ||
                       d.fault == Fault::cannot_reserve;
    if (now > d.at) return lasts ? d.fault : Fault::none;
    d.hit = true;
    d.hit_in_flush = d.flushing > 0 && d.fault != Fault::no_more_blocks;
    if (d.fault == Fault::killed) raise(SIGKILL);
    return d.fault;
}

ssize_t refused(int error)
{
    errno = error;
    return -1;
}

// Which blocks each file has, on a disk that will have no more of them. What was in a file before has its
// own.
class Blocks {
public:
    // How many bytes from there on have room, given the blocks that they lack if there are any more.
    size_t room(int file, off_t at, size_t count, bool any_more)
    {
        std::set<off_t>& blocks = of(file);
        const off_t end = at + static_cast<off_t>(count);
        for (off_t block = at / size; block * size < end; ++block)
            if (any_more)
                blocks.insert(block);
            else if (!blocks.contains(block))
                return static_cast<size_t>(std::max(block * size - at, off_t{0}));
        return count;
    }
    void cut(int file, off_t length)
    {
        std::set<off_t>& blocks = of(file);
        blocks.erase(blocks.lower_bound((length + size - 1) / size), blocks.end());
    }

private:
    static constexpr off_t size = 4096;

    std::set<off_t>& of(int file)
    {
        struct stat now {};
        fstat(file, &now);
        const auto [found, is_new] = files_.try_emplace(now.st_ino);
        for (off_t at = 0; is_new && at < now.st_size; at += size) found->second.insert(at / size);
        return found->second;
    }

    std::map<ino_t, std::set<off_t>> files_;
};

Blocks& blocks()
{
    static Blocks all;
    return all;
}

// How much of it this disk has room for; `any_more`: as long as the disk has blocks to give.
size_t room_for(int file, off_t at, size_t count, bool any_more)
{
    if (disk().fault == Fault::no_more_blocks) count = blocks().room(file, at, count, any_more);
    return std::min(count, static_cast<size_t>(std::max(disk().end - at, off_t{0})));
}

ssize_t write_on(int file, const void* bytes, size_t count, off_t at, bool any_more = true)
{
    const size_t room = room_for(file, at, count, any_more);
    if (count > 0 && room == 0) return refused(ENOSPC);
    return syscall(SYS_pwrite64, file, bytes, room, at);
}

// Half of it, in whole numbers.
size_t half(size_t count) { return count / 2 / 8 * 8; }

ssize_t write_on_this_disk(int file, const void* bytes, size_t count, off_t at)
{
    switch (fate()) {
        case Fault::none:
        case Fault::cannot_reserve:
        case Fault::killed: return write_on(file, bytes, count, at);
        case Fault::full_from_here: return refused(ENOSPC);
        case Fault::no_more_blocks: return write_on(file, bytes, count, at, false);
        case Fault::short_once: return write_on(file, bytes, half(count) > 0 ? half(count) : count, at);
        case Fault::torn_once: write_on(file, bytes, half(count), at); [[fallthrough]];
        case Fault::io_error_once: break;
    }
    return refused(EIO);
}

int set_length_on_this_disk(int file, off_t length)
{
    switch (fate()) {
        case Fault::full_from_here: return static_cast<int>(refused(ENOSPC));
        case Fault::torn_once:
        case Fault::io_error_once: return static_cast<int>(refused(EIO));
        default: break;
    }
    if (disk().fault == Fault::no_more_blocks) blocks().cut(file, length);
    return static_cast<int>(syscall(SYS_ftruncate, file, length));
}

int reserve_on_this_disk(int file, int mode, off_t at, off_t length)
{
    const Fault now = fate();
    const auto count = static_cast<size_t>(length);
    switch (now) {
        case Fault::full_from_here: return static_cast<int>(refused(ENOSPC));
        case Fault::torn_once:
        case Fault::io_error_once: return static_cast<int>(refused(EIO));
        case Fault::cannot_reserve: return static_cast<int>(refused(EOPNOTSUPP));
        default: break;
    }
    if (room_for(file, at, count, now != Fault::no_more_blocks) < count)
        return static_cast<int>(refused(ENOSPC));
    return static_cast<int>(syscall(SYS_fallocate, file, mode, at, length));
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
VAK_STANDS_IN int fallocate(int file, int mode, off_t at, off_t length)
{
    return vak::test::reserve_on_this_disk(file, mode, at, length);
}
VAK_STANDS_IN int fallocate64(int file, int mode, off64_t at, off64_t length)
{
    return vak::test::reserve_on_this_disk(file, mode, at, length);
}
VAK_STANDS_IN herr_t H5Fflush(hid_t object, H5F_scope_t scope)
{
    static const auto flush = reinterpret_cast<herr_t (*)(hid_t, H5F_scope_t)>(dlsym(RTLD_NEXT, "H5Fflush"));
    const vak::test::Flushing now;
    return flush(object, scope);
}
