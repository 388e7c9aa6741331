// Results of the real solver, as the Debian packages calculix-ccx-test and freecad-common ship them and as
// ccx computes them. Where a package is not installed its tests are skipped.
#include <gmock/gmock.h>
#include <vak_sp.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/deck.h"
#include "cli/frd_text.h"
#include "cli/program.h"
#include "cli/read_back.h"

using namespace vak::test;
namespace fs = std::filesystem;

namespace {

const std::string freecad_results = "/usr/share/freecad/Mod/Fem/femtest/data/calculix";

bool is_result(const std::string& name)
{
    const size_t at = name.rfind(".frd");
    if (at == std::string::npos) return false;
    const std::string rest = name.substr(at + 4);
    return rest.empty() || rest == ".gz" || rest == ".ref" || rest == ".ref.gz";
}

std::vector<std::string> results_in(const std::string& folder)
{
    std::vector<std::string> found;
    std::error_code not_there;
    for (const auto& entry : fs::directory_iterator(folder, not_there))
        if (is_result(entry.path().filename())) found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

// What a result file says, read by other means than the program's: the values of each result block.
struct PlainBlock {
    std::string name;
    int state = 0;
    size_t nodes = 0;
    double sum = 0;
};

// Only the long format of text; the blocks from the first binary one on are left out.
std::vector<PlainBlock> plain_blocks(const std::string& path)
{
    std::vector<PlainBlock> blocks;
    std::ifstream file(path);
    bool values = false;
    int state = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string key = line.substr(0, 3);
        if (line.starts_with("  100C")) {
            if (std::stoi(line.substr(73)) > 1) break;
            state = std::stoi(line.substr(58, 5));
        }
        if (key == " -4") {
            const std::string name = line.substr(5, 8);
            blocks.push_back({.name = name.substr(0, name.find_last_not_of(' ') + 1), .state = state});
            values = true;
        }
        if (key == " -3") values = false;
        if (!values || (key != " -1" && key != " -2")) continue;
        blocks.back().nodes += key == " -1";
        for (size_t at = 13; at + 12 <= line.size(); at += 12) {
            const float value = std::strtof(line.substr(at, 12).c_str(), nullptr);
            if (std::isfinite(value)) blocks.back().sum += value;
        }
    }
    return blocks;
}

double finite_sum(const std::vector<float>& values, size_t first, size_t step)
{
    double sum = 0;
    for (size_t i = first; i < values.size(); i += step)
        if (std::isfinite(values[i])) sum += values[i];
    return sum;
}

std::string block_path(int state, const std::string& name)
{
    return formatted("singlestate/state%012d/entityresults/NODE/%s/vakblock", state, name.c_str());
}

// Imports, or is refused with its line number; what is imported holds as many nodes and the same sums.
void import_and_compare(const std::string& result)
{
    SCOPED_TRACE(result);
    const TempFolder folder;
    const std::string frd = folder.file("run.frd"), h5 = folder.file("run.h5");
    unpack(result, frd);
    const Said said = vak_says({"import", frd, "-o", h5});
    if (said.status == 2) {
        EXPECT_THAT(said.err, testing::MatchesRegex("vak import: .*run.frd, line [0-9]+: [^\n]+\n"));
        return;
    }
    ASSERT_EQ(said.status, 0) << said.err;
    std::string name;
    for (const PlainBlock& block : plain_blocks(frd)) {
        // Imaginary parts follow their real ones: DISP, DISPI; TOSTRAIN, TOSTRAII.
        const bool imaginary = !has_block(h5, block_path(block.state, block.name));
        if (!imaginary) name = block.name;
        const ReadBack read = read_back(h5, block_path(block.state, name));
        EXPECT_EQ(read.nodes.size(), block.nodes) << block.name;
        const size_t step = read.key == 1001 ? 2 : 1;
        EXPECT_EQ(finite_sum(read.values, imaginary ? 1 : 0, step), block.sum)
            << block.name << " of " << block.state;
    }
}

void import_all(const std::string& folder, const char* package)
{
    const auto results = results_in(folder);
    if (results.empty())
        GTEST_SKIP() << "package " << package << " is not installed: no results in " << folder;
    for (const std::string& result : results) import_and_compare(result);
}

}  // namespace

TEST(ImportPackages, every_result_of_the_solvers_tests_imports_or_is_refused_with_its_line)
{
    import_all(decks(), "calculix-ccx-test");
}

TEST(ImportPackages, every_result_of_freecad_imports_or_is_refused_with_its_line)
{
    import_all(freecad_results, "freecad-common");
}

// A rotating segment: the modes of a cyclic structure, five states with complex displacements and stresses.
TEST(ImportPackages, the_complex_result_of_the_deck_segment_is_stored_as_complex_blocks)
{
    if (!solver_is_installed() || !deck_is_there("segment")) GTEST_SKIP() << solver_is_missing("segment");
    const TempFolder folder;
    solve(folder, "segment");
    ASSERT_NO_FATAL_FAILURE(import_and_compare(folder.file("segment.frd")));
    const std::string h5 = folder.file("segment.h5");
    ASSERT_EQ(vak_says({"import", folder.file("segment.frd"), "-o", h5}).status, 0);
    const auto list = nlohmann::json::parse(vak_says({"list", "--json", h5}).out);
    std::map<int, int> count;
    for (const auto& block : list["blocks"]) ++count[block["key"]];
    EXPECT_EQ(count[1001], 15) << "DISP, STRESS and ERROR of five states";
    EXPECT_EQ(count[1000], 11) << "PDISP and PSTRESS of five states, and the coordinates";
    EXPECT_EQ(read_back(h5, block_path(1, "DISP")).ncoo, 3)
        << "DISP announces four components and holds three";
}
