// An open result file.
#pragma once

#include <vak_sp.h>

#include <string>

namespace vak::store {

class File {
public:
    // Creates the file anew, with a group for the model; blocks go below that group.
    static File create(const std::string& path, const std::string& model);
    // Opens to read, at the model's group where the file has one.
    static File open(const std::string& path);
    // Opens to change what is there, at the same place.
    static File update(const std::string& path);

    File(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    File& operator=(File&&) = delete;
    ~File();

    const vak_id* root() const { return &root_; }

    // Closes; a problem when what was written did not reach the file.
    void close();

private:
    explicit File(std::string path) : path_(std::move(path)) {}
    void open_root(const std::string& model, int32_t mode);
    void enter_model();

    std::string path_;
    vak_id root_ = -1;
};

// The name of the model in a file that is made of or for the given one: the file's, without its ending.
std::string model_name(const std::string& file);

// Whether a group is there.
bool has_group(const vak_id* location, const std::string& path);

// A group of an open file, closed at the end.
class Group {
public:
    Group(const vak_id* location, const std::string& path);
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
    ~Group();

    const vak_id* id() const { return &id_; }

private:
    vak_id id_ = -1;
};

}  // namespace vak::store
