// Domain files that lie or are damaged, and targets that cannot take it: a status, its line, no success told.
#include <gtest/gtest.h>

#include "frame/file_size_limit.h"
#include "samples/activflags.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "samples/system.h"
#include "support/block_test.h"
#include "tools/merge_failures.h"

using namespace vak;
using namespace vak::test;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST_P(MergeFailures, a_missing_array_is_one)
{
    const EntityResults r = results();
    for (const char* const name : {"entid", "res", "fid"}) {
        SCOPED_TRACE(name);
        restart();
        add(r);
        remove(add(r), r.path() + data() + name);
        expect_failure(reading(r.type), -6002);
    }
}

TEST_P(MergeFailures, a_count_that_the_arrays_do_not_bear_out_is_one)
{
    const EntityResults r = results();
    for (const auto& [name, value] :
         std::initializer_list<std::pair<const char*, int32_t>>{{"nent", 4},
                                                                {"nent", 2147483647},
                                                                {"ncoo", 3},
                                                                {"ncoo", 1},
                                                                {"ncoo", 2147483647},
                                                                {"nindex", 3}}) {
        SCOPED_TRACE(name + std::to_string(value));
        restart();
        set_attribute(add(r), r.path(), name, value);
        expect_failure(reading(r.type), -6030);
        EXPECT_FALSE(exists(target(), r.path()));
    }
}

// The files are small, since nothing is stored of so many identifiers; in memory they would take 8 GiB.
class MergeOfMany : public MergeFailures {
protected:
    template <class S>
    void add_with(int32_t n, const S& block, const char* count, const char* ids, hid_t type = H5T_STD_I32LE,
                  hid_t creation = H5P_DEFAULT)
    {
        const hid_t domain = add(block);
        set_attribute(domain, block.path(), count, n);
        replace(domain, block.path() + data() + ids, type, {static_cast<hsize_t>(n)}, creation);
    }
    template <class S>
    void expect_too_many(const S& block, const char* count, const char* ids)
    {
        restart();
        add_with(half, block, count, ids);
        add_with(half, block, count, ids);
        expect_failure("VAK ERROR writing block key " + std::to_string(S::key) + "\n" + writing(S::type), -3);
        EXPECT_FALSE(exists(target(), block.path()));
    }
    static constexpr int32_t half = 1 << 30;
};
INSTANTIATE_TEST_SUITE_P(, MergeOfMany, both_families, family_name);

TEST_P(MergeOfMany, entities_ends_where_a_count_does)
{
    expect_too_many(results(), "nent", "entid");
    expect_too_many(sample_of<ActivFlags>(family()), "nent", "entid");
    expect_too_many(sample_of<Connectivities>(family()), "nele", "idele");
}

// The first identifiers are texts, which ends the merge before the others are read.
TEST_P(MergeOfMany, entities_reads_one_fewer)
{
    const hsize_t chunk = 1024;
    const PropertiesId filtered(H5Pcreate(H5P_DATASET_CREATE), "list");
    H5Pset_chunk(filtered, 1, &chunk);
    H5Pset_deflate(filtered, 6);
    add_with(half, results(), "nent", "entid", H5T_C_S1, filtered);
    add_with(half - 1, results(), "nent", "entid");
    expect_failure(reading("entityresults"), -6003);
}

TEST_P(MergeFailures, a_negative_count_counts_as_none)
{
    const EntityResults r = results();
    set_attribute(add(r), r.path(), "nent", -5);
    EXPECT_EQ(merge(), 0);
    EXPECT_EQ(attribute_value<int32_t>(target(), r.path() + header(), "nent"), 0);
    EXPECT_FALSE(exists(target(), r.path() + data() + "res"));
}

TEST_P(MergeFailures, a_missing_count_is_one)
{
    const EntityResults r = results();
    for (const char* const name : {"nent", "ncoo", "nindex", "dmpswitch"}) {
        SCOPED_TRACE(name);
        restart();
        const hid_t domain = add(r);
        EXPECT_GE(H5Adelete_by_name(domain, (r.path() + header()).c_str(), name, H5P_DEFAULT), 0);
        expect_failure(reading(r.type, 1), -4002);
    }
}

