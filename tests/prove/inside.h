// What happens inside the library: its calls of HDF5 and its allocations are counted, and one of them fails.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

namespace vak::test {

// Counted from 0 while the library is inside an exported routine and `counting` is on.
struct Countdown {
    long seen = 0;
    long fails_at = -1;
    std::string_view only{};  // of this name, if any
    const char* failed = "";  // what it was
    bool fails(const char* name);
    bool has_failed() const { return *failed != 0; }
};

struct Library {
    bool counting = false;
    int depth = 0;             // exported routines may call each other
    const char* routine = "";  // the outermost one
    const char* failed_in = "";
    Countdown hdf5_calls, allocations;
    long hdf5_calls_before = 0, allocations_before = 0;
    long held = 0;  // pieces of memory by operator new

    bool has_failed() const { return hdf5_calls.has_failed() || allocations.has_failed(); }
    bool counts() const { return counting && depth > 0; }
};

inline Library library;

// The exported routines that were called in this process.
std::set<std::string> routines_called();
// Those of the header whose names go on with one of the words: "READ_|WRITE_".
std::set<std::string> routines_declared(const std::string& beginnings);

// Lives while an exported routine runs.
class Inside {
public:
    explicit Inside(const char* routine);
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside();

private:
    bool closes_;
};

// What an HDF5 function gives that fails.
template <class R>
R failure()
{
    if constexpr (std::is_pointer_v<R>)
        return nullptr;
    else if constexpr (std::is_unsigned_v<R>)
        return 0;
    else
        return static_cast<R>(-1);
}

// A close that fails has closed all the same, as HDF5's do.
template <class Call>
auto hdf5_call(const char* name, Call call) -> decltype(call())
{
    if (!library.counts() || !library.hdf5_calls.fails(name)) return call();
    if (std::string_view(name).find("close") != std::string_view::npos) call();
    return failure<decltype(call())>();
}

}  // namespace vak::test
