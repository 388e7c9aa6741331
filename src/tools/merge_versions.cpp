// The version check of the merge.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <numeric>

#include "frame/guarded_links.h"
#include "tools/merge.h"
#include "vak_sp.h"

namespace vak {

namespace {

using Version = std::array<int, 3>;

Version own_version(Family family)
{
    return family == Family::current ? Version{2, 2, 14} : Version{1, 2, 0};
}

// The place of the file header among the blocks, -1 for none.
int32_t find_header(const Merge& merge, size_t file)
{
    const auto headers = blocks_with_key(merge.domains[file].list, header_key);
    if (headers.size() > 1)
        std::fprintf(stderr, "VAK WARNING file [%d] contains multiple \"%s\"s!\n", static_cast<int>(file),
                     "vakheader");
    if (!headers.empty()) return headers[0];
    std::fprintf(stderr, "\nVAK WARNING file [%d]: \"%s\" not found\n", static_cast<int>(file), "vakheader");
    return -1;
}

int32_t read_header(const Merge& merge, size_t file, int32_t number, char* text)
{
    const Domain& domain = merge.domains[file];
    const Properties access = guarded_links();
    const Group group(
        H5Gopen2(domain.file, domain.list.blocks[static_cast<size_t>(number)].path.c_str(), access.get()));
    const vak_id id = group.get();
    int32_t flags = 0, params[2]{}, status = 0;
    if (merge.family == Family::current)
        VAK_READ_FILEHEADER(&id, text, &flags, params, &status);
    else
        VAK1_READ_FILEHEADER(&id, text, &flags, params, &status);
    return status;
}

void print_check(const Merge& merge, size_t file, const char* verdict, const Version& v)
{
    const Version own = own_version(merge.family);
    std::printf(" VAK check file %8d / %d: ", static_cast<int>(file), static_cast<int>(merge.domains.size()));
    std::printf("%s - version file: %d.%d.%d - program: %d.%d.%d\n", verdict, v[0], v[1], v[2], own[0],
                own[1], own[2]);
}

bool is_compatible(const Merge& merge, size_t file, const char* text)
{
    Version v{-1, -1, -1};
    const bool is_read = std::sscanf(text, "%d %d %d", &v[0], &v[1], &v[2]) == 3;
    const Version own = own_version(merge.family);
    if (!is_read || v[0] != own[0]) return print_check(merge, file, "NOT OK ", v), false;
    if (v != own)
        print_check(merge, file, "WARNING", v);
    else if (merge.level > 0)
        print_check(merge, file, "OK     ", v);
    return true;
}

}  // namespace

int32_t check_versions(const Merge& merge)
{
    size_t compatible = 0;
    for (size_t file = 0; file < merge.domains.size(); ++file) {
        const int32_t header = find_header(merge, file);
        if (header < 0) continue;
        char text[33]{};
        if (const int32_t status = read_header(merge, file, header, text); status < 0) {
            std::fprintf(stderr, "\nVAK ERROR - incompatible file - error code = %d\n", status);
            return status;
        }
        if (is_compatible(merge, file, text)) ++compatible;
    }
    if (compatible < merge.domains.size()) std::fprintf(stderr, "\nVAK WARNING - files maybe incompatible\n");
    return 0;
}

}  // namespace vak
