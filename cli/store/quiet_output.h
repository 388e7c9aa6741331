// Keeps what the library reports on standard output away from it.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace vak::store {

class QuietOutput {
public:
    QuietOutput()
    {
        std::fflush(stdout);
        original_ = dup(1);
        const int nowhere = ::open("/dev/null", O_WRONLY);
        dup2(nowhere, 1);
        ::close(nowhere);
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;
    ~QuietOutput()
    {
        std::fflush(stdout);
        dup2(original_, 1);
        ::close(original_);
    }

private:
    int original_;
};

}  // namespace vak::store
