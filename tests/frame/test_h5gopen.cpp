// VAK_H5GOPEN and VAK_H5GCLOSE: the three ways of opening a group, every status and every line.
#include <sys/stat.h>

#include "frame/exported.h"
#include "frame/frame_test.h"
#include "frame/paths.h"

namespace vak::test {

class GroupByPath : public FrameTest {
protected:
    struct Result {
        vak_id group = 4711;
        int32_t ierr = 4711;
        Output output;
    };

    // A group that was opened is closed at once; its path remains.
    Result gopen(vak_id location, const std::string& name, int32_t name_len, int32_t ioflag)
    {
        Result r;
        r.output = captured(
            [&] { GetParam().h5gopen(&location, name.data(), &name_len, &ioflag, &r.group, &r.ierr); });
        if (r.ierr < 0) {
            EXPECT_EQ(r.group, -1);
        } else {
            path_opened = path_of(r.group);
            close_group(r.group);
        }
        return r;
    }
    Result gopen(const std::string& name, int32_t ioflag) { return gopen(file, name, -1, ioflag); }

    void close_group(vak_id group)
    {
        int32_t ierr = 4711;
        EXPECT_EQ(call([&] { GetParam().h5gclose(&group, &ierr); }, -1), nothing_printed);
        EXPECT_EQ(ierr, 0);
    }

    void expect(const Result& r, int32_t ierr, const std::string& line = "") const
    {
        EXPECT_EQ(r.ierr, ierr);
        EXPECT_EQ(r.output, (Output{"", line}));
    }

