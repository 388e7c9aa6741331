// The blocks that a file has once: the eraser reads header and index, and stamps the system block.
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "frame/guarded_links.h"
#include "storage/storage.h"
#include "tools/eraser.h"
#include "vak_sp.h"

namespace vak {

namespace {

// The legacy routines take the group above "header".
Group open_whole_block(const EraserRun& run, int32_t number)
{
    if (run.family == Family::current) return open_listed(run, number);
    const std::string path = run.file.blocks[static_cast<size_t>(number)].path;
    const size_t slash = path.rfind('/');
    const Properties access = guarded_links();
    return Group(
        H5Gopen2(run.root, slash == std::string::npos ? "." : path.substr(0, slash).c_str(), access.get()));
}

void warn_of_missing(const char* type)
{
    std::fprintf(stderr, "\nVAK WARNING \"%s\" block not found\n", type);
}

void warn_of_several(const char* type)
{
    std::fprintf(stderr, "\nVAK WARNING multiple \"%s\" blocks\n", type);
}

int32_t read_version(const EraserRun& run, int32_t number, std::array<int, 3>* version)
{
    const Group header = open_listed(run, number);
    const vak_id id = header.get();
    char text[33]{};
    int32_t flags = 0, params[2]{}, status = 0;
    if (run.family == Family::current)
        VAK_READ_FILEHEADER(&id, text, &flags, params, &status);
    else
        VAK1_READ_FILEHEADER(&id, text, &flags, params, &status);
    *version = {-1, -1, -1};
    if (status >= 0) std::sscanf(text, "%d %d %d", version->data(), version->data() + 1, version->data() + 2);
    return std::min(status, 0);
}

int32_t read_index(const EraserRun& run, int32_t number)
{
    const Group group = open_whole_block(run, number);
    const vak_id id = group.get();
    char text[256];
    int32_t nindex = 0, status = 0;
    if (run.family == Family::current) {
        VAK_READ_INDEX(&id, nullptr, &nindex, text, nullptr, nullptr, &status);
    } else {
        const int32_t counts_only = 1;
        VAK1_READ_INDEX(&id, &counts_only, &nindex, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                        nullptr, nullptr, nullptr, &status);
    }
    return status;
}

int32_t write_time(const Group& group, const char* name, const char* format, const std::tm& local)
{
    char text[16]{};
    std::strftime(text, sizeof text, format, &local);
    return VAK_H5Awrite(name, text, text_type, 8, 8, nullptr, 0, group.get());
}

}  // namespace

ErasableBlock erasable(const EraserRun& run, int32_t number)
{
    const ListedBlock& listed = run.file.blocks[static_cast<size_t>(number)];
    return {run.family, run.root, listed.key, listed.path};
}

Group open_listed(const EraserRun& run, int32_t number)
{
    const Properties access = guarded_links();
    return Group(H5Gopen2(run.root, run.file.blocks[static_cast<size_t>(number)].path.c_str(), access.get()));
}

int32_t read_error(const char* type, int32_t pass, int32_t status)
{
    std::fprintf(stderr, "\nVAK ERROR reading \"%s\" block pass %d - error code = %d \n", type, pass, status);
    return status;
}

int32_t check_header(const EraserRun& run)
{
    const auto headers = blocks_with_key(run.file, header_key);
    if (headers.empty()) return warn_of_missing("vakheader"), 0;
    if (headers.size() > 1) std::fprintf(stderr, "VAK WARNING multiple \"%s\"s!\n", "vakheader");
    std::array<int, 3> v;
    if (const int32_t status = read_version(run, headers[0], &v); status != 0) return status;
    if (v[0] != (run.family == Family::current ? 2 : 1)) {
        std::fprintf(stderr, "VAK ERROR - incompatible file - VAK version: %d.%d.%d\n", v[0], v[1], v[2]);
        return -1;
    }
    if (run.verbose > 0)
        std::printf("VAK INFO - compatibility check OK - VAK version: %d.%d.%d\n", v[0], v[1], v[2]);
    return 0;
}

int32_t check_index(const EraserRun& run)
{
    const auto blocks = blocks_with_key(run.file, 20);
    if (blocks.empty()) return warn_of_missing("indices"), 0;
    if (blocks.size() > 1) warn_of_several("indices");
    const int32_t status = read_index(run, blocks[0]);
    return status == 0 ? 0 : read_error("indices", 1, status);
}

int32_t stamp_system(const EraserRun& run)
{
    const auto blocks = blocks_with_key(run.file, 10);
    const auto own =
        std::ranges::find_if(blocks, [&](int32_t number) { return is_of_this_file(erasable(run, number)); });
    if (own == blocks.end()) return warn_of_missing("system"), 0;
    if (blocks.size() > 1) warn_of_several("system");
    const Group group = open_listed(run, *own);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    const int32_t status = write_time(group, "mdate", "%Y%m%d", local);
    return status != 0 ? status : write_time(group, "mtime", "%H%M%S  ", local);
}

}  // namespace vak
