// External links from one file into others.
#include <sys/stat.h>

#include <filesystem>
#include <list>

#include "samples/entityresults.h"
#include "samples/parts.h"
#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

using testing::HasSubstr;

const std::string banner =
    "\n"
    "     +------------------------------------------------------+\n"
    "     |  VAK external links                                  |\n"
    "     +------------------------------------------------------+\n"
    "      Version: 2.2.14\n"
    "\n\n";
const std::string end_line = "\n VAK external links successfully created.\n\n";

Result linked(int32_t ierr, const std::string& lines = "", const std::string& errors = "")
{
    return {ierr, {banner + lines + end_line, errors}};
}

class ExternalLinks : public BothFamilies {
protected:
    // A source file and groups in it.
    hid_t source(const std::string& name, const std::vector<std::string>& groups)
    {
        sources_.push_back(create_file(path(name)));
        const hid_t id = sources_.back();
        for (const std::string& group : groups)
            ObjectId(H5Gcreate2(id, group.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), group);
        return id;
    }
    void close_sources() { sources_.clear(); }
    void TearDown() override
    {
        close_sources();
        BothFamilies::TearDown();
    }

    Result link(const std::vector<vak_id>& from, const std::string& subgroup = "", int32_t option = 0,
                int32_t verbose = 0)
    {
        const auto n = static_cast<int32_t>(from.size());
        return link_first(n, from, subgroup, option, verbose);
    }
    Result link_first(int32_t n, const std::vector<vak_id>& from, const std::string& subgroup, int32_t option,
                      int32_t verbose)
    {
        const std::string field = padded(subgroup);
        return run([&] {
            int32_t ierr = untouched;
            (legacy() ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(from.data(), &file, &n, field.data(),
                                                                    &option, &verbose, &ierr);
            return ierr;
        });
    }
    std::string target(const std::string& name, const std::string& group) { return path(name) + ":" + group; }

    std::list<FileId> sources_;
};
INSTANTIATE_TEST_SUITE_P(, ExternalLinks, both_families, family_name);

TEST_P(ExternalLinks, every_link_of_every_source_is_linked)
{
    const hid_t a = source("a.h5", {"one", "two"}), b = source("b.h5", {"three"});
    EXPECT_EQ(link({a, b}), linked(0));
    EXPECT_EQ(layout(file, "/"), "\nX one -> " + target("a.h5", "/one") + "\nX two -> " +
                                     target("a.h5", "/two") + "\nX three -> " + target("b.h5", "/three") +
                                     "\n");
}

TEST_P(ExternalLinks, links_of_a_group_lead_to_their_path_in_the_source)
{
    const hid_t a = source("a.h5", {"model", "model/constant"});
    {
        const ObjectId model = open_object(a, "model");
        EXPECT_EQ(link({model}), linked(0));
    }
    EXPECT_EQ(layout(file, "/"), "\nX constant -> " + target("a.h5", "/model/constant") + "\n");
}

TEST_P(ExternalLinks, post_is_not_passed_on)
{
    const hid_t a = source("a.h5", {"post", "model", "postal"}), b = source("b.h5", {"post"});
    EXPECT_EQ(link({a, b}, "", 0, 1),
              linked(0, "create link \"model\" --> file/group:  \"" + path("a.h5") + "\"\"/model\"\n" +
                            "create link \"postal\" --> file/group:  \"" + path("a.h5") + "\"\"/postal\"\n"));
    EXPECT_FALSE(exists(file, "post"));
}

TEST_P(ExternalLinks, no_source_prints_the_banner_and_the_closing_line)
{
    EXPECT_EQ(link({}), linked(0));
    EXPECT_EQ(link_first(-3, {}, "", 0, 1), linked(0));
    EXPECT_EQ(layout(file, "/"), "\n");
}

TEST_P(ExternalLinks, a_name_that_is_taken_is_told_and_the_first_link_stays)
{
    const hid_t a = source("a.h5", {"same"}), b = source("b.h5", {"before", "same", "up"});
    EXPECT_EQ(link({a, b}), linked(0, "", "\nVAK ERROR - could not create external link \"same\"\n"));
    EXPECT_EQ(layout(file, "/"), "\nX same -> " + target("a.h5", "/same") + "\nX before -> " +
                                     target("b.h5", "/before") + "\nX up -> " + target("b.h5", "/up") + "\n");
}

TEST_P(ExternalLinks, links_go_into_a_subgroup_that_is_made)
{
    const hid_t a = source("a.h5", {"one"});
    EXPECT_EQ(link({a}, "gathered", 1, 1),
              linked(1, "create link \"gathered/one\" --> file/group:  \"" + path("a.h5") + "/one\"\n"));
    EXPECT_EQ(layout(file, "/"), "\nG gathered\nX gathered/one -> " + target("a.h5", "/one") + "\n");
    const hid_t b = source("b.h5", {"two"});
    EXPECT_EQ(link({b}, "gathered", 3), linked(0));
    EXPECT_TRUE(exists(file, "gathered/two"));
    EXPECT_EQ(link({b}, "deep/er", 1), linked(2));
    EXPECT_TRUE(exists(file, "deep/er/two"));
}

TEST_P(ExternalLinks, subgroup_counts_only_with_the_option)
{
    const hid_t a = source("a.h5", {"one"});
    EXPECT_EQ(link({a}, "gathered", 2, 1),
              linked(0, "create link \"one\" --> file/group:  \"" + path("a.h5") + "\"\"/one\"\n"));
    EXPECT_FALSE(exists(file, "gathered"));
}

TEST_P(ExternalLinks, subgroup_that_cannot_be_had_ends_the_call)
{
    const hid_t a = source("a.h5", {"one"});
    EXPECT_EQ(
        link({a}, "", 1),
        (Result{
            -40,
            {banner, "VAK ERROR - vak_h5gopen - invalid len=0 must >0 or -1 for \\0 terminated strings\n"}}));
    H5Lcreate_soft("/nowhere", file, "dangling", H5P_DEFAULT, H5P_DEFAULT);
    const Result result = link({a}, "dangling/x", 1);
    EXPECT_LT(result.ierr, 0);
    EXPECT_EQ(result.output.out, banner);
    EXPECT_THAT(result.output.err, testing::StartsWith("VAK ERROR - vak_h5gopen - code "));
}

TEST_P(ExternalLinks, subgroup_name_may_fill_its_field)
{
    const std::string name(256, 's');
    const hid_t a = source("a.h5", {"one"});
    EXPECT_EQ(link({a}, name, 1, 1),
              linked(1, "create link \"" + name + "/one\" --> file/group:  \"" + path("a.h5") + "/one\"\n"));
    EXPECT_TRUE(exists(file, name + "/one"));
}

TEST_P(ExternalLinks, names_of_every_length_are_linked_whole)
{
    std::vector<std::string> names;
    for (const size_t length : {1U, 255U, 256U, 257U, 1000U}) names.emplace_back(length, 'n');
    const hid_t a = source("a.h5", names);
    EXPECT_EQ(link({a}), linked(0));
    for (const std::string& name : names) EXPECT_TRUE(exists(file, name)) << name.size();
}

TEST_P(ExternalLinks, links_of_every_kind_are_linked_by_name)
{
    const hid_t a = source("a.h5", {"one"});
    H5Lcreate_soft("/one", a, "soft", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/nowhere", a, "dangling", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_external("b.h5", "/x", a, "external", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(link({a}), linked(0));
    for (const char* name : {"one", "soft", "dangling", "external"})
        EXPECT_EQ(H5Lexists(file, name, H5P_DEFAULT), 1) << name;
}

TEST_P(ExternalLinks, destination_may_be_one_of_the_sources)
{
    ObjectId(H5Gcreate2(file, "own", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "own");
    EXPECT_EQ(link({file}, "gathered", 1), linked(1));
    EXPECT_EQ(H5Lexists(file, "gathered/own", H5P_DEFAULT), 1);
    EXPECT_EQ(link({file}).output.err,
              "\nVAK ERROR - could not create external link \"gathered\"\n"
              "\nVAK ERROR - could not create external link \"own\"\n");
}

TEST_P(ExternalLinks, source_that_is_no_group_gives_no_links)
{
    const hid_t a = source("a.h5", {"one"});
    EXPECT_EQ(link({H5I_INVALID_HID, a}), linked(0));
    EXPECT_TRUE(exists(file, "one"));
}

TEST_P(ExternalLinks, many_links_are_made)
{
    std::vector<std::string> names;
    for (int i = 0; i < 2000; ++i) names.push_back("group" + std::to_string(i));
    const hid_t a = source("a.h5", names);
    EXPECT_EQ(link({a}), linked(0));
    H5G_info_t info;
    EXPECT_GE(H5Gget_info(file, &info), 0);
    EXPECT_EQ(info.nlinks, 2000U);
}

// A gathered file is read like any other.
class GatheredFile : public ExternalLinks {
protected:
    void SetUp() override
    {
        ExternalLinks::SetUp();
        results = sample<EntityResults>();
        const hid_t a = source("a.h5", {}), b = source("b.h5", {});
        EXPECT_EQ(run([&] { return results.write(a); }), success);
        parts = sample<Parts>();
        parts.index.nindex = 0;
        EXPECT_EQ(run([&] { return parts.write(b); }), success);
        EXPECT_EQ(link({a, b}), linked(0));
        close_sources();
    }

    EntityResults results;
    Parts parts;
};
INSTANTIATE_TEST_SUITE_P(, GatheredFile, both_families, family_name);

TEST_P(GatheredFile, lists_and_reads_the_blocks_of_its_sources)
{
    const std::string end = legacy() ? "/header" : "";
    EXPECT_THAT(listed_blocks(file),
                testing::ElementsAre("100 " + parts.path() + end, "1000 " + results.path() + end));
    auto found = emptied(results);
    EXPECT_EQ(read(found, 2), status(1000));
    EXPECT_EQ(listing(found), listing(results));
    auto found_parts = emptied(parts);
    EXPECT_GE(read(found_parts, legacy() ? 2 : 15).ierr, 0);
    EXPECT_EQ(found_parts.etyppart, parts.etyppart);
}

TEST_P(GatheredFile, source_that_is_gone_is_told_by_those_who_open_it)
{
    std::filesystem::remove(path("a.h5"));
    EXPECT_EQ(listed_blocks(file).size(), 1U);
    const std::string name = "singlestate";
    const auto length = static_cast<int32_t>(name.size());
    for (const int32_t flag : {0, 1, 2}) {
        vak_id group = 0;
        const Result result = run([&] {
            int32_t ierr = untouched;
            VAK_H5GOPEN(&file, name.data(), &length, &flag, &group, &ierr);
            return ierr;
        });
        EXPECT_LT(result.ierr, 0) << flag;
        EXPECT_LT(group, 0);
        EXPECT_THAT(result.output.err, testing::AllOf(testing::StartsWith("VAK ERROR - vak_h5gopen - code -"),
                                                      HasSubstr(name), testing::EndsWith("\n")));
    }
    EXPECT_LT(run([&] { return results.write(file); }).ierr, 0);
}

TEST_P(GatheredFile, source_in_whose_place_something_else_stands_is_passed_over)
{
    std::filesystem::remove(path("a.h5"));
    ASSERT_EQ(mkfifo(path("a.h5").c_str(), 0600), 0);
    EXPECT_EQ(listed_blocks(file).size(), 1U);
    std::filesystem::remove(path("a.h5"));
    std::filesystem::create_directory(path("a.h5"));
    EXPECT_EQ(listed_blocks(file).size(), 1U);
}

}  // namespace

}  // namespace vak::test
