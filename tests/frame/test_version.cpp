// Versions, build strings and the chunk size.
#include <algorithm>

#include "frame/frame_test.h"
#include "storage/storage.h"

// What HDF5 is made to answer: the tests' own functions stand before those of its library.
namespace {

struct Answer {
    herr_t status = 0;
    unsigned version[3] = {1, 14, 5};
    herr_t check = 0;
    int checks = 0;
} answer;

}  // namespace

herr_t H5get_libversion(unsigned* majnum, unsigned* minnum, unsigned* relnum)
{
    *majnum = answer.version[0];
    *minnum = answer.version[1];
    *relnum = answer.version[2];
    return answer.status;
}

herr_t H5check_version(unsigned, unsigned, unsigned)
{
    ++answer.checks;
    return answer.check;
}

namespace vak::test {

class Version : public FrameTest {
protected:
    void SetUp() override
    {
        answer = {};
        FrameTest::SetUp();
    }

    Output get(int32_t which, int32_t asks_lines = 0)
    {
        text = std::string(256, '#');
        return call([&] { length = GetParam().get_version(text.data(), &which, &asks_lines, &ierr); });
    }

    std::string text;
    int32_t length = 4711;
    int32_t ierr = 4711;
};
IN_BOTH_FAMILIES(Version);

TEST_P(Version, text_has_the_form_asked_for_and_is_blank_padded)
{
    const std::string all = "vak__sp HDF5-1.14.5 VAK-2.2.14";
    const std::pair<int32_t, std::string> forms[] = {
        {1, "vak__sp"}, {2, "HDF5-1.14.5"}, {4, "VAK-2.2.14"}, {6, "HDF5-1.14.5 VAK-2.2.14"},
        {0, all},       {3, all},           {5, all},          {7, all},
        {-1, all}};
    for (const auto& [which, expected] : forms) {
        EXPECT_EQ(get(which), nothing_printed);
        EXPECT_EQ(text, padded(expected));
        EXPECT_EQ(length, static_cast<int32_t>(expected.size()));
        EXPECT_EQ(ierr, 0);
    }
}

TEST_P(Version, lines_are_printed_when_asked_for)
{
    const std::string lines =
        "\nVAK INFO - hdf5-lib version: 1.14.5\n"
        "           VAK      version: 2.2.14\n"
        "           VAK      BuildID: vak__sp\n";
    EXPECT_EQ(get(1, 1), (Output{lines, ""}));
    EXPECT_EQ(get(2, 1000), (Output{lines, ""}));
    EXPECT_EQ(get(2, -1), nothing_printed);
}

TEST_P(Version, field_may_be_absent)
{
    const int32_t which = 4, silent = 0;
    EXPECT_EQ(GetParam().get_version(nullptr, &which, &silent, &ierr), 10);
    EXPECT_EQ(ierr, 0);
}

TEST_P(Version, version_of_another_release_of_the_series_is_told_as_it_is)
{
    answer.version[2] = 6;
    get(2);
    EXPECT_EQ(text, padded("HDF5-1.14.6"));
}

TEST_P(Version, other_series_of_hdf5_is_refused_without_asking_what_would_end_the_process)
{
    answer.checks = 0;  // opening the fixture's file asks too
    const unsigned versions[][3] = {{1, 12, 5}, {1, 15, 5}, {2, 0, 0}, {0, 14, 5}};
    for (const auto& version : versions) {
        std::copy_n(version, 3, answer.version);
        EXPECT_EQ(get(6, 1), (Output{"", "\nVAK ERROR - vak_get_version - hdf version check failed\n"}));
        EXPECT_EQ(ierr, -998);
        EXPECT_EQ(length, 0);
        EXPECT_EQ(text, std::string(256, '#'));
    }
    EXPECT_EQ(answer.checks, 0);
}

TEST_P(Version, failed_check_and_unreadable_version_are_reported)
{
    answer.check = -1;
    EXPECT_EQ(get(6), (Output{"", "\nVAK ERROR - vak_get_version - hdf version check failed\n"}));
    EXPECT_EQ(ierr, -998);
    answer.status = -1;
    EXPECT_EQ(get(6, 1), (Output{"", "\nVAK ERROR - vak_get_version - unable to get hdf lib version\n"}));
    EXPECT_EQ(ierr, -999);
    EXPECT_EQ(text, std::string(256, '#'));
}

TEST_P(Version, opening_is_refused_alike)
{
    const std::string name = made_file("run.h5");
    answer.version[1] = 12;
    Opened o = open_in_vain(name, verbose + 1);
    EXPECT_EQ(o.ierr, -998);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{"", "\nVAK ERROR - vak_open - hdf version check failed\n"}));
    answer.status = -1;
    o = open_in_vain(name, verbose);
    EXPECT_EQ(o.ierr, -999);
    EXPECT_EQ(o.group, 0);
    EXPECT_EQ(o.output, (Output{"", "\nVAK ERROR - vak_open - unable to get hdf lib version\n"}));
}

TEST_P(Version, unknown_option_is_told_before_the_version_is_asked)
{
    answer.status = -1;
    EXPECT_EQ(open_in_vain(path("run.h5"), 3).ierr, -9999);
}

TEST(Module, strings_are_those_of_this_release)
{
    EXPECT_STREQ(VAK_get_revision(), "a155c1e");
    EXPECT_STREQ(VAK_get_module_description(), "legacy API for reading/writing vakh5 files");
    EXPECT_STREQ(VAK_get_module_info(0), "legacy API for reading/writing vakh5 files");
    EXPECT_STREQ(VAK_get_module_info(1), " vak version 2.2.14");
    EXPECT_EQ(std::string(VAK_get_build_info()).rfind("vak version 2.2.14+a155c1e; cl: 192729120;", 0), 0U);
    for (const int32_t kind : {2, -1, 4711}) EXPECT_STREQ(VAK_get_module_info(kind), VAK_get_build_info());
}

TEST(ChunkSize, value_is_1_at_first_and_any_value_is_kept)
{
    int32_t size = 4711;
    EXPECT_EQ(VAK_GET_CHUNK_SIZE(&size), 1);
    EXPECT_EQ(size, 1);
    for (const int32_t wanted : {64, 0, -7, 2147483647, 1}) {
        EXPECT_EQ(VAK_SET_CHUNK_SIZE(&wanted), wanted);
        EXPECT_EQ(VAK_GET_CHUNK_SIZE(&size), wanted);
        EXPECT_EQ(size, wanted);
    }
}

TEST_P(Version, chunk_size_becomes_the_extent_of_new_chunks)
{
    for (const auto& [set, expected] : {std::pair<int32_t, int>{64, 64}, {0, 1}, {-3, 1}, {1, 1}}) {
        VAK_SET_CHUNK_SIZE(&set);
        const std::string name = "series" + std::to_string(set);
        const float value = 1;
        hsize_t dims[] = {H5S_UNLIMITED}, start[] = {0};
        const hsize_t count[] = {1};
        const uint32_t params[] = {0, 0};
        EXPECT_EQ(VAK_H5Dwrite(name.c_str(), &value, real_type, 4, 4, dims, 1, count, start, hyperslab, file,
                               0, params),
                  0);
        EXPECT_THAT(layout(file, "/"), testing::HasSubstr("D " + name + " float32 [unlimited(1)] chunked(" +
                                                          std::to_string(expected) + ")"));
    }
}

}  // namespace vak::test
