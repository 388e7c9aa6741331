// Bytes that are about to be read into and are not set to zero before.
#pragma once

#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace vak {

template <class T>
struct Unset : std::allocator<T> {
    template <class U>
    struct rebind {
        using other = Unset<U>;
    };
    template <class U>
    void construct(U* at)
    {
        ::new (static_cast<void*>(at)) U;
    }
    template <class U, class... Values>
    void construct(U* at, Values&&... values)
    {
        ::new (static_cast<void*>(at)) U(std::forward<Values>(values)...);
    }
};
using Bytes = std::vector<char, Unset<char>>;

}  // namespace vak
