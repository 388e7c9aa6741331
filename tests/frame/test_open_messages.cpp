// Every line that VAK_OPEN prints, and the errors that it counts.
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "frame/frame_test.h"

namespace vak::test {

class OpenMessages : public FrameTest {};
IN_BOTH_FAMILIES(OpenMessages);

namespace {

const std::string greeting = "\nVAK INFO - hdf5-lib version: 1.14.5\n\nVAK INFO - opening vak-hdf5 file\n";

std::string number(hid_t id) { return std::to_string(id); }

// What follows once the group is open.
std::string access_lines()
{
    return "\nVAK INFO - HDF5 LIBVER bounds (earliest=0, 18=4, LATEST=4) lower=0, upper=4\n"
           "\nVAK INFO - HDF5 file driver (< 0 => n/a): " +
           number(H5FD_SEC2) + "\n (" + number(H5FD_CORE) + "=CORE, -1=DIRECT, " + number(H5FD_FAMILY) +
           "=FAMILY, " + number(H5FD_LOG) + "=LOG, -1=MPIO, " + number(H5FD_MULTI) + "=MULTI, " +
           number(H5FD_SEC2) + "=SEC2, " + number(H5FD_STDIO) + "=STDIO, " + number(H5FD_SEC2) +
           "=WINDOWS)\n\n";
}

std::string opening_lines(const std::string& name, const std::string& group)
{
    return "VAK INFO - file \"" + name + "\" opened.\nVAK INFO - opening group \"" + group + "\"\n";
}

std::string created(const std::string& name) { return "VAK INFO - file \"" + name + "\" created.\n"; }

std::string cannot_open_group(const std::string& name, const std::string& group)
{
    return " VAK ERROR - vak_open - file " + name + " - Cannot open group \"" + group + "\".\n";
}

}  // namespace

TEST_P(OpenMessages, mode_0_tells_file_group_and_opening_when_verbose)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, verbose);
    EXPECT_EQ(o.output, (Output{greeting + created(name) + "VAK INFO - group \"model\" created.\n" +
                                    opening_lines(name, "post") + access_lines(),
                                ""}));
    close(o.group);
}

TEST_P(OpenMessages, mode_0_tells_the_domain_too_when_verbose)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, verbose, {.domain = "part7", .with_domain = true});
    EXPECT_EQ(o.output, (Output{greeting + created(name) + "VAK INFO - group \"model\" created.\n" +
                                    "VAK INFO - Domain group \"part7\" created.\n" +
                                    opening_lines(name, "post") + access_lines(),
                                ""}));
    close(o.group);
}

TEST_P(OpenMessages, mode_8_tells_the_creation_when_verbose)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, verbose + 8);
    EXPECT_EQ(o.output, (Output{greeting + created(name) + opening_lines(name, ".") + access_lines(), ""}));
    close(o.group);
}

TEST_P(OpenMessages, opening_modes_tell_what_they_opened_when_verbose)
{
    const std::string name = made_file("run.h5");
    for (const int32_t mode : {1, 2, 9, 10}) {
        const Opened o = open(name, verbose + mode);
        EXPECT_EQ(o.output, (Output{greeting + "Opened \"" + name + "\"\n" +
                                        opening_lines(name, mode < 8 ? "post" : ".") + access_lines(),
                                    ""}));
        close(o.group);
    }
}

TEST_P(OpenMessages, group_path_behind_the_name_is_told_as_given_but_for_the_file_found)
{
    const std::string file_name = made_file("run.h5"), name = file_name + "/post/inside";
    const Opened o = open(name, verbose + 1);
    EXPECT_EQ(o.output, (Output{greeting + "Opened \"" + file_name + "\"\n" +
                                    opening_lines(name, "/post/inside") + access_lines(),
                                ""}));
    close(o.group);
}

