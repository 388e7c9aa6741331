// Calls an exported routine with made-up arguments of the right types.
#pragma once

#include <hdf5.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <tuple>

namespace vak::test {

// Every argument has memory of its own: the first identifier is the location, integers are all one value,
// reals and 64-bit counts are 1, texts are fields that read "NAME".
class SampleArguments {
public:
    SampleArguments(hid_t location, int32_t value) : location_(location), value_(value) {}

    template <class T>
    T* make()
    {
        if constexpr (std::is_void_v<T>)
            return nullptr;
        else
            return fill(static_cast<std::remove_const_t<T>*>(room()));
    }

private:
    static constexpr size_t size = 8192;

    void* room() { return memory_.emplace_back().data(); }

    int32_t* fill(int32_t* at)
    {
        std::fill_n(at, size / sizeof *at, value_);
        return at;
    }
    float* fill(float* at)
    {
        std::fill_n(at, size / sizeof *at, 1.0F);
        return at;
    }
    int64_t* fill(int64_t* at)
    {
        std::fill_n(at, size / sizeof *at, location_given_ ? 1 : location_);
        location_given_ = true;
        return at;
    }
    char* fill(char* at)
    {
        std::fill_n(at, size, ' ');
        for (size_t field = 0; field < size; field += 256) std::copy_n("NAME", 4, at + field);
        return at;
    }

    hid_t location_;
    int32_t value_;
    bool location_given_ = false;
    std::deque<std::array<char, size>> memory_;
};

// Gives what the routine's last argument, ierr, holds afterwards.
template <class... T>
int32_t call_with_samples(void (*routine)(T*...), hid_t location, int32_t value)
{
    SampleArguments samples(location, value);
    const std::tuple<T*...> arguments{samples.make<T>()...};
    std::apply(routine, arguments);
    return *std::get<sizeof...(T) - 1>(arguments);
}

}  // namespace vak::test
