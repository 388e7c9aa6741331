// VAK_SEARCHBLOCKS and VAK1_SEARCHBLOCKS: every criterion alone and with others, and what is printed.
#include <array>
#include <map>

#include "catalogue/catalogue_test.h"

namespace vak::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Criteria none of which applies, to be changed one by one.
struct Wanted {
    std::string blocktype = padded("undefined"), series = padded("undefined"), etyp = padded("undefined"),
                etypvar = padded("undefined"), etypzone = padded("undefined");
    int32_t zoneid = -1, state = -1, nent = -1, nindex = -2;
};

}  // namespace

class BlockSearch : public BothCatalogues {
protected:
    void search(const Wanted& w, List& list) { search(w, file, list); }
    void search(const Wanted& w, hid_t start, List& list)
    {
        const auto routine = legacy() ? VAK1_SEARCHBLOCKS : VAK_SEARCHBLOCKS;
        list.output = call([&] {
            routine(&start, w.blocktype.data(), w.series.data(), w.etyp.data(), w.etypvar.data(),
                    w.etypzone.data(), &w.zoneid, &w.state, &w.nent, &w.nindex, &list.collect, &list.verbose,
                    &list.capacity, &list.pool_size, &list.nblocks, &list.total_len, &list.got.keys,
                    &list.got.offsets, &list.got.paths, &list.ierr);
        });
    }
    // The places of the blocks that match; a block's own group is cut off.
    std::vector<std::string> found(const Wanted& wanted)
    {
        List list;
        search(wanted, list);
        EXPECT_EQ(list.output, nothing_printed);
        EXPECT_EQ(list.ierr, 0);
        std::vector<std::string> places;
        for (int32_t i = 0; i < list.nblocks; ++i) {
            const std::string path = list.got.paths + list.got.offsets[i];
            places.push_back(path.substr(0, path.find(std::string("/") + GetParam().block)));
        }
        return places;
    }

    static bool legacy() { return GetParam().lookup == vak1_lookup; }

    static void make_text(hid_t object, const char* name, const std::string& value,
                          H5T_str_t padding = H5T_STR_SPACEPAD)
    {
        const TypeId type(H5Tcopy(H5T_C_S1), "type");
        H5Tset_size(type, value.size());
        H5Tset_strpad(type, padding);
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const AttributeId attribute(H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT), name);
        ASSERT_GE(H5Awrite(attribute, type, value.data()), 0);
    }
    // A block with these attributes of 256 characters and of one integer.
    ObjectId make(const std::string& place, int32_t key, const std::map<std::string, std::string>& texts,
                  const std::map<std::string, int32_t>& integers = {})
    {
        ObjectId group = BothCatalogues::make(place, key);
        for (const auto& [name, value] : texts) make_text(group, name.c_str(), padded(value));
        for (const auto& [name, value] : integers) make_integer(group, name.c_str(), value);
        return group;
    }
};
IN_BOTH_CATALOGUES(BlockSearch);

TEST_P(BlockSearch, without_criteria_every_block_is_listed_the_header_too)
{
    make("a", 10, {});
    make("b", 20, {{"blocktype", "indices"}});
    make_group(file, "vakheader");
    EXPECT_THAT(found({}), ElementsAre("a", "b", "vakheader"));
    Wanted blank;
    blank.blocktype = blank.series = blank.etyp = blank.etypvar = blank.etypzone = padded("");
    EXPECT_THAT(found(blank), ElementsAre("a", "b", "vakheader"));
    Wanted empty;
    empty.blocktype = empty.series = empty.etyp = empty.etypvar = empty.etypzone = std::string(256, '\0');
    EXPECT_THAT(found(empty), ElementsAre("a", "b", "vakheader"));
}

TEST_P(BlockSearch, any_criterion_leaves_the_header_out)
{
    make_group(file, "singlestate/state000000000005/vakheader");
    EXPECT_THAT(found({.state = 5}), IsEmpty());
    EXPECT_THAT(found({.nent = 0}), IsEmpty());
    EXPECT_THAT(found({.blocktype = padded("vakheader")}), IsEmpty());
}

