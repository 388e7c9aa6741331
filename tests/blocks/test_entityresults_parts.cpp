// Entity results through the lower entries: parts of a block, slabs and points of its values, shared tables.
#include "samples/entityresults.h"

#include "support/block_test.h"

namespace vak::test {

namespace {

class EntityResultsParts : public BothFamilies {
protected:
    ObjectId group(const std::string& name)
    {
        return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }
    Result write_parts(const EntityResults& r, hid_t block, const ResultParts& parts,
                       hid_t shared = H5I_INVALID_HID)
    {
        return run([&] { return r.write_parts(block, shared, parts); });
    }
    Result read_parts(EntityResults& r, hid_t block, const ResultParts& parts)
    {
        return run([&] { return r.read_parts(block, parts); });
    }
    EntityResults complex_sample() const { return EntityResults::complex_of(family()); }
    // Below the block's group.
    std::string data(const std::string& name) const { return (legacy() ? "data/" : "") + name; }
    std::string head() const { return legacy() ? "header" : "."; }
};
INSTANTIATE_TEST_SUITE_P(, EntityResultsParts, both_families, family_name);

// The values as they are when `part` replaces those at the given places.
std::vector<float> with(std::vector<float> values, const std::vector<size_t>& places,
                        const std::vector<float>& part)
{
    for (size_t i = 0; i < places.size(); ++i) values[places[i]] = part[i];
    return values;
}

TEST_P(EntityResultsParts, each_bit_writes_its_part_alone)
{
    const auto r = sample<EntityResults>();
    const std::array<std::pair<int32_t, std::vector<std::string>>, 4> rows{{
        {1, {"block int32", "indexic int32"}},
        {2, {"indexident int32 [2]", "indexval float32 [2]"}},
        {4, {"entid int32 [3]", "fid int32 [3]", "operator", "weight"}},
        {8, {"res float32 [3,2]"}},
    }};
    for (const auto& [what, own] : rows) {
        SCOPED_TRACE(what);
        const ObjectId block = group(std::to_string(what));
        EXPECT_EQ(write_parts(r, block, {.what = what}), success);
        const std::string form = layout(block, ".");
        for (const auto& [other, names] : rows)
            for (const std::string& name : names) {
                if (legacy() && name == "indexic int32") continue;
                EXPECT_EQ(form.find(name) != std::string::npos, other == what) << name << " in " << form;
            }
    }
}

TEST_P(EntityResultsParts, parts_written_one_after_the_other_make_a_block)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    for (const int32_t what : {8, 4, 2, 1}) EXPECT_EQ(write_parts(written, block, {.what = what}), success);
    auto r = emptied(written);
    EXPECT_EQ(read(r, 2, "block"), status(1000));
    EXPECT_EQ(listing(r), listing(written));
}

TEST_P(EntityResultsParts, each_bit_reads_its_part_alone)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {}), success);
    auto r = emptied(written);
    r.nent = 3;
    r.ncoo = 2;
    r.index.nindex = 2;
    r.zone.fswitch = 1;
    r.zone.dmpswitch = 1;
    auto expected = r;
    for (const int32_t what : {2, 4, 8, 1}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(read_parts(r, block, {.what = what}), status(1000));
        EXPECT_EQ(r.found_flags, what == 8 || what == 1 ? 0 : untouched);
        if (what == 2) {
            expected.index.indexident = written.index.indexident;
            expected.index.indexval = written.index.indexval;
        }
        if (what == 4) expected.tables = written.tables;
        if (what == 8) expected.res = written.res;
        if (what == 1) expected = written;
        EXPECT_EQ(listing(r), listing(expected));
    }
}

TEST_P(EntityResultsParts, nothing_asked_for_gives_the_key)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {}), success);
    auto r = emptied(written);
    EXPECT_EQ(read_parts(r, block, {.what = 0}), status(1000));
    EXPECT_EQ(listing(r), listing(emptied(written)));
    EXPECT_EQ(write_parts(written, block, {.what = 0}), success);
}

TEST_P(EntityResultsParts, writing_leaves_the_callers_group_open)
{
    const auto r = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(r, block, {}), success);
    EXPECT_GT(H5Iis_valid(block), 0);
}

