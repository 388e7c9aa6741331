#include "store/file.h"

#include <filesystem>
#include <utility>

#include "store/call.h"
#include "store/file_lock.h"

namespace vak::store {

namespace {

constexpr int32_t create_with_group = 0, read_at_root = 10, update_at_root = 9;
constexpr Int zero_terminated{-1}, open_existing{1};

Int length(const std::string& text) { return {static_cast<int32_t>(text.size())}; }

// run.h5/post/sub names a group in the file run.h5.
bool names_group_in_file(std::filesystem::path path)
{
    while (path.has_relative_path() && path != path.parent_path()) {
        path = path.parent_path();
        if (std::filesystem::is_regular_file(path)) return true;
    }
    return false;
}

// Why a file cannot be opened, where that can be seen from outside.
std::string reason(const std::string& path, Use use, const std::string& library)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (names_group_in_file(path)) return "there is no such group, or the file is damaged (" + library + ")";
    if (status.type() == fs::file_type::not_found) return "no such file";
    if (status.type() == fs::file_type::directory) return "it is a folder; name a file in it";
    if (status.type() == fs::file_type::none) return error.message();
    if (status.type() != fs::file_type::regular) return "it is no regular file";
    if (is_in_use(path, use)) return "another program has it open";
    return "it is damaged or no HDF5 file (" + library + ")";
}

vak_id open_if_there(const vak_id* location, const char* path)
{
    vak_id group = -1;
    int32_t status = 0;
    const LibraryMessages quiet;
    VAK_H5GOPEN(location, path, zero_terminated, open_existing, &group, &status);
    return group;
}

}  // namespace

void File::open_root(const std::string& model, int32_t mode)
{
    int32_t status = 0;
    LibraryMessages messages;
    VAK_OPEN(path_.c_str(), length(path_), model.c_str(), length(model), "", Int{0}, &root_, Int{0},
             Int{mode}, &status);
    if (status == 0) return;
    const std::string library = messages.text(status);
    throw cli::Problem(
        path_ + (mode == create_with_group
                     ? ": cannot be created: " + library
                     : ": cannot be opened: " +
                           reason(path_, mode == read_at_root ? Use::reading : Use::writing, library)));
}

File File::create(const std::string& path, const std::string& model)
{
    File file(path);
    file.open_root(model, create_with_group);
    return file;
}

File File::open(const std::string& path)
{
    File file(path);
    file.open_root("", read_at_root);
    if (std::filesystem::is_regular_file(path))
        file.enter_model();  // else the caller has named a group in it
    return file;
}

File File::update(const std::string& path)
{
    File file(path);
    file.open_root("", update_at_root);
    file.enter_model();
    return file;
}

// The blocks lie below "post"; a file without it has them at its root.
void File::enter_model()
{
    const vak_id post = open_if_there(&root_, "post");
    int32_t ignored = 0;
    if (post < 0) return;
    VAK_H5GCLOSE(&root_, &ignored);
    root_ = post;
}

File::File(File&& other) noexcept : path_(std::move(other.path_)), root_(std::exchange(other.root_, -1)) {}

File::~File()
{
    int32_t ignored = 0;
    if (root_ > 0) VAK_CLOSE(&root_, &ignored);
}

void File::close()
{
    const vak_id root = std::exchange(root_, -1);
    int32_t status = 0;
    VAK_CLOSE(&root, &status);
    if (status < 0) throw cli::Problem(path_ + ": not everything could be written; is the disk full?");
}

std::string model_name(const std::string& file)
{
    const std::string stem = std::filesystem::path(file).stem().string();
    const bool usable = !stem.empty() && stem != "." && stem != ".." && stem != "post";
    return usable ? stem : "model";
}

bool has_group(const vak_id* location, const std::string& path)
{
    const vak_id group = open_if_there(location, path.c_str());
    int32_t ignored = 0;
    if (group >= 0) VAK_H5GCLOSE(&group, &ignored);
    return group >= 0;
}

Group::Group(const vak_id* location, const std::string& path)
{
    call("opening " + path, VAK_H5GOPEN, location, path.c_str(), zero_terminated, open_existing, &id_);
}

Group::~Group()
{
    int32_t ignored = 0;
    VAK_H5GCLOSE(&id_, &ignored);
}

}  // namespace vak::store
