#include "merge/progress.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>

namespace vak::merge {

namespace {

constexpr auto pause = std::chrono::milliseconds(200);

std::string size_text(double bytes, double scale, const char* unit)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.1f%s", bytes / scale, unit);
    return text;
}

struct Unit {
    double scale;
    const char* name;
};

Unit unit_of(int64_t bytes)
{
    constexpr std::array<Unit, 4> units{{{1e9, " GB"}, {1e6, " MB"}, {1e3, " kB"}, {1, " B"}}};
    return *std::find_if(units.begin(), units.end() - 1,
                         [&](const Unit& unit) { return static_cast<double>(bytes) >= unit.scale; });
}

int percent(int64_t done, int64_t expected)
{
    return expected <= 0 ? 0
                         : static_cast<int>(static_cast<double>(done) / static_cast<double>(expected) * 100);
}

// Past what the standard stream holds back, which the library's lines go to.
void print(const std::string& text)
{
    for (size_t at = 0; at < text.size();) {
        const ssize_t written = write(STDERR_FILENO, text.data() + at, text.size() - at);
        if (written <= 0) return;
        at += static_cast<size_t>(written);
    }
}

}  // namespace

std::string progress_text(int64_t done, int64_t expected, double seconds)
{
    const Unit unit = unit_of(std::max(done, expected));
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%3d %%  ", percent(done, expected));
    std::string line = text + size_text(static_cast<double>(done), unit.scale, "") + " of about " +
                       size_text(static_cast<double>(expected), unit.scale, unit.name);
    if (rate <= 0) return line;
    line +=
        "  " +
        size_text(rate, unit_of(static_cast<int64_t>(rate)).scale, unit_of(static_cast<int64_t>(rate)).name) +
        "/s";
    if (done < expected) {
        std::snprintf(text, sizeof text, "  %.0f s left", static_cast<double>(expected - done) / rate);
        line += text;
    }
    return line;
}

// Signals are for the thread that has the files.
Progress::Progress(int64_t expected)
    : expected_(expected), terminal_(isatty(STDERR_FILENO) == 1), begin_(std::chrono::steady_clock::now())
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Progress::~Progress()
{
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
    if (line_open_) print("\n");
}

Progress::Watch::Watch(Progress& progress, const std::string& file, int64_t bytes)
    : progress_(progress), bytes_(bytes), exceptions_(std::uncaught_exceptions())
{
    const std::lock_guard lock(progress_.mutex_);
    progress_.file_ = file;
    progress_.file_bytes_ = bytes;
}

Progress::Watch::~Watch()
{
    const std::lock_guard lock(progress_.mutex_);
    progress_.file_.clear();
    progress_.finished_bytes_ += bytes_;
    // The end is told when the file was checked; of one that failed there is nothing to tell.
    const bool failed = std::uncaught_exceptions() > exceptions_;
    if (!failed && progress_.finished_bytes_ < progress_.expected_) progress_.tell(progress_.finished_bytes_);
}

void Progress::finish()
{
    const std::lock_guard lock(mutex_);
    finished_bytes_ = expected_;
    file_.clear();
    tell(expected_);
}

void Progress::run()
{
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, pause, [this] { return ending_; })) tell(done_now());
}

// What HDF5 holds back comes at the end, so a file is never done before it is closed.
int64_t Progress::done_now() const
{
    struct stat now {};
    if (file_.empty() || stat(file_.c_str(), &now) != 0) return finished_bytes_;
    return finished_bytes_ + std::min<int64_t>(now.st_size, file_bytes_ - file_bytes_ / 100);
}

void Progress::tell(int64_t done)
{
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin_;
    const int tens = percent(done, expected_) / 10;
    if (!terminal_ && tens <= told_tens_) return;
    told_tens_ = tens;
    const std::string line = progress_text(done, expected_, passed.count());
    // The cursor waits at the beginning, so that the library's lines do not go on behind this one.
    print(terminal_ ? "\033[K" + line + "\r" : "vak merge: " + line + "\n");
    line_open_ = terminal_;
}

}  // namespace vak::merge