TEST_P(EntityResultsParts, data_size_is_that_of_the_values_alone)
{
    auto written = sample<EntityResults>();
    written.ivsize = 8;
    std::vector<double> values{0.1, 0.2, 0.3, 1e-9, 4.5, 1e30};
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {.data_size = 8, .res = values.data()}), success);
    EXPECT_EQ(dataset_values<double>(block, data("res")), values);
    EXPECT_EQ(dataset_values<float>(block, data("weight")), written.tables.weight);
    std::vector<double> back(6, -1);
    auto r = emptied(written);
    EXPECT_EQ(read_parts(r, block, {.data_size = 8, .res = back.data()}), status(1000));
    EXPECT_EQ(back, values);
    EXPECT_EQ(r.tables.weight, written.tables.weight);
}

TEST_P(EntityResultsParts, another_data_size_is_refused)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {.what = 8, .data_size = 5}),
              failure(-3001,
                      "VAK INTERNAL ERROR (2) in VAK_H5gettype - vak_type, data_size: 3 5\n"
                      "VAK INTERNAL ERROR (2) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 5 4 0 -1\n"));
}

TEST_P(EntityResultsParts, slab_is_written_into_a_block_that_is_there)
{
    for (const bool is_complex : {false, true}) {
        auto written = is_complex ? complex_sample() : sample<EntityResults>();
        const ObjectId block = group(is_complex ? "complex" : "real");
        EXPECT_EQ(write_parts(written, block, {}), success);
        std::vector<float> part{-1, -2, -3, -4};
        const ResultParts slab{.what = 8,
                               .mode = 1,
                               .start = {1, 0, 0},
                               .count = {2, is_complex ? 1 : 2, 2},
                               .res = part.data()};
        EXPECT_EQ(write_parts(written, block, slab), success);
        const std::vector<size_t> places =
            is_complex ? std::vector<size_t>{4, 5, 8, 9} : std::vector<size_t>{2, 3, 4, 5};
        EXPECT_EQ(dataset_values<float>(block, data("res")), with(written.res, places, part));
    }
}

TEST_P(EntityResultsParts, slab_into_a_new_block_creates_the_whole_array)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    std::vector<float> part{7, 8};
    EXPECT_EQ(write_parts(written, block, {.mode = 1, .start = {2, 0}, .count = {1, 2}, .res = part.data()}),
              success);
    EXPECT_EQ(dataset_values<float>(block, data("res")), (std::vector<float>{0, 0, 0, 0, 7, 8}));
}

TEST_P(EntityResultsParts, slab_is_read_without_the_rest)
{
    for (const bool is_complex : {false, true}) {
        const auto written = is_complex ? complex_sample() : sample<EntityResults>();
        const ObjectId block = group(is_complex ? "complex" : "real");
        EXPECT_EQ(write_parts(written, block, {}), success);
        auto r = written;
        r.res = std::vector<float>(3 * (is_complex ? 2U : 1U), -1);
        const ResultParts slab{.what = 8, .mode = 1, .start = {0, 1, 0}, .count = {3, 1, 2}};
        EXPECT_EQ(read_parts(r, block, slab), status(is_complex ? 1001 : 1000));
        const auto& w = written.res;
        EXPECT_EQ(r.res, is_complex ? (std::vector<float>{w[2], w[3], w[6], w[7], w[10], w[11]})
                                    : (std::vector<float>{w[1], w[3], w[5]}));
        EXPECT_EQ(r.found_flags, 0);
    }
}

// The number of points stands in start, the coordinates in count.
TEST_P(EntityResultsParts, points_are_written_and_read)
{
    for (const bool is_complex : {false, true}) {
        const auto written = is_complex ? complex_sample() : sample<EntityResults>();
        const ObjectId block = group(is_complex ? "complex" : "real");
        EXPECT_EQ(write_parts(written, block, {}), success);
        std::vector<float> part{-1, -2, -3};
        const std::vector<int64_t> at = is_complex ? std::vector<int64_t>{2, 1, 1, 0, 0, 0, 1, 0, 1}
                                                   : std::vector<int64_t>{2, 1, 0, 0, 1, 0};
        const std::vector<size_t> places =
            is_complex ? std::vector<size_t>{11, 0, 5} : std::vector<size_t>{5, 0, 2};
        EXPECT_EQ(write_parts(written, block,
                              {.what = 8, .mode = 2, .start = {3}, .count = at, .res = part.data()}),
                  success);
        EXPECT_EQ(dataset_values<float>(block, data("res")), with(written.res, places, part));
        auto r = written;
        r.res = {0, 0, 0};
        EXPECT_EQ(read_parts(r, block, {.what = 8, .mode = 2, .start = {3}, .count = at}),
                  status(is_complex ? 1001 : 1000));
        EXPECT_EQ(r.res, part);
    }
}