TEST_P(BlockSearch, each_text_is_compared_with_the_attribute_of_its_name)
{
    make("t", 1000, {{"blocktype", "X"}});
    make("s", 1000, {{"series", "X"}});
    make("e", 1000, {{"etyp", "X"}});
    make("v", 1000, {{"etypvar", "X"}});
    make("z", 1000, {{"etypzone", "X"}});
    EXPECT_THAT(found({.blocktype = padded("X")}), ElementsAre("t"));
    EXPECT_THAT(found({.series = padded("X")}), ElementsAre("s"));
    EXPECT_THAT(found({.etyp = padded("X")}), ElementsAre("e"));
    EXPECT_THAT(found({.etypvar = padded("X")}), ElementsAre("v"));
    EXPECT_THAT(found({.etypzone = padded("X")}), ElementsAre("z"));
}

TEST_P(BlockSearch, each_number_is_compared_with_the_attribute_of_its_name)
{
    make("z", 1000, {}, {{"zoneid", 3}});
    make("n", 1000, {}, {{"nent", 3}});
    make("i", 1000, {}, {{"nindex", 3}});
    EXPECT_THAT(found({.zoneid = 3}), ElementsAre("z"));
    EXPECT_THAT(found({.nent = 3}), ElementsAre("n"));
    EXPECT_THAT(found({.nindex = 3}), ElementsAre("i"));
}

TEST_P(BlockSearch, numbers_from_0_apply_and_nindex_from_minus_1)
{
    make("a", 1050, {}, {{"zoneid", 0}, {"nent", 0}, {"nindex", -1}});
    make("b", 1000, {}, {{"zoneid", -1}, {"nent", -1}, {"nindex", 0}});
    EXPECT_THAT(found({.zoneid = 0}), ElementsAre("a"));
    EXPECT_THAT(found({.nent = 0}), ElementsAre("a"));
    EXPECT_THAT(found({.nindex = -1}), ElementsAre("a"));
    EXPECT_THAT(found({.nindex = 0}), ElementsAre("b"));
    const Wanted lowest{.zoneid = INT32_MIN, .state = INT32_MIN, .nent = INT32_MIN, .nindex = INT32_MIN};
    EXPECT_THAT(found(lowest), ElementsAre("a", "b"));
    EXPECT_THAT(found({.zoneid = -1, .nent = -1, .nindex = -2}), ElementsAre("a", "b"));
}

TEST_P(BlockSearch, all_criteria_that_apply_are_to_be_met)
{
    const std::map<std::string, std::string> texts{{"blocktype", "multientityresults"},
                                                   {"series", "S"},
                                                   {"etyp", "NODE"},
                                                   {"etypvar", "V"},
                                                   {"etypzone", "Z"}};
    const std::map<std::string, int32_t> integers{{"zoneid", 1}, {"nent", 8}, {"nindex", 1}};
    make("singlestate/state000000000004", 1050, texts, integers);
    const Wanted all{.blocktype = padded("multientityresults"),
                     .series = padded("S"),
                     .etyp = padded("NODE"),
                     .etypvar = padded("V"),
                     .etypzone = padded("Z"),
                     .zoneid = 1,
                     .state = 4,
                     .nent = 8,
                     .nindex = 1};
    EXPECT_THAT(found(all), ElementsAre("singlestate/state000000000004"));
    for (const auto text :
         {&Wanted::blocktype, &Wanted::series, &Wanted::etyp, &Wanted::etypvar, &Wanted::etypzone}) {
        Wanted other = all;
        other.*text = padded("other");
        EXPECT_THAT(found(other), IsEmpty());
    }
    for (const auto number : {&Wanted::zoneid, &Wanted::state, &Wanted::nent, &Wanted::nindex}) {
        Wanted other = all;
        ++(other.*number);
        EXPECT_THAT(found(other), IsEmpty());
    }
}

