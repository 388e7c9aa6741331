// The protocol of the listing routines: count or collect, whose arrays, how they grow, what is printed.
#include "catalogue/block_list.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace vak {

namespace {

constexpr int32_t default_capacity = 10'000;
constexpr int64_t default_pool_size = 2'560'000;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

// An array of the caller or, where he gave none or too small a one, of this call. The caller's memory may
// come from anywhere, so it is never freed.
template <class T>
struct Array {
    T* at = nullptr;
    std::unique_ptr<T, Free> own{};

    bool grow(int64_t used, int64_t size)
    {
        std::unique_ptr<T, Free> larger(static_cast<T*>(std::malloc(static_cast<size_t>(size) * sizeof(T))));
        if (larger == nullptr) return false;
        std::copy_n(at, used, larger.get());
        own = std::move(larger);
        at = own.get();
        return true;
    }

    void hand_over(T** caller)
    {
        *caller = at;
        static_cast<void>(own.release());
    }
};

struct Collection {
    int32_t capacity = default_capacity;
    int64_t pool_size = default_pool_size;
    Array<int32_t> keys{};
    Array<int64_t> offsets{};
    Array<char> paths{};
    int32_t nblocks = 0;
    int64_t total_len = 0;
};

Collection collection_of(const BlockList& list)
{
    Collection all;
    if (*list.capacity > 0) {
        all.capacity = *list.capacity;
        all.keys.at = *list.keys;
        all.offsets.at = *list.offsets;
    }
    if (*list.pool_size > 0) {
        all.pool_size = *list.pool_size;
        all.paths.at = *list.paths;
    }
    return all;
}

bool provide_arrays(Collection& all)
{
    return (all.keys.at != nullptr || all.keys.grow(0, all.capacity)) &&
           (all.offsets.at != nullptr || all.offsets.grow(0, int64_t{all.capacity} + 1)) &&
           (all.paths.at != nullptr || all.paths.grow(0, all.pool_size));
}

bool grow_pool(Collection& all, int64_t needed)
{
    if (!all.paths.grow(all.total_len, 2 * needed)) return false;
    all.pool_size = 2 * needed;
    return true;
}

bool grow_entries(Collection& all)
{
    const int64_t capacity = 2 * int64_t{all.capacity};
    if (!all.keys.grow(all.nblocks, capacity) || !all.offsets.grow(all.nblocks + 1, capacity + 1))
        return false;
    all.capacity = static_cast<int32_t>(capacity);
    return true;
}

bool add(Collection& all, const FoundBlock& block)
{
    const int64_t end = all.total_len + static_cast<int64_t>(block.path.size()) + 1;
    if (end > all.pool_size && !grow_pool(all, end)) return false;
    if (all.nblocks == all.capacity && !grow_entries(all)) return false;
    block.path.copy(all.paths.at + all.total_len, block.path.size());
    all.paths.at[end - 1] = '\0';
    all.keys.at[all.nblocks++] = block.key;
    all.offsets.at[all.nblocks] = all.total_len = end;
    return true;
}

void print(const Collection& all, const char* routine)
{
    std::printf("\n VAK INFO %s: %d blocks found - total path len: %zu\n\n", routine, all.nblocks,
                static_cast<size_t>(all.total_len));
    std::printf("      block:   blockkey path\n");
    for (int32_t i = 0; i < all.nblocks; ++i)
        std::printf(" %10d: %10d \"%s\"\n", i, all.keys.at[i], all.paths.at + all.offsets.at[i]);
    std::printf("\n");
}

void hand_over(Collection& all, const BlockList& list)
{
    *list.capacity = all.capacity;
    *list.pool_size = all.pool_size;
    *list.nblocks = all.nblocks;
    *list.total_len = all.total_len;
    all.keys.hand_over(list.keys);
    all.offsets.hand_over(list.offsets);
    all.paths.hand_over(list.paths);
}

int32_t count_blocks(const BlockList& list, Family family, hid_t start, const Accept& accept)
{
    int32_t nblocks = 0;
    int64_t total_len = 0;
    const int32_t status = walk_blocks(family, start, [&](const FoundBlock& block) {
        if (!accept(block)) return true;
        ++nblocks;
        total_len += static_cast<int64_t>(block.path.size()) + 1;
        return true;
    });
    *list.nblocks = nblocks;
    *list.total_len = total_len;
    return status;
}

int32_t collect_blocks(const BlockList& list, Family family, hid_t start, const char* routine,
                       const Accept& accept)
{
    Collection all = collection_of(list);
    if (!provide_arrays(all)) return -1;
    all.offsets.at[0] = 0;
    bool grown = true;
    const int32_t status = walk_blocks(family, start, [&](const FoundBlock& block) {
        grown = !accept(block) || add(all, block);
        return grown;
    });
    if (list.verbose > 0) print(all, routine);
    hand_over(all, list);
    return grown ? status : 1;
}

}  // namespace

int32_t list_blocks_into(const BlockList& list, Family family, hid_t start, const char* routine,
                         const Accept& accept)
{
    *list.nblocks = 0;
    *list.total_len = 0;
    if (!can_be_walked(start)) return -1;
    return list.collect < 1 ? count_blocks(list, family, start, accept)
                            : collect_blocks(list, family, start, routine, accept);
}

}  // namespace vak
