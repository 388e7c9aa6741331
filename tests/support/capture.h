// What a call printed, on standard output and on standard error apart.
#pragma once

#include <ostream>
#include <string>
#include <utility>

namespace vak::test {

struct Output {
    std::string out;
    std::string err;

    bool operator==(const Output&) const = default;
};

inline const Output nothing_printed;

inline std::ostream& operator<<(std::ostream& stream, const Output& output)
{
    return stream << "standard output: \"" << output.out << "\", standard error: \"" << output.err << '"';
}

// Sends one file descriptor to a temporary file until taken back.
class Redirection {
public:
    explicit Redirection(int descriptor);
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection();

    // Puts the descriptor back and gives everything that was written to it.
    std::string take_back();

private:
    int descriptor_;
    int original_;
    int file_;
};

// Where not the library alone prints, such as in a child that may crash, or where nobody looks at it.
template <class Call>
Output captured_unnoted(Call&& call)
{
    Redirection out(1);
    Redirection err(2);
    call();
    Output output;
    output.err = err.take_back();
    output.out = out.take_back();
    return output;
}

// Keeps it for the check of all that tests have seen printed (printed.cpp).
void note_printed(const Output& output);

template <class Call>
Output captured(Call&& call)
{
    Output output = captured_unnoted(std::forward<Call>(call));
    note_printed(output);
    return output;
}

}  // namespace vak::test
