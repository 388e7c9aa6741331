// The eraser on a series that is larger than the memory it may use.
#include "support/memory_limit.h"
#include "support/root_group.h"
#include "tools/eraser_test.h"

namespace vak::test {

namespace {

constexpr size_t mebi = 1 << 20;
constexpr int32_t states = 48, entities = 128 * 1024, last = 31;  // a state is of 1 MiB
constexpr size_t memory = 12 * mebi;

class EraseLargeSeries : public EraserTest {
protected:
    void TearDown() override
    {
        const int32_t one = 1;
        VAK_SET_CHUNK_SIZE(&one);
        EraserTest::TearDown();
    }

    // One state at a time, as a solver writes; only that is in memory here, too.
    MultiEntityResults state_of_series(int32_t k, int32_t flags) const
    {
        auto s = series({k % 8 == 7 ? 99 : k});
        s.nent = entities;
        s.zone.fswitch = s.zone.dmpswitch = 0;
        s.tables.ids.resize(entities, 7);
        s.flags = flags;
        s.params[1] = 1;
        s.res.assign(size_t{2} * entities, static_cast<float>(k));
        for (size_t i = 0; i < s.res.size(); i += 3) s.res[i] += static_cast<float>(i % 64);
        return s;
    }
    std::string write_series(int32_t flags)
    {
        write_frame();
        for (int32_t k = 0; k < states; ++k) {
            const auto one = state_of_series(k, flags);
            EXPECT_EQ(write(one), success);
        }
        return close_file();
    }
    void expect_state(const std::string& path, hsize_t place, int32_t k, int32_t flags)
    {
        const auto expected = state_of_series(k, flags).res;
        std::vector<float> found(expected.size());
        const ObjectId set = open_object(file, path);
        const SpaceId space(H5Dget_space(set), "space");
        const hsize_t start[3] = {place, 0, 0}, count[3] = {1, entities, 2};
        H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, count, nullptr);
        const SpaceId all(H5Screate_simple(3, count, nullptr), "memory");
        EXPECT_GE(H5Dread(set, H5T_NATIVE_FLOAT, all, space, H5P_DEFAULT, found.data()), 0);
        EXPECT_EQ(found, expected) << k;
    }
    // The child does as a caller does who starts again.
    bool erase_in(const std::string& name) const
    {
        const int32_t update = 9, nindex = 1, verbose = 0;
        const vak_id group = open_root(name, update);
        if (group < 0) return false;
        int32_t ierr = 0;
        (legacy() ? VAK1_ERASE_STATES : VAK_ERASE_STATES)(&group, &nindex, &last, &verbose, &ierr);
        return close_root(group) == 0 && ierr == 0;
    }
    void expect_cut(int32_t chunk, int32_t flags)
    {
        VAK_SET_CHUNK_SIZE(&chunk);
        const std::string path = data_of(state_of_series(0, flags), "res");
        const std::string name = write_series(flags);
        Limited run;
        captured_unnoted([&] { run = with_memory(memory, [&] { return erase_in(name); }); });
        EXPECT_TRUE(run.ended_well) << "at most " << run.most << " bytes were held";
        RecordProperty("bytes_held_at_once", static_cast<int>(run.most));
        file = H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
        hsize_t place = 0;
        for (int32_t k = 0; k <= last; ++k)
            if (k % 8 != 7) expect_state(path, place++, k, flags);
        EXPECT_EQ(dataset_extents(file, path).at(0), static_cast<int64_t>(place));
    }
};
INSTANTIATE_TEST_SUITE_P(, EraseLargeSeries, both_families, family_name);

TEST_P(EraseLargeSeries, is_cut_back_in_a_quarter_of_its_size) { expect_cut(1, 0); }

TEST_P(EraseLargeSeries, is_cut_back_in_a_quarter_of_its_size_when_states_share_chunks) { expect_cut(4, 0); }

TEST_P(EraseLargeSeries, is_cut_back_in_a_quarter_of_its_size_when_it_is_compressed) { expect_cut(1, 18); }

// What tells that the limit holds.
TEST_P(EraseLargeSeries, a_process_that_takes_the_whole_series_is_stopped)
{
    Limited run;
    captured_unnoted([&] {
        run = with_memory(memory, [] {
            const std::vector<float> whole(size_t{states} * entities * 2, 1.0F);
            return whole.back() > 0;
        });
    });
    EXPECT_FALSE(run.ended_well);
}

}  // namespace

}  // namespace vak::test
