#include "support/failing_memory.h"

#include <cstdlib>
#include <new>

// Not inlined: the compiler would see memory of new go to free and warn.
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return vak::test::memory.refuses() ? nullptr : std::malloc(size + 1);
}
[[gnu::noinline]] void* operator new(size_t size)
{
    void* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { std::free(memory); }
