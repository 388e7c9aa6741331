// The storage layer's routines as an exported routine calls them, with their outcome in one value.
#pragma once

#include <array>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "frame/exported.h"
#include "storage/storage.h"
#include "support/library.h"

namespace vak::test {

// The code that a routine gave and all that it printed on standard error.
struct Outcome {
    int32_t code = 0;
    std::string text;

    bool operator==(const Outcome&) const = default;
};

inline const Outcome done;

inline std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
{
    return stream << outcome.code << ", printed \"" << outcome.text << '"';
}

// What VAK_H5Dwrite and VAK_H5Dread give and print when they fail.
inline Outcome not_written(int32_t code, int32_t number, const std::string& values)
{
    return {code, "VAK INTERNAL ERROR (" + std::to_string(number) +
                      ") in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: " + values +
                      "\n"};
}

inline Outcome not_read(int32_t number, const std::string& values)
{
    return {-6000 - number, "VAK INTERNAL ERROR (" + std::to_string(number) +
                                ") in VAK_H5Dread - name, vak_type, data_size, error: " + values + "\n"};
}

using Dims = std::vector<hsize_t>;

// What VAK_H5Dwrite and VAK_H5Dread take besides the values.
struct Access {
    std::string name = "values";
    Dims dims = {};
    Dims count = {};
    Dims start = {};
    int32_t mode = whole_dataset;
    uint32_t flags = 0;
    std::array<uint32_t, 2> params{0, 0};
    size_t vak_size = 0;  // 0: as in memory
};

template <class T>
constexpr int32_t type_of = std::is_floating_point_v<T> ? real_type : integer_type;

template <class T>
std::vector<T> numbers(size_t n, T first = 0)
{
    std::vector<T> values(n);
    std::iota(values.begin(), values.end(), first);
    return values;
}

class StorageTest : public LibraryTest {
protected:
    template <class Routine>
    Outcome outcome(Routine&& routine)
    {
        Outcome result;
        const Output output = call([&] {
            const QuietHdf5 quiet;
            begin_routine();
            result.code = routine();
            end_routine();
        });
        EXPECT_EQ(output.out, "");
        result.text = output.err;
        return result;
    }

    Outcome write_attribute(const std::string& name, const void* data, int32_t type, size_t data_size,
                            size_t vak_size, Dims dims = {})
    {
        return outcome([&] {
            return VAK_H5Awrite(name.c_str(), data, type, data_size, vak_size, dims.data(), rank(dims), file);
        });
    }

    Outcome read_attribute(const std::string& name, void* data, int32_t type, size_t data_size,
                           Dims dims = {})
    {
        return outcome([&] {
            return VAK_H5Aread(name.c_str(), data, type, data_size, dims.data(), rank(dims), file,
                               &stored_size);
        });
    }

    Outcome write_values(const void* data, int32_t type, size_t data_size, Access& a)
    {
        a.dims.reserve(1);  // also a scalar's extents may not be null
        return outcome([&] {
            return VAK_H5Dwrite(a.name.c_str(), data, type, data_size,
                                a.vak_size == 0 ? data_size : a.vak_size, a.dims.data(), rank(a.dims),
                                a.count.data(), a.start.data(), a.mode, file, a.flags, a.params.data());
        });
    }

    template <class T>
    Outcome write(const std::vector<T>& values, Access&& a)
    {
        return write_values(values.data(), type_of<T>, sizeof(T), a);
    }

    template <class T>
    Outcome write(const std::vector<T>& values, Access& a)
    {
        return write_values(values.data(), type_of<T>, sizeof(T), a);
    }

    Outcome write(const std::string& values, size_t length, Access a)
    {
        return write_values(values.data(), text_type, length, a);
    }

    // `found_flags` and `found_params` hold what the read reported, from 0.
    Outcome read_values(void* data, int32_t type, size_t data_size, const Access& a)
    {
        found_flags = 0;
        found_params = {0, 0};
        return outcome([&] {
            return VAK_H5Dread(a.name.c_str(), data, type, data_size, a.dims.data(), rank(a.dims),
                               a.count.data(), a.start.data(), a.mode, file, &found_flags,
                               found_params.data());
        });
    }

    template <class T>
    Outcome read(std::vector<T>& values, const Access& a)
    {
        return read_values(values.data(), type_of<T>, sizeof(T), a);
    }

    Outcome read(std::string& values, size_t length, const Access& a)
    {
        return read_values(values.data(), text_type, length, a);
    }

    // The next calls see the same file, closed and opened again.
    void reopen(unsigned access = H5F_ACC_RDWR)
    {
        const std::string name = close_file();
        file = H5Fopen(name.c_str(), access, H5P_DEFAULT);
        ASSERT_GE(file, 0);
    }

    static int32_t rank(const Dims& dims) { return static_cast<int32_t>(dims.size()); }

    // Around the routine alone, without what the fixture does to watch it.
    virtual void begin_routine() {}
    virtual void end_routine() {}

    size_t stored_size = 0;
    uint32_t found_flags = 0;
    std::array<int32_t, 2> found_params{};
};

}  // namespace vak::test