TEST_P(OpenMessages, mode_13_tells_that_it_created_or_that_it_could_not)
{
    const std::string name = path("run.h5");
    const Opened first = open(name, verbose + 13);
    EXPECT_EQ(first.output,
              (Output{greeting + created(name) + opening_lines(name, ".") + access_lines(), ""}));
    close(first.group);
    const Opened second = open(name, verbose + 13);
    EXPECT_EQ(second.output, (Output{greeting + "VAK INFO - vak_open - file \"" + name +
                                         "\" cannot be created, trying to open it.\nOpened \"" + name +
                                         "\"\n" + opening_lines(name, ".") + access_lines(),
                                     ""}));
    close(second.group);
}

TEST_P(OpenMessages, mode_13_tries_to_open_where_the_folder_is_missing)
{
    const std::string name = path("missing/run.h5");
    const Opened o = open_in_vain(name, verbose + 13);
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{greeting + "VAK INFO - vak_open - file \"" + name +
                                    "\" cannot be created, trying to open it.\n",
                                "VAK ERROR - vak_open - \"" + name + "\": Unable to open vak-hdf5 file.\n"}));
}

TEST_P(OpenMessages, name_of_no_length_is_invalid)
{
    const Output complaint{"", "\nVAK ERROR - vak_open - Invalid filename\n"};
    for (const int32_t mode : {0, 1, 2, 8, 9, 10, 13}) {
        for (const std::string name : {"", "   "}) {
            const Opened o = open_in_vain(name, mode);
            EXPECT_EQ(o.ierr, -1);
            EXPECT_EQ(o.group, 0);
            EXPECT_EQ(o.output, complaint);
        }
    }
    const Opened o = open_in_vain("", verbose + 1);
    EXPECT_EQ(o.output, (Output{greeting, complaint.err}));
}

TEST_P(OpenMessages, negative_length_of_the_name_is_invalid)
{
    const int32_t length = -5, option = 0, with_domain = 0;
    vak_id group = 1;
    int32_t ierr = 0;
    const Output output = call([&] {
        GetParam().open("name", &length, "g", &length, "d", &length, &group, &with_domain, &option, &ierr);
    });
    EXPECT_EQ(ierr, -1);
    EXPECT_EQ(output, (Output{"", "\nVAK ERROR - vak_open - Invalid filename\n"}));
}

TEST_P(OpenMessages, invalid_group_name_is_refused_before_the_file_is_touched)
{
    const std::string name = made_file("run.h5");
    const auto size = std::filesystem::file_size(name);
    for (const std::string group : {"", "  "}) {
        const Opened o = open_in_vain(name, 0, {.group = group});
        EXPECT_EQ(o.ierr, -1);
        EXPECT_EQ(o.group, 0);
        EXPECT_EQ(o.output, (Output{"", "VAK ERROR - vak_open - Invalid group name\n"}));
    }
    EXPECT_EQ(std::filesystem::file_size(name), size);
}

TEST_P(OpenMessages, invalid_domain_name_is_refused_before_the_file_is_touched)
{
    const std::string name = made_file("run.h5");
    const auto size = std::filesystem::file_size(name);
    const Opened o = open_in_vain(name, 0, {.with_domain = true});
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{"", "VAK ERROR - vak_open - Invalid domain name\n"}));
    EXPECT_EQ(std::filesystem::file_size(name), size);
}

TEST_P(OpenMessages, file_that_cannot_be_created_is_one_error)
{
    const std::string name = path("missing/run.h5");
    for (const int32_t mode : {0, 8}) {
        const Opened o = open_in_vain(name, verbose + mode);
        EXPECT_EQ(o.ierr, -1);
        EXPECT_EQ(o.group, 0);
        EXPECT_EQ(o.output,
                  (Output{greeting, "VAK ERROR - vak_open - Cannot create file \"" + name + "\".\n"}));
    }
}

