// One array packed by us and by HDF5's filter, which is the judge in both directions.
#pragma once

#include <bit>
#include <cstring>
#include <random>

#include "chunk_judge.h"
#include "storage/scale_offset.h"
#include "support/library.h"

namespace vak::test {

template <class T>
std::string told(const std::vector<T>& values)
{
    return std::to_string(values.size()) + " values, the first " + std::to_string(values.front());
}

// One array in one dataset of one chunk, and the filter's values that HDF5 stored with it.
template <class T>
struct Case {
    Case(hid_t file, const Recipe& recipe, std::vector<T> array)
        : values(std::move(array)), file_(file), recipe_(recipe)
    {
        make("form");
        const auto dataset = open_dataset(file_, "form");
        const PropertiesId list(H5Dget_create_plist(dataset), "creation list");
        unsigned flags = 0;
        unsigned stored[20];
        size_t count = 20;
        H5Pget_filter_by_id2(list, H5Z_FILTER_SCALEOFFSET, &flags, &count, stored, 0, nullptr, nullptr);
        form = *scale_offset_form(stored, count);
    }
    ~Case()
    {
        for (const auto& name : made_) H5Ldelete(file_, name.c_str(), H5P_DEFAULT);
    }
    Case(const Case&) = delete;
    Case& operator=(const Case&) = delete;

    void make(const std::string& name)
    {
        make_dataset<T>(file_, name, recipe_, values.size());
        made_.push_back(name);
    }

    // Empty when the form refuses the values.
    std::vector<unsigned char> packed() const
    {
        std::vector<unsigned char> bytes(scale_offset_limit(form));
        bytes.resize(pack_scale_offset(form, values.data(), bytes.data()));
        return bytes;
    }

    std::vector<T> unpacked(const std::vector<unsigned char>& bytes) const
    {
        std::vector<T> result(values.size());
        const bool good = unpack_scale_offset(form, bytes.data(), bytes.size(), result.data());
        return good ? result : std::vector<T>();
    }

    ChunkBytes stored_by_hdf5()
    {
        make("by_hdf5");
        EXPECT_TRUE(write_by_hdf5(file_, "by_hdf5", values));
        return stored_chunk(file_, "by_hdf5");
    }

    std::vector<T> read_back_by_hdf5() { return read_by_hdf5<T>(file_, "by_hdf5", values.size()); }

    std::vector<T> read_by_hdf5_from(const std::vector<unsigned char>& bytes)
    {
        make("ours");
        EXPECT_TRUE(store_chunk(file_, "ours", {bytes, 0}));
        return read_by_hdf5<T>(file_, "ours", values.size());
    }

    std::vector<T> values;
    ScaleOffset form;

private:
    hid_t file_;
    Recipe recipe_;
    std::vector<std::string> made_;
};

// Equal bit by bit, which also tells 0 from -0 and lets a NaN equal itself.
template <class T>
bool same_bits(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

class ScaleOffsetTest : public LibraryTest {
protected:
    // What holds for every array: a packed chunk is byte for byte HDF5's, and HDF5 reads it as we do.
    template <class T>
    bool agrees_with_hdf5(const Recipe& recipe, const std::vector<T>& values)
    {
        Case<T> c(file, recipe, values);
        const auto packed = c.packed();
        if (packed.empty()) return false;
        EXPECT_EQ(c.stored_by_hdf5(), (ChunkBytes{packed, 0}))
            << told(values) << ", factor " << recipe.factor;
        const auto read = c.read_by_hdf5_from(packed);
        EXPECT_TRUE(same_bits(read, c.unpacked(packed))) << told(values) << ", factor " << recipe.factor;
        return true;
    }

    // Whatever HDF5 wrote and can read, we read alike.
    template <class T>
    bool reads_what_hdf5_wrote(const Recipe& recipe, const std::vector<T>& values)
    {
        Case<T> c(file, recipe, values);
        const auto stored = c.stored_by_hdf5();
        const auto read = c.read_back_by_hdf5();
        if (read.empty()) return false;
        EXPECT_TRUE(same_bits(read, c.unpacked(stored.bytes)))
            << told(values) << ", factor " << recipe.factor;
        return true;
    }

    std::mt19937_64 random{20240607};
};

template <class T>
std::vector<T> uniform(std::mt19937_64& random, size_t count, double low, double high)
{
    std::vector<T> values(count);
    std::uniform_real_distribution<double> draw(low, high);
    for (auto& v : values) v = static_cast<T>(draw(random));
    return values;
}

template <class T>
std::vector<T> whole_numbers(std::mt19937_64& random, size_t count, int64_t low, int64_t high)
{
    std::vector<T> values(count);
    std::uniform_int_distribution<int64_t> draw(low, high);
    for (auto& v : values) v = static_cast<T>(draw(random));
    return values;
}

// Lengths around the blocks in which values are packed, and short ones.
inline const std::vector<size_t> lengths = {1, 7, 8, 511, 512, 513, 1030};

}  // namespace vak::test
