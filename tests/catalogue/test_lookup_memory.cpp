// The listing when memory runs out: this program's own malloc and new refuse what a test tells them to.
#include <cstdlib>
#include <new>

#include "catalogue/catalogue_test.h"

// Counts down to the one allocation that is refused; below 0 there is no end of memory.
struct Countdown {
    int left = -1;
    bool refuses() { return left >= 0 && left-- == 0; }
};
static Countdown mallocs, news;

extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) { return mallocs.refuses() ? nullptr : __real_malloc(size); }

// Not inlined: the compiler would see memory of new go to free and warn.
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return news.refuses() ? nullptr : __real_malloc(size + 1);
}
[[gnu::noinline]] void* operator new(size_t size)
{
    void* memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace vak::test {

using testing::ElementsAre;

class LookupWithoutMemory : public BothCatalogues {
protected:
    // The call of malloc from this one on that fails, counted from 0.
    void look_up_failing_at(int allocation, List& list)
    {
        mallocs.left = allocation;
        look_up(list);
        mallocs.left = -1;
    }

    // Every allocation of the walk itself fails in turn, until there are no more of them.
    void run_out_of_memory_everywhere(int32_t collect);
};
IN_BOTH_CATALOGUES(LookupWithoutMemory);

void LookupWithoutMemory::run_out_of_memory_everywhere(int32_t collect)
{
    int failures = 0;
    for (int32_t ierr = -1; ierr != 0; ++failures) {
        List list(0, 0, {});
        list.collect = collect;
        const Output output = call([&] {
            news.left = failures;
            GetParam().lookup(&file, &list.collect, &list.verbose, &list.capacity, &list.pool_size,
                              &list.nblocks, &list.total_len, &list.got.keys, &list.got.offsets,
                              &list.got.paths, &list.ierr);
            news.left = -1;
        });
        ierr = list.ierr;
        if (ierr == 0) continue;
        EXPECT_EQ(ierr, -1);
        EXPECT_EQ(output, (Output{"", "VAK ERROR - out of memory\n"}));
        EXPECT_EQ(list.nblocks, 0);
        EXPECT_EQ(list.got, Arrays());
    }
    EXPECT_GT(failures, 10);
}

TEST_P(LookupWithoutMemory, without_the_first_arrays_it_gives_minus_1_and_leaves_everything)
{
    make("a", 10);
    for (const int allocation : {0, 1, 2}) {
        List list(0, 0, {});
        list.verbose = 1;
        look_up_failing_at(allocation, list);
        EXPECT_EQ(list.output, nothing_printed);
        EXPECT_EQ(list.ierr, -1);
        EXPECT_EQ(list.nblocks, 0);
        EXPECT_EQ(list.total_len, 0);
        EXPECT_EQ(list.got, Arrays());
        EXPECT_EQ(list.capacity, 0);
        EXPECT_EQ(list.pool_size, 0);
    }
}

TEST_P(LookupWithoutMemory, without_larger_arrays_it_gives_1_and_what_was_found)
{
    make("a", 10);
    make("b", 20);
    make("c", 30);
    // The first three are for the arrays to begin with; then one for the keys of b and one for its offsets.
    const auto length = static_cast<int64_t>(block("a").size()) + 1;
    for (const int allocation : {3, 4}) {
        List list(1, 3 * length, {});
        look_up_failing_at(allocation, list);
        EXPECT_EQ(list.output, nothing_printed);
        EXPECT_EQ(list.ierr, 1);
        EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a")));
        EXPECT_EQ(list.total_len, length);
        EXPECT_EQ(list.capacity, 1);
    }
    List list(3, length, {});
    look_up_failing_at(3, list);
    EXPECT_EQ(list.ierr, 1);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a")));
    EXPECT_EQ(list.pool_size, length);
}

TEST_P(LookupWithoutMemory, enough_memory_after_all_lists_everything)
{
    make("a", 10);
    make("b", 20);
    List list(1, 1, {});
    look_up_failing_at(100, list);
    EXPECT_EQ(list.ierr, 0);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a"), listed(20, "b")));
}

TEST_P(LookupWithoutMemory, the_walks_own_memory_may_end_at_any_time)
{
    make("a/b", 10);
    make("c", 20);
    link_soft("/a", file, "d");
    for (const int32_t collect : {0, 1}) run_out_of_memory_everywhere(collect);
}

}  // namespace vak::test
