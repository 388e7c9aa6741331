// The solver CalculiX and its decks, where the Debian packages are installed.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/temp_file.h"

namespace vak::test {

// Where the decks are; script/setup puts them into the cache on machines that leave documents out of
// packages.
inline std::string decks()
{
    const std::string folder = "usr/share/doc/calculix-ccx-test/examples/test";
    if (std::filesystem::exists("/" + folder)) return "/" + folder;
    const char *cache = std::getenv("XDG_CACHE_HOME"), *home = std::getenv("HOME");
    return (cache ? std::string(cache) : std::string(home ? home : "") + "/.cache") + "/vak_sp/" + folder;
}

inline bool solver_is_installed() { return std::filesystem::exists("/usr/bin/ccx"); }

inline std::string deck_file(const std::string& name)
{
    const std::string plain = decks() + "/" + name + ".inp";
    return std::filesystem::exists(plain) ? plain : plain + ".gz";
}

inline bool deck_is_there(const std::string& name) { return std::filesystem::exists(deck_file(name)); }

inline std::string solver_is_missing(const std::string& name)
{
    return "packages calculix-ccx and calculix-ccx-test are not installed: the deck " + name +
           " cannot be solved";
}

inline void unpack(const std::string& from, const std::string& to)
{
    ASSERT_EQ(std::system(("zcat -f '" + from + "' > '" + to + "'").c_str()), 0);
}

// Solves a deck in the folder; the text of it may be changed by a command of sed before.
inline void solve(const TempFolder& folder, const std::string& name, const std::string& change = "")
{
    unpack(deck_file(name), folder.file("deck"));
    const std::string edit = "sed '" + change + "' deck > " + name + ".inp";
    ASSERT_EQ(
        std::system(
            ("cd '" + folder.path() + "' && " + edit + " && ccx " + name + " >solver.log 2>&1").c_str()),
        0);
}

}  // namespace vak::test
