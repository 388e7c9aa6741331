// The fixture of the tests of vak import: a result file that is written, and what is beside it then.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/frd_text.h"
#include "cli/program.h"

namespace vak::test {

inline const NodeValues two_nodes{{1, {0, 0, 0}}, {7, {1, 0.5, -2}}};
inline const NodeValues vectors{{1, {1, 2, 3}}, {7, {4, 5, 6}}};

class ImportTest : public testing::Test {
protected:
    Said import(const std::string& text, std::vector<std::string> options = {})
    {
        write_text(frd, text);
        options.insert(options.begin(), {"import", frd, "-o", h5});
        return vak_says(options);
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename());
        return names;
    }

    FrdText head() const { return FrdText().head().nodes(two_nodes); }

    const Said fine{.status = 0, .out = "", .err = ""};
    TempFolder folder;
    std::string frd = folder.file("run.frd"), h5 = folder.file("run.h5");
};

}  // namespace vak::test
