// Putting the states that stay in place of all states of a series.
#include <algorithm>

#include "storage/storage.h"
#include "storage/whole_flush.h"
#include "tools/cut_series.h"
#include "tools/erase_block.h"

namespace vak {

namespace {

constexpr const char* state_datasets[] = {"indexident", "indexval", "res", "status"};

bool has(hid_t group, const char* name) { return H5Lexists(group, name, H5P_DEFAULT) > 0; }

bool rename(hid_t group, const std::string& from, const std::string& to)
{
    return H5Lmove(group, from.c_str(), group, to.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

int32_t remove_link(hid_t group, const std::string& name)
{
    if (!has(group, name.c_str())) return 0;
    return H5Ldelete(group, name.c_str(), H5P_DEFAULT) >= 0 ? 0 : -1;
}

struct StateDataset {
    Group group;
    std::string name, copy, old;
};

std::vector<StateDataset> state_datasets_of(const ErasableBlock& b)
{
    std::vector<StateDataset> all;
    for (const std::string name : state_datasets)
        if (Group group = group_with(b, name.c_str()); group.valid())
            all.push_back(
                {std::move(group), name, name + " states being rewritten", name + " states being replaced"});
    return all;
}

// Also what a run that was killed has left behind.
int32_t remove_leftovers(const StateDataset& d)
{
    const int32_t status = remove_link(d.group.get(), d.copy);
    return std::min(status, remove_link(d.group.get(), d.old));
}

bool swap_names(const StateDataset& d)
{
    return rename(d.group.get(), d.name, d.old) && rename(d.group.get(), d.copy, d.name);
}

void swap_back(const StateDataset& d)
{
    if (!has(d.group.get(), d.old.c_str())) return;
    remove_link(d.group.get(), d.name);
    rename(d.group.get(), d.old, d.name);
}

int32_t write_nstate(const Group& header, int32_t nstate)
{
    const htri_t exists = H5Aexists(header.get(), "nstate");
    if (exists <= 0) return exists == 0 ? 0 : -1;
    return VAK_H5Awrite("nstate", &nstate, integer_type, 4, 4, nullptr, 0, header.get());
}

// All datasets of the block or none, for their rows belong together. What is not complete when this ends is
// undone, which takes no memory: it may have run out.
class Exchange {
public:
    explicit Exchange(const ErasableBlock& b)
        : header_(open_in_file(b, b.path)), datasets_(state_datasets_of(b))
    {
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange()
    {
        if (complete_) return;
        std::ranges::for_each(datasets_, swap_back);
        for (const StateDataset& d : datasets_) remove_link(d.group.get(), d.copy);
    }

    int32_t write_copies(const std::vector<hsize_t>& kept) const
    {
        for (const StateDataset& d : datasets_) {
            int32_t status = remove_leftovers(d);
            if (status == 0) status = copy_kept_states(d.group.get(), d.name.c_str(), d.copy.c_str(), kept);
            if (status != 0) return status;
        }
        return 0;
    }

    int32_t put_in_place(const std::vector<hsize_t>& kept)
    {
        if (!std::ranges::all_of(datasets_, swap_names)) return -1;
        const int32_t status = write_nstate(header_, static_cast<int32_t>(kept.size()));
        complete_ = status == 0;
        return status;
    }

    int32_t remove_all_leftovers() const
    {
        int32_t worst = 0;
        for (const StateDataset& d : datasets_) worst = std::min(worst, remove_leftovers(d));
        return worst;
    }

private:
    Group header_;
    std::vector<StateDataset> datasets_;
    bool complete_ = false;
};

int32_t flush(const ErasableBlock& b) { return flush_whole(b.root, H5F_SCOPE_GLOBAL) ? 0 : -1; }

int32_t exchange_states(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    Exchange exchange(b);
    int32_t status = exchange.write_copies(kept);
    if (status == 0) status = flush(b);
    if (status == 0) status = exchange.put_in_place(kept);
    return status == 0 ? exchange.remove_all_leftovers() : status;
}

}  // namespace

int32_t check_states(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    for (const StateDataset& d : state_datasets_of(b))
        if (const int32_t status = check_kept_states(d.group.get(), d.name.c_str(), kept); status != 0)
            return status;
    return 0;
}

int32_t keep_states(const ErasableBlock& b, const std::vector<hsize_t>& kept)
{
    const int32_t status = exchange_states(b, kept);
    // Before the next block is written: its data must not take space that the file still counts as the old
    // states'.
    const int32_t flushed = flush(b);
    return status != 0 ? status : flushed;
}

}  // namespace vak
