// Attributes and objects in a block that no writer of ours has made: what the merged block keeps of them, and
// how blocks that are taken from one file are compared.
#include <gtest/gtest.h>

#include <functional>

#include "samples/densematrix.h"
#include "samples/entityresults.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

TypeId integer() { return {H5Tcopy(H5T_STD_I32LE), "type"}; }
TypeId wide_integer() { return {H5Tcopy(H5T_STD_I64LE), "type"}; }
TypeId real() { return {H5Tcopy(H5T_IEEE_F64LE), "type"}; }
TypeId text_of(size_t length)
{
    TypeId type(H5Tcopy(H5T_C_S1), "type");
    H5Tset_size(type, length);
    return type;
}
TypeId long_text() { return text_of(300); }
TypeId any_text() { return text_of(H5T_VARIABLE); }
TypeId list() { return {H5Tvlen_create(H5T_STD_I32LE), "type"}; }
TypeId reference() { return {H5Tcopy(H5T_STD_REF_OBJ), "type"}; }
TypeId record_with(const TypeId& member)
{
    TypeId type(H5Tcreate(H5T_COMPOUND, 8 + H5Tget_size(member)), "type");
    H5Tinsert(type, "number", 0, H5T_STD_I32LE);
    H5Tinsert(type, "member", 8, member);
    return type;
}
TypeId plain_record() { return record_with(real()); }
TypeId record_with_text() { return record_with(any_text()); }

SpaceId one() { return {H5Screate(H5S_SCALAR), "space"}; }
SpaceId none() { return {H5Screate(H5S_NULL), "space"}; }
SpaceId array(hsize_t extent) { return {H5Screate_simple(1, &extent, nullptr), "space"}; }

struct Foreign {
    const char* name;
    TypeId (*type)();
    SpaceId space;
    bool is_kept;
};

class MergeForeign : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeForeign() : MergeTest(GetParam()) {}

    // What is stored there, zeros or empty texts.
    static void put_attribute(hid_t holder, const char* name, const TypeId& type, const SpaceId& space)
    {
        const AttributeId attribute(H5Acreate2(holder, name, type, space, H5P_DEFAULT, H5P_DEFAULT), name);
    }
    static void put_dataset(hid_t holder, const char* name, const TypeId& type, const SpaceId& space)
    {
        const ObjectId dataset(H5Dcreate2(holder, name, type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                               name);
    }
    std::string left_out(const char* name) const
    {
        return "VAK WARNING target file: attribute \"" + std::string(name) +
               "\" of a \"entityresults\" block is left out\n";
    }

    // Two equal matrices, one in each of two domains, after these changes; whether they are told to differ.
    bool differ(const std::function<void(hid_t)>& change_first,
                const std::function<void(hid_t)>& change_second)
    {
        restart();
        const auto matrix = sample_of<DenseMatrix>(family());
        for (const auto& change : {change_first, change_second}) {
            const hid_t domain = add_domain();
            EXPECT_EQ(matrix.write(domain), 0);
            change(open_object(domain, matrix.path() + (legacy() ? "/data" : "")));
        }
        EXPECT_EQ(merge(), 0);
        EXPECT_EQ(dataset_values<float>(target(), matrix.path() + data() + "val"), matrix.val);
        return printed().err.find("differs in its contents from file [0] and is left out\n") !=
               std::string::npos;
    }
    bool differ_with(const std::function<void(hid_t)>& change) { return differ(change, change); }
};
INSTANTIATE_TEST_SUITE_P(, MergeForeign, both_families, family_name);

