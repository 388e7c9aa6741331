// Calls the program as a user does and takes down what it says.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "support/temp_file.h"

namespace vak::test {

struct Said {
    int status = -1;  // exit status, or minus the signal that ended it
    std::string out, err;

    bool operator==(const Said&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Said& said)
{
    return stream << "status " << said.status << ", standard output: \"" << said.out
                  << "\", standard error: \"" << said.err << '"';
}

inline std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Starts the program; its output goes to files named out and err in the folder.
inline pid_t start(const std::vector<std::string>& arguments, const TempFolder& folder,
                   const std::string& program = VAK_PROGRAM)
{
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const std::string out = folder.file("out"), err = folder.file("err");
    const pid_t child = fork();
    if (child == 0) {
        dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        execv(argv[0], argv.data());
        _exit(127);
    }
    return child;
}

inline Said finish(pid_t child, const TempFolder& folder)
{
    int status = 0;
    waitpid(child, &status, 0);
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
            .out = contents(folder.file("out")),
            .err = contents(folder.file("err"))};
}

inline Said vak_says(const std::vector<std::string>& arguments)
{
    const TempFolder folder;
    return finish(start(arguments, folder), folder);
}

}  // namespace vak::test
