// Functions of HDF5 that say no when a test names them, as a healthy HDF5 never does.
#pragma once

#include <dlfcn.h>

#include <string>

namespace vak::test {

inline std::string refused;

inline bool refuses(const char* name) { return refused == name; }

template <class Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace vak::test

// Stands before HDF5's function of that name.
#define MAY_REFUSE(result, name, parameters, arguments)                            \
    extern "C" result name parameters                                              \
    {                                                                              \
        if (vak::test::refuses(#name)) return -1;                                  \
        static const auto original = vak::test::next<result(*) parameters>(#name); \
        return original arguments;                                                 \
    }
// The same, but it says no only the first time.
#define MAY_REFUSE_ONCE(result, name, parameters, arguments)                       \
    extern "C" result name parameters                                              \
    {                                                                              \
        const bool now = vak::test::refuses(#name);                                \
        if (now) vak::test::refused.clear();                                       \
        static const auto original = vak::test::next<result(*) parameters>(#name); \
        return now ? -1 : original arguments;                                      \
    }
// Stands before a function that closes: that does so, and then reports that something went wrong.
#define MAY_FAIL_CLOSING(name)                                                  \
    extern "C" herr_t name(hid_t id)                                            \
    {                                                                           \
        static const auto original = vak::test::next<herr_t (*)(hid_t)>(#name); \
        const herr_t status = original(id);                                     \
        return vak::test::refuses(#name) ? -1 : status;                         \
    }
