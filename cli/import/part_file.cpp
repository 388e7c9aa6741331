#include "import/part_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "problem.h"

namespace vak::import {

namespace {

constexpr std::array<int, 3> ending_signals{SIGINT, SIGTERM, SIGHUP};
std::array<char, 4096> to_remove{};  // read by the signal handler

// Removes the file and lets the signal do what it does without a handler.
void remove_and_end(int signal)
{
    if (to_remove[0] != '\0') unlink(to_remove.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
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
    if (path_.size() >= to_remove.size()) throw cli::Problem(final_name_ + ": the name is too long");
    path_.copy(to_remove.data(), path_.size());
    to_remove[path_.size()] = '\0';
    for (const int signal : ending_signals) std::signal(signal, remove_and_end);
}

PartFile::~PartFile()
{
    for (const int signal : ending_signals) std::signal(signal, SIG_DFL);
    to_remove[0] = '\0';
    if (!path_.empty()) unlink(path_.c_str());
}

void PartFile::complete()
{
    const int file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    const bool on_disk = file >= 0 && fsync(file) == 0;
    if (file >= 0) ::close(file);
    if (!on_disk) refuse(final_name_, "cannot be brought to the disk");
    if (std::rename(path_.c_str(), final_name_.c_str()) != 0) refuse(final_name_, "cannot be written");
    path_.clear();
}

}  // namespace vak::import
