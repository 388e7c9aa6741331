// A fresh folder for the files of one test, removed with everything in it at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace vak::test {

class TempFolder {
public:
    TempFolder() : path_((std::filesystem::temp_directory_path() / "vak_test.XXXXXX").string())
    {
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make the folder " + path_);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// The name of one file that does not exist yet, in a folder of its own.
class TempFile {
public:
    explicit TempFile(const std::string& name = "file.h5") : path_(folder_.file(name)) {}

    const std::string& path() const { return path_; }
    const char* c_str() const { return path_.c_str(); }

private:
    TempFolder folder_;
    std::string path_;
};

}  // namespace vak::test
