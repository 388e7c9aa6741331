// vak_lookup and vak1_lookup on sound files: which blocks are found, in whose arrays, what is printed.
#include <array>
#include <numeric>

#include "catalogue/catalogue_test.h"

namespace vak::test {

using testing::ElementsAre;
using testing::IsEmpty;

using BlockLookup = BothCatalogues;
IN_BOTH_CATALOGUES(BlockLookup);
using CurrentLookup = CatalogueTest;
using LegacyLookup = CatalogueTest;

TEST_P(BlockLookup, an_empty_file_has_no_blocks)
{
    List list;
    look_up(list);
    EXPECT_EQ(list.ierr, 0);
    EXPECT_EQ(list.nblocks, 0);
    EXPECT_EQ(list.total_len, 0);
    EXPECT_EQ(list.got.offsets[0], 0);
}

TEST_P(BlockLookup, a_file_with_only_a_header_has_one_block_of_key_1)
{
    const ObjectId header = make_group(file, "vakheader");
    make_dataset(header, "vakheader");
    EXPECT_THAT(blocks_below(file), ElementsAre("1 vakheader"));
}

TEST_P(BlockLookup, blocks_come_in_the_order_of_the_names)
{
    make("singlestate/state000000000002/NODE/DISPLACEMENT", 1000);
    make("singlestate/state000000000001/NODE/DISPLACEMENT", 1001);
    make_group(file, "vakheader");
    make("constant/system", 10);
    make("multistate/S", 1050);
    make("constant/NODE", 200);
    EXPECT_THAT(
        blocks_below(file),
        ElementsAre(listed(200, "constant/NODE"), listed(10, "constant/system"), listed(1050, "multistate/S"),
                    listed(1001, "singlestate/state000000000001/NODE/DISPLACEMENT"),
                    listed(1000, "singlestate/state000000000002/NODE/DISPLACEMENT"), "1 vakheader"));
}

TEST_P(BlockLookup, names_are_ordered_as_unsigned_bytes)
{
    for (const char* name : {"b", "B", "a", "ab", "a b", "\xc3\xa4"}) make(name, 10);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "B"), listed(10, "a"), listed(10, "a b"),
                                                listed(10, "ab"), listed(10, "b"), listed(10, "\xc3\xa4")));
}

TEST_P(BlockLookup, groups_of_the_newer_format_are_listed_alike)
{
    const PropertiesId list(H5Pcreate(H5P_GROUP_CREATE), "group creation list");
    H5Pset_link_phase_change(list, 0, 0);
    const ObjectId dense(H5Gcreate2(file, "dense", H5P_DEFAULT, list, H5P_DEFAULT), "dense");
    for (const char* name : {"c", "a", "b"}) make_block(dense, block(name), 20);
    EXPECT_THAT(blocks_below(file),
                ElementsAre(listed(20, "dense/a"), listed(20, "dense/b"), listed(20, "dense/c")));
}

TEST_P(BlockLookup, paths_begin_at_the_group_given)
{
    make("constant/system", 10);
    make("singlestate/state000000000001/NODE", 1000);
    const ObjectId state = open_object(file, "singlestate/state000000000001");
    EXPECT_THAT(blocks_below(state), ElementsAre(listed(1000, "NODE")));
    const ObjectId node = open_object(file, "singlestate/state000000000001/NODE");
    EXPECT_THAT(blocks_below(node), ElementsAre(std::string("1000 ") + GetParam().block));
}

TEST_P(BlockLookup, a_header_is_listed_wherever_it_stands)
{
    make_group(file, "a/b/vakheader");
    EXPECT_THAT(blocks_below(file), ElementsAre("1 a/b/vakheader"));
}

TEST_P(BlockLookup, nothing_below_a_block_is_listed)
{
    make("a", 10);
    make(block("a") + "/b", 20);
    make("vakheader/c", 30);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a"), "1 vakheader"));
}

TEST_P(BlockLookup, datasets_and_types_are_passed_over)
{
    make("a", 10);
    make_dataset(file, "a/set");
    make_dataset(file, "set");
    ASSERT_GE(H5Tcommit2(file, "type", TypeId(H5Tcopy(H5T_NATIVE_INT), "type"), H5P_DEFAULT, H5P_DEFAULT,
                         H5P_DEFAULT),
              0);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "a")));
}

TEST_P(BlockLookup, a_name_of_any_length_is_listed_whole)
{
    const std::string name(1000, 'n');
    make(name, 10);
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, name)));
}