    ObjectId make_group(const std::string& name)
    {
        return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }
    void make_dataset(const std::string& name)
    {
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const ObjectId made(
            H5Dcreate2(file, name.c_str(), H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
            name);
    }
    void make_dangling_link(const std::string& name)
    {
        H5Lcreate_soft("/nowhere", file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
    }

    std::string path_opened;
};
IN_BOTH_FAMILIES(GroupByPath);

TEST_P(GroupByPath, ioflag_0_creates_what_is_missing_and_counts_it)
{
    make_group("a");
    expect(gopen("a/b/c", 0), 2);
    EXPECT_EQ(path_opened, "/a/b/c");
    expect(gopen("a/b/c", 0), 0);
    EXPECT_EQ(path_opened, "/a/b/c");
}

TEST_P(GroupByPath, ioflag_0_takes_slashes_at_any_place)
{
    expect(gopen("/a", 0), 1);
    expect(gopen("a/b/", 0), 1);
    expect(gopen("//a//b///c", 0), 1);
    EXPECT_EQ(path_opened, "/a/b/c");
    expect(gopen("/", 0), 0);
    EXPECT_EQ(path_opened, "/");
}

TEST_P(GroupByPath, group_of_one_level_and_of_many_levels_is_created)
{
    expect(gopen("x", 0), 1);
    std::string deep = "level";
    for (int i = 1; i < 200; ++i) deep += "/level";
    expect(gopen(deep, 0), 200);
    expect(gopen(deep, 1), 0);
    expect(gopen(deep, 2), 0);
}

TEST_P(GroupByPath, path_starts_at_the_location)
{
    const ObjectId a = make_group("a");
    expect(gopen(a, "b", -1, 0), 1);
    EXPECT_EQ(path_opened, "/a/b");
    expect(gopen(a, "/b", -1, 1), -1);
}

TEST_P(GroupByPath, ioflags_1_and_2_open_what_is_there)
{
    make_group("a");
    make_group("a/b");
    for (const int32_t ioflag : {1, 2}) {
        expect(gopen("a/b", ioflag), 0);
        EXPECT_EQ(path_opened, "/a/b");
        expect(gopen("/", ioflag), 0);
    }
}

TEST_P(GroupByPath, missing_path_is_minus_1_without_a_line)
{
    make_group("a");
    make_dataset("values");
    make_dangling_link("dangling");
    for (const int32_t ioflag : {1, 2})
        for (const char* name : {"b", "a/b", "a/b/c", "b/c", "values/b", "dangling/b"})
            expect(gopen(name, ioflag), -1);
    EXPECT_EQ(layout(file, "a"), "\n");
}

TEST_P(GroupByPath, what_is_there_but_no_group_is_minus_20_with_two_wordings)
{
    make_dataset("values");
    make_dangling_link("dangling");
    for (const std::string name : {"values", "dangling"}) {
        expect(gopen(name, 1), -20, "VAK ERROR - vak_h5gopen - code -20, group \"" + name + "\"\n");
        expect(gopen(name, 2), -20, "VAK ERROR - vak_h5gopen - code -20, group " + name + "\n");
    }
}

TEST_P(GroupByPath, ioflag_0_on_what_is_no_group_is_minus_10)
{
    make_dataset("values");
    make_dangling_link("dangling");
    for (const std::string name : {"values", "dangling"})
        expect(gopen(name, 0), -10, "VAK ERROR - vak_h5gopen - code -10, group " + name + "\n");
}

TEST_P(GroupByPath, group_that_cannot_be_created_is_minus_8_with_the_whole_path)
{
    make_dataset("values");
    make_dangling_link("dangling");
    for (const std::string name : {"values/b/c", "dangling/b/c"})
        expect(gopen(name, 0), -8, "VAK ERROR - vak_h5gopen - code -8, group " + name + "\n");
}

TEST_P(GroupByPath, failed_creation_keeps_the_groups_made_before)
{
    make_group("a");
    make_dataset("a/values");
    expect(gopen("n/m", 0), 2);
    expect(gopen("a/values/c", 0), -8, "VAK ERROR - vak_h5gopen - code -8, group a/values/c\n");
    expect(gopen("n/m", 1), 0);
}

TEST_P(GroupByPath, file_opened_to_read_takes_no_new_group)
{
    const FileId read_only = read_file(made_file("run.h5"));
    expect(gopen(read_only, "post/new", -1, 0), -8, "VAK ERROR - vak_h5gopen - code -8, group post/new\n");
    expect(gopen(read_only, "post/inside", -1, 0), 0);
}

TEST_P(GroupByPath, no_ioflag_waits_at_a_fifo_that_a_link_leads_to)
{
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    const std::string name = made_file("run.h5");
    ASSERT_GE(H5Lcreate_external("fifo", "/", FileId(edit_file(name)), "link", H5P_DEFAULT, H5P_DEFAULT), 0);
    const FileId to_read = read_file(name);
    expect(gopen(to_read, "link", -1, 0), -10, "VAK ERROR - vak_h5gopen - code -10, group link\n");
    expect(gopen(to_read, "link/a/b", -1, 0), -8, "VAK ERROR - vak_h5gopen - code -8, group link/a/b\n");
    expect(gopen(to_read, "link", -1, 1), -20, "VAK ERROR - vak_h5gopen - code -20, group \"link\"\n");
    expect(gopen(to_read, "link", -1, 2), -20, "VAK ERROR - vak_h5gopen - code -20, group link\n");
    for (const int32_t ioflag : {1, 2}) expect(gopen(to_read, "link/a", -1, ioflag), -1);
}

TEST_P(GroupByPath, groups_are_made_behind_a_link_to_another_file)
{
    const std::string name = made_file("run.h5");
    ASSERT_GE(H5Lcreate_external(name.c_str(), "/post", file, "link", H5P_DEFAULT, H5P_DEFAULT), 0);
    expect(gopen("link/new/below", 0), 2);
    EXPECT_TRUE(exists(read_file(name), "post/new/below"));
}

TEST_P(GroupByPath, negative_location_is_minus_10_or_minus_1)
{
    expect(gopen(-1, "a/b", -1, 0), -10, "VAK ERROR - vak_h5gopen - code -10, group a/b\n");
    expect(gopen(-7, "a/b", -1, 1), -1);
    expect(gopen(-1, "a/b", -1, 2), -1);
}

TEST_P(GroupByPath, location_that_is_no_identifier_is_reported)
{
    expect(gopen(0, "a/b", -1, 0), -8, "VAK ERROR - vak_h5gopen - code -8, group a/b\n");
    expect(gopen(0, "a/b", -1, 1), -1);
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    expect(gopen(space, "a/b", -1, 2), -1);
}

TEST_P(GroupByPath, other_ioflags_are_refused)
{
    for (const int32_t ioflag : {3, -1, 2147483647})
        expect(gopen("a", ioflag), -30,
               "VAK ERROR - vak_h5gopen - invalid ioflag " + std::to_string(ioflag) + "\n");
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_P(GroupByPath, empty_name_is_minus_50)
{
    for (const int32_t ioflag : {0, 1, 2, 9})
        expect(gopen("", ioflag), -50,
               "VAK ERROR - vak_h5gopen - invalid name, string must \\0 terminated\n");
}

TEST_P(GroupByPath, length_0_and_below_minus_1_are_minus_40)
{
    for (const int32_t ioflag : {0, 1, 2, 9})
        for (const int32_t length : {0, -2, -2147483647 - 1})
            expect(gopen(file, "a", length, ioflag), -40,
                   "VAK ERROR - vak_h5gopen - invalid len=" + std::to_string(length) +
                       " must >0 or -1 for \\0 terminated strings\n");
}

TEST_P(GroupByPath, name_with_a_length_needs_no_terminator_and_loses_blanks_at_its_end)
{
    expect(gopen(file, "abcdef", 3, 0), 1);
    EXPECT_EQ(path_opened, "/abc");
    expect(gopen(file, "abc     ", 8, 1), 0);
    expect(gopen(file, std::string("abc\0def", 7), 7, 2), 0);
    EXPECT_EQ(path_opened, "/abc");
}

TEST_P(GroupByPath, name_with_a_length_that_counts_to_nothing_is_not_there)
{
    expect(gopen(file, "   ", 3, 0), -10, "VAK ERROR - vak_h5gopen - code -10, group \n");
    expect(gopen(file, "   ", 3, 1), -1);
    expect(gopen(file, "   ", 3, 2), -1);
}

TEST_P(GroupByPath, names_beyond_256_characters_are_taken_whole)
{
    const std::string name(1000, 'n');
    expect(gopen(name, 0), 1);
    EXPECT_EQ(path_opened, "/" + name);
}

TEST_P(GroupByPath, location_and_result_may_be_the_same_variable)
{
    vak_id id = file;
    const int32_t length = -1, ioflag = 0;
    int32_t ierr = 4711;
    call([&] { GetParam().h5gopen(&id, "a", &length, &ioflag, &id, &ierr); }, 1);
    EXPECT_EQ(ierr, 1);
    EXPECT_EQ(path_of(id), "/a");
    call([&] { GetParam().h5gclose(&id, &ierr); }, -1);
    EXPECT_EQ(ierr, 0);
}

TEST_P(GroupByPath, closing_what_is_no_group_is_minus_1_without_a_line)
{
    int32_t ierr = 4711;
    for (const vak_id id : {vak_id{-1}, vak_id{0}, vak_id{file}}) {
        EXPECT_EQ(call([&] { GetParam().h5gclose(&id, &ierr); }), nothing_printed);
        EXPECT_EQ(ierr, -1);
    }
}

// The library's own way of making a block's group.
TEST_P(GroupByPath, inner_opener_makes_all_levels_and_counts_one)
{
    const QuietHdf5 quiet;
    for (const int32_t status : {1, 0}) {
        const OpenedGroup made = open_or_create_group(file, "a/b/c");
        EXPECT_EQ(made.status, status);
        EXPECT_EQ(path_of(made.group.get()), "/a/b/c");
    }
    EXPECT_EQ(open_or_create_group(file, "a/b/d").status, 1);
}

TEST_P(GroupByPath, inner_opener_reports_as_the_exported_one_does)
{
    make_group("a");
    make_dataset("a/values");
    make_dangling_link("dangling");
    const auto refused = [&](hid_t location, const std::string& path, int32_t code) {
        OpenedGroup made;
        const Output output = call([&] {
            const QuietHdf5 quiet;
            made = open_or_create_group(location, path);
        });
        EXPECT_EQ(made.status, code);
        EXPECT_FALSE(made.group.valid());
        EXPECT_EQ(output, (Output{"", "VAK ERROR - vak_h5gopen - code " + std::to_string(code) + ", group " +
                                          path + "\n"}));
    };
    refused(file, "a/values", -10);
    refused(file, "dangling", -10);
    refused(file, "a/values/b", -8);
    refused(file, "dangling/b", -8);
    refused(-1, "a", -10);
}

}  // namespace vak::test
