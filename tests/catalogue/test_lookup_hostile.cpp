// vak_lookup and vak1_lookup on files made to trap a walk: none hangs, crashes, prints or leaks.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "catalogue/catalogue_test.h"
#include "catalogue/walk.h"

namespace vak::test {

using testing::ElementsAre;
using testing::IsEmpty;

class HostileLookup : public BothCatalogues {
protected:
    // "name/g/g/.../g" with a block in each of so many levels below `name`; made from below, since HDF5 keeps
    // the whole path of a group that was made by its name.
    void make_nest(const std::string& name, int levels)
    {
        std::vector<ObjectId> groups;
        for (int level = levels; level > 0; --level) {
            groups.emplace_back(H5Gcreate_anon(file, H5P_DEFAULT, H5P_DEFAULT), "group");
            make_block(groups.back(), GetParam().block, level);
            if (level == levels) continue;
            const hid_t inner = groups[groups.size() - 2];
            ASSERT_GE(H5Olink(inner, groups.back(), "g", H5P_DEFAULT, H5P_DEFAULT), 0);
        }
        ASSERT_GE(H5Olink(groups.back(), file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    }

    // So many levels with two links each to the next one, a block at the end.
    void make_doubled(const std::string& name, int levels)
    {
        make_block(file, block(name + "0"), 10);
        for (int level = 1; level <= levels; ++level) {
            const std::string above = name + std::to_string(level), below = name + std::to_string(level - 1);
            link_hard(below, file, above + "/a");
            link_hard(below, file, above + "/b");
        }
    }

    // A block whose attribute "block" has this type and shape, and these bytes of it.
    void make_odd_key(const std::string& place, hid_t type, hid_t space, const void* value, hid_t memory_type)
    {
        const ObjectId group = make_group(file, block(place));
        const AttributeId attribute(H5Acreate2(group, "block", type, space, H5P_DEFAULT, H5P_DEFAULT),
                                    "block");
        ASSERT_GE(H5Awrite(attribute, memory_type, value), 0);
    }
    void make_odd_key(const std::string& place, hid_t type, int32_t value)
    {
        make_odd_key(place, type, SpaceId(H5Screate(H5S_SCALAR), "space"), &value, H5T_NATIVE_INT32);
    }
};
IN_BOTH_CATALOGUES(HostileLookup);

TEST_P(HostileLookup, a_group_that_holds_itself_is_not_entered_again)
{
    make("a/b", 10);
    link_hard("a", file, "a/self");
    link_hard("/", file, "a/b/root");
    link_soft("/a", file, "a/soft");
    link_soft("/", file, "a/b/soft");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a/b")));
}

TEST_P(HostileLookup, the_starting_group_is_not_entered_again)
{
    make("a/b", 10);
    link_hard("a", file, "a/b/up");
    EXPECT_THAT(blocks_below(open_object(file, "a")), ElementsAre(listed(10, "b")));
}

TEST_P(HostileLookup, groups_that_hold_each_other_are_listed_once_from_each_side)
{
    make("a", 10);
    make("b", 20);
    link_hard("b", file, "a/b");
    link_hard("a", file, "b/a");
    EXPECT_THAT(blocks_below(file),
                ElementsAre(listed(20, "a/b"), listed(10, "a"), listed(10, "b/a"), listed(20, "b")));
}

TEST_P(HostileLookup, files_that_link_to_each_other_are_left_again)
{
    {
        const FileId other = create_file(path("other.h5"));
        make_block(other, block("b"), 20);
        link_external("fresh.h5", "/", other, "back");
    }
    link_external("other.h5", "/", file, "other");
    link_external("fresh.h5", "/", file, "self");
    make("a", 10);
    H5Fflush(file, H5F_SCOPE_GLOBAL);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a"), listed(20, "other/b")));
}

TEST_P(HostileLookup, equal_groups_of_two_files_are_told_apart)
{
    // The same calls make the same addresses in both files.
    for (const char* name : {"one.h5", "two.h5"}) {
        const FileId made = create_file(path(name));
        make_block(made, "a/" + block("b"), 10);
    }
    {
        const FileId one = edit_file(path("one.h5"));
        link_external("two.h5", "/a", one, "a/two");
    }
    EXPECT_THAT(blocks_below(read_file(path("one.h5"))),
                ElementsAre(listed(10, "a/b"), listed(10, "a/two/b")));
}

TEST_P(HostileLookup, a_depth_of_1024_groups_is_listed)
{
    make_nest("n", 1024);
    const Blocks blocks = blocks_below(file);
    EXPECT_EQ(blocks.size(), 1024U);
}

TEST_P(HostileLookup, what_is_nested_deeper_gives_1_and_everything_else_is_listed)
{
    make_nest("n", 1025);
    make("a", 10);
    make("z", 20);
    const Blocks blocks = blocks_below(file, 1);
    EXPECT_EQ(blocks.size(), 1026U);
    EXPECT_EQ(std::count(blocks.begin(), blocks.end(), listed(10, "a")), 1);
    EXPECT_EQ(std::count(blocks.begin(), blocks.end(), listed(20, "z")), 1);
}

TEST_P(HostileLookup, twenty_thousand_nested_groups_give_1)
{
    make_nest("n", 20000);
    EXPECT_EQ(blocks_below(file, 1).size(), 1024U);
}

TEST_P(HostileLookup, doubled_links_are_followed_on_every_path)
{
    make_doubled("g", 8);
    const Blocks blocks = blocks_below(open_object(file, "g8"));
    EXPECT_EQ(blocks.size(), 256U);
    EXPECT_EQ(blocks.front(), listed(10, "a/a/a/a/a/a/a/a"));
    EXPECT_EQ(blocks.back(), listed(10, "b/b/b/b/b/b/b/b"));
}

TEST_P(HostileLookup, links_beyond_the_limit_end_the_walk)
{
    make_doubled("g", 8);
    const Family family = GetParam().lookup == vak_lookup ? Family::current : Family::legacy;
    const ObjectId start = open_object(file, "g8");
    const auto count = [&](int64_t visits, int32_t status) {
        size_t blocks = 0;
        const auto visit = [&](const FoundBlock&) { return ++blocks > 0; };
        EXPECT_EQ(walk_blocks(family, start, visit, {.depth = 1024, .visits = visits}), status) << visits;
        return blocks;
    };
    const int64_t links = 2 + 4 + 8 + 16 + 32 + 64 + 128 + 256 + 256;
    EXPECT_EQ(count(links, 0), 256U);
    EXPECT_EQ(count(links - 1, 1), 255U);
    EXPECT_EQ(count(17, 1), 1U);
    EXPECT_EQ(count(0, 1), 0U);
}

TEST_P(HostileLookup, links_that_lead_nowhere_are_passed_over)
{
    make("a", 10);
    link_soft("/missing", file, "dangling");
    link_soft("/missing", file, block("b"));
    link_soft("/missing", file, "vakheader");
    link_soft("loop2", file, "loop1");
    link_soft("loop1", file, "loop2");
    link_soft("self", file, "self");
    link_soft("/a/" + std::string(5000, 'x'), file, "long");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a")));
}

TEST_P(HostileLookup, external_links_that_lead_to_no_file_are_passed_over)
{
    make("a", 10);
    std::ofstream(path("text.txt")) << "no HDF5 file";
    std::ofstream(path("empty.h5")).close();
    std::filesystem::create_directory(path("folder"));
    {
        const FileId other = create_file(path("other.h5"));
    }
    int number = 0;
    for (const char* target :
         {"missing.h5", "text.txt", "empty.h5", "folder", "/dev/null", "/dev/zero", "/", " "})
        link_external(target, "/", file, "to" + std::to_string(number++));
    link_external("other.h5", "/missing", file, "to_no_object");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a")));
}

TEST_P(HostileLookup, a_link_to_a_fifo_does_not_block)
{
    make("a", 10);
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    link_external("fifo", "/", file, "relative");
    link_external(path("fifo"), "/", file, "absolute");
    link_external("/no/such/folder/fifo", "/", file, "by_last_part");
    link_external("fifo", "/", file, block("b"));
    link_external("fifo", "/", file, "vakheader");
    link_soft("/relative/deeper", file, "soft");
    {
        const FileId other = create_file(path("other.h5"));
        link_external("fifo", "/", other, "x");
        link_soft("/x/y", other, "y");
    }
    link_external("other.h5", "/", file, "c/other");
    link_external("other.h5", "/x/y", file, "c/through");
    link_external("other.h5", "/y", file, "c/through_soft");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a")));
}

TEST_P(HostileLookup, a_fifo_in_a_folder_of_the_search_path_does_not_block)
{
    std::filesystem::create_directory(path("folder"));
    ASSERT_EQ(mkfifo(path("folder/other.h5").c_str(), 0600), 0);
    {
        const FileId other = create_file(path("other.h5"));
        make_block(other, block("b"), 20);
    }
    link_external("other.h5", "/", file, "other");
    ASSERT_EQ(setenv("HDF5_EXT_PREFIX", ("/nowhere::" + path("folder")).c_str(), 1), 0);
    EXPECT_THAT(blocks_below(file), IsEmpty());
    ASSERT_EQ(unsetenv("HDF5_EXT_PREFIX"), 0);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "other/b")));
}

