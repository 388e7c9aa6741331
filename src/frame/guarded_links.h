// Links into other files, followed without blocking on what is no file.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

// A group access list. External links that are met with it are opened only when what stands at each place
// where HDF5 will look for the file is a regular one; otherwise the link cannot be opened.
enum class LinkedFile { to_read, as_the_file_with_the_link };
Properties guarded_links(LinkedFile = LinkedFile::to_read);

// While it lives, links that are met without an access list of one's own are guarded too, in files opened as
// the one with the link: they are followed with HDF5's default list. A list of one's own for each call would
// cost several times as much.
class GuardedDefault {
public:
    GuardedDefault() noexcept;
    ~GuardedDefault();
    GuardedDefault(const GuardedDefault&) = delete;
    GuardedDefault& operator=(const GuardedDefault&) = delete;

    // Later releases of HDF5 let nobody change their default lists.
    bool valid() const { return is_guarded_; }

private:
    bool is_guarded_ = false;
    bool is_ours_ = false;
    H5L_elink_traverse_t callers_ = nullptr;
    void* data_ = nullptr;
};

}  // namespace vak