TEST_P(EntityResultsParts, parts_beyond_the_array_are_refused)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {}), success);
    auto r = emptied(written);
    r.nent = 3;
    r.ncoo = 2;
    const ResultParts slab{.what = 8, .mode = 1, .start = {2, 0}, .count = {2, 2}};
    EXPECT_EQ(write_parts(written, block, slab),
              failure(-6031,
                      "VAK INTERNAL ERROR (31) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 4 4 1 0\n"));
    EXPECT_EQ(read_parts(r, block, slab), failure(-6031,
                                                  "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, "
                                                  "data_size, error: res 3 4 0\n"));
    const ResultParts point{.what = 8, .mode = 2, .start = {1}, .count = {0, 2}};
    EXPECT_EQ(write_parts(written, block, point),
              failure(-6032,
                      "VAK INTERNAL ERROR (32) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, "
                      "error: res 3 4 4 2 1\n"));
    EXPECT_EQ(read_parts(r, block, point), failure(-6032,
                                                   "VAK INTERNAL ERROR (32) in VAK_H5Dread - name, vak_type, "
                                                   "data_size, error: res 3 4 1\n"));
    for (const int64_t start : {INT64_C(-1), INT64_MIN, INT64_MAX}) {
        const ResultParts far{.what = 8, .mode = 1, .start = {start, 0}, .count = {1, 2}};
        EXPECT_EQ(write_parts(written, block, far).ierr, -6031);
        EXPECT_EQ(read_parts(r, block, far).ierr, -6031);
    }
    EXPECT_EQ(dataset_values<float>(block, data("res")), written.res);
}

TEST_P(EntityResultsParts, part_of_no_elements_transfers_nothing)
{
    const auto written = sample<EntityResults>();
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(written, block, {}), success);
    auto r = emptied(written);
    r.nent = 3;
    r.ncoo = 2;
    for (const ResultParts& none : {ResultParts{.what = 8, .mode = 1, .start = {0, 0}, .count = {0, 2}},
                                    ResultParts{.what = 8, .mode = 1, .start = {0, 0}, .count = {-1, 2}},
                                    ResultParts{.what = 8, .mode = 2, .start = {0}, .count = {}},
                                    ResultParts{.what = 8, .mode = 2, .start = {-5}, .count = {}}}) {
        EXPECT_EQ(write_parts(written, block, none), success);
        EXPECT_EQ(read_parts(r, block, none), status(1000));
        EXPECT_EQ(r.res, emptied(written).res);
        EXPECT_EQ(r.found_flags, untouched);
    }
}

TEST_P(EntityResultsParts, another_mode_is_refused_aloud_on_writing_and_silently_on_reading)
{
    for (const bool is_complex : {false, true}) {
        const auto written = is_complex ? complex_sample() : sample<EntityResults>();
        const ObjectId block = group(is_complex ? "complex" : "real");
        EXPECT_EQ(write_parts(written, block, {.mode = 3}),
                  failure(-999, std::string("VAK ERROR writing block key ") + (is_complex ? "1001" : "1000") +
                                    " - invalid mode\n"));
        EXPECT_FALSE(exists(block, data("res")));
        EXPECT_EQ(dataset_values<int32_t>(block, data("entid")), written.tables.ids);
        EXPECT_EQ(write_parts(written, block, {.what = 8}), success);
        auto r = emptied(written);
        EXPECT_EQ(read_parts(r, block, {.mode = -1}), status(-999));
        EXPECT_EQ(r.tables.ids, written.tables.ids);
        EXPECT_EQ(r.res, emptied(written).res);
    }
}

TEST_P(EntityResultsParts, group_that_is_none_is_reported)
{
    auto r = sample<EntityResults>();
    EXPECT_EQ(write_parts(r, -7, {}), failure(-7, "VAK ERROR writing block entityresults\n"));
    EXPECT_EQ(read_parts(r, -7, {}), failure(-1, "VAK ERROR - header not found\n"));
}

