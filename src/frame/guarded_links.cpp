// Links into other files: the targets are looked at before HDF5 opens them.
#include "frame/guarded_links.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "frame/file_probe.h"

namespace vak {

namespace {

using std::filesystem::path;

// Where HDF5 looks for the file of a link, the first that it can open being taken: the name itself when it is
// absolute, then its last part; the folders of its environment variable, the folder of the file that
// holds the link, the current one, and the one to which a symbolic link to that file leads.
std::vector<path> places_of(const path& holder, const path& name)
{
    std::vector<path> places;
    if (name.is_absolute()) places.push_back(name);
    const path relative = name.is_absolute() ? name.filename() : name;
    const char* folders = std::getenv("HDF5_EXT_PREFIX");
    std::istringstream list(folders == nullptr ? "" : folders);
    for (std::string folder; std::getline(list, folder, ':');)
        if (!folder.empty()) places.push_back(folder / relative);
    std::error_code unresolved;
    places.push_back(holder.parent_path() / relative);
    places.push_back(relative);
    places.push_back(std::filesystem::canonical(holder, unresolved).parent_path() / relative);
    return places;
}

bool leads_to_a_file(const path& holder, const path& name)
{
    bool found = false;
    for (const path& place : places_of(holder, name)) {
        const FileProbe probe(place.string());
        if (probe.readable() && !probe.regular()) return false;
        found = found || probe.readable();
    }
    return found;
}

// What HDF5 calls before it opens the file of a link; negative refuses.
herr_t check_target(const char* holder, const char*, const char* file, const char*, unsigned* access, hid_t,
                    void* only_to_read) noexcept
{
    // What else the file with the link was opened with, such as to be created, HDF5 does not take back here.
    *access &=
        only_to_read != nullptr ? H5F_ACC_SWMR_READ : H5F_ACC_RDWR | H5F_ACC_SWMR_READ | H5F_ACC_SWMR_WRITE;
    try {
        return leads_to_a_file(holder, file) ? 0 : -1;
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

}  // namespace

Properties guarded_links(LinkedFile opened)
{
    static char only_to_read;
    Properties list(H5Pcreate(H5P_GROUP_ACCESS));
    void* const data = opened == LinkedFile::to_read ? &only_to_read : nullptr;
    if (H5Pset_elink_cb(list.get(), check_target, data) < 0) return Properties();
    return list;
}

GuardedDefault::GuardedDefault() noexcept
{
    if (H5Pget_elink_cb(H5P_LINK_ACCESS_DEFAULT, &callers_, &data_) < 0) return;
    const bool is_there = callers_ == check_target && data_ == nullptr;
    is_ours_ = !is_there && H5Pset_elink_cb(H5P_LINK_ACCESS_DEFAULT, check_target, nullptr) >= 0;
    is_guarded_ = is_there || is_ours_;
}

GuardedDefault::~GuardedDefault()
{
    if (is_ours_) H5Pset_elink_cb(H5P_LINK_ACCESS_DEFAULT, callers_, data_);
}

}  // namespace vak
