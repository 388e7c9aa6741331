// The tools end the process when memory runs out, and say where.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

#include "frame/exported.h"
#include "samples/entityresults.h"
#include "support/block_test.h"
#include "support/failing_memory.h"
#include "tools/same_contents.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

class ToolsWithoutMemory : public BothFamilies {
protected:
    void SetUp() override
    {
        BothFamilies::SetUp();
        EXPECT_EQ(write(sample<EntityResults>()), success);
    }
    // In a process of its own; gives how that ends.
    template <class Routine>
    int end_of(Routine routine, Output& output)
    {
        int state = 0;
        output = captured([&] {
            const pid_t child = fork();
            if (child == 0) {
                routine();
                _exit(0);
            }
            waitpid(child, &state, 0);
        });
        return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    }
    static auto line_of(const std::string& source)
    {
        return testing::MatchesRegex("\n     \\*\\*\\* ERROR \\*\\*\\* MEMORY ALLOCATION IN " + source +
                                     " LINE [0-9]+\n");
    }
    template <class Routine>
    void expect_end(const std::string& source, Routine routine)
    {
        Output output;
        EXPECT_EQ(end_of(
                      [&] {
                          memory.is_gone = true;
                          routine();
                          memory.is_gone = false;
                      },
                      output),
                  1);
        EXPECT_THAT(output.err, line_of(source));
    }
    // Whichever allocation is refused, there is no result.
    template <class Work>
    static void expect_throw_at_every_allocation(Work work)
    {
        bool throws = false;
        const auto caught = [&] {
            throws = false;
            try {
                work();
            } catch (const std::bad_alloc&) {
                throws = true;
            }
        };
        long allocation = 0;
        for (; runs_out_at(allocation, caught); ++allocation) EXPECT_TRUE(throws) << allocation;
        EXPECT_GT(allocation, 2);
        EXPECT_FALSE(throws);
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

// A name that HDF5 hands over while there is no memory for it would be a link that is missing.
TEST_P(ToolsWithoutMemory, the_linker_ends_wherever_it_runs_out)
{
    const std::vector<std::string> groups{"a name too long to stand in the string itself",
                                          "another of that length"};
    for (const std::string& group : groups)
        ObjectId(H5Gcreate2(file, group.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), group);
    const std::string name = close_file();
    const std::string subgroup = padded("");
    const auto link = [&](long allocation) {
        const FileId from(H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "source");
        const FileId to(H5Fcreate(path("to.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "to");
        const vak_id source = from, destination = to;
        const bool ran_out = runs_out_at(allocation, [&] {
            (legacy() ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(&source, &destination, &one,
                                                                    subgroup.data(), &none, &none, &ierr);
        });
        if (ran_out) _exit(2);
    };
    Output output;
    long allocation = 0;
    for (; end_of([&] { link(allocation); }, output) != 0; ++allocation)
        ASSERT_THAT(output.err, line_of("vak_create_extlinks")) << allocation;
    EXPECT_GT(allocation, 3);
    const FileId to(H5Fopen(path("to.h5").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "to");
    for (const std::string& group : groups) EXPECT_TRUE(exists(to, group));
    EXPECT_TRUE(exists(to, sample<EntityResults>().path()));
}

// What is looked through by these names would else be what has fewer of them.
TEST_P(ToolsWithoutMemory, names_in_a_group_are_all_or_none)
{
    const ObjectId block = open_object(file, sample<EntityResults>().path());
    const std::vector<std::string> names = names_in(block);
    std::vector<std::string> found;
    expect_throw_at_every_allocation([&] { found = names_in(block); });
    EXPECT_GT(names.size(), 2U);
    EXPECT_EQ(found, names);
}

TEST_P(ToolsWithoutMemory, blocks_are_not_taken_to_differ)
{
    const ObjectId block = open_object(file, sample<EntityResults>().path());
    const QuietHdf5 quiet;
    bool same = false;
    expect_throw_at_every_allocation([&] { same = same_contents(block, block); });
    EXPECT_TRUE(same);
}

}  // namespace

}  // namespace vak::test
