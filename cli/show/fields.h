// The arguments of the library's readers, as objects that know their names and sizes. A kind of block is
// shown by the list of its reader's arguments, in their order.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "show/statistics.h"
#include "show/view.h"

namespace vak::show {

// A block while it is read.
struct Reading {
    BlockView& view;
    const Request& request;
    const vak_id* group;

    bool complex() const { return view.entry.key >= 1000 && view.entry.key % 10 == 1; }
    bool legacy() const { return request.layout == store::Layout::legacy; }
};

// A text attribute.
class Text {
public:
    explicit Text(const char* name, size_t length = 256) : name_(name), field_(length, ' ') {}
    Text(const char* name, std::function<bool()> present)
        : name_(name), field_(256, ' '), present_(std::move(present))
    {
    }
    char* pointer() { return field_.data(); }
    void show(Reading& reading) const;
    std::string value() const;

private:
    const char* name_;
    std::string field_;
    std::function<bool()> present_;  // absent: always
};

// An integer attribute.
template <class T>
class Number {
public:
    explicit Number(const char* name, std::function<bool()> present = {})
        : name_(name), present_(std::move(present))
    {
    }
    T* pointer() { return &value; }
    void show(Reading& reading) const
    {
        if (!present_ || present_()) reading.view.attributes.emplace_back(name_, int64_t{value});
    }

    T value = 0;

private:
    const char* name_;
    std::function<bool()> present_;
};

using Integer = Number<int32_t>;
using Long = Number<int64_t>;

// The filters found, shown when there are any.
struct Flags {
    int32_t value = 0;
    int32_t* pointer() { return &value; }
    void show(Reading& reading) const;
};
struct Parameters {
    std::array<int32_t, 2> values{};
    int32_t* pointer() { return values.data(); }
    void show(Reading& reading) const;
};

// An argument that is given: a place, a part of an array, nothing at all.
template <class T>
struct Given {
    T value;
    const T* pointer() const { return &value; }
    void show(Reading&) const {}
};
// What a reader takes to tell its parts: a pass number or a mode.
struct Pass {
    int32_t attributes, everything;
    int32_t value = 0;
    const int32_t* pointer() const { return &value; }
    void show(Reading&) const {}
};
// Part of an array: a start or a count for each extent.
struct Selection {
    std::array<int64_t, 4> values{};
    const int64_t* pointer() const { return values.data(); }
    void show(Reading&) const {}
};
struct Ignored {
    std::nullptr_t pointer() const { return nullptr; }
    void show(Reading&) const {}
};
// The length of an extent: a number, a count, or what a function tells once it is known.
struct Extent {
    Extent(int64_t fixed) : length([fixed] { return fixed; }) {}
    template <class T>
    Extent(const Number<T>& count) : length([&count] { return int64_t{count.value}; })
    {
    }
    Extent(std::function<int64_t()> told) : length(std::move(told)) {}

    std::function<int64_t()> length;
};

using Shape = std::vector<Extent>;

// The number of values of a shape, extents below 0 counting as 0; a problem when it cannot be.
int64_t volume(const std::vector<int64_t>& extents);
// A number of values that may be allocated; a problem when it is too large.
size_t up_to(int64_t most, int64_t values);

// What the arrays of all types have in common.
class ArrayField {
public:
    ArrayField(const char* name, Shape shape) : name_(name), shape_(std::move(shape)) {}
    // An array whose number of extents is not known before.
    ArrayField(const char* name, std::function<std::vector<int64_t>()> shape)
        : name_(name), told_(std::move(shape))
    {
    }

    std::vector<int64_t> extents() const;
    bool present() const { return !present_ || present_(); }
    const char* name() const { return name_; }

protected:
    ArrayView view_of_type(std::string type) const;

    const char* name_;
    Shape shape_;
    std::function<std::vector<int64_t>()> told_;
    std::function<bool()> present_;
    const Number<int32_t>* states_ = nullptr;  // how many, in a series
};

// An array of numbers.
template <class T>
class Numbers : public ArrayField {
public:
    using ArrayField::ArrayField;

    // Stored under a condition only.
    Numbers& when(const std::function<bool()>& present)
    {
        present_ = present;
        return *this;
    }
    // Has extremes; the letters are those of Axes. `entities` are the identifiers along e.
    Numbers& along(std::string letters, const Numbers<int32_t>* entities = nullptr)
    {
        letters_ = std::move(letters);
        entities_ = entities;
        return *this;
    }
    // Is a series: each reading gives the values of one state.
    Numbers& of_states(const Number<int32_t>& states)
    {
        states_ = &states;
        return *this;
    }

    T* pointer() { return values_.empty() ? nullptr : values_.data(); }
    bool fits() const { return static_cast<int64_t>(values_.size()) == wanted(); }
    void allocate(int64_t most) { values_ = std::vector<T>(up_to(most, wanted())); }
    // Takes note of what was read: all values, or those of one state.
    void take(const Request& request, int64_t state);
    void show(Reading& reading) const;

    const std::vector<T>& values() const { return values_; }
    // The sum of the values; unknown before they are read.
    int64_t sum() const;

private:
    int64_t wanted() const { return present() ? volume(extents()) : 0; }

    std::string letters_;
    const Numbers<int32_t>* entities_ = nullptr;
    std::vector<T> values_;  // of the array, or of the state read last
    std::vector<T> kept_;    // of a series: what is shown
    std::optional<Statistics> statistics_;
    size_t read_ = 0;  // how many values were read in all
    bool taken_ = false;
};

using Integers = Numbers<int32_t>;
using Longs = Numbers<int64_t>;
using Reals = Numbers<float>;

// An array of texts of one length.
class Texts : public ArrayField {
public:
    Texts(const char* name, Shape shape, Extent length = 256)
        : ArrayField(name, std::move(shape)), length_(std::move(length))
    {
    }

    Texts& when(const std::function<bool()>& present)
    {
        present_ = present;
        return *this;
    }

    char* pointer() { return characters_.empty() ? nullptr : characters_.data(); }
    bool fits() const { return static_cast<int64_t>(characters_.size()) == wanted(); }
    void allocate(int64_t most) { characters_ = std::vector<char>(up_to(most, wanted()), ' '); }
    void take(const Request&, int64_t) { taken_ = true; }
    void show(Reading& reading) const;

private:
    int64_t wanted() const;

    Extent length_;
    std::vector<char> characters_;
    bool taken_ = false;
};

}  // namespace vak::show