TEST_F(CurrentLookup, groups_named_as_parts_of_legacy_blocks_are_entered)
{
    for (const char* name : {"data", "header", "index"})
        make_block(file, std::string(name) + "/vakblock", 10);
    EXPECT_THAT(blocks_below(vak_lookup, file),
                ElementsAre("10 data/vakblock", "10 header/vakblock", "10 index/vakblock"));
}

TEST_F(LegacyLookup, data_and_index_are_not_entered)
{
    make_block(file, "a/header", 10);
    make_block(file, "a/data/b/header", 20);
    make_block(file, "a/index/b/header", 30);
    make_block(file, "a/other/header", 40);
    EXPECT_THAT(blocks_below(vak1_lookup, file), ElementsAre("10 a/header", "40 a/other/header"));
}

TEST_F(LegacyLookup, a_group_named_vakblock_is_a_group_like_others)
{
    make_block(file, "a/vakblock/header", 10);
    EXPECT_THAT(blocks_below(vak1_lookup, file), ElementsAre("10 a/vakblock/header"));
    EXPECT_THAT(blocks_below(vak_lookup, file), IsEmpty());
}

TEST_P(BlockLookup, soft_links_are_followed)
{
    make("store/a", 10);
    link_soft("/store/a", file, "by_path");
    link_soft("store", file, "relative");
    link_soft("/store/../store", file, "never");  // no such name: HDF5 knows no parent folder
    link_soft("/" + block("store/a"), file, block("direct"));
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "by_path"), listed(10, "direct"),
                                                listed(10, "relative/a"), listed(10, "store/a")));
}

TEST_P(BlockLookup, a_block_is_listed_under_every_hard_link_to_it)
{
    make("model/a", 10);
    link_hard("model", file, "post");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(10, "model/a"), listed(10, "post/a")));
}

TEST_P(BlockLookup, external_links_are_followed)
{
    {
        const FileId other = create_file(path("other.h5"));
        make_block(other, "post/" + block("a"), 20);
        make_block(other, block("b"), 30);
    }
    link_external("other.h5", "/post", file, "all");
    link_external(path("other.h5"), "/" + block("b"), file, block("one"));
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(20, "all/a"), listed(30, "one")));
}

TEST_P(BlockLookup, links_are_followed_from_linked_groups_on)
{
    {
        const FileId third = create_file(path("third.h5"));
        make_block(third, "deep/" + block("c"), 30);
        const FileId second = create_file(path("second.h5"));
        make_group(second, "root/sub");
        link_external("third.h5", "/deep", second, "root/sub/x");
        link_soft("/root/sub/x/c", second, "root/sub/y");
    }
    link_external("second.h5", "/root", file, "a/b/x");
    link_soft("b/x/sub", file, "a/y");
    EXPECT_THAT(blocks_below(file), ElementsAre(listed(30, "a/b/x/sub/x/c"), listed(30, "a/b/x/sub/y"),
                                                listed(30, "a/y/x/c"), listed(30, "a/y/y")));
}

TEST_P(BlockLookup, many_external_links_in_a_deep_group_are_followed)
{
    {
        const FileId other = create_file(path("other.h5"));
        make_block(other, block("b"), 30);
    }
    for (int i = 0; i < 50; ++i) link_external("other.h5", "/b", file, "a/b/c/d/x" + std::to_string(i));
    EXPECT_EQ(blocks_below(file).size(), 50U);
}

TEST_P(BlockLookup, counting_gives_what_collecting_gives_and_touches_nothing_else)
{
    make("constant/system", 10);
    make_group(file, "vakheader");
    List counted;
    counted.collect = 0;
    counted.verbose = 1;
    counted.output = call([&] {
        GetParam().lookup(&file, &counted.collect, &counted.verbose, nullptr, nullptr, &counted.nblocks,
                          &counted.total_len, nullptr, nullptr, nullptr, &counted.ierr);
    });
    EXPECT_EQ(counted.output, nothing_printed);
    EXPECT_EQ(counted.ierr, 0);
    List collected;
    look_up(collected);
    EXPECT_EQ(collected.nblocks, 2);
    EXPECT_EQ(counted.nblocks, 2);
    EXPECT_EQ(collected.total_len, static_cast<int64_t>(block("constant/system").size()) + 1 + 10);
    EXPECT_EQ(counted.total_len, collected.total_len);
}

