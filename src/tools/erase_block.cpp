#include "tools/erase_block.h"

#include <algorithm>
#include <cstdio>

#include "blocks/series.h"
#include "catalogue/guarded_links.h"
#include "tools/cut_series.h"
#include "tools/stored_series.h"

namespace vak {

namespace {

constexpr int32_t unreadable = -6999;
constexpr const char* state_datasets[] = {"indexident", "indexval", "res", "status"};

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

Group open_group(const ErasableBlock& b, const std::string& path)
{
    const Properties access = guarded_links();
    return Group(H5Gopen2(b.root, path.empty() ? "." : path.c_str(), access.get()));
}

std::string parent_of(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

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
    const Group group = open_group(b, path);
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

// The attributes are those of the block's own group, or of its "header": the group that the listed path leads
// to.
int32_t read_nindex(const ErasableBlock& b, int32_t* nindex)
{
    const Group header = open_group(b, b.path);
    size_t stored = 0;
    return VAK_H5Aread("nindex", nindex, integer_type, sizeof *nindex, nullptr, 0, header.get(), &stored);
}

// A row more than are stored costs nothing in the file; only so many may be made up where rows were left out.
constexpr int64_t rows_left_out = 1 << 20;

// How many rows the dataset has; -1 where they cannot be taken for rows of states.
int64_t stored_rows(hid_t group, const char* name)
{
    StoredSeries series(group, name);
    if (!open_series(series)) return -1;
    const double stored = static_cast<double>(series.chunks.size()) * static_cast<double>(series.chunk[0]);
    if (static_cast<double>(series.dims[0]) > stored + rows_left_out) return -1;
    return static_cast<int64_t>(series.dims[0]);
}

// `nstates` below 0: a single row.
IndexRows read_rows(const ErasableBlock& b, const Group& group, int64_t nstates)
{
    int32_t nindex = 0;
    IndexRows rows;
    rows.status = read_nindex(b, &nindex);
    if (rows.status != 0 || nindex <= 0) return rows;
    const BlockKind kind{.key = b.key, .type = ""};
    Block io(kind, b.family, Direction::read, group.get());
    // Without a place to deliver to, the extents are checked before memory is taken for them.
    const Shape shape = nstates < 0 ? Shape{nindex} : Shape{nstates, nindex};
    const Counts values = counts(io, "indexident", {}, shape);
    rows.status = io.status;
    rows.width = static_cast<size_t>(nindex);
    rows.values.assign(values.begin(), values.end());
    return rows;
}

int64_t complete_states(const ErasableBlock& b)
{
    const BlockKind kind{.key = b.key, .type = ""};
    const Group group = open_group(b, b.family == Family::current ? b.path : parent_of(b.path));
    const Block io(kind, b.family, Direction::read, group.get());
    return state_count(io, group_with(b, "status").valid() ? "status" : "res");
}

template <class Step>
int32_t for_each_state_dataset(const ErasableBlock& b, Step step)
{
    for (const char* name : state_datasets) {
        const Group group = group_with(b, name);
        if (!group.valid()) continue;
        if (const int32_t status = step(group.get(), name); status != 0) return status;
    }
    return 0;
}

std::string copy_of(const char* name) { return std::string(name) + " states being rewritten"; }
std::string old_of(const char* name) { return std::string(name) + " states being replaced"; }

bool rename(hid_t group, const std::string& from, const std::string& to)
{
    return H5Lmove(group, from.c_str(), group, to.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

// Also what a run that was killed has left behind.
int32_t remove_link(hid_t group, const std::string& name)
{
    if (!has(group, name.c_str())) return 0;
    return H5Ldelete(group, name.c_str(), H5P_DEFAULT) >= 0 ? 0 : -1;
}

int32_t remove_leftovers(hid_t group, const char* name)
{
    const int32_t status = remove_link(group, copy_of(name));
    return std::min(status, remove_link(group, old_of(name)));
}

int32_t swap_names(hid_t group, const char* name)
{
    if (!rename(group, name, old_of(name))) return -1;
    if (rename(group, copy_of(name), name)) return 0;
    rename(group, old_of(name), name);
    return -1;
}

// Undoes what a failed exchange has done.
void swap_back(hid_t group, const char* name)
{
    if (!has(group, old_of(name).c_str())) return;
    remove_link(group, name);
    rename(group, old_of(name), name);
}

int32_t write_nstate(const ErasableBlock& b, int32_t nstate)
{
    const Group header = open_group(b, b.path);
    if (H5Aexists(header.get(), "nstate") <= 0) return 0;
    return VAK_H5Awrite("nstate", &nstate, integer_type, 4, 4, nullptr, 0, header.get());
}

int32_t flush(const ErasableBlock& b) { return H5Fflush(b.root, H5F_SCOPE_GLOBAL) >= 0 ? 0 : -1; }

int32_t write_copies(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    return for_each_state_dataset(b, [&](hid_t group, const char* name) {
        const int32_t status = remove_leftovers(group, name);
        return status != 0 ? status : copy_kept_states(group, name, copy_of(name).c_str(), kept);
    });
}

// All datasets of the block or none: their rows belong together.
int32_t put_in_place(const ErasableBlock& b)
{
    const int32_t status = for_each_state_dataset(b, swap_names);
    if (status == 0) return 0;
    for_each_state_dataset(b, [](hid_t group, const char* name) { return swap_back(group, name), 0; });
    return status;
}

int32_t remove_all_leftovers(const ErasableBlock& b)
{
    int32_t worst = 0;
    for_each_state_dataset(b, [&](hid_t group, const char* name) {
        worst = std::min(worst, remove_leftovers(group, name));
        return 0;
    });
    return worst;
}

}  // namespace

bool is_of_this_file(const ErasableBlock& b)
{
    const Group block = open_group(b, b.path);
    H5O_info2_t root, own;
    return block.valid() && H5Oget_info3(b.root, &root, H5O_INFO_BASIC) >= 0 &&
           H5Oget_info3(block.get(), &own, H5O_INFO_BASIC) >= 0 && own.fileno == root.fileno;
}

ObjectToken token_of(const ErasableBlock& b)
{
    const Group block = open_group(b, b.path);
    H5O_info2_t info{};
    H5Oget_info3(block.get(), &info, H5O_INFO_BASIC);
    return std::to_array(info.token.__data);
}

Group group_with(const ErasableBlock& b, const char* dataset)
{
    if (b.family == Family::current) {
        Group block = open_group(b, b.path);
        return has(block.get(), dataset) ? std::move(block) : Group();
    }
    const Group block = open_group(b, parent_of(b.path));
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

IndexRows read_index_row(const ErasableBlock& b)
{
    const Group group = group_with(b, "indexident");
    return group.valid() ? read_rows(b, group, -1) : IndexRows{};
}

IndexRows read_series_rows(const ErasableBlock& b)
{
    const Group group = group_with(b, "indexident");
    if (!group.valid()) return {};
    const int64_t stored = stored_rows(group.get(), "indexident"), states = complete_states(b);
    if (stored < states) return {.status = unreadable, .values = {}};
    IndexRows rows = read_rows(b, group, stored);
    // Rows behind the values are what a failed call left.
    rows.values.resize(std::min(rows.values.size(), rows.width * static_cast<size_t>(states)));
    return rows;
}

int32_t check_states(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    return for_each_state_dataset(
        b, [&](hid_t group, const char* name) { return check_kept_states(group, name, kept); });
}

int32_t keep_states(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    int32_t status = write_copies(b, kept);
    if (status == 0) status = flush(b);
    if (status != 0) {
        remove_all_leftovers(b);
        return status;
    }
    status = put_in_place(b);
    if (status == 0) status = write_nstate(b, static_cast<int32_t>(kept.size()));
    const int32_t removed = remove_all_leftovers(b);
    // Before the next block is written: its data must not take space that the file still counts as the old
    // states'.
    const int32_t flushed = flush(b);
    return status != 0 ? status : std::min(removed, flushed);
}

}  // namespace vak
