// Runs a target's function once per input and ends the process when it left something open.
#include <hdf5.h>

#include <cstdio>
#include <cstdlib>

#include "support/input.h"
#include "support/open_ids.h"

namespace vak::fuzz {

// Known by their names in the report.
[[noreturn, gnu::noinline]] void identifiers_were_left_open() { std::abort(); }
[[noreturn, gnu::noinline]] void descriptors_were_left_open() { std::abort(); }

static void run(Bytes input)
{
    const test::IdCounter ids;
    const size_t descriptors = test::open_descriptors();
    const int64_t objects = ids.count().objects;
    try_input(input);
    if (ids.count().total() != objects) identifiers_were_left_open();
    if (test::open_descriptors() != descriptors) descriptors_were_left_open();
}

}  // namespace vak::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    H5open();
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // the targets' own calls; the library's are silent anyway
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    vak::fuzz::run({data, size});
    return 0;
}
