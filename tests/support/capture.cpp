#include "support/capture.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace vak::test {

namespace {

void flush_everything()
{
    std::cout.flush();
    std::fflush(nullptr);
}

int unnamed_file()
{
    std::string name = (std::filesystem::temp_directory_path() / "vak_output.XXXXXX").string();
    const int file = mkstemp(name.data());
    if (file < 0) throw std::runtime_error("cannot make the file " + name);
    unlink(name.c_str());
    return file;
}

std::string whole_text(int file)
{
    std::string text(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    const ssize_t length = pread(file, text.data(), text.size(), 0);
    text.resize(length < 0 ? 0 : static_cast<size_t>(length));
    return text;
}

}  // namespace

Redirection::Redirection(int descriptor)
    : descriptor_(descriptor), original_(fcntl(descriptor, F_DUPFD_CLOEXEC, 3)), file_(unnamed_file())
{
    flush_everything();
    dup2(file_, descriptor_);
}

std::string Redirection::take_back()
{
    flush_everything();
    dup2(original_, descriptor_);
    std::string text = whole_text(file_);
    close(original_);
    close(file_);
    original_ = -1;
    return text;
}

Redirection::~Redirection()
{
    if (original_ >= 0) take_back();
}

}  // namespace vak::test
