// A file that another process has open: what is refused, and that nothing of it is lost.
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "frame/frame_test.h"

namespace vak::test {

namespace {

std::string bytes(const std::string& name)
{
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

class FileLocks : public FrameTest {
protected:
    // Another process that holds a file open from the constructor to the destructor.
    class Holder {
    public:
        Holder(const Routines& routines, const std::string& name, int32_t option)
        {
            EXPECT_EQ(pipe(opened_), 0);
            EXPECT_EQ(pipe(release_), 0);
            child_ = fork();
            if (child_ == 0) hold(routines, name, option);
            char answer = 0;
            EXPECT_EQ(read(opened_[0], &answer, 1), 1);
            EXPECT_EQ(answer, 'y') << "the other process could not open the file";
        }
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        ~Holder()
        {
            EXPECT_EQ(write(release_[1], "", 1), 1);
            int status = 0;
            waitpid(child_, &status, 0);
            EXPECT_EQ(status, 0);
            for (const int end : {opened_[0], opened_[1], release_[0], release_[1]}) ::close(end);
        }

    private:
        [[noreturn]] void hold(const Routines& routines, const std::string& name, int32_t option) const
        {
            const auto name_len = static_cast<int32_t>(name.size());
            const int32_t none = 0, len = 5;
            vak_id group = 0;
            int32_t ierr = 0;
            routines.open(name.data(), &name_len, "model", &len, "", &none, &group, &none, &option, &ierr);
            char go = 0;
            const bool told =
                write(opened_[1], ierr == 0 ? "y" : "n", 1) == 1 && read(release_[0], &go, 1) == 1;
            routines.close(&group, &ierr);
            _exit(told && ierr == 0 ? 0 : 1);
        }

        int opened_[2] = {-1, -1};
        int release_[2] = {-1, -1};
        pid_t child_ = -1;
    };

    void expect_refused(const std::string& name, int32_t mode, const std::string& line)
    {
        const Opened o = open_in_vain(name, mode);
        EXPECT_EQ(o.ierr, -1);
        EXPECT_EQ(o.group, 0);
        EXPECT_EQ(o.output, (Output{"", line}));
    }
};
IN_BOTH_FAMILIES(FileLocks);

TEST_P(FileLocks, file_in_use_by_another_process_is_not_created_anew_and_keeps_every_byte)
{
    const std::string name = made_file("run.h5");
    for (const int32_t held : {1, 2, 9, 10, 13}) {
        const Holder other(GetParam(), name, held);
        const std::string before = bytes(name);
        for (const int32_t mode : {0, 8})
            expect_refused(name, mode, "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n");
        EXPECT_TRUE(bytes(name) == before) << held;
    }
    EXPECT_TRUE(exists(read_file(name), "post/inside"));
}

TEST_P(FileLocks, file_that_another_process_is_creating_is_left_to_it)
{
    const std::string name = path("run.h5");
    {
        const Holder other(GetParam(), name, 0);
        expect_refused(name, 0, "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n");
        for (const int32_t mode : {1, 2, 9, 10, 13})
            expect_refused(name, mode,
                           "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n");
    }
    EXPECT_TRUE(exists(read_file(name), "model"));
}

TEST_P(FileLocks, file_that_another_process_updates_is_not_opened)
{
    const std::string name = made_file("run.h5");
    const Holder other(GetParam(), name, 1);
    for (const int32_t mode : {1, 2, 9, 10, 13})
        expect_refused(name, mode,
                       "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n");
}

TEST_P(FileLocks, file_that_another_process_reads_is_read_but_not_updated)
{
    const std::string name = made_file("run.h5");
    const Holder other(GetParam(), name, 2);
    close(opened(name, 2));
    close(opened(name, 10));
    for (const int32_t mode : {1, 9, 13})
        expect_refused(name, mode,
                       "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n");
}

TEST_P(FileLocks, file_is_free_again_when_the_other_process_has_closed_it)
{
    const std::string name = made_file("run.h5");
    {
        const Holder other(GetParam(), name, 1);
    }
    close(opened(name, 1));
    close(opened(name, 0));
}

}  // namespace vak::test
