#include "prove/inside.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

#include "support/faults.h"

namespace vak::test {

bool Countdown::fails(const char* name)
{
    if (!only.empty() && only != name) return false;
    if (seen++ != fails_at) return false;
    failed = name;
    library.failed_in = library.routine;
    return true;
}

// No memory is asked for where memory is counted.
static std::array<const char*, 256> called;
static size_t number_called = 0;

std::set<std::string> routines_called() { return {called.begin(), called.begin() + number_called}; }

static void remember(const char* routine)
{
    const auto end = called.begin() + number_called;
    if (end != called.end() && std::find(called.begin(), end, routine) == end)
        called[number_called++] = routine;
}

Inside::Inside(const char* routine) : closes_(std::string_view(routine).ends_with("_CLOSE"))
{
    if (library.depth == 0) {
        if (library.counting) remember(routine);
        library.routine = routine;
    }
    ++library.depth;
    if (closes_) disk().flushing += 1;
}

Inside::~Inside()
{
    if (closes_) disk().flushing -= 1;
    --library.depth;
}

static bool refuses_memory() { return library.counts() && library.allocations.fails(library.routine); }

}  // namespace vak::test

// The library's own; HDF5 has its memory from the C library directly.
extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t number, size_t size);
extern "C" void* __real_realloc(void* memory, size_t size);
extern "C" void* __wrap_malloc(size_t size)
{
    return vak::test::refuses_memory() ? nullptr : __real_malloc(size);
}
extern "C" void* __wrap_calloc(size_t number, size_t size)
{
    return vak::test::refuses_memory() ? nullptr : __real_calloc(number, size);
}
extern "C" void* __wrap_realloc(void* memory, size_t size)
{
    return vak::test::refuses_memory() ? nullptr : __real_realloc(memory, size);
}

// Not inlined: the compiler would see memory of new go to free and warn.
[[gnu::noinline]] void* operator new(size_t size)
{
    void* memory = vak::test::refuses_memory() ? nullptr : __real_malloc(size + 1);
    if (memory == nullptr) throw std::bad_alloc();
    ++vak::test::library.held;
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    if (memory != nullptr) --vak::test::library.held;
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { operator delete(memory); }
