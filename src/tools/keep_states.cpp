// Putting the states that stay in place of all states of a series.
#include <algorithm>

#include "storage/storage.h"
#include "tools/cut_series.h"
#include "tools/erase_block.h"

namespace vak {

namespace {

constexpr const char* state_datasets[] = {"indexident", "indexval", "res", "status"};

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

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
    const Group header = open_in_file(b, b.path);
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
