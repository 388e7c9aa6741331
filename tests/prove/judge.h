// What a block reads as afterwards, by its own reader.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "samples/sample.h"
#include "support/ids.h"

namespace vak::test {

enum class Verdict : char {
    error = 'e',       // not there, or the reader says so
    old_values = 'o',  // each value is one that was there at some time
    new_values = 'n',
    other = 'X'
};

// Every value apart, as its bytes; `sizes` are the values that tell how many others there are.
struct Values {
    std::vector<uint64_t> all;
    std::vector<std::pair<size_t, const char*>> fields;  // where each begins
    std::string sizes;

    void add(int32_t value) { size(value); }
    void add(int64_t value) { size(value); }
    void add(const std::string& value) { all.push_back(std::hash<std::string>()(value)); }
    template <class T>
    void add(const std::vector<T>& values)
    {
        all.reserve(all.size() + values.size());
        for (const T value : values) {
            uint64_t bytes = 0;
            std::memcpy(&bytes, &value, sizeof value);
            all.push_back(bytes);
        }
    }
    const char* field_of(size_t value) const
    {
        const char* name = "";
        for (const auto& [begin, field] : fields)
            if (begin <= value) name = field;
        return name;
    }

private:
    void size(int64_t value)
    {
        all.push_back(static_cast<uint64_t>(value));
        sizes += std::to_string(value) + ' ';
    }
};

template <class S>
Values values_of(const S& sample)
{
    Values values;
    S::each(sample, [&](const char* name, const auto& value) {
        values.fields.emplace_back(values.all.size(), name);
        values.add(value);
    });
    return values;
}

// Mixed values are old ones: an array that was being overwritten when the disk failed.
inline Verdict compared(const Values& found, const std::vector<Values>& versions, std::string& difference)
{
    if (found.all == versions.back().all) return Verdict::new_values;
    for (size_t i = 0; i < found.all.size(); ++i) {
        bool known = false;
        for (const Values& version : versions) known = known || version.all[i] == found.all[i];
        if (known) continue;
        difference = found.field_of(i) + (" at " + std::to_string(i)) + " of sizes " + found.sizes;
        char bytes[24];
        std::snprintf(bytes, sizeof bytes, ": %llx", static_cast<unsigned long long>(found.all[i]));
        difference += bytes;
        return Verdict::other;
    }
    return Verdict::old_values;
}

// The versions that a block has had, the newest last. Its sizes are read first, so that no array is too
// small.
template <class S>
Verdict judged(hid_t root, const std::vector<S>& versions, std::string& difference)
{
    const S& newest = versions.back();
    const int32_t how = everything<S>(newest.legacy());
    const hid_t id = quietly([&] { return H5Gopen2(root, newest.path().c_str(), H5P_DEFAULT); });
    if (id < 0) return Verdict::error;
    const ObjectId group(id, "block");
    S counts = emptied(newest);
    counts.wants_arrays = false;
    if (counts.read(group, how) < 0) return Verdict::error;
    const std::string sizes = values_of(counts).sizes;
    std::vector<Values> alike;
    const S* one = nullptr;
    for (const S& version : versions) {
        Values values = values_of(version);
        if (values.sizes != sizes) continue;
        one = &version;
        alike.push_back(std::move(values));
    }
    if (one == nullptr) {
        difference = "sizes " + sizes;
        return Verdict::other;
    }
    S found = emptied(*one);
    if (found.read(group, how) < 0) return Verdict::error;
    const Verdict verdict = compared(values_of(found), alike, difference);
    return verdict == Verdict::new_values && one != &newest ? Verdict::old_values : verdict;
}

}  // namespace vak::test
