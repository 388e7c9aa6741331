// A file that two processes want: who gets it, what is refused, and that nothing of it is lost.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "frame/frame_test.h"

namespace vak::test {

namespace {

constexpr int32_t all_modes[] = {0, 1, 2, 8, 9, 10, 13};

bool creates(int32_t mode) { return mode == 0 || mode == 8; }
bool reads(int32_t mode) { return mode == 2 || mode == 10; }

std::string bytes(const std::string& name)
{
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string line_of_refusal(const std::string& name, int32_t mode)
{
    if (creates(mode)) return "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n";
    return "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n";
}

// Another process that opens and closes a file when told to. It has to be there before this one opens the
// file: what is open already would be its own, too.
class OtherProcess {
public:
    OtherProcess(const Routines& routines, const std::string& name)
    {
        EXPECT_EQ(pipe2(commands_, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(answers_, O_CLOEXEC), 0);
        child_ = fork();
        if (child_ == 0) serve(routines, name);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess()
    {
        if (child_ > 0) tell(end), wait();
        for (const int side : {commands_[0], commands_[1], answers_[0], answers_[1]}) ::close(side);
    }

    int32_t open(int32_t mode) { return ask(mode); }
    int32_t close() { return ask(closing); }
    void kill()
    {
        ::kill(child_, SIGKILL);
        wait();
    }

private:
    static constexpr int32_t closing = -1, end = -2;
    static constexpr ssize_t one_number = sizeof(int32_t);

    void tell(int32_t command) { EXPECT_EQ(write(commands_[1], &command, sizeof command), one_number); }
    int32_t ask(int32_t command)
    {
        tell(command);
        int32_t answer = 4711;
        EXPECT_EQ(read(answers_[0], &answer, sizeof answer), one_number);
        return answer;
    }
    void wait()
    {
        waitpid(child_, nullptr, 0);
        child_ = -1;
    }

    // What it prints is not looked at.
    [[noreturn]] void serve(const Routines& routines, const std::string& name) const
    {
        const int nowhere = ::open("/dev/null", O_WRONLY);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        const auto name_len = static_cast<int32_t>(name.size());
        const int32_t none = 0, len = 5;
        vak_id group = 0;
        for (int32_t command = 0;
             read(commands_[0], &command, sizeof command) == one_number && command != end;) {
            int32_t ierr = 4711;
            if (command == closing)
                routines.close(&group, &ierr);
            else
                routines.open(name.data(), &name_len, "model", &len, "", &none, &group, &none, &command,
                              &ierr);
            if (write(answers_[1], &ierr, sizeof ierr) != one_number) break;
        }
        _exit(0);
    }

    int commands_[2] = {-1, -1};
    int answers_[2] = {-1, -1};
    pid_t child_ = -1;
};

}  // namespace

class FileLocks : public FrameTest {
protected:
    void expect_refused(const std::string& name, int32_t mode)
    {
        const Opened o = open_in_vain(name, mode);
        EXPECT_EQ(o.ierr, -1) << mode;
        EXPECT_EQ(o.group, 0);
        EXPECT_EQ(o.output, (Output{"", line_of_refusal(name, mode)}));
    }

    // A file for each case, with something in it that the other process wants to find.
    std::string next_file() { return made_file("run" + std::to_string(++files_) + ".h5"); }

private:
    int files_ = 0;
};
IN_BOTH_FAMILIES(FileLocks);

TEST_P(FileLocks, file_that_another_process_has_open_is_shared_among_readers_alone_and_keeps_every_byte)
{
    for (const int32_t held : all_modes) {
        const std::string name = next_file();
        OtherProcess other(GetParam(), name);
        ASSERT_EQ(other.open(held), 0);
        const std::string before = bytes(name);
        for (const int32_t mode : all_modes) {
            if (reads(held) && reads(mode))
                close(opened(name, mode));
            else
                expect_refused(name, mode);
        }
        EXPECT_TRUE(bytes(name) == before) << held;
        EXPECT_EQ(other.close(), 0);
    }
}

TEST_P(FileLocks, file_that_this_process_has_open_is_shared_among_readers_alone_and_keeps_every_byte)
{
    for (const int32_t held : all_modes) {
        const std::string name = next_file();
        OtherProcess other(GetParam(), name);
        const vak_id group = opened(name, held);
        const std::string before = bytes(name);
        for (const int32_t mode : all_modes) {
            const bool shared = reads(held) && reads(mode);
            EXPECT_EQ(other.open(mode), shared ? 0 : -1) << held << ' ' << mode;
            EXPECT_EQ(other.close(), shared ? 0 : -1);
        }
        EXPECT_TRUE(bytes(name) == before) << held;
        close(group);
    }
}

TEST_P(FileLocks, file_is_everyones_again_when_its_last_process_has_closed_it)
{
    const std::string name = next_file();
    OtherProcess first(GetParam(), name), second(GetParam(), name);
    EXPECT_EQ(first.open(2), 0);
    EXPECT_EQ(second.open(10), 0);
    EXPECT_EQ(first.close(), 0);
    expect_refused(name, 1);
    EXPECT_EQ(second.close(), 0);
    close(opened(name, 1));
    EXPECT_EQ(first.open(0), 0);
    expect_refused(name, 2);
    EXPECT_EQ(first.close(), 0);
    EXPECT_TRUE(exists(read_file(name), "model"));
}

TEST_P(FileLocks, file_of_a_process_that_was_killed_is_free)
{
    for (const int32_t held : {1, 2, 9, 10, 13}) {
        const std::string name = next_file();
        OtherProcess other(GetParam(), name);
        EXPECT_EQ(other.open(held), 0);
        other.kill();
        close(opened(name, 1));
        EXPECT_TRUE(exists(read_file(name), "post/inside"));
    }
}

TEST_P(FileLocks, of_two_processes_that_create_a_file_when_missing_one_gets_it)
{
    const std::string name = path("new.h5");
    OtherProcess first(GetParam(), name), second(GetParam(), name);
    EXPECT_EQ(first.open(13), 0);
    EXPECT_EQ(second.open(13), -1);
    EXPECT_EQ(first.close(), 0);
    EXPECT_EQ(second.open(13), 0);
    EXPECT_EQ(second.close(), 0);
}

}  // namespace vak::test