TEST_P(HostileLookup, the_search_path_is_followed)
{
    std::filesystem::create_directory(path("folder"));
    {
        const FileId other = create_file(path("folder/other.h5"));
        make_block(other, block("b"), 20);
    }
    link_external("other.h5", "/", file, "other");
    EXPECT_THAT(blocks_below(file), IsEmpty());
    ASSERT_EQ(setenv("HDF5_EXT_PREFIX", (path("folder") + ":/nowhere").c_str(), 1), 0);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "other/b")));
    ASSERT_EQ(unsetenv("HDF5_EXT_PREFIX"), 0);
}

TEST_P(HostileLookup, links_are_resolved_beside_the_file_that_a_symbolic_link_leads_to)
{
    std::filesystem::create_directory(path("real"));
    {
        const FileId real = create_file(path("real/main.h5"));
        link_external("other.h5", "/", real, "other");
        const FileId other = create_file(path("real/other.h5"));
        make_block(other, block("b"), 20);
    }
    std::filesystem::create_symlink(path("real/main.h5"), path("main.h5"));
    EXPECT_THAT(blocks_below(read_file(path("main.h5"))), ElementsAre(listed(20, "other/b")));
}

TEST_P(HostileLookup, files_behind_links_are_opened_to_read_only)
{
    {
        const FileId other = create_file(path("other.h5"));
        make_block(other, block("b"), 20);
    }
    link_external("other.h5", "/", file, "other");
    // HDF5 refuses to write to what the process has open for reading, so only a reader gets at the block.
    const FileId open_for_reading = read_file(path("other.h5"));
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "other/b")));
}

