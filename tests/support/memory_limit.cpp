#include "support/memory_limit.h"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define VAK_COUNTS_ALLOCATIONS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VAK_COUNTS_ALLOCATIONS
#endif
#endif

#ifdef VAK_COUNTS_ALLOCATIONS
// The sanitizer's own; not every compiler comes with the header that declares them.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
extern "C" size_t __sanitizer_get_allocated_size(const volatile void*);
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                         void (*)(const volatile void*));
#endif

namespace vak::test {

namespace {

constexpr int beyond_limit = 77;

// In memory that both processes see.
struct Held {
    std::atomic<size_t> now{0}, most{0};
    size_t limit = 0;
};
Held* held = nullptr;

#ifdef VAK_COUNTS_ALLOCATIONS

// What was allocated before the counting began may be freed under it.
void take_back(const volatile void* memory)
{
    const size_t size = __sanitizer_get_allocated_size(memory);
    const size_t now = held->now.load();
    held->now = now > size ? now - size : 0;
}

void add(const volatile void*, size_t size)
{
    const size_t now = held->now += size;
    if (now > held->most) held->most = now;
    if (now > held->limit) _exit(beyond_limit);
}

constexpr size_t slack = 4096;

size_t allocated() { return __sanitizer_get_current_allocated_bytes(); }

void limit_memory() { __sanitizer_install_malloc_and_free_hooks(add, take_back); }

#else

size_t address_space()
{
    unsigned long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%lu", &pages) != 1) _exit(beyond_limit);
    std::fclose(file);
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

constexpr size_t slack = 65536;

size_t allocated()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void limit_memory()
{
    const rlim_t all = address_space() + held->limit;
    const rlimit limit{all, all};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(beyond_limit);
}

#endif

}  // namespace

const size_t allocated_bytes_slack = slack;

size_t allocated_bytes() { return allocated(); }

Limited with_memory(size_t bytes, const std::function<bool()>& work)
{
    held =
        new (mmap(nullptr, sizeof(Held), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Held();
    held->limit = bytes;
    const pid_t child = fork();
    if (child == 0) {
        limit_memory();
        _exit(work() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const Limited result{WIFEXITED(status) && WEXITSTATUS(status) == 0, held->most};
    munmap(held, sizeof(Held));
    return result;
}

}  // namespace vak::test
