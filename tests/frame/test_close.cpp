// VAK_CLOSE: everything that is open in the file is closed, the file last.
#include <sys/wait.h>
#include <unistd.h>

#include "frame/file_size_limit.h"
#include "frame/frame_test.h"

namespace vak::test {

class Closing : public FrameTest {
protected:
    int32_t close_status(vak_id id, int64_t closed = 0)
    {
        int32_t ierr = 4711;
        EXPECT_EQ(call([&] { GetParam().close(&id, &ierr); }, -closed), nothing_printed);
        return ierr;
    }

    // 0, or which expectation failed.
    int close_without_space(vak_id root);
};
IN_BOTH_FAMILIES(Closing);

namespace {

hid_t group(hid_t location, const char* name)
{
    return H5Gcreate2(location, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
}

hid_t dataset(hid_t location, const char* name)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    return H5Dcreate2(location, name, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
}

hid_t attribute(hid_t location, const char* name)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    return H5Acreate2(location, name, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT);
}

hid_t stored_type(hid_t location, const char* name)
{
    const hid_t type = H5Tcopy(H5T_STD_I32LE);
    H5Tcommit2(location, name, type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    return type;
}

}  // namespace

int Closing::close_without_space(vak_id root)
{
    const hid_t a = group(root, "a");
    for (int i = 0; i < 100; ++i) H5Gclose(group(a, ("group" + std::to_string(i)).c_str()));
    const size_t descriptors = open_descriptors();
    const FileSizeLimit limit(2000);
    int32_t ierr = 4711;
    GetParam().close(&root, &ierr);
    if (ierr != -1) return 1;
    if (H5Iis_valid(root) > 0 || H5Iis_valid(a) > 0) return 2;
    if (H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_FILE) != 1) return 3;  // the fixture's
    return open_descriptors() == descriptors - 1 ? 0 : 4;
}

TEST_P(Closing, every_kind_of_open_object_is_closed_with_the_file)
{
    const vak_id root = opened(path("run.h5"), 8);
    const hid_t a = group(root, "a");
    const hid_t ids[] = {a, group(a, "b"), dataset(a, "values"), attribute(a, "attribute"),
                         stored_type(a, "type")};
    const int64_t counted_twice = 1;  // the stored type, as an object and as a type
    EXPECT_EQ(close_status(root, 6 + counted_twice), 0);
    for (const hid_t id : ids) EXPECT_EQ(H5Iis_valid(id), 0);
    EXPECT_TRUE(exists(read_file(path("run.h5")), "a/values"));
}

TEST_P(Closing, object_is_closed_as_often_as_it_is_referred_to)
{
    const vak_id root = opened(path("run.h5"), 8);
    const hid_t ids[] = {root, group(root, "a"), dataset(root, "values"), attribute(root, "attribute")};
    for (const hid_t id : ids)
        for (int i = 0; i < 3; ++i) H5Iinc_ref(id);
    EXPECT_EQ(close_status(root, 4), 0);
    for (const hid_t id : ids) EXPECT_EQ(H5Iis_valid(id), 0);
}

TEST_P(Closing, file_opened_several_times_is_closed_once_and_for_all)
{
    const std::string name = made_file("run.h5");
    const vak_id first = opened(name, 1);
    const vak_id second = opened(name, 10);
    const hid_t third = H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    H5Iinc_ref(third);
    EXPECT_EQ(close_status(second, 3), 0);
    for (const hid_t id : {first, second, third}) EXPECT_EQ(H5Iis_valid(id), 0);
    close(opened(name, 8));
}

TEST_P(Closing, other_files_stay_as_they_are)
{
    const vak_id one = opened(path("one.h5"), 8), other = opened(path("other.h5"), 8);
    const ObjectId in_other(group(other, "a"), "a");
    EXPECT_EQ(close_status(one, 1), 0);
    EXPECT_GT(H5Iis_valid(in_other), 0);
    EXPECT_GT(H5Iis_valid(file), 0);
    H5Gclose(other);
}

TEST_P(Closing, any_object_of_the_file_stands_for_it)
{
    for (int kind = 0; kind < 4; ++kind) {
        const vak_id root = opened(path("run.h5"), 8);
        vak_id id = root;
        if (kind == 1) id = dataset(root, "values");
        if (kind == 2) id = attribute(root, "attribute");
        if (kind == 3) id = H5Iget_file_id(root);
        EXPECT_EQ(close_status(id, kind == 0 ? 1 : 2), 0);
        EXPECT_EQ(H5Iis_valid(root), 0);
    }
}

TEST_P(Closing, file_opened_to_read_is_closed)
{
    EXPECT_EQ(close_status(opened(made_file("run.h5"), 2), 1), 0);
}

TEST_P(Closing, identifier_of_no_file_is_minus_1_and_prints_nothing)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    const vak_id closed = opened(made_file("run.h5"), 2);
    H5Gclose(closed);
    for (const vak_id id : {vak_id{-1}, vak_id{0}, vak_id{4711}, vak_id{space}, closed})
        EXPECT_EQ(close_status(id), -1);
}

TEST_P(Closing, all_that_was_written_is_in_the_file)
{
    const vak_id root = opened(path("run.h5"), 0);
    for (int i = 0; i < 500; ++i) H5Gclose(group(root, ("group" + std::to_string(i)).c_str()));
    EXPECT_EQ(close_status(root, 1), 0);
    const FileId again = read_file(path("run.h5"));
    for (int i = 0; i < 500; ++i) EXPECT_TRUE(exists(again, "post/group" + std::to_string(i)));
}

// In a process of its own, which ends without HDF5's clean-up: that loses memory after a failed write.
TEST_P(Closing, flush_that_fails_is_minus_1_and_nothing_stays_open)
{
    const vak_id root = opened(path("run.h5"), 8);
    const Output output = captured([&] {
        const pid_t child = fork();
        if (child == 0) _exit(close_without_space(root));
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0);
    });
    EXPECT_EQ(output, nothing_printed);
    H5Gclose(root);
}

}  // namespace vak::test
