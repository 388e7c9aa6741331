// The fixture of the tests of vak show, and a test for the sample of any kind of block.
#pragma once

#include <gmock/gmock.h>
#include <hdf5.h>
#include <vak_sp.h>

#include <concepts>
#include <nlohmann/json.hpp>

#include "cli/program.h"
#include "samples/sample.h"

namespace vak::test {

using nlohmann::json;

class Show : public testing::Test {
protected:
    // Gives the file to the function to write into, and closes it.
    template <class Write>
    void make(Write write)
    {
        const hid_t file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
        write(file);
        int32_t ierr = 0;
        VAK_CLOSE(&file, &ierr);
        ASSERT_EQ(ierr, 0);
    }

    // The blocks shown, as JSON.
    json shown(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"show", "--json", path});
        const Said said = vak_says(arguments);
        EXPECT_EQ(said.status, 0) << said;
        EXPECT_EQ(said.err, "");
        return json::parse(said.out)["blocks"];
    }

    std::string text(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"show", path});
        const Said said = vak_says(arguments);
        EXPECT_EQ(said.status, 0) << said;
        EXPECT_EQ(said.err, "");
        return said.out;
    }

    TempFolder folder;
    std::string path = folder.file("run.h5");
};

// Fields of blanks behind each other, as JSON shows them.
inline json cut(const std::string& fields, size_t count)
{
    json texts = json::array();
    const size_t length = fields.size() / std::max<size_t>(count, 1);
    for (size_t i = 0; i < count; ++i) texts.push_back(trimmed(fields.substr(i * length, length)));
    return texts;
}

inline void expect_field(const json& block, const std::string& name, int32_t value)
{
    EXPECT_EQ(block["attributes"].value(name, json()), value) << name;
}
template <class T>
void expect_field(const json& block, const std::string& name, const std::vector<T>& values)
{
    ASSERT_TRUE(block["arrays"].contains(name)) << name;
    EXPECT_EQ(block["arrays"][name]["values"].get<std::vector<T>>(), values) << name;
}
inline void expect_field(const json& block, const std::string& name, const std::string& value)
{
    if (block["attributes"].contains(name)) {
        EXPECT_EQ(block["attributes"][name], trimmed(value)) << name;
    } else {
        ASSERT_TRUE(block["arrays"].contains(name)) << name;
        const json& values = block["arrays"][name]["values"];
        EXPECT_EQ(values, cut(value, values.size())) << name;
    }
}

template <class Sample>
class ShowSample : public Show {
protected:
    void shows_all_fields(Family family)
    {
        const Sample sample = sample_of(family);
        make([&](hid_t file) { ASSERT_EQ(sample.write(file), 0); });
        const json blocks = shown({"--all", sample.path()});
        ASSERT_EQ(blocks.size(), 1U);
        EXPECT_EQ(blocks[0]["key"], Sample::key);
        size_t fields = 0;
        Sample::each(sample, [&](const char* name, const auto& value) {
            expect_field(blocks[0], name, value);
            ++fields;
        });
        EXPECT_EQ(fields, blocks[0]["attributes"].size() + blocks[0]["arrays"].size()) << blocks[0].dump(2);
    }

private:
    static Sample sample_of(Family family)
    {
        if constexpr (requires {
                          {
                              Sample::of(family)
                              } -> std::same_as<Sample>;
                      }) {
            return Sample::of(family);
        } else {
            Sample sample;
            sample.family = family;
            return sample;
        }
    }
};

}  // namespace vak::test
