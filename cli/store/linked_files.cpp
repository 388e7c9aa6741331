#include "store/linked_files.h"

#include <hdf5.h>

#include <algorithm>
#include <filesystem>

namespace vak::store {

namespace {

namespace fs = std::filesystem;

struct Search {
    fs::path folder;  // HDF5 looks in that of the file first, then where the name alone leads
    int levels = 2;
    std::vector<std::string> missing;
};

fs::path folder_of(hid_t location)
{
    const ssize_t length = H5Fget_name(location, nullptr, 0);
    std::string name(static_cast<size_t>(std::max<ssize_t>(length, 0)), '\0');
    H5Fget_name(location, name.data(), name.size() + 1);
    return fs::absolute(name).parent_path();
}

bool is_there(const Search& search, const std::string& file)
{
    std::error_code error;
    return fs::is_regular_file(search.folder / file, error) || fs::is_regular_file(file, error);
}

// The name of the file that an external link leads to.
std::string file_of(hid_t group, const char* name, size_t size)
{
    std::string value(size, '\0');
    const char *file = nullptr, *object = nullptr;
    unsigned flags = 0;
    const bool read = H5Lget_val(group, name, value.data(), size, H5P_DEFAULT) >= 0 &&
                      H5Lunpack_elink_val(value.data(), size, &flags, &file, &object) >= 0;
    return read ? file : "";
}

void look_at(hid_t group, Search& search);

herr_t look_at_link(hid_t group, const char* name, const H5L_info2_t* info, void* data)
{
    auto& search = *static_cast<Search*>(data);
    if (info->type == H5L_TYPE_EXTERNAL) {
        const std::string file = file_of(group, name, info->u.val_size);
        const bool known = std::ranges::find(search.missing, file) != search.missing.end();
        if (!file.empty() && !known && !is_there(search, file)) search.missing.push_back(file);
    } else if (info->type == H5L_TYPE_HARD && search.levels > 1) {
        const hid_t below = H5Gopen2(group, name, H5P_DEFAULT);
        --search.levels;
        if (below >= 0) look_at(below, search);
        ++search.levels;
        if (below >= 0) H5Gclose(below);
    }
    return 0;
}

void look_at(hid_t group, Search& search)
{
    hsize_t at = 0;
    H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, &at, look_at_link, &search);
}

}  // namespace

std::vector<std::string> missing_files(vak_id location)
{
    Search search{.folder = folder_of(location), .missing = {}};
    H5E_BEGIN_TRY { look_at(location, search); }
    H5E_END_TRY
    return search.missing;
}

}  // namespace vak::store
