// The bracket around the whole-file tools.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <new>

#include "frame/exported.h"

namespace vak {

// Runs a tool's body. The tools hold large work arrays and end the process when memory runs out.
template <class Body>
void run_tool(const char* source, Body body)
{
    const QuietHdf5 quiet;
    const GuardedDefault guard;
    try {
        body();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "\n     *** ERROR *** MEMORY ALLOCATION IN %s LINE %d\n", source, __LINE__);
        std::exit(1);
    }
}

}  // namespace vak
