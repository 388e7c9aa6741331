// A disk that fails. In a program that names it, every write to a file (and every change of a file's length,
// and every reservation of room) by whichever library goes to this disk.
#pragma once

#include <sys/types.h>

#include <limits>

namespace vak::test {

enum class Fault {
    none,
    io_error_once,   // EIO, nothing written
    full_from_here,  // ENOSPC from that write on, whatever is written
    no_more_blocks,  // ENOSPC from that write on where the file has no block yet
    short_once,      // half of the bytes are written, and said so
    torn_once,       // half of the bytes are written, then EIO
    killed,          // the process ends before the write
    cannot_reserve,  // from that write on: a file system that has no such call
};

// In memory that forked processes share.
struct Disk {
    Fault fault = Fault::none;
    long at = 0;  // the write, from 0, that fails
    off_t end =
        std::numeric_limits<off_t>::max();  // files may claim any length, but have no byte from here on
    long writes = 0;
    int flushing = 0;  // nested calls that write out what is held back
    bool hit = false;
    // HDF5 writes what it holds back piece by piece, so that a fault leaves it in part. A disk that has no
    // more blocks must not: never true of that fault.
    bool hit_in_flush = false;
    bool flushed = false;  // before that, by a test that says so

    // Counts writes from 0 again.
    void fail(Fault kind, long write);
    void mend() { *this = Disk(); }
};

Disk& disk();

// While it lives the library is held to write out what it has: VAK_CLOSE. H5Fflush is noticed by itself.
struct Flushing {
    Flushing() { disk().flushing += 1; }
    ~Flushing() { disk().flushing -= 1; }
    Flushing(const Flushing&) = delete;
    Flushing& operator=(const Flushing&) = delete;
};

}  // namespace vak::test