TEST_P(MergeFailures, an_array_of_another_type_is_one)
{
    const EntityResults r = results();
    replace(add(r), r.path() + data() + "entid", H5T_IEEE_F32LE, {3});
    expect_failure(reading(r.type), -6003);
    restart();
    replace(add(r), r.path() + data() + "entid", H5T_STD_I64LE, {3});
    expect_failure(reading(r.type), -6011);
    restart();
    replace(add(r), r.path() + data() + "res", H5T_STD_I32LE, {3, 2});
    expect_failure(reading(r.type), -6003);
}

TEST_P(MergeFailures, an_array_of_another_rank_is_one)
{
    const EntityResults r = results();
    replace(add(r), r.path() + data() + "res", H5T_IEEE_F32LE, {6});
    expect_failure(reading(r.type), -6020);
    restart();
    replace(add(r), r.path() + data() + "fid", H5T_STD_I32LE, {3, 1073741824});
    expect_failure(reading(r.type), -6020);
}

TEST_P(MergeFailures, a_series_with_rows_of_another_width_is_one)
{
    auto r = MultiEntityResults::of_states(family(), 3);
    r.zone.dmpswitch = 0;
    for (const auto& [name, value] : std::initializer_list<std::pair<const char*, int32_t>>{
             {"ncoo", 1}, {"nent", 2}, {"ncoo", 2147483647}}) {
        SCOPED_TRACE(name + std::to_string(value));
        restart();
        set_attribute(add(r), r.path(), name, value);
        expect_failure(reading(r.type), -6030);
    }
}

TEST_P(MergeFailures, lists_of_a_collector_that_do_not_add_up_are_one)
{
    const auto c = sample_of<Collector>(family());
    const std::string nent = c.path() + data() + "nent";
    for (const std::vector<int32_t>& counts : {std::vector<int32_t>{2, 0, 1, 0, 3, 1},
                                               {2, 0, 1, 0, 2, 0},
                                               {2, 0, 5, 0, -1, 0},
                                               {2147483647, 0, 1, 0, 3, 0}}) {
        restart();
        const hid_t domain = add(c);
        {
            const ObjectId dataset = open_object(domain, nent);
            EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, counts.data()), 0);
        }
        expect_failure(reading("collector"), -6999);
    }
    restart();
    set_attribute(add(c), c.path(), "nenttot", 2147483647);
    expect_failure(reading("collector"), -6030);
    restart();
    set_attribute(add(c), c.path(), "ncoll", 3);
    expect_failure(reading("collector"), -6030);
}

// A chunk whose bytes are no compressed values.
TEST_P(MergeFailures, values_that_cannot_be_unpacked_are_one)
{
    EntityResults r = results();
    r.nent = 8;
    r.tables.ids = {1, 2, 3, 4, 5, 6, 7, 8};
    r.tables.fid.assign(8, 0);
    r.res = some_values(16);
    r.flags = 2;
    r.params[1] = 6;
    add(r);
    const hid_t domain = add(r);
    {
        const ObjectId dataset = open_object(domain, r.path() + data() + "res");
        const hsize_t corner[] = {0, 0};
        const std::string garbage(40, '#');
        EXPECT_GE(H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, corner, garbage.size(), garbage.data()), 0);
    }
    expect_failure(reading(r.type), -6999);
}

TEST_P(MergeFailures, values_that_a_link_leads_to_in_vain_are_one)
{
    const EntityResults r = results();
    const hid_t domain = add(r);
    EXPECT_GE(H5Ldelete(domain, (r.path() + data() + "res").c_str(), H5P_DEFAULT), 0);
    EXPECT_GE(
        H5Lcreate_soft("/nowhere", domain, (r.path() + data() + "res").c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
    expect_failure(reading(r.type, 1), -6002);
}

TEST_P(MergeFailures, an_attribute_of_no_type_of_ours_does_not_hinder)
{
    const EntityResults r = results();
    const hid_t domain = add(r);
    {
        const ObjectId holder = open_object(domain, r.path() + header());
        const SpaceId space{H5Screate(H5S_SCALAR), "space"};
        const AttributeId attribute{
            H5Acreate2(holder, "measured", H5T_IEEE_F64LE, space, H5P_DEFAULT, H5P_DEFAULT), "measured"};
        const double value = 0.5;
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_DOUBLE, &value), 0);
    }
    EXPECT_EQ(merge(), 0) << printed();
    EXPECT_EQ(attribute_values<double>(target(), r.path() + header(), "measured"),
              (std::vector<double>{0.5}));
    EXPECT_EQ(dataset_values<float>(target(), r.path() + data() + "res"), r.res);
}

