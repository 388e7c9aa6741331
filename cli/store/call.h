// Calls of the library's routines: plain values by address, failures as problems.
#pragma once

#include <cstdint>
#include <string>

#include "problem.h"
#include "store/messages.h"

namespace vak::store {

// A value for a routine that takes it by address.
struct Int {
    int32_t value;
    operator const int32_t*() const { return &value; }
};

// Calls a routine with the given arguments and its status behind them. A failure throws the problem with what
// was being done and what the library said; otherwise the status comes back.
template <class Routine, class... Arguments>
int32_t call(const std::string& doing, Routine routine, Arguments&&... arguments)
{
    int32_t status = 0;
    LibraryMessages messages;
    routine(arguments..., &status);
    if (status < 0) throw cli::Problem(doing + " failed: " + messages.text(status));
    return status;
}

}  // namespace vak::store
