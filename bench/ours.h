// Files and blocks through the exported routines.
#pragma once

#include "run_folder.h"

#include <vak_sp.h>

#include <string>

namespace bench {

enum Mode : int32_t { create = 8, read_only = 10 };

inline std::string field(std::string name) { return name.append(256 - name.size(), ' '); }

// A group of a file, the root group.
class File {
public:
    File(const std::string& name, int32_t mode)
    {
        const auto length = static_cast<int32_t>(name.size());
        const int32_t none = 0;
        int32_t ierr = 0;
        VAK_OPEN(name.data(), &length, "", &none, "", &none, &group_, &none, &mode, &ierr);
        must(ierr, "opening");
    }
    File(const File&) = delete;
    ~File()
    {
        int32_t ierr = 0;
        VAK_CLOSE(&group_, &ierr);
        must(ierr, "closing");
    }
    const vak_id* id() const { return &group_; }

private:
    vak_id group_ = -1;
};

class BlockGroup {
public:
    BlockGroup(const File& file, const std::string& path)
    {
        const auto length = static_cast<int32_t>(path.size());
        const int32_t existing = 1;
        int32_t ierr = 0;
        VAK_H5GOPEN(file.id(), path.data(), &length, &existing, &group_, &ierr);
        must(ierr, path.c_str());
    }
    BlockGroup(const BlockGroup&) = delete;
    ~BlockGroup()
    {
        int32_t ierr = 0;
        VAK_H5GCLOSE(&group_, &ierr);
    }
    const vak_id* id() const { return &group_; }

private:
    vak_id group_ = -1;
};

}  // namespace bench
