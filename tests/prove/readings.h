// What is read while something fails inside the library: a call of every reader, in each way of reading.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

// What a reader gave.
struct Delivered {
    int32_t status = untouched;
    long held = 0;  // pieces of memory that it did not give back
    std::string values;
};

struct Reading {
    std::string name;
    std::function<int32_t(vak_id root)> write;    // what is read later
    std::string path;                             // of the group that the reader takes
    std::function<Delivered(vak_id group)> read;  // only the reader itself is counted
    std::string expected{};                       // of the values; empty: what it reads without a fault
    bool may_be_fewer = false;                    // the catalogue passes over what it cannot read
    std::string second_line{};                    // of a failure
};

std::vector<Reading> readings();

}  // namespace vak::test
