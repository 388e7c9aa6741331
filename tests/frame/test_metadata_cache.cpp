// Changes of metadata stay in memory until a flush writes them as a whole, and never become too many.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "frame/file_size_limit.h"
#include "frame/frame_test.h"
#include "frame/paths.h"

namespace vak::test {

namespace {

constexpr size_t mebibyte = 1024 * 1024;

H5AC_cache_config_t configuration(hid_t object)
{
    const FileId of_object(H5Iget_file_id(object), "file");
    H5AC_cache_config_t cache{};
    cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
    EXPECT_GE(H5Fget_mdc_config(of_object, &cache), 0);
    return cache;
}

size_t cached(hid_t object)
{
    const FileId of_object(H5Iget_file_id(object), "file");
    size_t size = 0;
    H5Fget_mdc_size(of_object, nullptr, nullptr, &size, nullptr);
    return size;
}

}  // namespace

class MetadataCache : public FrameTest {
protected:
    int32_t make_group(vak_id location, const std::string& name) const
    {
        const int32_t terminated = -1, create = 0;
        vak_id group = -1;
        int32_t ierr = 0, closed = 0;
        GetParam().h5gopen(&location, name.c_str(), &terminated, &create, &group, &ierr);
        if (group >= 0) GetParam().h5gclose(&group, &closed);
        return ierr;
    }
    void flush(vak_id id) const
    {
        const int32_t whole_file = 0;
        int32_t ierr = 0;
        GetParam().flush(&id, &whole_file, &ierr);
    }

    // 0, or which expectation failed.
    int run_out_of_space(const std::string& name);
};
IN_BOTH_FAMILIES(MetadataCache);

TEST_P(MetadataCache, file_that_is_created_holds_changes_back_from_the_start)
{
    for (const int32_t mode : {0, 8, 13}) {
        const vak_id root = opened(path("run" + std::to_string(mode)), mode);
        EXPECT_FALSE(configuration(root).evictions_enabled);
        close(root);
    }
}

TEST_P(MetadataCache, file_opened_for_update_holds_changes_back_from_the_first_on)
{
    for (const int32_t mode : {1, 9, 13}) {
        const vak_id root = opened(made_file("run.h5"), mode);
        EXPECT_TRUE(configuration(root).evictions_enabled);
        EXPECT_EQ(configuration(root).max_size, 2 * mebibyte);
        EXPECT_EQ(make_group(root, "a"), 1);
        EXPECT_FALSE(configuration(root).evictions_enabled);
        close(root);
    }
}

TEST_P(MetadataCache, file_opened_to_read_has_a_small_cache_and_holds_nothing_back)
{
    const vak_id root = opened(made_file("run.h5"), 2);
    EXPECT_EQ(configuration(root).max_size, mebibyte / 2);
    EXPECT_EQ(make_group(root, "inside"), 0);
    EXPECT_TRUE(configuration(root).evictions_enabled);
    close(root);
}

TEST_P(MetadataCache, file_that_the_caller_opened_stays_as_it_is)
{
    const H5AC_cache_config_t before = configuration(file);
    for (int i = 0; i < 2000; ++i) EXPECT_EQ(make_group(file, "a" + std::to_string(i)), 1);
    flush(file);
    EXPECT_TRUE(configuration(file).evictions_enabled);
    EXPECT_EQ(configuration(file).incr_mode, before.incr_mode);
    EXPECT_EQ(configuration(file).decr_mode, before.decr_mode);
}

TEST_P(MetadataCache, many_groups_do_not_gather_in_memory)
{
    const vak_id root = opened(path("run.h5"), 8);
    size_t largest = 0;
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(make_group(root, "a" + std::to_string(i)), 1);
        largest = std::max(largest, cached(root));
    }
    EXPECT_LT(largest, mebibyte);
    close(root);
    EXPECT_TRUE(exists(read_file(path("run.h5")), "a0"));
    EXPECT_TRUE(exists(read_file(path("run.h5")), "a4999"));
}

TEST_P(MetadataCache, inner_opener_flushes_alike)
{
    const vak_id root = opened(path("run.h5"), 8);
    size_t largest = 0;
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(open_or_create_group(root, "a/b" + std::to_string(i)).status, 1);
        largest = std::max(largest, cached(root));
    }
    EXPECT_LT(largest, mebibyte);
    close(root);
}

TEST_P(MetadataCache, flush_leaves_little_behind)
{
    const vak_id root = opened(path("run.h5"), 8);
    for (int i = 0; i < 5000; ++i) H5Gclose(H5Gcreate2(root, ("a" + std::to_string(i)).c_str(), 0, 0, 0));
    EXPECT_GT(cached(root), 2 * mebibyte) << "groups that HDF5 makes are not counted";
    flush(root);
    EXPECT_LT(cached(root), mebibyte / 2);
    EXPECT_FALSE(configuration(root).evictions_enabled);
    close(root);
}

TEST_P(MetadataCache, group_with_very_many_members_does_not_bring_a_flush_with_each)
{
    const vak_id root = opened(path("run.h5"), 8);
    const std::string long_name(1000, 'n');
    for (int i = 0; i < 800; ++i) {
        ASSERT_EQ(make_group(root, long_name + std::to_string(i)), 1);
    }
    flush(root);
    EXPECT_GE(configuration(root).max_size, 2 * cached(root)) << "one table of names alone fills the cache";
    close(root);
}

int MetadataCache::run_out_of_space(const std::string& name)
{
    const vak_id root = opened(name, 8);
    const FileSizeLimit limit(50000);
    int32_t ierr = 0;
    for (int i = 0; i < 5000 && ierr >= 0; ++i) ierr = make_group(root, "a");
    for (int i = 0; i < 5000 && ierr >= 0; ++i) ierr = make_group(root, "a" + std::to_string(i));
    if (ierr != -8) return 1;
    GetParam().close(&root, &ierr);
    return ierr == -1 ? 0 : 2;
}

// In a process of its own, which ends without HDF5's clean-up: that loses memory after a failed write.
TEST_P(MetadataCache, flush_that_fails_is_a_group_that_cannot_be_created)
{
    const Output output = captured([&] {
        const pid_t child = fork();
        if (child == 0) _exit(run_out_of_space(path("run.h5")));
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    });
    EXPECT_EQ(output.out, "");
    EXPECT_THAT(output.err, testing::MatchesRegex("VAK ERROR - vak_h5gopen - code -8, group a[0-9]*\n"));
}

}  // namespace vak::test
