// Names of files with the path of a group behind them, in every mode, beside a file with groups.
#include <vak_sp.h>

#include <hdf5.h>

#include <array>

#include "support/input.h"

namespace vak::fuzz {

namespace {

// The name must not lead out of the folder.
std::string kept_inside(std::string name)
{
    for (size_t at = name.find(".."); at != std::string::npos; at = name.find("..")) name[at] = '_';
    return name;
}

void make_file(const std::string& path)
{
    const OpenFile file(path, create);
    const int32_t length = -1, anew = 0;
    int32_t status = 0;
    vak_id group = -1;
    VAK_H5GOPEN(file.root(), "post/sub/third", &length, &anew, &group, &status);
    VAK_H5GCLOSE(&group, &status);
}

struct Opening {
    int32_t option;
    int16_t name_longer, group_length;
    uint8_t legacy, domain_flag;
};

void open(const std::string& name, const Opening& how)
{
    constexpr std::array<int32_t, 8> modes{0, 1, 2, 8, 9, 10, 13, 5};
    const int32_t option = modes[static_cast<uint32_t>(how.option) % modes.size()] | (how.option & 1024);
    const int32_t length = how.name_longer < 0 ? -1 : static_cast<int32_t>(name.size());
    const int32_t group_length = how.group_length % 256, domain_flag = how.domain_flag % 2;
    const std::string group = name.substr(name.size() / 2) + std::string(256, '\0');
    vak_id root = 0;
    int32_t status = 0;
    (how.legacy % 2 == 0 ? VAK_OPEN : VAK1_OPEN)(name.c_str(), &length, group.c_str(), &group_length,
                                                 group.c_str(), &group_length, &root, &domain_flag, &option,
                                                 &status);
    if (root > 0) VAK_CLOSE(&root, &status);
    close_everything();
}

}  // namespace

void try_input(Bytes input)
{
    const auto how = take_tail<Opening>(input);
    const Folder folder;
    make_file(folder.file("run.h5"));
    open(folder.path() + "/" + kept_inside(text_of(input)), how);
}

}  // namespace vak::fuzz
