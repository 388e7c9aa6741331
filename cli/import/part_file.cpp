#include "import/part_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>

#include "problem.h"

namespace vak::import {

namespace {

// A reader of the output that goes away and a limit of the system end the program as well.
constexpr std::array<int, 7> ending_signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXFSZ, SIGXCPU};

// What is to be removed when the program ends before its work does. The handler reads it, so it changes
// only while the signals wait.
std::set<std::string>& unfinished()
{
    static std::set<std::string> files;
    return files;
}

void remove_unfinished()
{
    for (const std::string& file : unfinished()) unlink(file.c_str());
}

// Removes the files and lets the signal do what it does without a handler.
void remove_and_end(int signal)
{
    remove_unfinished();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// What the caller wants to be ignored (nohup does) stays so.
void answer_signals(void (*answer)(int))
{
    for (const int signal : ending_signals) {
        struct sigaction now {};
        if (sigaction(signal, nullptr, &now) == 0 && now.sa_handler != SIG_IGN) std::signal(signal, answer);
    }
}

class SignalsWait {
public:
    SignalsWait()
    {
        sigset_t waiting;
        sigemptyset(&waiting);
        for (const int signal : ending_signals) sigaddset(&waiting, signal);
        pthread_sigmask(SIG_BLOCK, &waiting, &before_);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
    ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

// The library ends the process where it has no memory: then, too, the files go.
void register_file(const std::string& path)
{
    const SignalsWait wait;
    unfinished().insert(path);
    if (unfinished().size() > 1) return;
    answer_signals(remove_and_end);
    static const bool at_end = std::atexit(remove_unfinished) == 0;
    static_cast<void>(at_end);
}

void forget_file(const std::string& path)
{
    const SignalsWait wait;
    unfinished().erase(path);
    if (!unfinished().empty()) return;
    answer_signals(SIG_DFL);
}

std::string temporary_name(const std::string& final_name)
{
    const std::filesystem::path path(final_name);
    std::string name(".");
    name += path.filename().string() + "." + std::to_string(getpid()) + ".part";
    return (path.parent_path() / name).string();
}

[[noreturn]] void refuse(const std::string& name, const std::string& what)
{
    throw cli::Problem(name + ": " + what + " (" + std::strerror(errno) + ")");
}

void check_place(const std::string& name)
{
    if (std::filesystem::is_directory(name)) throw cli::Problem(name + ": is a folder; name a file in it");
    std::string folder = std::filesystem::path(name).parent_path().string();
    if (folder.empty()) folder.assign(1, '.');
    if (access(folder.c_str(), W_OK | X_OK) != 0) refuse(name, "cannot be written: the folder " + folder);
}

}  // namespace

PartFile::PartFile(std::string final_name)
    : final_name_(std::move(final_name)), path_(temporary_name(final_name_))
{
    check_place(final_name_);
    register_file(path_);
}

PartFile::~PartFile()
{
    if (!path_.empty()) unlink(path_.c_str());
    forget_file(path_);
}

void PartFile::complete()
{
    const int file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    const bool on_disk = file >= 0 && fsync(file) == 0;
    if (file >= 0) ::close(file);
    if (!on_disk) refuse(final_name_, "cannot be brought to the disk");
    if (std::rename(path_.c_str(), final_name_.c_str()) != 0) refuse(final_name_, "cannot be written");
    forget_file(path_);
    path_.clear();
}

}  // namespace vak::import
