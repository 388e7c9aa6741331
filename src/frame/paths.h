// The paths under which blocks are stored, and access to their groups.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "storage/hdf5_id.h"

namespace vak {

enum class Family { current, legacy };

// What a block's place is made of. Empty names add no level; index and set below 0 are left out.
struct BlockPath {
    int32_t nstate = 0;               // -1 "multistate", 0 "constant", otherwise "singlestate"
    const int32_t* states = nullptr;  // used when state < 0
    int32_t state = -1;
    std::array<const char*, 5> names{};  // counted fields of at most 256 characters, or null
    int32_t index = -1;
    int32_t set = -1;
};

// The significant characters of a counted field: up to its first zero byte, at most `length`,
// less trailing characters that are not graphic (in ASCII, whatever the locale).
std::string_view counted(const char* field, size_t length = 256);

// A name or path that stands with its length: up to its first zero byte, less trailing blanks. Only blanks,
// since the name of a file or group may end in any other character.
std::string counted_name(const char* field, int32_t length);

std::string path_text(Family family, const BlockPath& path);

// A group opened or created: status as VAK_H5GOPEN gives it, except that a new group counts as 1
// however many of its parents were made with it.
struct OpenedGroup {
    Group group;
    int32_t status = 0;
};

// Opens the path below `location`, creating what is missing in one call. Failures print VAK_H5GOPEN's line.
OpenedGroup open_or_create_group(hid_t location, const std::string& path);

// VAK_H5GOPEN's work: status and messages as documented there; the identifier is -1 below 0.
int32_t h5gopen(hid_t location, std::string_view path, int32_t ioflag, hid_t* group);

}  // namespace vak
