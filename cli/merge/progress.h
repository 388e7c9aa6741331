// Tells on standard error how far a merge is. It looks at nothing but the size of the file that grows.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace vak::merge {

// "  45 %  1.2 of about 2.7 GB  310.0 MB/s  5 s left"
std::string progress_text(int64_t done, int64_t expected, double seconds);

// On a terminal one line that is written over, elsewhere a line for each 10 %.
class Progress {
public:
    // Expects so many bytes in all files that will be watched.
    explicit Progress(int64_t expected);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    // While it lives, the file grows by about the bytes of its sources, which count as done at its end.
    class Watch {
    public:
        Watch(Progress& progress, const std::string& file, int64_t bytes);
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch();

    private:
        Progress& progress_;
        int64_t bytes_;
        int exceptions_;  // under way when it began
    };

    // Everything is done.
    void finish();

private:
    void run();
    void tell(int64_t done);
    int64_t done_now() const;

    const int64_t expected_;
    const bool terminal_;
    const std::chrono::steady_clock::time_point begin_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string file_;
    int64_t finished_bytes_ = 0, file_bytes_ = 0;
    int told_tens_ = 0;
    bool line_open_ = false;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace vak::merge
