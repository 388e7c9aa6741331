// VAK_FLUSH, and what a process that is killed leaves in its file.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "frame/frame_test.h"

namespace vak::test {

namespace {

constexpr hsize_t values_in_a_block = 40;

// As much metadata as a block of results has: a dozen attributes, most of 256 characters, and a dataset.
void fill_block(hid_t group, int32_t number)
{
    const SpaceId scalar(H5Screate(H5S_SCALAR), "scalar");
    const TypeId text(H5Tcopy(H5T_C_S1), "text");
    H5Tset_size(text, 256);
    const std::string words(256, 'w');
    for (int i = 0; i < 12; ++i) {
        const std::string name = "attribute" + std::to_string(i);
        const AttributeId attribute(H5Acreate2(group, name.c_str(), text, scalar, H5P_DEFAULT, H5P_DEFAULT),
                                    name);
        H5Awrite(attribute, text, words.data());
    }
    const SpaceId space(H5Screate_simple(1, &values_in_a_block, nullptr), "space");
    const ObjectId values(
        H5Dcreate2(group, "res", H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "res");
    const std::vector<int32_t> numbers(values_in_a_block, number);
    H5Dwrite(values, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data());
}

bool holds_block(hid_t file, const std::string& path, int32_t number)
try {
    return dataset_values<int32_t>(file, path + "/res") == std::vector<int32_t>(values_in_a_block, number) &&
           attribute_text(file, path, "attribute11") == std::string(256, 'w');
} catch (const std::runtime_error&) {
    return false;
}

}  // namespace

class Flush : public FrameTest {
protected:
    struct Run {
        int32_t states;
        int32_t blocks;         // of each state
        int32_t flushed_every;  // so many states
    };

    void flush(vak_id id, int32_t scope)
    {
        int32_t ierr = 4711;
        EXPECT_EQ(call([&] { GetParam().flush(&id, &scope, &ierr); }), nothing_printed);
        EXPECT_EQ(ierr, 0);
    }

    // Whether another process would find the group now.
    bool on_disk(const std::string& name, const std::string& group) const
    {
        const std::string copy = path("copy.h5");
        std::filesystem::copy_file(name, copy, std::filesystem::copy_options::overwrite_existing);
        try {
            return exists(read_file(copy), group);
        } catch (const std::runtime_error&) {
            return false;
        }
    }

    std::string block_path(int32_t state, int32_t block) const
    {
        char text[80];
        std::snprintf(text, sizeof text, "post/singlestate/state%012d/NODE%d", state, block);
        return text + std::string(GetParam().family == std::string("legacy") ? "" : "/vakblock");
    }

    // What the killed process does; it dies behind the block of that number.
    [[noreturn]] void write_until_killed(const std::string& name, const Run& run, int32_t last_block) const
    {
        const auto name_len = static_cast<int32_t>(name.size());
        const int32_t create = 0, len = 5, none = 0, nstate = 1, one_name = 1, no_set = -1;
        vak_id root = 0, block = 0;
        int32_t ierr = 0, number = 0;
        GetParam().open(name.data(), &name_len, "model", &len, "", &none, &root, &none, &create, &ierr);
        for (int32_t state = 0; state < run.states; ++state) {
            for (int32_t i = 0; i < run.blocks; ++i) {
                GetParam().openautopath(&root, &one_name, nullptr, &create, &nstate, nullptr, &state, "NODE",
                                        "", "", "", "", &i, &no_set, &block, &ierr);
                fill_block(block, number);
                GetParam().h5gclose(&block, &ierr);
                if (++number == last_block) raise(SIGKILL);
            }
            if ((state + 1) % run.flushed_every == 0) GetParam().flush(&root, &none, &ierr);
        }
        _exit(1);
    }

    // How many blocks of the flushed states are lost when the process is killed behind that block.
    int32_t lost_when_killed_behind(const Run& run, int32_t last_block)
    {
        const std::string name = path("killed.h5");
        const pid_t child = fork();
        if (child == 0) write_until_killed(name, run, last_block);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

        const int32_t finished = (last_block - 1) / run.blocks;
        const int32_t flushed = finished / run.flushed_every * run.flushed_every * run.blocks;
        const vak_id root = opened(name, 10);
        int32_t found = 0;
        for (int32_t i = 0; i < flushed; ++i)
            found += holds_block(root, block_path(i / run.blocks, i % run.blocks), i) ? 1 : 0;
        close(root);
        return flushed - found;
    }
};
IN_BOTH_FAMILIES(Flush);

TEST_P(Flush, scopes_0_and_1_bring_everything_to_the_file)
{
    const std::string name = path("run.h5");
    const vak_id root = opened(name, 0);
    for (const int32_t scope : {0, 1}) {
        const std::string group = "group" + std::to_string(scope);
        H5Gclose(H5Gcreate2(root, group.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        EXPECT_FALSE(on_disk(name, "post/" + group));
        flush(root, scope);
        EXPECT_TRUE(on_disk(name, "post/" + group));
    }
    close(root);
}

TEST_P(Flush, other_scopes_do_nothing)
{
    const std::string name = path("run.h5");
    const vak_id root = opened(name, 0);
    for (const int32_t scope : {2, -1, 2147483647}) flush(root, scope);
    EXPECT_FALSE(on_disk(name, "post"));
    close(root);
}

TEST_P(Flush, any_object_of_the_file_stands_for_it)
{
    const std::string name = path("run.h5");
    const vak_id root = opened(name, 0);
    const ObjectId inner(H5Gcreate2(root, "inner", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "inner");
    flush(inner, 0);
    EXPECT_TRUE(on_disk(name, "post/inner"));
    H5Gclose(root);
}

TEST_P(Flush, status_is_0_whatever_the_identifier)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    for (const vak_id id : {vak_id{-1}, vak_id{0}, vak_id{4711}, vak_id{space}})
        for (const int32_t scope : {0, 1, 2}) flush(id, scope);
    const vak_id read_only = opened(made_file("run.h5"), 2);
    flush(read_only, 0);
    close(read_only);
}

TEST_P(Flush, states_flushed_one_by_one_survive_a_kill_behind_any_block)
{
    for (const int32_t last : {11, 15, 20, 21, 88, 100, 101, 149, 200})
        EXPECT_EQ(lost_when_killed_behind({.states = 20, .blocks = 10, .flushed_every = 1}, last), 0) << last;
}

// So much between two flushes that a cache which writes when it is full does so.
TEST_P(Flush, states_flushed_survive_a_kill_long_after)
{
    for (const int32_t last : {1250, 1500, 1750, 2000})
        EXPECT_EQ(lost_when_killed_behind({.states = 100, .blocks = 20, .flushed_every = 50}, last), 0)
            << last;
}

}  // namespace vak::test
