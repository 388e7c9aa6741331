#include "prove/apart.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <new>
#include <regex>

#include "support/capture.h"

// Every trial begins with the memory of a process that was just forked: little of it is kept from use.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options()
{
    return "quarantine_size_mb=4:malloc_context_size=4";
}

namespace vak::test {

namespace {

constexpr unsigned longest_seconds = 120, longest_processor_seconds = 20;

[[noreturn]] void run(const std::function<void(Report&)>& body, Report& report)
{
    const rlimit none{0, 0}, processor{longest_processor_seconds, longest_processor_seconds};
    setrlimit(RLIMIT_CORE, &none);
    setrlimit(RLIMIT_CPU, &processor);
    alarm(longest_seconds);
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
