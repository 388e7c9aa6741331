#include "support/input.h"

#include <hdf5.h>
#include <vak_sp.h>

#include <array>
#include <fstream>

namespace vak::fuzz {

std::string text_of(Bytes input) { return {reinterpret_cast<const char*>(input.data()), input.size()}; }

std::string put(const Folder& folder, const std::string& name, Bytes contents)
{
    std::string path = folder.file(name);
    std::ofstream(path, std::ios::binary) << text_of(contents);
    return path;
}

OpenFile::OpenFile(const std::string& path, int32_t mode)
{
    const auto length = static_cast<int32_t>(path.size());
    const int32_t none = 0;
    int32_t status = 0;
    VAK_OPEN(path.c_str(), &length, "", &none, "", &none, &root_, &none, &mode, &status);
    if (status != 0) close_everything();
}

OpenFile::~OpenFile()
{
    int32_t status = 0;
    if (valid()) VAK_CLOSE(&root_, &status);
}

void close_everything()
{
    std::array<hid_t, 64> ids{};
    for (;;) {
        const ssize_t count = H5Fget_obj_ids(H5F_OBJ_ALL, H5F_OBJ_ALL, ids.size(), ids.data());
        for (ssize_t i = 0; i < count; ++i) H5Idec_ref(ids[static_cast<size_t>(i)]);
        if (count < static_cast<ssize_t>(ids.size())) return;
    }
}

}  // namespace vak::fuzz
