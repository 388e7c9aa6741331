// What each mode of VAK_OPEN opens or creates, and which group it hands back.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "frame/frame_test.h"

namespace vak::test {

class OpenModes : public FrameTest {};
IN_BOTH_FAMILIES(OpenModes);

namespace {

unsigned intent(vak_id group)
{
    const FileId of_group(H5Iget_file_id(group), "file of the group");
    unsigned flags = 0;
    H5Fget_intent(of_group, &flags);
    return flags;
}

// The one object behind two paths.
bool same_object(const std::string& file, const std::string& one, const std::string& other)
{
    const FileId opened = read_file(file);
    const ObjectId a = open_object(opened, one), b = open_object(opened, other);
    H5O_info2_t of_a, of_b;
    H5Oget_info3(a, &of_a, H5O_INFO_BASIC);
    H5Oget_info3(b, &of_b, H5O_INFO_BASIC);
    int order = 1;
    H5Otoken_cmp(opened, &of_a.token, &of_b.token, &order);
    return order == 0;
}

void write_text(const std::string& name, const std::string& text) { std::ofstream(name) << text; }

std::string bytes(const std::string& name)
{
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

TEST_P(OpenModes, mode_0_makes_the_group_and_the_link_post_to_it)
{
    const std::string name = path("run.h5");
    const vak_id group = opened(name, 0);
    EXPECT_EQ(path_of(group), "/post");
    EXPECT_EQ(intent(group), H5F_ACC_RDWR);
    close(group);
    EXPECT_EQ(layout(name, "/"), R"(
G model links=2
G post links=2
)");
    EXPECT_TRUE(same_object(name, "model", "post"));
}

TEST_P(OpenModes, mode_0_with_a_domain_lets_post_point_at_the_domain_group)
{
    const std::string name = path("run.h5");
    close(opened(name, 0, {.group = "model", .domain = "part7", .with_domain = true}));
    EXPECT_TRUE(same_object(name, "model/part7", "post"));
    EXPECT_FALSE(same_object(name, "model", "post"));
}

TEST_P(OpenModes, mode_0_leaves_the_domain_name_aside_without_its_flag)
{
    const std::string name = path("run.h5");
    close(opened(name, 0, {.group = "model", .domain = "part7"}));
    EXPECT_EQ(layout(name, "model"), "\n");
}

TEST_P(OpenModes, modes_0_and_8_replace_an_existing_file)
{
    for (const int32_t mode : {0, 8}) {
        const std::string name = made_file("old.h5");
        close(opened(name, mode, {.group = "new"}));
        EXPECT_FALSE(exists(read_file(name), "/post/inside")) << mode;
    }
}

TEST_P(OpenModes, mode_8_makes_an_empty_file_and_hands_back_its_root)
{
    const vak_id group = opened(path("run.h5"), 8);
    EXPECT_EQ(path_of(group), "/");
    EXPECT_EQ(intent(group), H5F_ACC_RDWR);
    close(group);
    EXPECT_EQ(layout(path("run.h5"), "/"), "\n");
}

TEST_P(OpenModes, modes_1_and_2_hand_back_post)
{
    const std::string name = made_file("run.h5");
    for (const int32_t mode : {1, 2}) {
        const vak_id group = opened(name, mode);
        EXPECT_EQ(path_of(group), "/post");
        EXPECT_EQ(intent(group), mode == 1 ? H5F_ACC_RDWR : H5F_ACC_RDONLY);
        close(group);
    }
}

TEST_P(OpenModes, modes_9_10_and_13_hand_back_the_root)
{
    const std::string name = made_file("run.h5");
    for (const int32_t mode : {9, 10, 13}) {
        const vak_id group = opened(name, mode);
        EXPECT_EQ(path_of(group), "/");
        EXPECT_EQ(intent(group), mode == 10 ? H5F_ACC_RDONLY : H5F_ACC_RDWR);
        close(group);
    }
}

TEST_P(OpenModes, mode_13_creates_a_file_that_is_absent)
{
    const vak_id group = opened(path("run.h5"), 13);
    EXPECT_EQ(path_of(group), "/");
    EXPECT_EQ(intent(group), H5F_ACC_RDWR);
    close(group);
    EXPECT_EQ(layout(path("run.h5"), "/"), "\n");
}

TEST_P(OpenModes, mode_13_keeps_what_an_existing_file_holds)
{
    const std::string name = made_file("run.h5");
    close(opened(name, 13));
    EXPECT_TRUE(exists(read_file(name), "/post/inside"));
}

TEST_P(OpenModes, opening_changes_no_byte_of_the_file)
{
    const std::string name = made_file("run.h5");
    const std::string before = bytes(name);
    for (const int32_t mode : {1, 2, 9, 10, 13}) {
        close(opened(name, mode));
        EXPECT_TRUE(bytes(name) == before) << mode;
    }
}

TEST_P(OpenModes, group_path_behind_the_file_name_takes_the_place_of_the_usual_group)
{
    const std::string name = made_file("run.h5") + "/post/inside";
    for (const int32_t mode : {1, 2, 9, 10, 13}) {
        const vak_id group = opened(name, mode);
        EXPECT_EQ(path_of(group), "/post/inside") << mode;
        close(group);
    }
}

TEST_P(OpenModes, slash_behind_the_file_name_names_the_root)
{
    const vak_id group = opened(made_file("run.h5") + "/", 1);
    EXPECT_EQ(path_of(group), "/");
    close(group);
}

TEST_P(OpenModes, folder_named_like_a_file_does_not_stop_the_search)
{
    std::filesystem::create_directory(path("folder.h5"));
    made_file("folder.h5/run.h5");
    const vak_id group = opened(path("folder.h5/run.h5/post"), 2);
    EXPECT_EQ(path_of(group), "/post");
    close(group);
}

TEST_P(OpenModes, path_that_continues_behind_a_foreign_file_is_not_opened)
{
    write_text(path("notes.txt"), "not HDF5");
    EXPECT_EQ(open_in_vain(path("notes.txt/post"), 1).ierr, -1);
    EXPECT_EQ(bytes(path("notes.txt")), "not HDF5");
}

TEST_P(OpenModes, option_with_an_unknown_mode_opens_nothing_and_leaves_the_group_untouched)
{
    const std::string name = made_file("run.h5");
    for (const int32_t option : {3, 4, 5, 6, 7, 11, 12, 14, 15, 1024 + 3, -1}) {
        const Opened o = open_in_vain(name, option);
        EXPECT_EQ(o.ierr, -9999);
        EXPECT_EQ(o.group, 4711);
        EXPECT_EQ(o.output,
                  (Output{"", "\nVAK ERROR - vak_open - unknown option " + std::to_string(option) + "\n"}));
    }
}

TEST_P(OpenModes, bits_without_a_meaning_are_passed_over)
{
    close(opened(made_file("run.h5"), 16 + 2 + (1 << 20)));
}

TEST_P(OpenModes, names_end_at_a_zero_byte_and_lose_blanks_at_their_end)
{
    using namespace std::string_literals;
    close(opened(path("run.h5") + "   ", 0,
                 {.group = "model\0rest"s, .domain = "part  \0x"s, .with_domain = true}));
    EXPECT_TRUE(exists(read_file(path("run.h5")), "/model/part"));
}

TEST_P(OpenModes, names_may_end_in_any_other_character)
{
    const std::string name = path("r\xC3\xA9sultat\xC3\xA9");
    close(opened(name, 0,
                 {.group = "pi\xC3\xA8"
                           "ce \xC3\xA9"}));
    EXPECT_TRUE(exists(read_file(name),
                       "/pi\xC3\xA8"
                       "ce \xC3\xA9"));
}

TEST_P(OpenModes, names_longer_than_256_characters_are_taken_whole)
{
    const std::string group(1000, 'g');
    close(opened(path("run.h5"), 0, {.group = group}));
    EXPECT_TRUE(exists(read_file(path("run.h5")), group));
}

TEST_P(OpenModes, names_for_another_mode_are_not_read)
{
    const std::string name = made_file("run.h5");
    const auto name_len = static_cast<int32_t>(name.size());
    const int32_t long_len = 100, with_domain = 1, option = 2;
    vak_id group = 0;
    int32_t ierr = 1;
    call(
        [&] {
            GetParam().open(name.data(), &name_len, nullptr, &long_len, nullptr, &long_len, &group,
                            &with_domain, &option, &ierr);
        },
        1);
    EXPECT_EQ(ierr, 0);
    close(group);
}

TEST_P(OpenModes, file_lives_as_long_as_an_object_of_it_is_open)
{
    const size_t descriptors = open_descriptors();
    const vak_id group = opened(made_file("run.h5"), 1);
    EXPECT_EQ(open_descriptors(), descriptors + 1);
    EXPECT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_FILE), 1) << "only the fixture's";
    H5Gclose(group);
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_P(OpenModes, one_file_is_opened_any_number_of_times)
{
    const std::string name = made_file("run.h5");
    const vak_id first = opened(name, 1);
    const vak_id second = opened(name, 1);
    const vak_id third = opened(name, 10);
    EXPECT_NE(first, second);
    EXPECT_EQ(path_of(third), "/");
    close(first);
}

TEST_P(OpenModes, file_open_in_this_process_is_not_replaced)
{
    const std::string name = made_file("run.h5");
    for (const int32_t held : {1, 2}) {
        const vak_id group = opened(name, held);
        const std::string before = bytes(name);
        for (const int32_t mode : {0, 8}) {
            EXPECT_EQ(open_in_vain(name, mode).output.err,
                      "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n");
        }
        EXPECT_TRUE(bytes(name) == before) << held;
        close(group);
    }
}

TEST_P(OpenModes, fifo_and_folder_are_refused_without_waiting)
{
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    std::filesystem::create_directory(path("folder"));
    for (const int32_t mode : {0, 1, 2, 8, 9, 10, 13}) {
        const bool creates = mode == 0 || mode == 8;
        for (const std::string& name : {path("fifo"), path("folder")}) {
            const Opened o = open_in_vain(name, mode);
            EXPECT_EQ(o.ierr, -1);
            EXPECT_EQ(o.group, 0);
            EXPECT_EQ(o.output.err,
                      creates ? "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n"
                              : "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n");
        }
    }
}

TEST_P(OpenModes, root_behind_a_link_to_a_fifo_is_refused_without_waiting)
{
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    const std::string name = path("run.h5");
    {
        const FileId made = create_file(name);
        ASSERT_GE(H5Lcreate_external("fifo", "/", made, "post", H5P_DEFAULT, H5P_DEFAULT), 0);
    }
    for (const int32_t mode : {1, 2}) {
        const Opened o = open(name, mode);
        EXPECT_EQ(o.ierr, -1);
        close_left_file(name);
        EXPECT_EQ(o.output.err, " VAK ERROR - vak_open - file " + name + " - Cannot open group \"post\".\n");
    }
}

TEST_P(OpenModes, link_to_a_file_is_followed)
{
    std::filesystem::create_symlink(made_file("run.h5"), path("link.h5"));
    close(opened(path("link.h5"), 1));
    close(opened(path("link.h5"), 8));
    EXPECT_EQ(layout(path("run.h5"), "/"), "\n");
}

TEST_P(OpenModes, truncated_file_is_refused)
{
    const std::string name = made_file("run.h5");
    std::filesystem::resize_file(name, 60);
    for (const int32_t mode : {1, 2, 9, 10, 13}) EXPECT_EQ(open_in_vain(name, mode).ierr, -1);
    EXPECT_EQ(std::filesystem::file_size(name), 60U);
}

}  // namespace vak::test
