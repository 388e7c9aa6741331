// The state eraser: cuts a file back to a given index, for a solver that starts again from there.
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <set>

#include "catalogue/guarded_links.h"
#include "catalogue/quiet_attribute.h"
#include "storage/storage.h"
#include "tools/erase_block.h"
#include "tools/file_blocks.h"
#include "tools/tool.h"
#include "vak_sp.h"

namespace vak {

namespace {

struct SeriesKind {
    const char* type;
    int32_t real_key, complex_key;
};
constexpr SeriesKind series_kinds[] = {
    {"multientityresults", 1050, 1051}, {"multielementresults", 1150, 1151}, {"multiactivflags", 2150, 2150}};

struct Run {
    Family family;
    hid_t root;
    std::vector<int32_t> index;  // after which everything goes
    int32_t verbose;
    FileBlocks file;
};

// A series of which states go, and those that stay.
struct Cut {
    ErasableBlock block;
    std::vector<hsize_t> kept;
};

// What is to be done; found out before anything is changed.
struct Plan {
    std::vector<ErasableBlock> blocks;  // of single states
    std::vector<Cut> series;
    std::set<ObjectToken> cut;  // several paths may lead to one series, whose states go once
};

void print_banner(const Run& run)
{
    const bool is_current = run.family == Family::current;
    std::printf("     +------------------------------------------------------+\n");
    std::printf("     |  %-52s|\n", "VAK state eraser");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("      Compiled    : %s %s\n", __DATE__, __TIME__);
    std::printf("      VAK Version : %d.%d.%d\n", is_current ? 2 : 1, 2, is_current ? 14 : 0);
    std::printf("VAK INFO - erase all data after index:");
    for (const int32_t value : run.index) std::printf(" %d", value);
    std::printf("\n\n");
}

// Every listed path has a set; where none can be read it counts as set 0.
void check_sets(const Run& run)
{
    for (const ListedBlock& block : run.file.blocks)
        if (set_number(block.path).state != Numbered::read) warn_of_set(block);
}

Group open_block(const Run& run, int32_t number)
{
    const Properties access = guarded_links();
    return Group(H5Gopen2(run.root, run.file.blocks[static_cast<size_t>(number)].path.c_str(), access.get()));
}

// The legacy routines take the group above "header".
Group open_whole_block(const Run& run, int32_t number)
{
    if (run.family == Family::current) return open_block(run, number);
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

int32_t read_error(const char* type, int32_t pass, int32_t status)
{
    std::fprintf(stderr, "\nVAK ERROR reading \"%s\" block pass %d - error code = %d \n", type, pass, status);
    return status;
}

int32_t read_version(const Run& run, int32_t number, std::array<int, 3>* version)
{
    const Group header = open_block(run, number);
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

int32_t check_header(const Run& run)
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

int32_t read_index(const Run& run, int32_t number)
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

int32_t check_index(const Run& run)
{
    const auto blocks = blocks_with_key(run.file, 20);
    if (blocks.empty()) return warn_of_missing("indices"), 0;
    if (blocks.size() > 1) warn_of_several("indices");
    const int32_t status = read_index(run, blocks[0]);
    return status == 0 ? 0 : read_error("indices", 1, status);
}

ErasableBlock erasable(const Run& run, int32_t number)
{
    const ListedBlock& listed = run.file.blocks[static_cast<size_t>(number)];
    return {run.family, run.root, listed.key, listed.path};
}

int32_t write_time(const Group& group, const char* name, const char* format, const std::tm& local)
{
    char text[16]{};
    std::strftime(text, sizeof text, format, &local);
    return VAK_H5Awrite(name, text, text_type, 8, 8, nullptr, 0, group.get());
}

int32_t stamp_system(const Run& run)
{
    const auto blocks = blocks_with_key(run.file, 10);
    const auto own =
        std::ranges::find_if(blocks, [&](int32_t number) { return is_of_this_file(erasable(run, number)); });
    if (own == blocks.end()) return warn_of_missing("system"), 0;
    if (blocks.size() > 1) warn_of_several("system");
    const Group group = open_block(run, *own);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    const int32_t status = write_time(group, "mdate", "%Y%m%d", local);
    return status != 0 ? status : write_time(group, "mtime", "%H%M%S  ", local);
}

// Compared entry by entry over the shorter list; equal that far is kept.
bool lies_after(const int32_t* row, size_t width, const std::vector<int32_t>& index)
{
    for (size_t i = 0; i < std::min(width, index.size()); ++i)
        if (row[i] != index[i]) return row[i] > index[i];
    return false;
}

const SeriesKind* series_kind(int32_t key)
{
    const auto found = std::ranges::find_if(
        series_kinds, [&](const SeriesKind& k) { return key == k.real_key || key == k.complex_key; });
    return found == std::end(series_kinds) ? nullptr : found;
}

std::string type_of(const Run& run, int32_t number)
{
    constexpr const char* name[] = {"blocktype"};
    const Group group = open_block(run, number);
    const auto text = text_of(first_attribute(group.get(), name));
    return text ? std::string(counted(text->data(), text->size())) : std::string();
}

std::vector<hsize_t> kept_states(const IndexRows& rows, const std::vector<int32_t>& index)
{
    std::vector<hsize_t> kept;
    for (size_t i = 0; i < rows.size(); ++i)
        if (!lies_after(&rows.values[i * rows.width], rows.width, index)) kept.push_back(i);
    return kept;
}

int32_t plan_series(const Run& run, const SeriesKind& kind, const ErasableBlock& block, Plan& plan)
{
    const IndexRows rows = read_series_rows(block);
    if (rows.status != 0) return read_error(kind.type, 1, rows.status);
    std::vector<hsize_t> kept = kept_states(rows, run.index);
    if (kept.size() == rows.size()) return 0;
    if (!kept.empty() && !plan.cut.insert(token_of(block)).second) return 0;
    if (const int32_t status = check_states(block, kept); status != 0)
        return read_error(kind.type, 2, status);
    plan.series.push_back({block, std::move(kept)});
    return 0;
}

int32_t plan_block(const Run& run, int32_t number, Plan& plan)
{
    const ErasableBlock block = erasable(run, number);
    if (block.key == header_key || !is_of_this_file(block)) return 0;
    if (const SeriesKind* kind = series_kind(block.key)) return plan_series(run, *kind, block, plan);
    const IndexRows row = read_index_row(block);
    if (row.status != 0) return read_error(type_of(run, number).c_str(), 1, row.status);
    if (row.size() > 0 && lies_after(row.values.data(), row.width, run.index)) plan.blocks.push_back(block);
    return 0;
}

int32_t make_plan(const Run& run, Plan& plan)
{
    for (const int32_t number : run.file.by_key)
        if (const int32_t status = plan_block(run, number, plan); status != 0) return status;
    return 0;
}

int32_t erase_block(const Run& run, const ErasableBlock& block)
{
    const int32_t status = delete_block(block, run.verbose > 1);
    if (status != 0) std::fprintf(stderr, " erase of block \"%s\" failed\n", block.path.c_str());
    return status;
}

int32_t flush(const Run& run) { return H5Fflush(run.root, H5F_SCOPE_GLOBAL) >= 0 ? 0 : -1; }

// Flushed now and then: what is not yet in the file is then little, and never pushed out half by later work.
// Flushed at the end, before anything new takes the space that is now free.
int32_t erase_single_states(const Run& run, const Plan& plan)
{
    constexpr int32_t flushed_together = 64;
    int32_t deleted = 0;
    for (const ErasableBlock& block : plan.blocks) {
        if (!is_of_this_file(block)) continue;  // gone already: the same block under another path
        if (const int32_t status = erase_block(run, block); status != 0) return status;
        if (++deleted % flushed_together == 0 && flush(run) != 0) return -1;
    }
    if (run.verbose > 0) std::printf("VAK INFO - %d singlestate blocks deleted\n", deleted);
    return flush(run);
}

int32_t erase_series(const Run& run, const ErasableBlock& block)
{
    if (!is_of_this_file(block)) return 0;  // gone already
    const int32_t status = erase_block(run, block);
    return status != 0 ? status : flush(run);
}

int32_t rewrite(const Run& run, const SeriesKind& kind, const Cut& c)
{
    const int32_t status = keep_states(c.block, c.kept);
    if (status != 0)
        std::fprintf(stderr, "\nVAK ERROR writing \"%s\" block - error code = %d\n", kind.type, status);
    else if (run.verbose > 1)
        std::printf(" block \"%s\" deleted \n", c.block.path.c_str());  // the one that was replaced
    return status;
}

bool has_blocks_of(const Run& run, const SeriesKind& kind)
{
    return std::ranges::any_of(run.file.blocks,
                               [&](const ListedBlock& b) { return series_kind(b.key) == &kind; });
}

int32_t cut_series(const Run& run, const Plan& plan, const SeriesKind& kind)
{
    int32_t rewritten = 0;
    for (const Cut& c : plan.series) {
        if (series_kind(c.block.key) != &kind) continue;
        const int32_t status = c.kept.empty() ? erase_series(run, c.block) : rewrite(run, kind, c);
        if (status != 0) return status;
        if (!c.kept.empty()) ++rewritten;
    }
    // Files of solvers have series of entity results; the other kinds are told of where there are any.
    if (run.verbose > 0 && (&kind == series_kinds || has_blocks_of(run, kind)))
        std::printf("\nVAK INFO - %d \"%s\" blocks rewritten\n", rewritten, kind.type);
    return 0;
}

int32_t carry_out(const Run& run, const Plan& plan)
{
    if (const int32_t status = stamp_system(run); status != 0) return status;
    if (const int32_t status = erase_single_states(run, plan); status != 0) return status;
    for (const SeriesKind& kind : series_kinds)
        if (const int32_t status = cut_series(run, plan, kind); status != 0) return status;
    if (run.verbose > 0) std::printf("\nVAK state eraser successfully passed.\n\n");
    return 0;
}

int32_t erase_states(Run run)
{
    if (run.verbose > 0) print_banner(run);
    run.file = blocks_of(run.family, run.root);
    if (run.file.blocks.empty()) {
        std::fprintf(stderr, "\nVAK ERROR - no VAK blocks found - error code = %d\n", -1);
        return -1;
    }
    if (run.file.status != 0) {
        std::fprintf(stderr, "\nVAK ERROR - not all VAK blocks could be listed - error code = %d\n",
                     run.file.status);
        return -1;
    }
    if (run.verbose > 0)
        std::printf(" Info    : %d VAK blocks found\n", static_cast<int>(run.file.blocks.size()));
    check_sets(run);
    if (run.verbose > 0) print_block_types(run.file, KeyFrame::around);
    Plan plan;
    if (const int32_t status = check_header(run); status != 0) return status;
    if (const int32_t status = check_index(run); status != 0) return status;
    if (const int32_t status = make_plan(run, plan); status != 0) return status;
    return carry_out(run, plan);
}

int32_t erase_in(Family family, hid_t group, const int32_t* nindex, const int32_t* index, int32_t verbose)
{
    return erase_states({.family = family,
                         .root = group,
                         .index = {index, index + std::max(*nindex, 0)},
                         .verbose = verbose,
                         .file = {}});
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_ERASE_STATES(
    const vak_id* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose, int32_t* ierr)
{
    run_tool("vak_erase_states", [&] { *ierr = erase_in(Family::current, *group, nindex, index, *verbose); });
}

void VAK1_ERASE_STATES(
    const vak_id* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose, int32_t* ierr)
{
    run_tool("vak_erase_states", [&] { *ierr = erase_in(Family::legacy, *group, nindex, index, *verbose); });
}
