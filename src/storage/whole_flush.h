// What HDF5 holds back comes to the file as a whole, or not at all.
//
// A disk that is full in the middle of a flush leaves metadata half written: what was stored before and hangs
// on it is lost, and a place that a chunk or a deleted array gave up may be read as that chunk again. So the
// files that VAK_OPEN opens for writing have their room reserved, and some more beyond their end while they
// grow. A flush that finds no room writes nothing and can be repeated. After one that failed on its way
// nothing new is written to the file until another brings what it lacks.
#pragma once

#include <string>

#include "storage/hdf5_id.h"

namespace vak {

enum class Room { kept, none, unknown, shut };

// To be called once for a file that was opened for writing.
void watch_room(hid_t file);

// Reserves so many bytes beyond the end of the file of this object, and what metadata may need. Unknown where
// the file is not watched or the file system cannot reserve; shut where nothing new is written.
Room keep_room(hid_t object, hsize_t bytes = 0);

// False when not all of it was written.
bool flush_whole(hid_t object, H5F_scope_t scope);

// Whether the last flush of its file did not fail on its way.
bool is_writable(hid_t object);

// Nothing at all is written to the file any more.
void shut_file(hid_t object);

// Under which a watched file, whatever became of its name, can be opened past HDF5; else empty.
std::string path_to_reopen(hid_t object);

// To be called before a file is closed, with the outcome of its last flush: gives back what was reserved
// beyond its end; what could not be written as a whole will not be written in part.
void release_room(hid_t file, bool is_flushed);

}  // namespace vak