TEST_P(BlockLookup, a_negative_collect_counts_and_any_positive_one_collects)
{
    make("a", 10);
    for (const int32_t collect : {INT32_MIN, -1, 0}) {
        List list;
        list.collect = collect;
        look_up(list);
        EXPECT_EQ(list.nblocks, 1);
        EXPECT_EQ(list.got, Arrays());
        EXPECT_EQ(list.capacity, 0);
        EXPECT_EQ(list.pool_size, 0);
    }
    List list;
    list.collect = 2;
    look_up(list);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a")));
}

TEST_P(BlockLookup, offsets_and_paths_are_packed_from_0_to_the_total_length)
{
    make("a", 10);
    make("bc", 20);
    List list;
    look_up(list);
    const std::string pool = block("a") + '\0' + block("bc") + '\0';
    EXPECT_EQ(std::string(list.got.paths, pool.size()), pool);
    EXPECT_EQ(list.total_len, static_cast<int64_t>(pool.size()));
    EXPECT_THAT(std::vector<int64_t>(list.got.offsets, list.got.offsets + 3),
                ElementsAre(0, static_cast<int64_t>(block("a").size()) + 1, list.total_len));
}

TEST_P(BlockLookup, without_arrays_those_of_the_default_capacities_are_made)
{
    make("a", 10);
    List list(-1, -1, {});
    look_up(list);
    EXPECT_EQ(list.capacity, 10000);
    EXPECT_EQ(list.pool_size, 2560000);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a")));
}

TEST_P(BlockLookup, a_capacity_without_an_array_makes_one_of_it)
{
    make("a", 10);
    List list(3, 100, {});
    look_up(list);
    EXPECT_EQ(list.capacity, 3);
    EXPECT_EQ(list.pool_size, 100);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a")));
}

TEST_P(BlockLookup, two_calls_fill_arrays_of_exactly_the_size_counted)
{
    for (const char* name : {"a", "b", "c"}) make(name, 10);
    List counted;
    counted.collect = 0;
    look_up(counted);
    const auto n = static_cast<size_t>(counted.nblocks);
    std::vector<int32_t> keys(n);
    std::vector<int64_t> offsets(n + 1);
    std::vector<char> pool(static_cast<size_t>(counted.total_len));
    List list(counted.nblocks, counted.total_len, {keys.data(), offsets.data(), pool.data()});
    look_up(list);
    EXPECT_EQ(list.got, list.given);
    EXPECT_EQ(list.capacity, counted.nblocks);
    EXPECT_EQ(list.pool_size, counted.total_len);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a"), listed(10, "b"), listed(10, "c")));
}

TEST_P(BlockLookup, arrays_that_are_too_small_are_left_alone_and_larger_ones_take_their_place)
{
    for (const char* name : {"a", "b", "c"}) make(name, 10);
    std::array<int32_t, 1> keys{};
    std::array<int64_t, 2> offsets{};
    std::array<char, 4> pool{'#', '#', '#', '#'};
    List list(1, 4, {keys.data(), offsets.data(), pool.data()});
    look_up(list);
    EXPECT_EQ(list.ierr, 0);
    EXPECT_NE(list.got.keys, keys.data());
    EXPECT_NE(list.got.offsets, offsets.data());
    EXPECT_NE(list.got.paths, pool.data());
    EXPECT_THAT(pool, ElementsAre('#', '#', '#', '#'));
    EXPECT_THAT(list.blocks(), ElementsAre(listed(10, "a"), listed(10, "b"), listed(10, "c")));
}

TEST_P(BlockLookup, entries_grow_to_twice_the_capacity_and_the_pool_to_twice_the_length_needed)
{
    for (const char* name : {"a", "b", "c", "d", "e"}) make(name, 10);
    List list(1, 1, {});
    look_up(list);
    const auto length = static_cast<int64_t>(block("a").size()) + 1;
    EXPECT_EQ(list.capacity, 8);            // 1, 2, 4, 8
    EXPECT_EQ(list.pool_size, 6 * length);  // of 1 path, then of 3
    EXPECT_EQ(list.blocks().size(), 5U);
}

TEST_P(BlockLookup, more_than_10000_blocks_double_the_default_arrays)
{
    const ObjectId group = make_group(file, "g");
    const PropertiesId list_of_links = with_parents();
    for (int i = 0; i < 10001; ++i) {
        const std::string name = block(std::to_string(100000 + i));
        const ObjectId made(H5Gcreate2(group, name.c_str(), list_of_links, H5P_DEFAULT, H5P_DEFAULT), name);
        make_integer(made, "block", i + 1);
    }
    List list;
    look_up(list);
    EXPECT_EQ(list.ierr, 0);
    EXPECT_EQ(list.capacity, 20000);
    EXPECT_EQ(list.pool_size, 2560000);
    std::vector<int32_t> keys(10001);
    std::iota(keys.begin(), keys.end(), 1);
    EXPECT_EQ(std::vector<int32_t>(list.got.keys, list.got.keys + list.nblocks), keys);
    EXPECT_EQ(list.got.paths + list.got.offsets[10000], block("g/110000"));
    EXPECT_EQ(list.got.offsets[10001], list.total_len);
}

