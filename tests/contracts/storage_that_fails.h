// A storage layer that stores nothing, counts its steps and fails at one of them.
#pragma once

#include <cstdint>

namespace vak::test {

constexpr int32_t step_failure = -7777;

// The next steps count from 1; `failing` 0 fails none.
void count_steps(int failing);
int steps_taken();

}  // namespace vak::test