TEST_P(BlockSearch, etyp_is_compared_with_the_first_type_that_the_block_has)
{
    make("a", 1000, {{"etyp", "X"}});
    make("b", 300, {{"etypelem", "X"}});
    make("c", 100, {{"etyppart", "X"}});
    make("d", 400, {{"etypcoll", "X"}});
    make("e", 40, {{"etyptext", "X"}});
    make("f", 300, {{"etyp", "Y"}, {"etypelem", "X"}, {"etyppart", "X"}});
    make("g", 300, {{"etypelem", "Y"}, {"etyppart", "X"}, {"etyptext", "X"}});
    make("h", 300, {{"etypnode", "X"}});
    EXPECT_THAT(found({.etyp = padded("X")}), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_THAT(found({.etyp = padded("Y")}), ElementsAre("f", "g"));
}

TEST_P(BlockSearch, nent_is_compared_with_the_first_count_that_the_block_has)
{
    make("a", 1000, {}, {{"nent", 7}});
    make("b", 300, {}, {{"nele", 7}});
    make("c", 100, {}, {{"npart", 7}});
    make("d", 300, {}, {{"nent", 8}, {"nele", 7}});
    make("e", 400, {}, {{"ncoll", 7}});
    EXPECT_THAT(found({.nent = 7}), ElementsAre("a", "b", "c"));
    EXPECT_THAT(found({.nent = 8}), ElementsAre("d"));
}

TEST_P(BlockSearch, texts_are_equal_by_their_significant_characters)
{
    make_text(BothCatalogues::make("blanks", 10), "etyp", padded("NODE"));
    make_text(BothCatalogues::make("long", 10), "etyp", padded("NODE", 300));
    make_text(BothCatalogues::make("nulls", 10), "etyp", "NODE" + std::string(252, '\0'), H5T_STR_NULLPAD);
    make_text(BothCatalogues::make("short", 10), "etyp", "NODE");
    make_text(BothCatalogues::make("stray", 10), "etyp", "NODE" + std::string("\0rest of a buffer", 17));
    make_text(BothCatalogues::make("zother", 10), "etyp", padded("NODES"));
    make_text(BothCatalogues::make("zzcase", 10), "etyp", padded("node"));
    const auto equal = ElementsAre("blanks", "long", "nulls", "short", "stray");
    EXPECT_THAT(found({.etyp = padded("NODE")}), equal);
    EXPECT_THAT(found({.etyp = "NODE"}), equal);
    EXPECT_THAT(found({.etyp = "NODE \t" + std::string(250, '\n')}), equal);
    EXPECT_THAT(found({.etyp = padded(" NODE")}), IsEmpty());
    EXPECT_THAT(found({.etyp = padded("NOD")}), IsEmpty());
}

TEST_P(BlockSearch, a_criterion_of_256_characters_needs_no_end)
{
    make("a", 10, {{"etyp", std::string(256, 'x')}});
    EXPECT_THAT(found({.etyp = std::string(256, 'x') + "yyy"}), ElementsAre("a"));
}

TEST_P(BlockSearch, only_the_word_undefined_itself_is_no_criterion)
{
    make("a", 10, {{"etyp", "undefined"}});
    make("b", 10, {{"etyp", "Undefined"}});
    EXPECT_THAT(found({.etyp = "undefined"}), ElementsAre("a", "b"));
    EXPECT_THAT(found({.etyp = padded("Undefined")}), ElementsAre("b"));
    EXPECT_THAT(found({.etyp = padded("undefined1")}), IsEmpty());
    EXPECT_THAT(found({.etyp = padded(" undefined")}), IsEmpty());
}

TEST_P(BlockSearch, a_block_that_lacks_the_attribute_or_has_another_kind_of_it_does_not_match)
{
    const ObjectId bad = make("bad", 10, {{"nent", "7"}, {"nindex", "1"}}, {{"etyp", 7}, {"etypvar", 7}});
    make_text(bad, "etypelem", "NODE");
    make_integer(bad, "nele", 7);
    make("lacking", 10, {});
    make("sound", 10, {{"etyp", "NODE"}}, {{"nent", 7}});
    EXPECT_THAT(found({.etyp = padded("NODE")}), ElementsAre("sound"));
    EXPECT_THAT(found({.nent = 7}), ElementsAre("sound"));
    EXPECT_THAT(found({.etypvar = padded("7")}), IsEmpty());
    EXPECT_THAT(found({.nindex = 1}), IsEmpty());
}

TEST_P(BlockSearch, texts_of_variable_length_and_of_no_length_do_not_match)
{
    const TypeId pointers(H5Tcopy(H5T_C_S1), "type");
    H5Tset_size(pointers, H5T_VARIABLE);
    const SpaceId scalar(H5Screate(H5S_SCALAR), "space"), null(H5Screate(H5S_NULL), "space");
    const char* pointed = "NODE";
    const ObjectId a = BothCatalogues::make("a", 10), b = BothCatalogues::make("b", 10);
    const AttributeId of_a(H5Acreate2(a, "etyp", pointers, scalar, H5P_DEFAULT, H5P_DEFAULT), "etyp");
    const AttributeId of_b(H5Acreate2(b, "etyp", H5T_C_S1, null, H5P_DEFAULT, H5P_DEFAULT), "etyp");
    ASSERT_GE(H5Awrite(of_a, pointers, &pointed), 0);
    EXPECT_THAT(found({.etyp = padded("NODE")}), IsEmpty());
}

TEST_P(BlockSearch, of_an_array_of_texts_the_first_is_compared)
{
    const ObjectId group = BothCatalogues::make("a", 400);
    const TypeId type(H5Tcopy(H5T_C_S1), "type");
    H5Tset_size(type, 8);
    const hsize_t two = 2;
    const SpaceId space(H5Screate_simple(1, &two, nullptr), "space");
    const AttributeId attribute(H5Acreate2(group, "etyp", type, space, H5P_DEFAULT, H5P_DEFAULT), "etyp");
    ASSERT_GE(H5Awrite(attribute, type, fields({"NODE", "ELEM"}, 8).data()), 0);
    EXPECT_THAT(found({.etyp = padded("NODE")}), ElementsAre("a"));
    EXPECT_THAT(found({.etyp = padded("ELEM")}), IsEmpty());
}

TEST_P(BlockSearch, the_state_is_the_number_of_the_last_state_level)
{
    for (const char* place : {"constant/NODE", "singlestate/state000000000005/NODE",
                              "singlestate/state000000000005/state000000000007/NODE",
                              "singlestate/state000000000012/NODE", "singlestate/state002147483647/NODE"})
        make(place, 1000, {});
    EXPECT_THAT(found({.state = 5}), ElementsAre("singlestate/state000000000005/NODE"));
    EXPECT_THAT(found({.state = 7}), ElementsAre("singlestate/state000000000005/state000000000007/NODE"));
    EXPECT_THAT(found({.state = INT32_MAX}), ElementsAre("singlestate/state002147483647/NODE"));
    EXPECT_THAT(found({.state = 1}), IsEmpty());
    EXPECT_THAT(found({.state = 0}), IsEmpty());
}

TEST_P(BlockSearch, a_path_that_begins_with_a_state_counts)
{
    make("singlestate/state000000000005/NODE", 1000, {});
    List list;
    search({.state = 5}, open_object(file, "singlestate"), list);
    EXPECT_THAT(list.blocks(), ElementsAre(listed(1000, "state000000000005/NODE")));
    List below;
    search({.state = 5}, open_object(file, "singlestate/state000000000005"), below);
    EXPECT_EQ(below.nblocks, 0);
}

TEST_P(BlockSearch, an_index_or_set_behind_the_number_of_a_state_is_no_part_of_it)
{
    make("singlestate/state0000000000053_set2", 2100, {});
    make("singlestate/state000000000006_set2", 2100, {});
    EXPECT_THAT(found({.state = 5}), ElementsAre("singlestate/state0000000000053_set2"));
    EXPECT_THAT(found({.state = 6}), ElementsAre("singlestate/state000000000006_set2"));
    EXPECT_THAT(found({.state = 53}), IsEmpty());
}

TEST_P(BlockSearch, names_that_only_begin_like_a_state_are_none)
{
    make("singlestate/state000000000005/states/stateX", 1000, {});
    make("singlestate/state-00000000003/statement", 1000, {});
    make("statics/mystate000000000005", 1000, {});
    EXPECT_THAT(found({.state = 5}), ElementsAre("singlestate/state000000000005/states/stateX"));
    EXPECT_THAT(found({.state = 3}), IsEmpty());
}

TEST_P(BlockSearch, counting_gives_what_collecting_gives)
{
    make("a", 1000, {{"etyp", "X"}});
    make("bb", 1000, {{"etyp", "X"}});
    make("c", 1000, {{"etyp", "Y"}});
    List counted, collected;
    counted.collect = 0;
    search({.etyp = "X"}, counted);
    EXPECT_EQ(counted.got, Arrays());
    EXPECT_EQ(counted.nblocks, 2);
    search({.etyp = "X"}, collected);
    EXPECT_THAT(collected.blocks(), ElementsAre(listed(1000, "a"), listed(1000, "bb")));
    EXPECT_EQ(counted.total_len, collected.total_len);
    EXPECT_EQ(collected.total_len, static_cast<int64_t>(block("a").size() + block("bb").size()) + 2);
}

TEST_P(BlockSearch, arrays_grow_as_in_a_lookup)
{
    for (const char* name : {"a", "b", "c"}) make(name, 1000, {{"etyp", "X"}});
    std::array<int32_t, 1> keys{};
    std::array<int64_t, 2> offsets{};
    std::array<char, 1> pool{};
    List list(1, 1, {keys.data(), offsets.data(), pool.data()});
    search({.etyp = "X"}, list);
    EXPECT_EQ(list.capacity, 4);
    EXPECT_NE(list.got.keys, keys.data());
    EXPECT_THAT(list.blocks(), ElementsAre(listed(1000, "a"), listed(1000, "b"), listed(1000, "c")));
}

TEST_P(BlockSearch, the_listing_is_headed_by_the_routine)
{
    make("a", 1000, {{"etyp", "X"}});
    make("b", 1000, {{"etyp", "Y"}});
    List list;
    list.verbose = 1;
    search({.etyp = "Y"}, list);
    EXPECT_EQ(
        list.output,
        (Output{std::string("\n VAK INFO ") + (legacy() ? "VAK1_SEARCHBLOCKS" : "VAK_SEARCHBLOCKS") +
                    ": 1 blocks found - total path len: " + std::to_string(block("b").size() + 1) +
                    "\n\n      block:   blockkey path\n          0:       1000 \"" + block("b") + "\"\n\n",
                ""}));
}

TEST_P(BlockSearch, a_bad_identifier_gives_minus_1_and_0_blocks)
{
    List list;
    list.verbose = 1;
    search({}, hid_t{-1}, list);
    EXPECT_EQ(list.output, nothing_printed);
    EXPECT_EQ(list.ierr, -1);
    EXPECT_EQ(list.nblocks, 0);
    EXPECT_EQ(list.total_len, 0);
    EXPECT_EQ(list.got, Arrays());
}

TEST_P(BlockSearch, attributes_of_the_blocks_own_group_are_compared_not_of_those_around_it)
{
    const ObjectId around = make_group(file, "a");
    make_text(around, "etyp", "X");
    make("a", 1000, {{"etyp", "Y"}});
    EXPECT_THAT(found({.etyp = "X"}), IsEmpty());
    EXPECT_THAT(found({.etyp = "Y"}), ElementsAre("a"));
}

}  // namespace vak::test
