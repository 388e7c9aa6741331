// vak erase --repack: the file without the space of what was erased.
//
// A share of the writes is tried on a failing disk; all of them with VAK_TEST_EVERY_WRITE set.
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

#include "cli/erase_test.h"
#include "erase/repack.h"
#include "problem.h"
#include "support/faults.h"

using namespace vak::test;
using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

class Repack : public EraseTest {
protected:
    void TearDown() override { disk().mend(); }

    Said repacked() { return vak_says({"erase", file, "--after", "20", "--repack"}); }
    std::string freed(uintmax_t bytes) const
    {
        return file + ": " + std::to_string(bytes) + " bytes freed\n";
    }
    bool is_one_group(const std::string& a, const std::string& b) const
    {
        const FileId opened = read_file(file);
        H5O_info2_t first, second;
        int order = 1;
        EXPECT_GE(H5Oget_info_by_name3(opened, a.c_str(), &first, H5O_INFO_BASIC, H5P_DEFAULT), 0);
        EXPECT_GE(H5Oget_info_by_name3(opened, b.c_str(), &second, H5O_INFO_BASIC, H5P_DEFAULT), 0);
        EXPECT_GE(H5Otoken_cmp(opened, &first.token, &second.token, &order), 0);
        return order == 0;
    }
    size_t files_in_folder() const
    {
        const fs::directory_iterator files(folder.path());
        return static_cast<size_t>(std::distance(begin(files), end(files)));
    }
    // In the order of the names: copies lie in the file as the copying finds them.
    std::set<std::string> stored() const
    {
        std::istringstream lines(layout(file, "/"));
        std::set<std::string> sorted;
        for (std::string line; std::getline(lines, line);) sorted.insert(line);
        return sorted;
    }
    // What stands in the way of repacking; empty: nothing.
    std::string problem() const
    {
        try {
            vak::erase::repack(file);
            return {};
        } catch (const vak::cli::Problem& p) {
            return p.what();
        }
    }
    // In a process of its own: HDF5 keeps what it could not write.
    bool is_refused() const
    {
        const pid_t child = fork();
        if (child == 0)
            _exit(problem() == file +
                                   ": the new file could not be written; the old one stays, with its states "
                                   "erased");
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 1;
    }
};
INSTANTIATE_TEST_SUITE_P(, Repack, layouts, layout_name);

void put_attribute(hid_t at, const char* name, hid_t type, const void* value)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    const AttributeId attribute(H5Acreate2(at, name, type, space, H5P_DEFAULT, H5P_DEFAULT), name);
    EXPECT_GE(H5Awrite(attribute, type, value), 0);
}

}  // namespace

TEST_P(Repack, frees_the_space_and_keeps_the_rest)
{
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}).status, 0);
    const auto before = stored();
    const auto size = fs::file_size(file);
    const Said said = repacked();
    const auto after = fs::file_size(file);
    EXPECT_EQ(said, (Said{.status = 0, .out = freed(size - after), .err = ""}));
    EXPECT_LT(after, size);
    EXPECT_EQ(stored(), before);
    EXPECT_TRUE(is_one_group("model", "post"));
    expect_cut_behind_state_2();
    EntityResults found = emptied(state(2));
    const FileId opened = read_file(file);
    EXPECT_GE(found.read(open_object(opened, "post/" + state(2).path()), 2), 0);
    EXPECT_EQ(listing(found), listing(state(2)));
}

