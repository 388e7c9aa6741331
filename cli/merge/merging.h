// One merge: domain files into a new file, which is then read back and checked.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "merge/progress.h"

namespace vak::merge {

// Decimal exponents of variables, from a parameter file.
struct Exponents {
    int32_t count = 0;
    std::string names;  // 256 characters each
    std::vector<int32_t> values;
};
Exponents read_exponents(const std::string& file);

struct Settings {
    Exponents exponents;
    int32_t report = 0;  // 1 or 2: the library's report on standard output
    bool domain_numbers = true;
};

// A domain file and the number of the first domain in it.
struct Source {
    std::string file;
    int32_t first_domain = 0;
};

// Merges the sources into the file, whose model has the name. Domain numbers count from the first source's
// domain. Throws the problem when the merge failed or the file does not hold what it has to.
void merge_files(const std::vector<Source>& sources, const std::string& file, const std::string& model,
                 const Settings& settings, Progress& progress);

}  // namespace vak::merge
