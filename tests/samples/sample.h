// Blocks as a caller has them in memory, one small record for each kind: written and read back by the tests
// of the block itself, by those of what all blocks have in common, and by the writer of the files that other
// readers are tried on.
//
// A sample knows its family and its place; write(file) and read(group, mode) are the exported calls, whose
// status they give. each(sample, f) hands every stored field of its family to f as (name, value).
#pragma once

#include <hdf5.h>

#include <algorithm>
#include <concepts>
#include <cstdio>
#include <string>
#include <vector>

#include "frame/paths.h"
#include "support/probe.h"

namespace vak::test {

constexpr int32_t untouched = -77;

struct Sample {
    Family family = Family::current;
    int32_t state = 12;
    int32_t flags = 0;
    int32_t params[2] = {0, 0};
    int32_t real_size = 4;

    // What a reader says of the filters, and whether it is given arrays to fill.
    int32_t found_flags = untouched;
    int32_t found_params[2] = {untouched, untouched};
    bool wants_arrays = true;
    std::string found_at;  // where to read from, when the names have been emptied

    bool legacy() const { return family == Family::legacy; }

    template <class T>
    T* out(std::vector<T>& values) const
    {
        return wants_arrays ? values.data() : nullptr;
    }
    char* out(std::string& text) const { return wants_arrays ? text.data() : nullptr; }

    // "singlestate/state000000000012/parts/SHELL" and, in the current family, "/vakblock".
    std::string place(const std::string& names, int32_t nindex) const
    {
        char level[32];
        std::snprintf(level, sizeof level, "/state%012d", state);
        const std::string prefix = nindex == 0 ? "constant" : nindex < 0 ? "multistate" : "singlestate";
        return prefix + (nindex > 0 ? level : "") + "/" + names + (legacy() ? "" : "/vakblock");
    }
};

// The index values of a state.
struct SampleIndex {
    int32_t nindex = 2, indexic = 3;
    std::vector<int32_t> indexident{4, 5};
    std::vector<float> indexval{0.25F, -1.5F};
};

// Legacy blocks have no "indexic", but for parts and matrices.
template <class Index, class F>
void each_index(Index& index, F f, bool has_indexic)
{
    f("nindex", index.nindex);
    if (has_indexic) f("indexic", index.indexic);
    f("indexident", index.indexident);
    f("indexval", index.indexval);
}

// A text that a plain C string would end: without the blanks of its field.
inline std::string trimmed(const std::string& field)
{
    return field.substr(0, field.find_last_not_of(' ') + 1);
}

inline std::string shown(int32_t value) { return std::to_string(value); }
inline std::string shown(int64_t value) { return std::to_string(value); }
inline std::string shown(float value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}
inline std::string shown(const std::string& value) { return "\"" + value + "\""; }
template <class T>
std::string shown(const std::vector<T>& values)
{
    std::string text;
    for (const T& value : values) text += (text.empty() ? "" : " ") + shown(value);
    return text;
}

// One line per field, so that a comparison shows the field that differs.
template <class S>
std::string listing(const S& sample)
{
    std::string text = "\n";
    S::each(sample, [&](const char* name, const auto& value) { text += name + (" " + shown(value)) + "\n"; });
    return text;
}

inline void empty(int32_t& value) { value = untouched; }
inline void empty(int64_t& value) { value = untouched; }
inline void empty(std::string& value) { std::fill(value.begin(), value.end(), '?'); }
template <class T>
void empty(std::vector<T>& values)
{
    std::fill(values.begin(), values.end(), static_cast<T>(untouched));
}

// The same sizes, with nothing of the values: what a reader is given.
template <class S>
S emptied(S sample)
{
    sample.found_at = sample.path();
    S::each(sample, [](const char*, auto& value) { empty(value); });
    return sample;
}

template <class S>
concept MadeOfFamily = requires
{
    requires std::same_as<decltype(S::of(Family{})), S>;
};

// A sample of that family.
template <class S>
S sample_of(Family family)
{
    if constexpr (MadeOfFamily<S>) {
        return S::of(family);
    } else {
        S sample;
        sample.family = family;
        return sample;
    }
}

// What a reader of that family is asked for everything with; some kinds have one way of asking only.
template <class S>
int32_t everything(bool legacy)
{
    if constexpr (!requires { S::everything_mode; })
        return S::everything_pass;
    else if constexpr (!requires { S::everything_pass; })
        return S::everything_mode;
    else
        return legacy ? S::everything_pass : S::everything_mode;
}

}  // namespace vak::test