TEST_P(Repack, keeps_links_and_attributes_of_every_kind)
{
    const char* const note = "a text of any length";
    const int32_t number = 12;
    {
        const FileId opened = edit_file(file);
        const TypeId text(H5Tcopy(H5T_C_S1), "type");
        H5Tset_size(text, H5T_VARIABLE);
        const ObjectId root = open_object(opened, "/");
        put_attribute(root, "note", text, &note);
        put_attribute(root, "number", H5T_NATIVE_INT32, &number);
        const ObjectId model = open_object(opened, "model");
        put_attribute(model, "number", H5T_NATIVE_INT32, &number);
        H5Lcreate_soft("/model", opened, "soft", H5P_DEFAULT, H5P_DEFAULT);
        H5Lcreate_soft("/nowhere", opened, "model/dangling", H5P_DEFAULT, H5P_DEFAULT);
        H5Lcreate_external("other.h5", "/x", opened, "model/external", H5P_DEFAULT, H5P_DEFAULT);
        H5Lcreate_hard(opened, "model/multistate", opened, "again", H5P_DEFAULT, H5P_DEFAULT);
    }
    EXPECT_EQ(vak_says({"erase", file, "--after", "20"}).status, 0);
    const auto before = stored();
    EXPECT_EQ(repacked().status, 0);
    EXPECT_EQ(stored(), before);
    EXPECT_TRUE(is_one_group("model/multistate", "again"));
    const FileId opened = read_file(file);
    EXPECT_EQ(attribute_value<int32_t>(opened, "/", "number"), 12);
    const AttributeId attribute = open_attribute(opened, "/", "note");
    const TypeId type(H5Aget_type(attribute), "type");
    char* found = nullptr;
    EXPECT_GE(H5Aread(attribute, type, &found), 0);
    EXPECT_STREQ(found, note);
    H5free_memory(found);
}

TEST_P(Repack, link_back_to_the_root_is_told_and_the_file_stays)
{
    {
        const FileId opened = edit_file(file);
        H5Lcreate_hard(opened, "/", opened, "model/back", H5P_DEFAULT, H5P_DEFAULT);
    }
    const std::string before = contents(file);
    EXPECT_EQ(problem(),
              file +
                  ": a link leads back to its root, which cannot be written anew; the space is not "
                  "freed");
    EXPECT_TRUE(contents(file) == before);
    EXPECT_EQ(files_in_folder(), 1U);
}

TEST_P(Repack, full_disk_at_any_write_leaves_the_old_file)
{
    for (const Fault fault : {Fault::full_from_here, Fault::io_error_once, Fault::torn_once}) {
        const std::string before = contents(file);
        const long step = std::getenv("VAK_TEST_EVERY_WRITE") != nullptr ? 1 : 7;
        long at = 0;
        for (;; at += step) {
            disk().fail(fault, at);
            const bool refused = is_refused();
            const bool hit = disk().hit;
            disk().mend();
            if (!hit) break;  // behind the last write
            EXPECT_TRUE(refused) << at;
            ASSERT_TRUE(contents(file) == before) << static_cast<int>(fault) << " " << at;
            EXPECT_EQ(files_in_folder(), 1U);
        }
        EXPECT_GT(at, 2 * step);
    }
}

TEST_P(Repack, is_refused_while_another_program_writes)
{
    const std::string before = contents(file);
    {
        const FileId writing = edit_file(file);
        EXPECT_THAT(problem(), HasSubstr("another program has opened it meanwhile"));
    }
    EXPECT_TRUE(contents(file) == before);
}

TEST_P(Repack, file_that_would_not_become_smaller_stays_as_it_is)
{
    EXPECT_GE(vak::erase::repack(file), 0);
    const auto written = fs::last_write_time(file);
    const auto size = fs::file_size(file);
    EXPECT_EQ(vak::erase::repack(file), 0);
    EXPECT_EQ(fs::file_size(file), size);
    EXPECT_EQ(fs::last_write_time(file), written);
    EXPECT_EQ(files_in_folder(), 1U);
}

TEST_P(Repack, permissions_and_a_symbolic_link_to_the_file_stay)
{
    const auto mine = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    const std::string real = folder.file("real.h5");
    fs::rename(file, real);
    fs::permissions(real, mine);
    fs::create_symlink("real.h5", file);
    EXPECT_EQ(repacked().status, 0);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(fs::status(real).permissions(), mine);
    expect_cut_behind_state_2();
}
