#include "tools/erase_block.h"

#include <cstdio>

#include "frame/guarded_links.h"

namespace vak {

namespace {

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

// The block's links: a legacy block is its three subgroups, beside which other blocks may be nested.
std::vector<std::string> links_of(const ErasableBlock& b)
{
    if (b.family == Family::current) return {b.path};
    std::vector<std::string> links{b.path};
    const std::string parent = parent_of(b.path);
    for (const char* section : {"index", "data"}) {
        std::string link = parent.empty() ? section : parent + "/" + section;
        if (has(b.root, link.c_str())) links.push_back(std::move(link));
    }
    return links;
}

int32_t delete_links(const ErasableBlock& b, bool verbose)
{
    for (const std::string& link : links_of(b)) {
        if (H5Ldelete(b.root, link.c_str(), H5P_DEFAULT) >= 0) continue;
        std::fprintf(stderr, " H5Ldelete of block \"%s\" failed \n", b.path.c_str());
        return -1;
    }
    if (verbose) std::printf(" block \"%s\" deleted \n", b.path.c_str());
    return 0;
}

bool is_empty(const ErasableBlock& b, const std::string& path)
{
    const Group group = open_in_file(b, path);
    H5G_info_t info;
    return group.valid() && H5Gget_info(group.get(), &info) >= 0 && info.nlinks == 0;
}

int32_t delete_empty_parents(const ErasableBlock& b, bool verbose)
{
    int32_t status = 0;
    for (std::string path = parent_of(b.path); !path.empty() && is_empty(b, path); path = parent_of(path)) {
        if (H5Ldelete(b.root, path.c_str(), H5P_DEFAULT) < 0) {
            std::fprintf(stderr, " H5Ldelete of group \"%s\" failed \n", path.c_str());
            --status;
        } else if (verbose) {
            std::printf(" group \"%s\" deleted \n", path.c_str());
        }
    }
    return status;
}

}  // namespace

Group open_in_file(const ErasableBlock& b, const std::string& path)
{
    const Properties access = guarded_links();
    return Group(H5Gopen2(b.root, path.empty() ? "." : path.c_str(), access.get()));
}

std::string parent_of(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool is_of_this_file(const ErasableBlock& b)
{
    const Group block = open_in_file(b, b.path);
    H5O_info2_t root, own;
    return block.valid() && H5Oget_info3(b.root, &root, H5O_INFO_BASIC) >= 0 &&
           H5Oget_info3(block.get(), &own, H5O_INFO_BASIC) >= 0 && own.fileno == root.fileno;
}

ObjectToken token_of(const ErasableBlock& b)
{
    const Group block = open_in_file(b, b.path);
    H5O_info2_t info{};
    H5Oget_info3(block.get(), &info, H5O_INFO_BASIC);
    return std::to_array(info.token.__data);
}

Group group_with(const ErasableBlock& b, const char* dataset)
{
    if (b.family == Family::current) {
        Group block = open_in_file(b, b.path);
        return has(block.get(), dataset) ? std::move(block) : Group();
    }
    const Group block = open_in_file(b, parent_of(b.path));
    for (const char* section : {"index", "data"}) {
        Group group(H5Gopen2(block.get(), section, H5P_DEFAULT));
        if (group.valid() && has(group.get(), dataset)) return group;
    }
    return Group();
}

int32_t delete_block(const ErasableBlock& b, bool verbose)
{
    const int32_t status = delete_links(b, verbose);
    return status != 0 ? status : delete_empty_parents(b, verbose);
}

}  // namespace vak
