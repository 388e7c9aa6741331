// Files of very many blocks.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "catalogue/catalogue_test.h"
#include "support/memory_limit.h"
#include "support/root_group.h"

namespace vak::test {

namespace {

constexpr int blocks_of_a_state = 10;
constexpr int32_t read_only = 10;

std::string state_of(int number)
{
    char path[40];
    std::snprintf(path, sizeof path, "singlestate/state%012d", number / blocks_of_a_state);
    return path;
}

std::string name_of(int number) { return "NODE" + std::to_string(number % blocks_of_a_state); }

}  // namespace

class ManyBlocks : public BothCatalogues {
protected:
    // Blocks with the keys 1, 2, 3 ... in the order of their paths, in a file that is then closed.
    std::string make_file(int count)
    {
        for (int first = 0; first < count; first += blocks_of_a_state) {
            const ObjectId state = make_group(file, state_of(first));
            for (int i = first; i < std::min(count, first + blocks_of_a_state); ++i)
                make_block(state, block(name_of(i)), i + 1);
        }
        return close_file();
    }

    static bool lists_all(vak_id start, int count)
    {
        List list;
        GetParam().lookup(&start, &list.collect, &list.verbose, &list.capacity, &list.pool_size,
                          &list.nblocks, &list.total_len, &list.got.keys, &list.got.offsets, &list.got.paths,
                          &list.ierr);
        if (list.ierr != 0 || list.nblocks != count) return false;
        for (int i = 0; i < count; ++i)
            if (list.got.keys[i] != i + 1 ||
                list.got.paths + list.got.offsets[i] != state_of(i) + "/" + block(name_of(i)))
                return false;
        return true;
    }

    // In a child whose memory is limited to twice the list and what HDF5 keeps of a file.
    void expect_listed(int count)
    {
        const std::string name = make_file(count);
        const size_t path = state_of(0).size() + block(name_of(0)).size() + 2;
        const size_t list = static_cast<size_t>(count) * (path + sizeof(int32_t) + sizeof(int64_t));
        const Limited limited = with_memory(2 * list + (size_t{24} << 20),
                                            [&] { return lists_all(open_root(name, read_only), count); });
        EXPECT_TRUE(limited.ended_well) << limited.most;
        RecordProperty("bytes_of_list", std::to_string(list));
        RecordProperty("bytes_held_at_once", std::to_string(limited.most));
    }
};
IN_BOTH_CATALOGUES(ManyBlocks);

TEST_P(ManyBlocks, ten_thousand_and_one_are_listed_in_order) { expect_listed(10'001); }

// Half a minute; run with VAK_TEST_LARGE set, as script/check does.
TEST_P(ManyBlocks, a_hundred_thousand_are_listed_in_little_memory)
{
    if (std::getenv("VAK_TEST_LARGE") == nullptr) GTEST_SKIP() << "VAK_TEST_LARGE is not set";
    expect_listed(100'000);
}

}  // namespace vak::test
