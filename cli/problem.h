// What stops the program: one line for the user that says what is wrong and what to do.
#pragma once

#include <stdexcept>

namespace vak::cli {

struct Problem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace vak::cli