TEST_P(HostileLookup, files_that_the_process_is_writing_are_followed)
{
    const FileId other = create_file(path("other.h5"));
    make_block(other, block("b"), 20);
    link_external("other.h5", "/", file, "other");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "other/b")));
    make_block(other, block("c"), 30);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "other/b"), listed(30, "other/c")));
}

TEST_P(HostileLookup, objects_that_are_no_groups_are_no_blocks)
{
    const auto make_typed = [&](const std::string& name) {
        const TypeId type(H5Tcopy(H5T_NATIVE_INT), "type");
        ASSERT_GE(H5Tcommit2(file, name.c_str(), type, with_parents(), H5P_DEFAULT, H5P_DEFAULT), 0);
        make_integer(type, "block", 10);
    };
    make_integer(make_dataset(file, block("a")), "block", 10);
    make_integer(make_dataset(file, "vakheader"), "block", 10);
    make_typed(block("b"));
    link_soft("/" + block("a"), file, block("c"));
    make("d", 20);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "d")));
}

TEST_P(HostileLookup, blocks_without_a_readable_key_are_not_listed)
{
    const SpaceId scalar(H5Screate(H5S_SCALAR), "space"), null(H5Screate(H5S_NULL), "space");
    const TypeId text(H5Tcopy(H5T_C_S1), "type"), pointers(H5Tcopy(H5T_C_S1), "type");
    const TypeId enumeration(H5Tenum_create(H5T_NATIVE_INT), "type"),
        opaque(H5Tcreate(H5T_OPAQUE, 4), "type");
    H5Tset_size(text, 4);
    H5Tset_size(pointers, H5T_VARIABLE);
    const int32_t ten = 10;
    H5Tenum_insert(enumeration, "TEN", &ten);
    const float real = 10;
    const char* pointed = "10";
    make_group(file, block("missing"));
    make("zero", 0);
    make_odd_key("real", H5T_IEEE_F32LE, scalar, &real, H5T_NATIVE_FLOAT);
    make_odd_key("text", text, scalar, "10  ", text);
    make_odd_key("pointer", pointers, scalar, &pointed, pointers);
    make_odd_key("eight_bytes", H5T_STD_I64LE, 10);
    make_odd_key("null", H5T_STD_I32LE, null, &ten, H5T_NATIVE_INT32);
    make_odd_key("enumeration", enumeration, scalar, &ten, enumeration);
    make_odd_key("opaque", opaque, scalar, &ten, opaque);
    make_odd_key("bits", H5T_STD_B32LE, scalar, &ten, H5T_NATIVE_B32);
    make("readable", 10);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "readable")));
}

