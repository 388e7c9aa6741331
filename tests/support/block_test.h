// The fixture of the tests of one kind of block. What a call gave is one value, so that a test reads
//
//   EXPECT_EQ(write(parts), success);
//   EXPECT_EQ(write(parts), failure(-1, "VAK INTERNAL ERROR writing block key 100 - \"parts\" already
//   exists.\n"));
#pragma once

#include <cstdlib>

#include "samples/sample.h"
#include "support/library.h"
#include "vak_sp.h"

namespace vak::test {

// The status of an exported call and what it printed.
struct Result {
    int32_t ierr = 0;
    Output output;

    bool operator==(const Result&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Result& result)
{
    return stream << "ierr " << result.ierr << ", " << result.output;
}

inline const Result success;

inline Result status(int32_t ierr) { return {ierr, {}}; }

inline Result failure(int32_t ierr, const std::string& line) { return {ierr, {"", line}}; }

class BlockTest : public LibraryTest {
protected:
    template <class Routine>
    Result run(Routine&& routine)
    {
        Result result;
        result.output = call([&] { result.ierr = routine(); });
        return result;
    }

    template <class S>
    Result write(const S& sample)
    {
        return run([&] { return sample.write(file); });
    }

    // Reads from the place that the sample belongs to, or from another one.
    template <class S>
    Result read(S& sample, int32_t mode)
    {
        return read(sample, mode, sample.found_at.empty() ? sample.path() : sample.found_at);
    }
    template <class S>
    Result read(S& sample, int32_t mode, const std::string& path)
    {
        const ObjectId group = open_object(file, path);
        return run([&] { return sample.read(group, mode); });
    }

    // Puts another value into the file, which no writer would.
    void falsify_attribute(const std::string& object, const std::string& name, int32_t value)
    {
        const ObjectId holder = open_object(file, object);
        const AttributeId attribute = open_attribute(holder, ".", name);
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &value), 0);
    }
    void falsify_dataset(const std::string& path, const std::vector<int32_t>& values)
    {
        const ObjectId dataset = open_object(file, path);
        EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    }

    // How it is stored.
    template <class S>
    std::string stored(const S& sample)
    {
        return layout(file, sample.path());
    }
};

// Runs once for each family: INSTANTIATE_TEST_SUITE_P(, MyTest, both_families, family_name)
class BothFamilies : public BlockTest, public testing::WithParamInterface<Family> {
protected:
    Family family() const { return GetParam(); }
    bool legacy() const { return family() == Family::legacy; }

    template <class S>
    S sample() const
    {
        return sample_of<S>(family());
    }

    // What the catalogue lists below a place, each as "key path".
    std::vector<std::string> listed_blocks(hid_t at)
    {
        int32_t capacity = 0, n = 0, ierr = untouched, *keys = nullptr;
        const int32_t collect = 1, verbose = 0;
        int64_t pool = 0, total = 0, *offsets = nullptr;
        char* paths = nullptr;
        const auto lookup = legacy() ? vak1_lookup : vak_lookup;
        EXPECT_EQ(call([&] {
                      lookup(&at, &collect, &verbose, &capacity, &pool, &n, &total, &keys, &offsets, &paths,
                             &ierr);
                  }),
                  nothing_printed);
        EXPECT_EQ(ierr, 0);
        std::vector<std::string> found;
        for (int32_t i = 0; i < n; ++i) found.push_back(std::to_string(keys[i]) + " " + (paths + offsets[i]));
        std::free(keys);
        std::free(offsets);
        std::free(paths);
        return found;
    }
};

inline const auto both_families = testing::Values(Family::current, Family::legacy);
inline const auto family_name = [](const auto& info) {
    return std::string(info.param == Family::legacy ? "legacy" : "current");
};

}  // namespace vak::test
