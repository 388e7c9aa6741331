// Domain files of one result, made, merged and compared by the program.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/program.h"

namespace vak::test {

class DomainSet {
public:
    explicit DomainSet(std::string frd) : frd_(std::move(frd)) {}

    std::string file(const std::string& name) const { return folder_.file(name); }
    std::vector<std::string> domains(int n) const
    {
        std::vector<std::string> names;
        for (int i = 0; i < n; ++i) names.push_back(file("domain-" + std::to_string(i) + ".h5"));
        return names;
    }

    // The whole result and its domains.
    void import(int n, const std::vector<std::string>& more = {})
    {
        std::vector<std::string> whole{"import", frd_, "-o", file("whole.h5")}, cut = whole;
        cut.back() = file("domain-%d.h5");
        cut.insert(cut.end(), {"--domains", std::to_string(n)});
        for (auto* arguments : {&whole, &cut}) arguments->insert(arguments->end(), more.begin(), more.end());
        expect_fine(whole);
        expect_fine(cut);
    }

    Said merge(int n, const std::vector<std::string>& more = {},
               const std::string& target = "merged.h5") const
    {
        std::vector<std::string> arguments{"merge", "-o", file(target)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        for (const std::string& domain : domains(n)) arguments.push_back(domain);
        return vak_says(arguments);
    }

    // The merged file holds what the whole one does, and nothing else but the domain numbers.
    void expect_whole(const std::string& merged = "merged.h5") const
    {
        const Said said = vak_says({"compare", file("whole.h5"), file(merged), "--without",
                                    "*/DMPComputeDomainNumber/*", "--without", "*/variablegroup/Domain/*"});
        EXPECT_EQ(said, (Said{.status = 0, .out = "", .err = ""}));
    }

    // The blocks that match.
    static nlohmann::json shown(const std::string& file, const std::string& pattern)
    {
        const Said said = vak_says({"show", "--json", "--all", file, pattern});
        return said.status == 0 ? nlohmann::json::parse(said.out)["blocks"] : nlohmann::json::array();
    }

private:
    static void expect_fine(const std::vector<std::string>& arguments)
    {
        ASSERT_EQ(vak_says(arguments), (Said{.status = 0, .out = "", .err = ""}));
    }

    std::string frd_;
    TempFolder folder_;
};

// The values of an array of a shown block.
template <class T>
std::vector<T> values_in(const nlohmann::json& block, const std::string& name)
{
    return block.at("arrays").at(name).at("values").get<std::vector<T>>();
}

}  // namespace vak::test
