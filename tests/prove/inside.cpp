#include "prove/inside.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <regex>

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

std::set<std::string> routines_declared(const std::string& beginnings)
{
    std::ifstream file(VAK_HEADER);
    const std::string header(std::istreambuf_iterator<char>(file), {});
    const std::regex declaration("VAK_API void (VAK1?_(" + beginnings + R"()\w+)\()");
    std::set<std::string> declared;
    for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match)
        declared.insert((*match)[1]);
    return declared;
}

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

static void* counted_memory(size_t size) noexcept
{
    void* memory = vak::test::refuses_memory() ? nullptr : __real_malloc(size + 1);
    if (memory != nullptr) ++vak::test::library.held;
    return memory;
}

// Not inlined: the compiler would see memory of new go to free and warn.
[[gnu::noinline]] void* operator new(size_t size)
{
    void* memory = counted_memory(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return counted_memory(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    if (memory != nullptr) --vak::test::library.held;
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { operator delete(memory); }
