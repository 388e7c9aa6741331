// vak import where it cannot be done: told in one line, and nothing is left.
#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>

#include "cli/import_test.h"
#include "import/part_file.h"

using namespace vak::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using ImportRefused = ImportTest;

}  // namespace

TEST_F(ImportRefused, a_series_needs_a_name_that_is_one_level_of_a_path)
{
    for (const char* name : {"", "A/B", "..", "A "}) {
        const Said said = import(head().end().text(), {"--series", name});
        EXPECT_EQ(said.status, 2) << name;
        EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
    }
    EXPECT_THAT(files(), ElementsAre("run.frd"));
}

TEST_F(ImportRefused, an_existing_output_is_replaced_only_by_a_complete_one)
{
    import(head().result("DISP", displacement, vectors).end().text());
    const std::string before = contents(h5);
    EXPECT_EQ(import(head().result("DISP", displacement, vectors).text()).status, 2);
    EXPECT_EQ(contents(h5), before);
    EXPECT_EQ(import(head().end().text()), fine);
    EXPECT_NE(contents(h5), before);
}

TEST_F(ImportRefused, a_truncated_file_is_refused_in_one_line_and_leaves_nothing)
{
    const Said said =
        import(head().result_head("DISP", displacement, 2, {}).values_line(1, {1, 2, 3}).text());
    EXPECT_EQ(said, (Said{.status = 2,
                          .out = "",
                          .err = "vak import: " + frd +
                                 ", line 21: the file ends before the end of the block (-3); " +
                                 "let the solver write it again\n"}));
    EXPECT_THAT(files(), ElementsAre("run.frd"));
}

TEST_F(ImportRefused, damage_in_the_values_is_refused_and_leaves_nothing)
{
    FrdText text = head();
    text.result("DISP", displacement, vectors).result_head("NDTEMP", temperature, 2, {2, 2, 0});
    text.values_line(1, {1}).line(" -1         7 1.0000??+00").line(" -3").end();
    const Said said = import(text.text());
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.err, "vak import: " + frd + ", line 29: the values cannot be read; the file is damaged\n");
    EXPECT_THAT(files(), ElementsAre("run.frd"));
}

TEST_F(ImportRefused, parts_of_a_complex_result_on_different_nodes_are_refused)
{
    FrdText text = head();
    text.result("NDTEMP", temperature, {{1, {20}}}).result("NDTEMPI", temperature, {{7, {20}}});
    const Said said = import(text.end().text());
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err,
                HasSubstr(frd + ", line 21: the nodes of the imaginary part are not those of the real part"));
    EXPECT_THAT(files(), ElementsAre("run.frd"));
}

TEST_F(ImportRefused, what_cannot_be_written_is_told_in_one_line)
{
    write_text(frd, head().end().text());
    const auto says = [&](const std::string& output) { return vak_says({"import", frd, "-o", output}).err; };
    EXPECT_EQ(says(folder.path()), "vak import: " + folder.path() + ": is a folder; name a file in it\n");
    EXPECT_EQ(says(folder.file("no/run.h5")), "vak import: " + folder.file("no/run.h5") +
                                                  ": cannot be written: the folder " + folder.file("no") +
                                                  " (No such file or directory)\n");
    EXPECT_EQ(says(frd), "vak import: " + frd + ": is the file to read; name another one with -o\n");
    EXPECT_THAT(contents(frd), StartsWith("    1C"));
}

TEST_F(ImportRefused, a_full_disk_is_told_in_one_line_and_leaves_nothing)
{
    FrdText text = head();
    NodeValues many;
    for (int node = 1; node <= 20000; ++node) many.push_back({node, {1.0 * node, 2, 3}});
    write_text(frd, text.result("DISP", displacement, many).end().text());
    const TempFolder said_folder;
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 100'000;
    setrlimit(RLIMIT_FSIZE, &small);
    signal(SIGXFSZ, SIG_IGN);
    const pid_t child = start({"import", frd, "-o", h5}, said_folder);
    setrlimit(RLIMIT_FSIZE, &before);
    const Said said = finish(child, said_folder);
    signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(std::count(said.err.begin(), said.err.end(), '\n'), 1) << said.err;
    EXPECT_THAT(said.err, StartsWith("vak import: "));
    EXPECT_THAT(files(), ElementsAre("run.frd"));
}

TEST_F(ImportRefused, being_ended_by_a_signal_leaves_nothing)
{
    for (const int ending : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            const vak::import::PartFile part(h5);
            write_text(part.path(), "half of it");
            raise(ending);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), ending);
        EXPECT_TRUE(files().empty());
    }
}

TEST(ImportUsage, missing_arguments_are_told_in_one_line)
{
    EXPECT_EQ(vak_says({"import"}),
              (Said{.status = 2,
                    .out = "",
                    .err = "vak import: FILE is required (vak import --help tells the usage)\n"}));
    EXPECT_EQ(vak_says({"import", "a.frd"}).err,
              "vak import: --output is required (vak import --help tells the usage)\n");
    EXPECT_EQ(vak_says({}).err, "vak: A subcommand is required (vak --help tells the usage)\n");
    EXPECT_EQ(vak_says({"export"}).status, 2);
    EXPECT_EQ(vak_says({"import", "none.frd", "-o", "x.h5"}).err,
              "vak import: none.frd: cannot be read (No such file or directory)\n");
}

TEST(ImportUsage, help_and_version_are_no_failures)
{
    EXPECT_EQ(vak_says({"--version"}), (Said{.status = 0, .out = "vak 2.2.14\n", .err = ""}));
    EXPECT_THAT(vak_says({"import", "--help"}).out, HasSubstr("FILE"));
    EXPECT_EQ(vak_says({"--help"}).status, 0);
}