TEST_P(OpenMessages, file_that_cannot_be_opened_is_one_error)
{
    std::ofstream(path("notes.txt")) << "not HDF5";
    for (const int32_t mode : {1, 2, 9, 10}) {
        for (const std::string& name : {path("missing.h5"), path("missing/run.h5/post"), path("notes.txt")}) {
            const Opened o = open_in_vain(name, mode);
            EXPECT_EQ(o.ierr, -1);
            EXPECT_EQ(o.group, 0);
            EXPECT_EQ(o.output, (Output{"", "VAK ERROR - vak_open - \"" + name +
                                                "\": Unable to open vak-hdf5 file.\n"}));
        }
    }
}

TEST_P(OpenMessages, name_without_a_slash_is_tried_once)
{
    const Opened o = open_in_vain("no such file here.h5", 2);
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(
        o.output,
        (Output{"", "VAK ERROR - vak_open - \"no such file here.h5\": Unable to open vak-hdf5 file.\n"}));
}

TEST_P(OpenMessages, group_that_cannot_be_created_ends_the_call_with_the_file_open)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, verbose, {.group = "model/inner"});
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{greeting + created(name),
                                "VAK ERROR - vak_open - Cannot create group \"model/inner\".\n"}));
    close_left_file(name);
    EXPECT_EQ(layout(name, "/"), "\n");
}

TEST_P(OpenMessages, domain_that_cannot_be_created_leaves_no_post_and_is_two_errors)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, verbose, {.domain = "part/7", .with_domain = true});
    EXPECT_EQ(o.ierr, -2);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{greeting + created(name) + "VAK INFO - group \"model\" created.\n" +
                                    opening_lines(name, "post"),
                                "VAK ERROR - vak_open - Cannot create domain group \"part/7\".\n" +
                                    cannot_open_group(name, "post")}));
    close_left_file(name);
    EXPECT_EQ(layout(name, "/"), "\nG model\n");
}

TEST_P(OpenMessages, group_named_post_takes_the_links_place_and_is_handed_back_with_one_error)
{
    const std::string name = path("run.h5");
    const Opened o = open(name, 0, {.group = "post"});
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(path_of(o.group), "/post");
    EXPECT_EQ(o.output, (Output{"", "VAK ERROR - vak_open - Cannot create post link.\n"}));
    close(o.group);
}

TEST_P(OpenMessages, file_without_post_is_one_error_and_stays_open)
{
    create_file(path("bare.h5"));
    for (const int32_t mode : {1, 2}) {
        const Opened o = open(path("bare.h5"), mode);
        EXPECT_EQ(o.ierr, -1);
        EXPECT_EQ(o.group, 0);
        EXPECT_EQ(o.output, (Output{"", cannot_open_group(path("bare.h5"), "post")}));
        close_left_file(path("bare.h5"));
    }
}

TEST_P(OpenMessages, missing_group_behind_the_file_name_is_told_with_the_whole_name)
{
    const std::string file_name = made_file("run.h5"), name = file_name + "/post/missing";
    const Opened o = open(name, verbose + 10);
    EXPECT_EQ(o.ierr, -1);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output,
              (Output{greeting + "Opened \"" + file_name + "\"\n" + opening_lines(name, "/post/missing"),
                      cannot_open_group(name, "/post/missing")}));
    close_left_file(file_name);
}

// A process that ends without the clean-up of the C runtime shows what was flushed before.
TEST_P(OpenMessages, standard_output_is_flushed_before_the_return)
{
    const std::string name = made_file("run.h5"), log = path("log");
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen(log.c_str(), "w", stdout) == nullptr) _exit(1);
        const auto name_len = static_cast<int32_t>(name.size());
        const int32_t none = 0, option = verbose + 2;
        vak_id group = 0;
        int32_t ierr = 0;
        GetParam().open(name.data(), &name_len, "", &none, "", &none, &group, &none, &option, &ierr);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    std::ifstream stream(log);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(text.rfind(greeting + "Opened \"" + name + "\"\n", 0), 0U) << text;
    EXPECT_THAT(text, testing::HasSubstr("=WINDOWS)\n\n"));
}

}  // namespace vak::test
