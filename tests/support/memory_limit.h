// Memory: what is in use, and a process of its own with little of it.
#pragma once

#include <cstddef>
#include <functional>

namespace vak::test {

struct Limited {
    bool ended_well = false;  // the work gave true and was not stopped
    size_t most = 0;          // bytes it held at once beyond those it began with, where they can be counted
};

// Runs the work in a child that gets no more than `bytes` beside what it has. Where the address space can be
// limited that is done, so the system refuses more. Under the address sanitizer, which reserves terabytes,
// every allocation is counted instead and one beyond the limit ends the child.
Limited with_memory(size_t bytes, const std::function<bool()>& work);

// What this process has allocated and not given back.
size_t allocated_bytes();

// By how much that may be off: the C library counts what it keeps for the next call, the sanitizer does not.
extern const size_t allocated_bytes_slack;

}  // namespace vak::test
