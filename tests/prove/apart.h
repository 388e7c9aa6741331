// A trial in a process of its own, which may be killed, crash or hang.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace vak::test {

// What the process tells.
struct Report {
    bool finished = false;
    int32_t status = 0;
    long hdf5_calls = 0, allocations = 0, ids_left = 0, held = 0;
    long hdf5_calls_before = 0, allocations_before = 0;  // before what the job is about
    bool in_open_or_close = false;                       // the fault was
    std::array<char, 64> failed{};                       // the HDF5 function, or the routine without memory
    std::array<char, 64> verdicts{};                     // one for each item that was judged
    std::array<char, 256> example{};                     // the first item that reads as something else
};

struct Ending {
    Report report;
    std::string printed{};       // on standard error
    bool killed = false;         // as the fault wanted it
    bool out_of_memory = false;  // a tool ended the process, with its line
    std::string crash;           // the innermost function of the library or of HDF5, "hang", or empty
    bool succeeded() const { return report.finished && report.status == 0; }
    bool in_hdf5() const { return crash.starts_with("H5"); }
};

Ending apart(const std::function<void(Report&)>& body);

}  // namespace vak::test
