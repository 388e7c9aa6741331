// Which blocks of a file are meant.
#pragma once

#include <fnmatch.h>

#include <optional>
#include <string>

#include "store/catalogue.h"

namespace vak::cli {

// A pattern with *, ? or [ is to match the whole path, any other a part of it.
inline bool matches(const std::string& path, const std::string& pattern)
{
    if (pattern.find_first_of("*?[") == std::string::npos) return path.find(pattern) != std::string::npos;
    return fnmatch(pattern.c_str(), path.c_str(), 0) == 0;
}

inline std::optional<store::Layout> asked_layout(bool legacy)
{
    return legacy ? std::optional(store::Layout::legacy) : std::nullopt;
}

}  // namespace vak::cli
