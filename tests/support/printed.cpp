// Notes what the calls of this process printed, for the check that every text of the library is printed by
// some test, and nothing else is: tests/contracts/messages.py. Does nothing unless VAK_TEST_MESSAGES names a
// folder.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "support/capture.h"

namespace vak::test {

namespace {

// Different outputs only, written when the process ends: one file of records "o<text>" and "e<text>", each
// ended by a zero byte.
class Printed {
public:
    explicit Printed(const char* folder) : folder_(folder) {}
    Printed(const Printed&) = delete;
    Printed& operator=(const Printed&) = delete;
    ~Printed()
    {
        if (records_.empty() || process_ != getpid()) return;
        std::error_code ignored;
        std::filesystem::create_directories(folder_, ignored);
        std::string name = folder_ + "/XXXXXX";
        const int file = mkstemp(name.data());
        if (file < 0) return;
        close(file);
        std::ofstream stream(name, std::ios::binary);
        for (const std::string& record : records_) stream.write(record.c_str(), std::ssize(record) + 1);
    }

    void add(char stream, const std::string& text)
    {
        if (!text.empty()) records_.insert(stream + text);
    }

private:
    std::string folder_;
    pid_t process_ = getpid();
    std::set<std::string> records_;
};

}  // namespace

void note_printed(const Output& output)
{
    static const char* const folder = std::getenv("VAK_TEST_MESSAGES");
    if (folder == nullptr || *folder == '\0') return;
    static Printed printed(folder);
    printed.add('o', output.out);
    printed.add('e', output.err);
}

}  // namespace vak::test