TEST_P(MergeFailures, an_attribute_that_cannot_be_copied_is_left_out_with_a_warning)
{
    const EntityResults r = results();
    const hid_t domain = add(r);
    {
        const ObjectId holder = open_object(domain, r.path() + header());
        const SpaceId space{H5Screate(H5S_SCALAR), "space"};
        const TypeId text{H5Tcopy(H5T_C_S1), "text"};
        EXPECT_GE(H5Tset_size(text, H5T_VARIABLE), 0);
        const AttributeId attribute{H5Acreate2(holder, "note", text, space, H5P_DEFAULT, H5P_DEFAULT),
                                    "note"};
        const char* const value = "kept elsewhere";
        EXPECT_GE(H5Awrite(attribute, text, &value), 0);
    }
    EXPECT_EQ(merge(), 0) << printed();
    EXPECT_THAT(printed().err, testing::EndsWith("VAK WARNING target file: attribute \"note\" of a "
                                                 "\"entityresults\" block is left out\n"));
    EXPECT_EQ(dataset_values<float>(target(), r.path() + data() + "res"), r.res);
}

TEST_P(MergeFailures, a_file_that_is_none_is_one)
{
    add(results());
    const hid_t closed = add_domain();
    H5Fclose(closed);
    EXPECT_EQ(merge(), -1);
    forget_last();
    EXPECT_THAT(printed().err, testing::EndsWith(reading("vakblock", 1) + "-1 \n"));
}

TEST_P(MergeFailures, a_target_that_cannot_be_written_is_one)
{
    add(results());
    const std::string name = close_file();
    file = H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
    expect_failure(writing("vakblock"), -1);
}

TEST_P(MergeFailures, a_target_that_is_none_is_one)
{
    add(results());
    const hid_t own = file;
    file = -1;
    expect_failure(writing("vakblock"), -1);
    file = own;
}

TEST_P(MergeFailures, of_a_full_disk_are_told_wherever_it_fills)
{
    EntityResults r = results();
    r.nent = 40000;
    r.ncoo = 4;
    r.tables.ids.resize(40000);
    for (int32_t i = 0; i < r.nent; ++i) r.tables.ids[static_cast<size_t>(i)] = i;
    r.tables.fid.assign(40000, 1);
    r.res.assign(160000, 1.5F);
    const hid_t domain = add(r);
    EXPECT_EQ(sample_of<Connectivities>(family()).write(domain), 0);
    EXPECT_EQ(sample_of<System>(family()).write(domain), 0);
    int failures = 0;
    for (rlim_t limit = 1 << 14; limit <= 1 << 21; limit = limit * 5 / 4) {
        SCOPED_TRACE(limit);
        const hid_t own = file;
        file = H5Fcreate(path("limited.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
        int32_t status = 0;
        {
            const FileSizeLimit full(limit);
            status = merge(1 + 4);
        }
        EXPECT_EQ(printed().out.find("successfully") != std::string::npos, status == 0);
        if (status == 0) {
            EXPECT_EQ(dataset_values<float>(target(), r.path() + data() + "res"), r.res);
        } else {
            ++failures;
            EXPECT_THAT(printed().err,
                        testing::EndsWith(" block - error code = " + std::to_string(status) + "\n"));
        }
        H5Fclose(file);
        file = own;
    }
    EXPECT_GT(failures, 5);
}

INSTANTIATE_TEST_SUITE_P(, MergeFailures, both_families, family_name);

}  // namespace
