// A file that is made under a temporary name beside its own and takes its own name only when it is complete.
#pragma once

#include <string>

namespace vak::import {

// Unless it was completed, the temporary file is removed: at the end of its life, and when the process exits
// or is interrupted or told to end.
class PartFile {
public:
    explicit PartFile(std::string final_name);
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile();

    const std::string& path() const { return path_; }

    // Gives the file its own name, once it is on the disk; replaces a file that has the name.
    void complete();

private:
    std::string final_name_;
    std::string path_;
};

}  // namespace vak::import
