// The tests' own tools: each must see what it is there to see.
#include <gtest/gtest-spi.h>
#include <unistd.h>

#include <cstdio>

#include "support/library.h"

namespace vak::test {

namespace {

void attribute(hid_t object, const std::string& name, hid_t type, const void* value)
{
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    const AttributeId id(H5Acreate2(object, name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT), name);
    H5Awrite(id, type, value);
}

TypeId text_type(size_t length, H5T_str_t padding)
{
    TypeId type(H5Tcopy(H5T_C_S1), "type");
    H5Tset_size(type, length);
    H5Tset_strpad(type, padding);
    return type;
}

ObjectId group(hid_t file, const std::string& name)
{
    return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
}

void dataset(hid_t group, const std::string& name, hid_t type, hid_t space, hid_t properties)
{
    const ObjectId id(H5Dcreate2(group, name.c_str(), type, space, H5P_DEFAULT, properties, H5P_DEFAULT),
                      name);
}

}  // namespace

TEST(Capture, both_streams_come_back_whole_and_apart)
{
    const Output output = captured([] {
        std::printf("one\n");
        std::fprintf(stderr, "two");
        ASSERT_EQ(write(1, "three", 5), 5);
    });
    EXPECT_EQ(output.out.size(), 9U);
    EXPECT_EQ(output.err, "two");
    EXPECT_EQ(captured([] {}), nothing_printed);
}

TEST(TempFile, folder_is_gone_with_its_files_afterwards)
{
    std::string name;
    {
        const TempFile file;
        name = file.path();
        EXPECT_NE(access(name.c_str(), F_OK), 0);
        std::fclose(std::fopen(name.c_str(), "w"));
    }
    EXPECT_NE(access(name.substr(0, name.rfind('/')).c_str(), F_OK), 0);
}

TEST_F(LibraryTest, attributes_are_listed_as_written)
{
    const ObjectId g = group(file, "g");
    const int32_t number = 7;
    const TypeId blank = text_type(4, H5T_STR_SPACEPAD);
    const TypeId zero = text_type(4, H5T_STR_NULLTERM);
    attribute(g, "zeta", H5T_STD_I32LE, &number);
    attribute(g, "alpha", blank, "ab  ");
    attribute(g, "middle", zero, "ab\0");
    attribute(g, "big", H5T_STD_I32BE, &number);
    EXPECT_EQ(layout(file, "g"), R"(
A zeta int32
A alpha char[4]
A middle char[4]:nullterm
A big int32be
)");
    EXPECT_EQ(attribute_value<int32_t>(file, "g", "zeta"), 7);
    EXPECT_EQ(attribute_text(file, "g", "alpha"), "ab  ");
}

TEST_F(LibraryTest, datasets_are_listed_as_written_with_layout_and_filters)
{
    const ObjectId g = group(file, "g");
    const hsize_t extents[2] = {5, 3}, limits[2] = {H5S_UNLIMITED, 3}, chunk[2] = {1, 3};
    const SpaceId open_space(H5Screate_simple(2, extents, limits), "space");
    const SpaceId line(H5Screate_simple(1, extents, nullptr), "space");
    const PropertiesId chunked(H5Pcreate(H5P_DATASET_CREATE), "properties");
    const PropertiesId compact(H5Pcreate(H5P_DATASET_CREATE), "properties");
    const double fill = 10000;
    H5Pset_chunk(chunked, 2, chunk);
    H5Pset_scaleoffset(chunked, H5Z_SO_FLOAT_DSCALE, 2);
    H5Pset_shuffle(chunked);
    H5Pset_deflate(chunked, 6);
    H5Pset_fill_value(chunked, H5T_NATIVE_DOUBLE, &fill);
    H5Pset_layout(compact, H5D_COMPACT);
    dataset(g, "res", H5T_IEEE_F64LE, open_space, chunked);
    dataset(g, "entid", H5T_STD_I32LE, line, compact);
    dataset(g, "fid", H5T_STD_I64LE, line, H5P_DEFAULT);
    EXPECT_EQ(layout(file, "/"), R"(
G g
D g/res float64 [unlimited(5),3] chunked(1,3) scaleoffset(float,2) shuffle deflate(6) fill=10000
D g/entid int32 [5] compact
D g/fid int64 [5] contiguous
)");
    EXPECT_EQ(dataset_extents(file, "g/res"), (std::vector<int64_t>{5, 3}));
    EXPECT_EQ(dataset_values<double>(file, "g/res"), std::vector<double>(15, 10000.0));
}

TEST_F(LibraryTest, order_of_writing_shows_among_many_objects)
{
    const ObjectId g = group(file, "g");
    const SpaceId scalar(H5Screate(H5S_SCALAR), "space");
    std::string expected = "\n";
    for (int i = 0; i < 40; ++i) {
        const std::string name = "n" + std::to_string(i * 7 % 40);
        attribute(g, name, H5T_STD_I32LE, &i);
        expected += "A " + name + " int32\n";
    }
    for (int i = 0; i < 40; ++i) {
        const std::string name = "n" + std::to_string(i * 11 % 40);
        dataset(g, name, H5T_STD_I32LE, scalar, H5P_DEFAULT);
        expected += "D " + name + " int32 contiguous\n";
    }
    EXPECT_EQ(layout(file, "g"), expected);
    EXPECT_EQ(layout(close_file(), "g"), expected);
}

TEST_F(LibraryTest, links_show_where_they_lead)
{
    const ObjectId g = group(file, "g");
    const SpaceId scalar(H5Screate(H5S_SCALAR), "space");
    dataset(g, "second", H5T_STD_I32LE, scalar, H5P_DEFAULT);
    H5Lcreate_hard(g, "second", g, "first", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/elsewhere", g, "soft", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_EQ(layout(file, "g"), R"(
D second int32 contiguous links=2
D first int32 contiguous links=2
L soft -> /elsewhere
)");
    H5Lcreate_external("other.h5", "/there", g, "outside", H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_THAT(layout(file, "g"), testing::HasSubstr("X outside -> other.h5:/there\n"));
}

TEST_F(LibraryTest, missing_objects_are_told_by_an_exception_without_a_word_of_hdf5)
{
    EXPECT_EQ(call([&] { EXPECT_THROW(layout(file, "none"), std::runtime_error); }), nothing_printed);
    EXPECT_THROW(attribute_value<int32_t>(file, "/", "none"), std::runtime_error);
    EXPECT_FALSE(exists(file, "none"));
}

TEST_F(LibraryTest, identifier_left_by_a_call_is_noticed)
{
    hid_t left = H5I_INVALID_HID;
    EXPECT_NONFATAL_FAILURE(call([&] { left = H5Screate(H5S_SCALAR); }), "before:");
    EXPECT_EQ(call([&] { H5Sclose(left); }, -1), nothing_printed);
}

TEST_F(LibraryTest, changed_error_printing_is_noticed)
{
    EXPECT_NONFATAL_FAILURE(call([] { H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr); }), "error printing");
    H5Eset_auto2(H5E_DEFAULT, reinterpret_cast<H5E_auto2_t>(H5Eprint2), stderr);
}

TEST(Fields, are_padded_with_blanks_and_never_longer)
{
    EXPECT_EQ(padded("ab", 4), "ab  ");
    EXPECT_EQ(padded("abcdef", 4), "abcd");
    EXPECT_EQ(fields({"a", "bc"}, 2), "a bc");
}

}  // namespace vak::test
