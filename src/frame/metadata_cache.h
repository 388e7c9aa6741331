// When metadata leaves memory for the file.
//
// HDF5 writes changed metadata piece by piece whenever its cache is full. A process killed between two pieces
// leaves structures in the file that refer to others that never came there, and all that was stored before
// and hangs on them is lost. Files that VAK_OPEN opens for writing therefore hold their changes back until a
// flush writes them as a whole: the caller's own, or one between two blocks when they have become many. Files
// that the caller opened through HDF5 stay as they are.
#pragma once

#include "storage/hdf5_id.h"

namespace vak {

enum class FileUse { read, update, create };

Properties access_list(FileUse use);

// To be called before something is created below `location`. False when a flush has failed.
bool hold_metadata_back(hid_t location);

// To be called after a flush: drops what need not be held any more, which keeps the next flush short.
void drop_flushed_metadata(hid_t object);

}  // namespace vak
