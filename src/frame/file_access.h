// The access list with which files are opened and created.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

Properties access_list(unsigned access);  // H5F_ACC_RDWR or H5F_ACC_RDONLY

}  // namespace vak
