// Room in a file for what is held back: a flush comes to the file as a whole or not at all.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "samples/entityresults.h"
#include "support/block_test.h"
#include "support/failing_memory.h"
#include "support/faults.h"

namespace vak::test {

namespace {

using Bytes = std::vector<char>;

Bytes bytes_of(const std::string& name)
{
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class RoomInAFile : public BothFamilies {
protected:
    void TearDown() override
    {
        disk().mend();
        BothFamilies::TearDown();
    }

    // HDF5 keeps memory of a file that it could not close. Gives what became of the disk.
    static Disk in_a_process_of_its_own(const std::function<void()>& what)
    {
        const pid_t child = fork();
        if (child == 0) {
            what();
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 1;
        waitpid(child, &status, 0);
        const Disk disk_then = disk();
        disk().mend();
        EXPECT_EQ(status, 0);
        return disk_then;
    }

    static int32_t open(const std::string& name, int32_t option, vak_id& group)
    {
        const auto length = static_cast<int32_t>(name.size());
        const int32_t none = 0;
        int32_t ierr = 4711;
        VAK_OPEN(name.data(), &length, "", &none, "", &none, &group, &none, &option, &ierr);
        return ierr;
    }
    vak_id opened(int32_t option, const std::string& file_name = "room.h5")
    {
        vak_id group = 0;
        EXPECT_EQ(open(path(file_name), option, group), 0);
        return group;
    }
    int32_t close(vak_id group)
    {
        int32_t ierr = 4711;
        VAK_CLOSE(&group, &ierr);
        return ierr;
    }
    static void flush(vak_id group)
    {
        const int32_t whole_file = 0;
        int32_t ierr = 4711;
        VAK_FLUSH(&group, &whole_file, &ierr);
        EXPECT_EQ(ierr, 0);
    }

    EntityResults state(int32_t number) const
    {
        EntityResults s;
        s.family = GetParam();
        s.state = number;
        return s;
    }
    EntityResults ones(int32_t number, int32_t nent = 3) const
    {
        EntityResults s = state(number);
        s.nent = nent;
        s.tables.ids.assign(static_cast<size_t>(nent), 7);
        s.tables.fid.assign(static_cast<size_t>(nent), 8);
        s.tables.weight.assign(static_cast<size_t>(nent), 1);
        s.res.assign(static_cast<size_t>(nent) * 2, 1);
        return s;
    }
    int32_t write(vak_id group, int32_t number, int32_t nent = 3) const
    {
        int32_t ierr = 0;
        captured_unnoted([&] { ierr = ones(number, nent).write(group); });
        return ierr;
    }
    bool reads(vak_id group, int32_t number) const
    {
        const hid_t block =
            quietly([&] { return H5Gopen2(group, state(number).path().c_str(), H5P_DEFAULT); });
        if (block < 0) return false;
        EntityResults found = emptied(state(number));
        const bool good = found.read(block, 2) >= 0;
        H5Gclose(block);
        return good;
    }

    static std::vector<float> values_of(vak_id group, const EntityResults& block)
    {
        EntityResults found = emptied(block);
        EXPECT_GE(found.read(open_object(group, block.path()), 2), 0);
        return found.res;
    }

    // A file with a state that was flushed and one that was not.
    vak_id with_two_states()
    {
        const vak_id group = opened(8);
        EXPECT_EQ(write(group, 0), 0);
        flush(group);
        EXPECT_EQ(write(group, 1), 0);
        return group;
    }
    // Such a file, of which the next flush failed on its way, at any of its writes.
    void after_a_flush_that_fails(
        const std::function<void(vak_id)>& then, const std::function<void(vak_id)>& before = [](vak_id) {})
    {
        const auto fail_at = [&](long write_that_fails) {
            const vak_id group = with_two_states();
            before(group);
            disk().fail(Fault::io_error_once, write_that_fails);
            flush(group);
            if (disk().hit_in_flush) then(group);  // but when room was reserved
        };
        bool failed = false;
        for (long at = 0; at < 10; ++at)
            failed = in_a_process_of_its_own([&] { fail_at(at); }).hit_in_flush || failed;
        EXPECT_TRUE(failed);
    }
    off_t bytes_beyond_its_end() const
    {
        constexpr off_t block = 512;
        struct stat now {};
        EXPECT_EQ(stat(path("room.h5").c_str(), &now), 0);
        return now.st_blocks * block - now.st_size;
    }
};

TEST_P(RoomInAFile, flush_that_finds_none_writes_nothing_and_can_be_repeated)
{
    const vak_id group = with_two_states();
    const Bytes before = bytes_of(path("room.h5"));
    disk().fail(Fault::no_more_blocks, 0);
    flush(group);
    EXPECT_TRUE(bytes_of(path("room.h5")) == before);
    disk().mend();
    flush(group);
    EXPECT_EQ(close(group), 0);
    const vak_id again = opened(10);
    EXPECT_TRUE(reads(again, 0));
    EXPECT_TRUE(reads(again, 1));
    close(again);
}

TEST_P(RoomInAFile, close_that_finds_none_tells_and_leaves_the_last_flush)
{
    in_a_process_of_its_own([&] {
        const vak_id group = with_two_states();
        const Bytes before = bytes_of(path("room.h5"));
        disk().fail(Fault::no_more_blocks, 0);
        EXPECT_EQ(close(group), -1);
        EXPECT_TRUE(bytes_of(path("room.h5")) == before);
    });
    const vak_id again = opened(10);
    EXPECT_TRUE(reads(again, 0));
    close(again);
}

TEST_P(RoomInAFile, after_a_flush_that_failed_on_its_way_nothing_new_is_written_until_another_succeeds)
{
    after_a_flush_that_fails([&](vak_id group) {
        EXPECT_LT(write(group, 2), 0);
        EXPECT_LT(write(group, 3, 20'000), 0);
        EXPECT_TRUE(reads(group, 0));
        flush(group);
        EXPECT_EQ(write(group, 2), 0);
        EXPECT_EQ(close(group), 0);
        const vak_id again = opened(10);
        for (const int32_t number : {0, 1, 2}) EXPECT_TRUE(reads(again, number));
        EXPECT_FALSE(reads(again, 3));
        close(again);
    });
}

// As the lower entries write.
TEST_P(RoomInAFile, nor_is_it_to_a_group_that_was_opened_before)
{
    hid_t block = H5I_INVALID_HID;
    const auto open_block = [&](vak_id group) {
        block = H5Gopen2(group, state(1).path().c_str(), H5P_DEFAULT);
    };
    const auto write_values = [&] {
        int32_t ierr = 0;
        captured_unnoted([&] { ierr = state(1).write_parts(block, H5I_INVALID_HID, {.what = 8}); });
        return ierr;
    };
    const auto write_into_it = [&](vak_id group) {
        EXPECT_EQ(write_values(), -3999);
        flush(group);
        EXPECT_EQ(values_of(group, state(1)), ones(1).res);
        EXPECT_EQ(write_values(), 0);
        H5Gclose(block);
        EXPECT_EQ(close(group), 0);
        const vak_id again = opened(10);
        EXPECT_EQ(values_of(again, state(1)), state(1).res);
        close(again);
    };
    after_a_flush_that_fails(write_into_it, open_block);
}

TEST_P(RoomInAFile, but_other_files_are)
{
    after_a_flush_that_fails([&](vak_id group) {
        const vak_id other = opened(8, "other.h5");
        EXPECT_EQ(write(other, 2), 0);
        EXPECT_EQ(close(other), 0);
        EXPECT_LT(write(group, 2), 0);
        const vak_id again = opened(10, "other.h5");
        EXPECT_TRUE(reads(again, 2));
        EXPECT_EQ(close(again), 0);
        flush(group);
        EXPECT_EQ(close(group), 0);
    });
}

TEST_P(RoomInAFile, what_was_reserved_beyond_its_end_goes_when_it_is_closed)
{
    EXPECT_EQ(close(with_two_states()), 0);
    constexpr off_t page = 4096;
    EXPECT_LT(bytes_beyond_its_end(), 2 * page);
}

// Addresses are not places in such a file, so nothing is reserved by them.
TEST_P(RoomInAFile, file_with_a_user_block_is_written_as_any_file_of_hdf5)
{
    constexpr hsize_t user_block = 1024;
    const hid_t creation = H5Pcreate(H5P_FILE_CREATE);
    H5Pset_userblock(creation, user_block);
    H5Fclose(H5Fcreate(path("room.h5").c_str(), H5F_ACC_TRUNC, creation, H5P_DEFAULT));
    H5Pclose(creation);
    disk().mend();
    const vak_id group = opened(9);
    EXPECT_EQ(write(group, 0), 0);
    EXPECT_EQ(write(group, 1, 20'000), 0);
    EXPECT_LT(bytes_beyond_its_end(), 65536);
    EXPECT_EQ(close(group), 0);
    const vak_id again = opened(10);
    EXPECT_TRUE(reads(again, 0));
    close(again);
}

TEST_P(RoomInAFile, file_on_a_file_system_that_cannot_reserve_is_written_without)
{
    disk().fail(Fault::cannot_reserve, 0);
    const vak_id group = with_two_states();
    flush(group);
    EXPECT_EQ(write(group, 2, 20'000), 0);
    EXPECT_LT(bytes_beyond_its_end(), 65536);
    EXPECT_EQ(close(group), 0);
    const vak_id again = opened(10);
    for (const EntityResults& block : {ones(0), ones(1), ones(2, 20'000)})
        EXPECT_EQ(values_of(again, block), block.res);
    close(again);
}

TEST_P(RoomInAFile, file_that_there_is_no_memory_to_watch_is_written_without)
{
    const std::string name = path("room.h5");
    int unwatched = 0;
    long allocation = 0;
    for (bool ran_out = true; ran_out; ++allocation) {
        vak_id group = 0;
        int32_t ierr = 0;
        const auto open_it = [&] { ierr = open(name, 8, group); };
        const Output output = captured([&] { ran_out = runs_out_at(allocation, open_it); });
        EXPECT_EQ(output.err, ierr == 0 ? "" : "VAK ERROR - out of memory\n") << allocation;
        if (ierr != 0) continue;
        EXPECT_EQ(write(group, 0), 0);
        EXPECT_EQ(write(group, 1, 20'000), 0);
        if (ran_out && bytes_beyond_its_end() < 65536) ++unwatched;
        EXPECT_EQ(close(group), 0);
        const vak_id again = opened(10);
        for (const EntityResults& block : {ones(0), ones(1, 20'000)})
            EXPECT_EQ(values_of(again, block), block.res);
        close(again);
    }
    EXPECT_GT(unwatched, 0);
    EXPECT_GT(allocation, 2);
}

// The first state needs no more than was reserved before the disk became full.
TEST_P(RoomInAFile, blocks_that_were_written_before_the_disk_was_full_are_in_the_file)
{
    in_a_process_of_its_own([&] {
        disk().fail(Fault::no_more_blocks, std::numeric_limits<long>::max());
        const vak_id group = with_two_states();
        disk().at = disk().writes;
        EXPECT_LT(write(group, 2, 200'000), 0);
        EXPECT_EQ(close(group), 0);
    });
    const vak_id again = opened(10);
    EXPECT_TRUE(reads(again, 0));
    EXPECT_TRUE(reads(again, 1));
    close(again);
}

INSTANTIATE_TEST_SUITE_P(Families, RoomInAFile, both_families, family_name);

}  // namespace

}  // namespace vak::test