TEST_P(HostileLookup, keys_of_other_sizes_and_shapes_are_read)
{
    const std::array<int32_t, 3> three{30, 40, 50};
    const hsize_t extent = 3;
    make_odd_key("array", H5T_STD_I32LE, SpaceId(H5Screate_simple(1, &extent, nullptr), "space"),
                 three.data(), H5T_NATIVE_INT32);
    make_odd_key("big_endian", H5T_STD_I32BE, 10);
    make_odd_key("byte", H5T_STD_I8LE, -10);
    make_odd_key("unsigned", H5T_STD_U16LE, 65535);
    make("negative", -1);
    EXPECT_THAT(blocks_below(file),
                ElementsAre(listed(30, "array"), listed(10, "big_endian"), listed(-10, "byte"),
                            listed(-1, "negative"), listed(65535, "unsigned")));
}

TEST_P(HostileLookup, a_key_of_too_many_elements_is_not_read)
{
    const PropertiesId newest(H5Pcreate(H5P_FILE_ACCESS), "access list");
    H5Pset_libver_bounds(newest, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    const FileId big(H5Fcreate(path("big.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, newest), "big.h5");
    const auto make_key_of = [&](const std::string& place, hsize_t extent) {
        const ObjectId group = make_group(big, block(place));
        const SpaceId space(H5Screate_simple(1, &extent, nullptr), "space");
        const AttributeId key(H5Acreate2(group, "block", H5T_STD_I8LE, space, H5P_DEFAULT, H5P_DEFAULT),
                              "block");
        ASSERT_GE(H5Awrite(key, H5T_NATIVE_INT8, std::vector<int8_t>(extent, 10).data()), 0);
    };
    make_key_of("at_limit", hsize_t{16} << 20);
    make_key_of("above", (hsize_t{16} << 20) + 1);
    EXPECT_THAT(blocks_below(big), ElementsAre(listed(10, "at_limit")));
}

// Each structure of the file's groups damaged in turn: what can be listed is, and nothing else happens.
TEST_P(HostileLookup, damaged_groups_are_survived_and_told)
{
    make("a/b", 10);
    make("c/d", 20);
    make("e", 30);
    const std::string name = close_file();
    std::stringstream whole;
    whole << std::ifstream(name, std::ios::binary).rdbuf();
    const std::string sound = whole.str();
    int damaged = 0, incomplete = 0;
    for (const char* signature : {"TREE", "SNOD", "HEAP"})
        for (size_t at = sound.find(signature); at != std::string::npos; at = sound.find(signature, at + 1)) {
            std::string bytes = sound;
            bytes[at] = '?';
            std::ofstream(path("damaged.h5"), std::ios::binary) << bytes;
            const FileId broken = read_file(path("damaged.h5"));
            List list;
            CatalogueTest::look_up(GetParam().lookup, broken, list);
            EXPECT_EQ(list.output, nothing_printed) << signature << at;
            EXPECT_LE(list.nblocks, 3);
            EXPECT_EQ(list.ierr, list.nblocks < 3 ? 1 : 0) << signature << at;
            ++damaged;
            incomplete += list.ierr;
        }
    EXPECT_GT(damaged, 10);
    EXPECT_GT(incomplete, 5);
}

}  // namespace vak::test
