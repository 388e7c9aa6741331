// The tools end the process when memory runs out, and say where.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

#include "samples/entityresults.h"
#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

// In a process that is about to run out of it.
bool memory_is_gone = false;

}  // namespace vak::test

void* operator new(size_t size)
{
    void* const memory = vak::test::memory_is_gone ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

namespace vak::test {

namespace {

class ToolsWithoutMemory : public BothFamilies {
protected:
    void SetUp() override
    {
        BothFamilies::SetUp();
        EXPECT_EQ(write(sample<EntityResults>()), success);
    }
    template <class Routine>
    void expect_end(const std::string& source, Routine routine)
    {
        int state = 0;
        const Output output = captured([&] {
            const pid_t child = fork();
            if (child == 0) {
                memory_is_gone = true;
                routine();
                std::_Exit(0);
            }
            waitpid(child, &state, 0);
        });
        EXPECT_TRUE(WIFEXITED(state) && WEXITSTATUS(state) == 1) << state;
        EXPECT_THAT(output.err,
                    testing::MatchesRegex("\n     \\*\\*\\* ERROR \\*\\*\\* MEMORY ALLOCATION IN " + source +
                                          " LINE [0-9]+\n"));
    }
    const int32_t none = 0, one = 1;
    int32_t ierr = 0;
};
INSTANTIATE_TEST_SUITE_P(, ToolsWithoutMemory, both_families, family_name);

TEST_P(ToolsWithoutMemory, the_eraser_says_so_and_ends)
{
    expect_end("vak_erase_states",
               [&] { (legacy() ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&file, &one, &one, &none, &ierr); });
}

TEST_P(ToolsWithoutMemory, the_linker_says_so_and_ends)
{
    const std::string subgroup = padded("");
    expect_end("vak_create_extlinks", [&] {
        (legacy() ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(&file, &file, &one, subgroup.data(), &none,
                                                                &none, &ierr);
    });
}

}  // namespace

}  // namespace vak::test
