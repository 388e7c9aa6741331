// vak link and vak params as a user calls them.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "cli/program.h"
#include "samples/entityresults.h"
#include "store/file.h"
#include "support/ids.h"

using namespace vak::test;
using testing::HasSubstr;

namespace {

class Link : public testing::Test {
protected:
    std::string make(const std::string& name, int32_t set)
    {
        const std::string path = folder.file(name);
        vak::store::File made = vak::store::File::create(path, "model");
        EntityResults results;
        results.set = set;
        results.etyp = padded("NODE" + std::to_string(set));
        EXPECT_EQ(results.write(*made.root()), 0);
        made.close();
        return path;
    }
    // Blocks of no state.
    std::string make_constant(const std::string& name)
    {
        const std::string path = folder.file(name);
        vak::store::File made = vak::store::File::create(path, "model");
        EntityResults results;
        results.index.nindex = 0;
        EXPECT_EQ(results.write(*made.root()), 0);
        made.close();
        return path;
    }

    TempFolder folder;
    std::string target = folder.file("all.h5");
};

}  // namespace

TEST_F(Link, linked_files_are_listed_and_read_also_after_they_moved_together)
{
    const std::string a = make("a.h5", 1);
    EXPECT_EQ(vak_says({"link", a, "-o", target}), (Said{.status = 0, .out = "", .err = ""}));
    const std::string listed = vak_says({"list", a}).out;
    EXPECT_EQ(vak_says({"list", target}).out, listed);
    const std::string moved = folder.file("moved");
    std::filesystem::create_directory(moved);
    for (const char* name : {"/a.h5", "/all.h5"}) std::filesystem::rename(folder.path() + name, moved + name);
    EXPECT_EQ(vak_says({"list", moved + "/all.h5"}).out, listed);
    EXPECT_EQ(vak_says({"show", moved + "/all.h5"}).status, 0);
}

TEST_F(Link, links_go_into_a_group)
{
    EXPECT_EQ(vak_says({"link", make("a.h5", 1), "-o", target, "--group", "first"}).status, 0);
    EXPECT_THAT(vak_says({"list", target}).out, HasSubstr("  first/singlestate/"));
}

TEST_F(Link, source_that_is_gone_is_told_and_the_others_are_listed_and_shown)
{
    const std::string a = make("a.h5", 1), b = make_constant("b.h5");
    ASSERT_EQ(vak_says({"link", a, b, "-o", target}).status, 0);
    ASSERT_EQ(vak_says({"link", a, "-o", target + "2", "--group", "first"}).status, 0);
    const Said whole = vak_says({"list", b});
    const std::string told = "vak: a.h5: linked from this file, but not there; its blocks are left out\n";
    const auto expect_told = [&] {
        EXPECT_EQ(vak_says({"list", target}), (Said{.status = 0, .out = whole.out, .err = told}));
        EXPECT_EQ(vak_says({"list", target + "2"}), (Said{.status = 0, .out = "", .err = told}));
        const Said shown = vak_says({"show", target});
        EXPECT_EQ(shown.status, 0);
        EXPECT_EQ(shown.err, told);
        EXPECT_EQ(shown.out, vak_says({"show", b}).out);
    };
    std::filesystem::remove(a);
    expect_told();
    ASSERT_EQ(mkfifo(a.c_str(), 0600), 0);
    expect_told();
}

TEST_F(Link, states_of_the_sources_are_not_erased_through_the_links)
{
    const std::string a = make("a.h5", 1), before = contents(a);
    ASSERT_EQ(vak_says({"link", a, "-o", target}).status, 0);
    EXPECT_EQ(vak_says({"erase", target, "--after", "0", "--dry-run"}),
              (Said{.status = 0, .out = "", .err = ""}));
    EXPECT_EQ(vak_says({"erase", target, "--after", "0"}).status, 0);
    EXPECT_TRUE(contents(a) == before);
}

TEST_F(Link, names_that_two_files_have_are_told_and_no_file_is_made)
{
    const Said said = vak_says({"link", make("a.h5", 1), make("b.h5", 2), "-o", target});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("could not create external link \"singlestate\""));
    EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(Link, missing_source_and_source_as_target_are_told)
{
    EXPECT_EQ(vak_says({"link", folder.file("none"), "-o", target}).err,
              "vak link: " + folder.file("none") + ": no such file\n");
    const std::string a = make("a.h5", 1);
    EXPECT_EQ(vak_says({"link", a, "-o", a}).err,
              "vak link: " + a + ": is one of the files to link; name another file with -o\n");
}

TEST_F(Link, params_lists_variables_with_their_exponents)
{
    const std::string file = folder.file("p");
    std::ofstream(file) << "STRESS -2 $ rough\n# none\nDISPLACEMENT 5\n";
    EXPECT_EQ(vak_says({"params", file}),
              (Said{.status = 0, .out = "        -2  STRESS\n         5  DISPLACEMENT\n", .err = ""}));
    const Said said = vak_says({"params", folder.file("none")});
    EXPECT_EQ(said.status, 2);
    EXPECT_THAT(said.err, HasSubstr("Fatal error: Cannot open or find file"));
}
