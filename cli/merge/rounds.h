// More domain files than may be open at once are merged by groups, in rounds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "merge/merging.h"

namespace vak::merge {

constexpr size_t least_at_once = 4;

// Cuts a number of files into groups of neighbours, as few as can be, none above the limit, all alike to a
// file; so none is of a single file.
std::vector<size_t> group_sizes(size_t files, size_t at_once);

// How many times each byte is written.
int64_t round_count(size_t files, size_t at_once);

// Merges the domain files into the file. The results of all rounds but the last are temporary files beside
// the target, each removed when it has been merged.
void merge_in_rounds(const std::vector<std::string>& domains, const std::string& file,
                     const std::string& target, const std::string& model, const Settings& settings,
                     size_t at_once, Progress& progress);

}  // namespace vak::merge
