// Links into other files, followed without blocking on what is no file.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

// A group access list. External links that are met with it are opened only when what stands at each place
// where HDF5 will look for the file is a regular one; otherwise the link cannot be opened.
enum class LinkedFile { to_read, as_the_file_with_the_link };
Properties guarded_links(LinkedFile = LinkedFile::to_read);

}  // namespace vak
