// Stands in for src/storage: the whole of storage.h.
#include "contracts/storage_that_fails.h"

#include <cstring>
#include <string_view>

#include "storage/storage.h"

namespace vak {

namespace {

int failing_step = 0;
int steps = 0;
int32_t key_written_last = 0;

int32_t step() { return ++steps == failing_step ? test::step_failure : 0; }

}  // namespace

namespace test {

void count_steps(int failing)
{
    failing_step = failing;
    steps = 0;
}

int steps_taken() { return steps; }

}  // namespace test

hid_t SharedIds::scalar() { return H5I_INVALID_HID; }
hid_t SharedIds::text(size_t) { return H5I_INVALID_HID; }

int32_t chunk_size() { return 1; }
void set_chunk_size(int32_t) {}

int32_t VAK_H5Awrite(const char* name, const void* data, int32_t, size_t, size_t, const hsize_t*, int32_t,
                     const Location&)
{
    if (name == std::string_view("block")) std::memcpy(&key_written_last, data, sizeof key_written_last);
    return step();
}

// Leaves what the caller has, except for the key, which a reader checks.
int32_t VAK_H5Aread(const char* name, void* data, int32_t, size_t, const hsize_t*, int32_t, const Location&,
                    size_t*)
{
    const int32_t status = step();
    if (status == 0 && name == std::string_view("block"))
        std::memcpy(data, &key_written_last, sizeof key_written_last);
    return status;
}

int32_t VAK_H5Dwrite(const char*, const void*, int32_t, size_t, size_t, hsize_t*, int32_t, const hsize_t*,
                     hsize_t*, int32_t, const Location&, uint32_t, const uint32_t*)
{
    return step();
}

int32_t VAK_H5Dread(const char*, void*, int32_t, size_t, const hsize_t*, int32_t, const hsize_t*,
                    const hsize_t*, int32_t, const Location&, uint32_t*, int32_t*)
{
    return step();
}

int32_t refuse_reading(const char*, int32_t, size_t) { return test::step_failure; }

}  // namespace vak
