// What stands at a path, asked without blocking (a FIFO would) and without changing it.
#pragma once

#include <string>

namespace vak {

class FileProbe {
public:
    explicit FileProbe(const std::string& path);
    ~FileProbe();
    FileProbe(const FileProbe&) = delete;
    FileProbe& operator=(const FileProbe&) = delete;

    bool readable() const { return descriptor_ >= 0; }
    bool regular() const;
    bool in_use() const;  // some process, this one included, has it open through HDF5

private:
    int descriptor_;
};

}  // namespace vak
