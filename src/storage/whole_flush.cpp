// Reserving room with the file system, and shutting a file that must not be written any more.
#include "storage/whole_flush.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string>
#include <vector>

namespace vak {

namespace {

// What small blocks take between two calls, the least that may be left of it, and what a nearly full disk
// must still have.
constexpr off_t slack = off_t{512} * 1024;
constexpr off_t least_slack = slack / 2;
constexpr off_t smallest_slack = slack / 32;

// HDF5 gives no number twice in a process, so one that is left over is never met again.
struct WatchedFile {
    unsigned long number = 0;
    int descriptor = -1;  // HDF5's
    off_t whole = 0;      // up to here there is room for every byte
    off_t reserved = 0;   // and from the end of the file on up to here
    bool has_slack = false;
    bool can_reserve = true;
    bool has_failed = false;  // a flush on its way: what it lacks may still come
    bool is_shut = false;

    bool is_writable() const { return !has_failed && !is_shut; }
};

std::vector<WatchedFile>& watched_files()
{
    static std::vector<WatchedFile> files;
    return files;
}

WatchedFile* find(hid_t file)
{
    unsigned long number = 0;
    auto& files = watched_files();
    if (files.empty() || H5Fget_fileno(file, &number) < 0) return nullptr;
    const auto found =
        std::find_if(files.rbegin(), files.rend(), [&](const WatchedFile& f) { return f.number == number; });
    return found == files.rend() ? nullptr : &*found;
}

off_t end_of(hid_t file)
{
    haddr_t end = 0;
    return H5Fget_eoa(file, &end) < 0 ? 0 : static_cast<off_t>(end);
}

// HDF5 counts its addresses from behind such a block, so they are not places in the file.
bool has_user_block(hid_t file)
{
    const Properties creation(H5Fget_create_plist(file));
    hsize_t size = 0;
    return H5Pget_userblock(creation.get(), &size) < 0 || size > 0;
}

bool is_a_full_disk(int error)
{
    return error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO;
}

bool reserve(WatchedFile& f, off_t from, off_t to)
{
    while (f.can_reserve && fallocate(f.descriptor, FALLOC_FL_KEEP_SIZE, from, to - from) != 0) {
        if (is_a_full_disk(errno)) return false;
        f.can_reserve = errno == EINTR;
    }
    return true;
}

bool extend(WatchedFile& f, off_t end, off_t to)
{
    if (f.reserved >= to) return true;
    if (!reserve(f, std::max(end, f.reserved), to)) return false;
    f.reserved = to;
    f.has_slack = true;
    return true;
}

// Parts that nothing was written to yet, of which HDF5 may hold the metadata back.
bool fill_holes(WatchedFile& f, off_t end)
{
    off_t at = f.whole;
    while (f.can_reserve && at < end) {
        const off_t hole = lseek(f.descriptor, at, SEEK_HOLE);
        if (hole >= end) break;
        const off_t from = std::max(hole, at);  // behind the file's end there is no hole
        const off_t data = hole < 0 ? -1 : lseek(f.descriptor, hole, SEEK_DATA);
        const off_t to = data < 0 ? end : std::min(data, end);
        if (!reserve(f, from, to)) return false;
        at = to;
    }
    f.whole = end;
    return true;
}

std::string path_of(const WatchedFile& f) { return "/proc/self/fd/" + std::to_string(f.descriptor); }

// Reading goes on.
void shut(WatchedFile& f)
{
    int read_only = open(path_of(f).c_str(), O_RDONLY | O_CLOEXEC);
    if (read_only < 0) read_only = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (read_only < 0) return;
    f.is_shut = dup2(read_only, f.descriptor) >= 0;
    close(read_only);
}

bool flush_watched(WatchedFile& f, hid_t file, hid_t object, H5F_scope_t scope)
{
    if (f.is_shut || !fill_holes(f, end_of(file))) return false;
    f.reserved = 0;  // HDF5 cuts the file at its end
    const bool good = H5Fflush(object, scope) >= 0;
    f.has_failed = !good;
    return good;
}

}  // namespace

void watch_room(hid_t file)
{
    WatchedFile f;
    void* handle = nullptr;
    const Properties access(H5Fget_access_plist(file));
    if (!access.valid() || H5Pget_driver(access.get()) != H5FD_SEC2) return;
    if (find(file) != nullptr || has_user_block(file) || H5Fget_fileno(file, &f.number) < 0) return;
    if (H5Fget_vfd_handle(file, H5P_DEFAULT, &handle) < 0 || handle == nullptr) return;
    f.descriptor = *static_cast<int*>(handle);
    f.whole = end_of(file);
    try {
        watched_files().push_back(f);
    } catch (const std::bad_alloc&) {
        return;  // it is written as any file of HDF5's
    }
}

Room keep_room(hid_t object, hsize_t bytes)
{
    const File file(H5Iget_file_id(object));
    WatchedFile* f = find(file.get());
    if (f != nullptr && !f->is_writable()) return Room::shut;
    if (f == nullptr || !f->can_reserve) return Room::unknown;
    const off_t end = end_of(file.get());
    const off_t more = static_cast<off_t>(bytes);
    if (f->reserved < end + more + least_slack && !extend(*f, end, end + more + slack) &&
        !extend(*f, end, end + more + smallest_slack))
        return Room::none;
    return f->can_reserve ? Room::kept : Room::unknown;
}

bool flush_whole(hid_t object, H5F_scope_t scope)
{
    const File file(H5Iget_file_id(object));
    WatchedFile* f = find(file.get());
    return f == nullptr ? H5Fflush(object, scope) >= 0 : flush_watched(*f, file.get(), object, scope);
}

bool is_writable(hid_t object)
{
    const auto& files = watched_files();
    if (std::ranges::all_of(files, &WatchedFile::is_writable)) return true;
    return keep_room(object) != Room::shut;
}

void shut_file(hid_t object)
{
    const File file(H5Iget_file_id(object));
    WatchedFile* f = find(file.get());
    if (f != nullptr && !f->is_shut) shut(*f);
}

std::string path_to_reopen(hid_t object)
{
    const File file(H5Iget_file_id(object));
    const WatchedFile* f = find(file.get());
    return f == nullptr ? "" : path_of(*f);
}

void release_room(hid_t file, bool is_flushed)
{
    WatchedFile* f = find(file);
    if (f == nullptr) return;
    struct stat now {};
    if (!is_flushed && f->is_writable()) shut(*f);
    if (!f->is_shut && f->has_slack && fstat(f->descriptor, &now) == 0)
        f->has_slack = ftruncate(f->descriptor, now.st_size) != 0;
    auto& files = watched_files();
    files.erase(files.begin() + (f - files.data()));
    if (files.empty()) files.shrink_to_fit();
}

}  // namespace vak