TEST_P(EntityResultsParts, block_of_another_size_than_the_caller_knows_is_refused)
{
    auto known = sample<EntityResults>();
    auto other = known;
    other.nent = 2;
    const ObjectId block = group("block");
    EXPECT_EQ(write_parts(other, block, {}), success);
    EXPECT_EQ(read_parts(known, block, {.what = 4}).ierr, -6030);
    EXPECT_EQ(
        read_parts(known, block, {.what = 8}),
        failure(-6030,
                "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: res 3 4 0\n"));
}

TEST_P(EntityResultsParts, shared_tables_stand_once_and_every_block_links_them)
{
    auto r = sample<EntityResults>();
    const ObjectId shared = group("shared"), first = group("first"), second = group("second");
    EXPECT_EQ(write_parts(r, first, {.what = 31}, shared), success);
    EXPECT_EQ(layout(shared, "."), R"(
D entid int32 [3] compact links=2
D fid int32 [3] compact links=2
D operator char[256] [2] compact links=2
D weight float32 [3] compact links=2
)");
    auto other = r;
    other.tables.ids = {0, 0, 0};
    other.res = some_values(6, 50);
    EXPECT_EQ(write_parts(other, second, {.what = 31}, shared), success);
    EXPECT_EQ(dataset_values<int32_t>(shared, "entid"), r.tables.ids);
    EXPECT_THAT(layout(second, "."), testing::HasSubstr("entid int32 [3] compact links=3\n"));
    auto back = emptied(other);
    EXPECT_EQ(read(back, 2, "second"), status(1000));
    other.tables.ids = r.tables.ids;
    EXPECT_EQ(listing(back), listing(other));
}

TEST_P(EntityResultsParts, shared_tables_follow_the_switches)
{
    auto r = sample<EntityResults>();
    r.zone.fswitch = 0;
    r.zone.dmpswitch = 0;
    const ObjectId shared = group("shared"), block = group("block");
    EXPECT_EQ(write_parts(r, block, {.what = 31}, shared), success);
    EXPECT_EQ(layout(shared, "."), R"(
D entid int32 [3] compact links=2
D fidglob int32 compact links=2
)");
    auto back = emptied(r);
    EXPECT_EQ(read(back, 2, "block"), status(1000));
    EXPECT_EQ(listing(back), listing(r));
}

TEST_P(EntityResultsParts, block_that_has_tables_gets_no_new_links)
{
    const auto r = sample<EntityResults>();
    const ObjectId shared = group("shared"), block = group("block");
    EXPECT_EQ(write_parts(r, block, {}), success);
    EXPECT_EQ(write_parts(r, block, {.what = 31}, shared), success);
    EXPECT_THAT(layout(shared, "."), testing::Not(testing::HasSubstr("links")));
    EXPECT_THAT(layout(block, "."), testing::Not(testing::HasSubstr("links")));
}

TEST_P(EntityResultsParts, frame_switch_is_checked_where_the_shared_tables_are_written)
{
    auto r = sample<EntityResults>();
    r.zone.fswitch = 2;
    const ObjectId shared = group("shared"), first = group("first"), second = group("second");
    EXPECT_EQ(write_parts(r, first, {.what = 31}, shared), status(-123));
    EXPECT_FALSE(exists(first, data("entid")));
    EXPECT_EQ(dataset_values<int32_t>(shared, "entid"), r.tables.ids);
    // The tables are there now, as far as they go: they are linked, not checked again.
    EXPECT_EQ(write_parts(r, second, {.what = 31}, shared), success);
    EXPECT_EQ(dataset_values<int32_t>(second, data("entid")), r.tables.ids);
    EXPECT_FALSE(exists(second, data("fid")));
}

TEST_P(EntityResultsParts, shared_group_that_is_none_is_reported_by_the_storage_layer)
{
    const auto r = sample<EntityResults>();
    const ObjectId block = group("block");
    const Result result = write_parts(r, block, {.what = 31});
    EXPECT_LT(result.ierr, -2000);
    EXPECT_THAT(result.output.err, testing::StartsWith("VAK INTERNAL ERROR ("));
    EXPECT_FALSE(exists(block, data("res")));
}

}  // namespace

}  // namespace vak::test
