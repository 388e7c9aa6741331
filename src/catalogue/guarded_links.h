// Links into other files, followed without blocking on what is no file and without opening it for writing.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

// A group access list. External links that are met with it are opened to read only, and only when what stands
// at each place where HDF5 will look for the file is a regular one; otherwise the link cannot be opened.
Properties guarded_links();

}  // namespace vak