TEST_P(MergeForeign, attributes_of_every_type_are_kept_or_named)
{
    const Foreign all[] = {
        {"a real", real, one(), true},
        {"integers", integer, array(3), true},
        {"a wide integer", wide_integer, one(), true},
        {"a long text", long_text, one(), true},
        {"nothing", integer, none(), true},
        {"an empty array", real, array(0), true},
        {"a record", plain_record, one(), true},
        {"a text of any length", any_text, one(), false},
        {"texts of any length", any_text, array(2), false},
        {"a list", list, one(), false},
        {"a reference", reference, one(), false},
        {"a record with a text", record_with_text, one(), false},
    };
    const auto results = sample_of<EntityResults>(family());
    for (const Foreign& foreign : all) {
        SCOPED_TRACE(foreign.name);
        restart();
        const hid_t domain = add_domain();
        EXPECT_EQ(results.write(domain), 0);
        put_attribute(open_object(domain, results.path() + header()), foreign.name, foreign.type(),
                      foreign.space);
        EXPECT_EQ(merge(), 0);
        const ObjectId merged = open_object(target(), results.path() + header());
        EXPECT_EQ(H5Aexists(merged, foreign.name) > 0, foreign.is_kept);
        EXPECT_EQ(printed().err.ends_with(left_out(foreign.name)), !foreign.is_kept) << printed();
        EXPECT_EQ(dataset_values<float>(target(), results.path() + data() + "res"), results.res);
    }
}

TEST_P(MergeForeign, attribute_that_fits_no_object_header_is_left_out)
{
    const PropertiesId newest(H5Pcreate(H5P_FILE_ACCESS), "list");
    H5Pset_libver_bounds(newest, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    const hid_t domain = H5Fcreate(path("newest.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, newest);
    adopt(domain);
    const auto results = sample_of<EntityResults>(family());
    EXPECT_EQ(results.write(domain), 0);
    put_attribute(open_object(domain, results.path() + header()), "large", real(), array(20000));
    EXPECT_EQ(merge(), 0);
    EXPECT_THAT(printed().err, testing::EndsWith(left_out("large")));
}

TEST_P(MergeForeign, attributes_count_when_blocks_are_compared)
{
    const auto with = [](TypeId (*type)(), hsize_t extent) {
        return [=](hid_t block) { put_attribute(block, "more", type(), array(extent)); };
    };
    const auto unchanged = [](hid_t) {};
    EXPECT_FALSE(differ(unchanged, unchanged));
    EXPECT_TRUE(differ(unchanged, with(real, 2)));
    EXPECT_TRUE(differ(with(real, 2), with(real, 3)));
    EXPECT_TRUE(differ(with(integer, 2), with(real, 2)));
    EXPECT_FALSE(differ_with(with(real, 2)));
    EXPECT_FALSE(differ_with(with(real, 0)));
    EXPECT_FALSE(differ_with(with(plain_record, 2)));
}

TEST_P(MergeForeign, objects_count_when_blocks_are_compared)
{
    const auto unchanged = [](hid_t) {};
    const auto set = [](TypeId (*type)(), hsize_t extent) {
        return [=](hid_t block) { put_dataset(block, "more", type(), array(extent)); };
    };
    const auto group = [](hid_t block) {
        const ObjectId made(H5Gcreate2(block, "more", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "more");
        put_dataset(made, "inner", integer(), array(4));
    };
    EXPECT_TRUE(differ(unchanged, set(integer, 4)));
    EXPECT_TRUE(differ(set(integer, 4), set(integer, 5)));
    EXPECT_TRUE(differ(set(integer, 4), set(real, 4)));
    EXPECT_TRUE(differ(set(integer, 4), group));
    EXPECT_TRUE(differ(group, set(integer, 4)));
    EXPECT_FALSE(differ_with(set(integer, 4)));
    EXPECT_FALSE(differ_with(set(integer, 0)));
    EXPECT_FALSE(differ_with(group));
}

// Their bytes are places in their own file and tell nothing.
TEST_P(MergeForeign, values_that_stand_elsewhere_are_taken_to_differ)
{
    for (TypeId (*const type)() : {any_text, list, record_with_text}) {
        EXPECT_TRUE(differ_with([&](hid_t block) { put_attribute(block, "more", type(), one()); }));
        EXPECT_TRUE(differ_with([&](hid_t block) { put_dataset(block, "more", type(), array(2)); }));
    }
}

}  // namespace