TEST_P(BlockLookup, the_listing_names_every_block)
{
    make("constant/system", 10);
    make("singlestate/state000000000001/NODE/DISPLACEMENT", 1000);
    make_group(file, "vakheader");
    List list;
    list.verbose = 1;
    look_up(list);
    const std::string heading = std::string("\n VAK INFO ") + GetParam().heading +
                                ": 3 blocks found - total path len: " + std::to_string(list.total_len) +
                                "\n\n";
    EXPECT_EQ(list.output.out, heading +
                                   "      block:   blockkey path\n"
                                   "          0:         10 \"" +
                                   block("constant/system") +
                                   "\"\n"
                                   "          1:       1000 \"" +
                                   block("singlestate/state000000000001/NODE/DISPLACEMENT") +
                                   "\"\n"
                                   "          2:          1 \"vakheader\"\n"
                                   "\n");
    EXPECT_EQ(list.output.err, "");
}

TEST_P(BlockLookup, the_listing_of_nothing_has_its_heading)
{
    List list;
    list.verbose = 7;
    look_up(list);
    EXPECT_EQ(list.output, (Output{std::string("\n VAK INFO ") + GetParam().heading +
                                       ": 0 blocks found - total path len: 0\n\n"
                                       "      block:   blockkey path\n\n",
                                   ""}));
}

TEST_P(BlockLookup, nothing_is_printed_with_verbose_0_or_below)
{
    make("a", 10);
    for (const int32_t verbose : {0, -1}) {
        List list;
        list.verbose = verbose;
        look_up(list);
        EXPECT_EQ(list.output, nothing_printed);
    }
}

TEST_P(BlockLookup, a_bad_identifier_gives_minus_1_and_0_blocks_and_leaves_the_arrays)
{
    make("a", 10);
    const ObjectId dataset = make_dataset(file, "set");
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    for (const hid_t bad : {hid_t{-1}, hid_t{0}, hid_t{4711}, hid_t{dataset}, hid_t{space}}) {
        int32_t key = 0;
        List list(0, -5, {&key, nullptr, nullptr});
        list.verbose = 1;
        CatalogueTest::look_up(GetParam().lookup, bad, list);
        EXPECT_EQ(list.output, nothing_printed);
        EXPECT_EQ(list.ierr, -1);
        EXPECT_EQ(list.nblocks, 0);
        EXPECT_EQ(list.total_len, 0);
        EXPECT_EQ(list.got, list.given);
        EXPECT_EQ(list.capacity, 0);
        EXPECT_EQ(list.pool_size, -5);
    }
}

TEST_P(BlockLookup, blocks_that_the_library_wrote_are_found)
{
    const std::string name = path("written.h5"), model = "model";
    const auto name_len = static_cast<int32_t>(name.size()), model_len = static_cast<int32_t>(model.size());
    const int32_t no = 0, create = 0, legacy = GetParam().lookup == vak1_lookup ? 1 : 0;
    vak_id group = -1;
    int32_t ierr = 4711;
    VAK_OPEN(name.data(), &name_len, model.data(), &model_len, "", &no, &group, &no, &create, &ierr);
    ASSERT_EQ(ierr, 0);
    (legacy ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER)(&group, nullptr, nullptr, &ierr);
    const std::string etypvar = padded("TIME");
    const int32_t nindex = 1, one = 1, flags = 0, float_size = 4;
    const float exponent = 1;
    const std::array<int32_t, 2> params{};
    if (legacy)
        VAK1_WRITE_INDEX(&group, &nindex, etypvar.data(), &one, &one, &one, &exponent, &one, &exponent,
                         &flags, params.data(), &float_size, &ierr);
    else
        VAK_WRITE_INDEX(&group, &nindex, etypvar.data(), nullptr, nullptr, &ierr);
    ASSERT_EQ(ierr, 0);
    EXPECT_THAT(blocks_below(group), ElementsAre(listed(20, "constant/indices"), "1 vakheader"));
    VAK_CLOSE(&group, &ierr);
}

}  // namespace vak::test
