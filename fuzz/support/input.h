// What a fuzz target is given, and what it makes of it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "support/temp_file.h"

namespace vak::fuzz {

using Bytes = std::span<const uint8_t>;

// The one function of a target. Whatever the input is, it must come back with nothing left open.
void try_input(Bytes input);

// Takes the last bytes of the input as a value; zeros where there are none. HDF5 does not mind what stands
// behind its file, so that what a target needs beside the file stands there.
template <class T>
T take_tail(Bytes& input)
{
    T value{};
    const size_t size = std::min(sizeof value, input.size());
    std::memcpy(&value, input.data() + input.size() - size, size);
    input = input.first(input.size() - size);
    return value;
}

std::string text_of(Bytes input);

// A fresh folder, in memory where the system has such.
using Folder = test::TempFolder;

// Writes a file and gives its path.
std::string put(const Folder& folder, const std::string& name, Bytes contents);

// An open file, closed at the end with all that is open in it; what failed to open has nothing.
class OpenFile {
public:
    OpenFile(const std::string& path, int32_t mode);
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    bool valid() const { return root_ > 0; }
    const int64_t* root() const { return &root_; }

private:
    int64_t root_ = 0;
};

constexpr int32_t update = 9, read_only = 10, create = 8;

// After an error behind the opening of a file only this tells what stayed open.
void close_everything();

}  // namespace vak::fuzz
