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

    vak_id opened(int32_t option)
    {
        const std::string name = path("room.h5");
        const auto length = static_cast<int32_t>(name.size());
        const int32_t none = 0;
        vak_id group = 0;
        int32_t ierr = 4711;
        VAK_OPEN(name.data(), &length, "", &none, "", &none, &group, &none, &option, &ierr);
        EXPECT_EQ(ierr, 0);
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
    int32_t write(vak_id group, int32_t number, int32_t nent = 3) const
    {
        EntityResults s = state(number);
        s.nent = nent;
        s.tables.ids.assign(static_cast<size_t>(nent), 7);
        s.tables.fid.assign(static_cast<size_t>(nent), 8);
        s.tables.weight.assign(static_cast<size_t>(nent), 1);
        s.res.assign(static_cast<size_t>(nent) * 2, 1);
        int32_t ierr = 0;
        captured_unnoted([&] { ierr = s.write(group); });
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

    // A file with a state that was flushed and one that was not.
    vak_id with_two_states()
    {
        const vak_id group = opened(8);
        EXPECT_EQ(write(group, 0), 0);
        flush(group);
        EXPECT_EQ(write(group, 1), 0);
        return group;
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
    const auto fail_at = [&](long write_that_fails) {
        const vak_id group = with_two_states();
        disk().fail(Fault::io_error_once, write_that_fails);
        flush(group);
        if (!disk().hit_in_flush) return;  // but when room was reserved
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
    };
    bool failed = false;
    for (long at = 0; at < 10; ++at)
        failed = in_a_process_of_its_own([&] { fail_at(at); }).hit_in_flush || failed;
    EXPECT_TRUE(failed);
}

TEST_P(RoomInAFile, what_was_reserved_beyond_its_end_goes_when_it_is_closed)
{
    EXPECT_EQ(close(with_two_states()), 0);
    struct stat now {};
    ASSERT_EQ(stat(path("room.h5").c_str(), &now), 0);
    constexpr intmax_t block = 512, page = 4096;
    EXPECT_LE(now.st_blocks * block, (now.st_size + page - 1) / page * page + page);
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
    struct stat now {};
    ASSERT_EQ(stat(path("room.h5").c_str(), &now), 0);
    EXPECT_LT(now.st_blocks * 512, now.st_size + 65536);
    EXPECT_EQ(close(group), 0);
    const vak_id again = opened(10);
    EXPECT_TRUE(reads(again, 0));
    close(again);
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
