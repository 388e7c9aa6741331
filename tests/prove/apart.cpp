#include "prove/apart.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <new>
#include <regex>

#include "support/capture.h"

#ifdef __SANITIZE_ADDRESS__
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

// Every trial begins with the memory of a process that was just forked: little of it is kept from use.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options()
{
    return "quarantine_size_mb=4:malloc_context_size=4";
}

namespace vak::test {

namespace {

constexpr unsigned longest_seconds = 120, longest_processor_seconds = 20;

// One line for each function, as the sanitizers write it; ours have no names in the program that is tried.
void print_functions(int signal)
{
    std::array<void*, 64> frames{};
    const int number = backtrace(frames.data(), static_cast<int>(frames.size()));
    for (int i = 1; i < number; ++i) {
        Dl_info about{};
        if (dladdr(frames[i], &about) == 0 || about.dli_fname == nullptr) continue;
        const bool is_library = std::string_view(about.dli_fname).find(".so") != std::string_view::npos;
        if (is_library && about.dli_sname != nullptr)
            std::fprintf(stderr, "#%d 0x0 in %s\n", i, about.dli_sname);
        else if (!is_library)
            std::fprintf(stderr, "#%d 0x0 in vak::at_%td\n", i,
                         static_cast<char*>(frames[i]) - static_cast<char*>(about.dli_fbase));
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// Without sanitizers a crash is told by its signal; a stack that is full is no place to tell it from.
void tell_of_crashes()
{
    static std::array<char, 65536> stack;
    const stack_t other{stack.data(), 0, stack.size()};
    sigaltstack(&other, nullptr);
    struct sigaction action {};
    action.sa_handler = print_functions;
    action.sa_flags = SA_ONSTACK;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(signal, &action, nullptr);
}

[[noreturn]] void run(const std::function<void(Report&)>& body, Report& report)
{
    const rlimit none{0, 0}, processor{longest_processor_seconds, longest_processor_seconds};
    setrlimit(RLIMIT_CORE, &none);
    setrlimit(RLIMIT_CPU, &processor);
    alarm(longest_seconds);
    if (!sanitized) tell_of_crashes();
    body(report);
    report.finished = true;
    _exit(0);
}

// The sanitizer's lines: "    #3 0x7f12 in H5G__open_oid ...".
std::string innermost_function(const std::string& text)
{
    static const std::regex frame(R"(#\d+ 0x[0-9a-f]+ in (H5\w+|VAK\w+|vak\w*::[\w:~]+))");
    static const std::regex own_message(
        R"([^\n]*(runtime error|terminate called|AddressSanitizer|LeakSanitizer)[^\n]*)");
    std::smatch found;
    if (std::regex_search(text, found, frame)) return found[1];
    return std::regex_search(text, found, own_message) ? found[0].str() : "unknown";
}

}  // namespace

Ending apart(const std::function<void(Report&)>& body)
{
    void* shared = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto* report = new (shared) Report();
    int result = 0;
    const Output output = captured_unnoted([&] {
        const pid_t child = fork();
        if (child == 0) run(body, *report);
        waitpid(child, &result, 0);
    });
    Ending ending;
    ending.report = *report;
    ending.printed = output.err;
    ending.killed = WIFSIGNALED(result) && WTERMSIG(result) == SIGKILL;
    ending.out_of_memory =
        WIFEXITED(result) && WEXITSTATUS(result) == 1 &&
        output.err.find("     *** ERROR *** MEMORY ALLOCATION IN vak_") != std::string::npos;
    munmap(shared, sizeof(Report));
    if (WIFSIGNALED(result) && (WTERMSIG(result) == SIGALRM || WTERMSIG(result) == SIGXCPU))
        ending.crash = "hang";
    else if (!ending.report.finished && !ending.killed && !ending.out_of_memory)
        ending.crash = innermost_function(output.err);
    return ending;
}

}  // namespace vak::test
