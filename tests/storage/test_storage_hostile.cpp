// Objects that no sound writer makes under a field's name: each gives an error or the values, never more.
#include <fstream>

#include "storage/chunk_check.h"
#include "storage_test.h"

namespace vak::test {
namespace {

Type text_of(size_t length, H5T_str_t padding, H5T_cset_t characters = H5T_CSET_ASCII)
{
    Type type(H5Tcopy(H5T_C_S1));
    H5Tset_size(type.get(), length);
    H5Tset_strpad(type.get(), padding);
    H5Tset_cset(type.get(), characters);
    return type;
}

Type variable_text() { return text_of(H5T_VARIABLE, H5T_STR_NULLTERM); }

Type pair_of_integers()
{
    Type type(H5Tcreate(H5T_COMPOUND, 8));
    H5Tinsert(type.get(), "a", 0, H5T_STD_I32LE);
    H5Tinsert(type.get(), "b", 4, H5T_STD_I32LE);
    return type;
}

Type integers_by_list() { return Type(H5Tvlen_create(H5T_STD_I32LE)); }

Type array_of_integers()
{
    const hsize_t extent = 4;
    return Type(H5Tarray_create2(H5T_STD_I32LE, 1, &extent));
}

Type names_of_integers()
{
    Type type(H5Tenum_create(H5T_STD_I32LE));
    const int32_t one = 1;
    H5Tenum_insert(type.get(), "one", &one);
    return type;
}

Type opaque() { return Type(H5Tcreate(H5T_OPAQUE, 4)); }
Type bits() { return Type(H5Tcopy(H5T_STD_B32LE)); }
Type reference() { return Type(H5Tcopy(H5T_STD_REF_OBJ)); }

Space scalar() { return Space(H5Screate(H5S_SCALAR)); }
Space nothing() { return Space(H5Screate(H5S_NULL)); }
Space simple(const Dims& dims)
{
    return Space(H5Screate_simple(static_cast<int>(dims.size()), dims.data(), nullptr));
}

void make_attribute(hid_t file, const Type& type, const Space& space)
{
    Attribute(H5Acreate2(file, "field", type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
}

Dataset make_dataset(hid_t file, const Type& type, const Space& space,
                     const Properties& list = Properties(H5P_DEFAULT))
{
    return Dataset(H5Dcreate2(file, "field", type.get(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT));
}

// ---- Types of another class ----

struct OddType {
    const char* name;
    Type (*make)();
    int32_t type_class;
};

class OddTypes : public StorageTest, public testing::WithParamInterface<OddType> {
protected:
    std::string line(const char* routine, const std::string& values)
    {
        return "VAK INTERNAL ERROR (" + std::string(routine) + "error: field " + values + " " +
               std::to_string(GetParam().type_class) + "\n";
    }

    std::vector<char> place = std::vector<char>(4096, '?');
    const std::vector<char> untouched = place;
    Access access{.name = "field", .dims = {2}};
};

TEST_P(OddTypes, an_attribute_is_neither_read_nor_rewritten)
{
    make_attribute(file, GetParam().make(), scalar());
    for (int32_t type = 1; type <= 3; ++type) {
        const std::string values = std::to_string(type) + " 8";
        EXPECT_EQ(read_attribute("field", place.data(), type, 8),
                  (Outcome{-4003, line("3) in VAK_H5Aread - name, vak_type, data_size, ", values)}));
        EXPECT_EQ(write_attribute("field", place.data(), type, 8, 8),
                  (Outcome{-1010, line("10) in VAK_H5Awrite - name, vak_type, data_size, vak_size, ",
                                       values + " 8")}));
    }
    EXPECT_EQ(place, untouched);
}

TEST_P(OddTypes, a_dataset_is_neither_read_nor_rewritten)
{
    make_dataset(file, GetParam().make(), simple({2}));
    for (int32_t type = 1; type <= 3; ++type) {
        const std::string values = std::to_string(type) + " 8";
        EXPECT_EQ(read_values(place.data(), type, 8, access),
                  (Outcome{-6003, line("3) in VAK_H5Dread - name, vak_type, data_size, ", values)}));
        EXPECT_EQ(write_values(place.data(), type, 8, access),
                  (Outcome{-3010, line("10) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, ",
                                       values + " 8 0")}));
    }
    EXPECT_EQ(place, untouched);
}

INSTANTIATE_TEST_SUITE_P(All, OddTypes,
                         testing::Values(OddType{"variable_text", variable_text, H5T_VLEN},
                                         OddType{"compound", pair_of_integers, H5T_COMPOUND},
                                         OddType{"variable_list", integers_by_list, H5T_VLEN},
                                         OddType{"array", array_of_integers, H5T_ARRAY},
                                         OddType{"enumeration", names_of_integers, H5T_ENUM},
                                         OddType{"opaque", opaque, H5T_OPAQUE},
                                         OddType{"bits", bits, H5T_BITFIELD},
                                         OddType{"reference", reference, H5T_REFERENCE}),
                         [](const auto& test) { return std::string(test.param.name); });

using StorageHostile = StorageTest;

Outcome attribute_not_read(const std::string& values)
{
    return {-4999,
            "VAK INTERNAL ERROR (999) in VAK_H5Aread - name, vak_type, data_size, error: " + values + "\n"};
}

// ---- Spaces without elements, or with too many ----

TEST_F(StorageHostile, an_attribute_without_a_space_has_no_value)
{
    make_attribute(file, Type(H5Tcopy(H5T_STD_I32LE)), nothing());
    std::array<int32_t, 2> found{-1, -1};
    EXPECT_EQ(read_attribute("field", found.data(), 2, 4), attribute_not_read("field 2 4 -1"));
    EXPECT_EQ(read_attribute("field", found.data(), 2, 4, {2}).code, -4020);
    EXPECT_EQ(write_attribute("field", found.data(), 2, 4, 4).code, -1999);
    EXPECT_EQ(write_attribute("field", found.data(), 2, 4, 4, {2}).code, -1020);
    EXPECT_EQ(found, (std::array<int32_t, 2>{-1, -1}));
}

TEST_F(StorageHostile, a_dataset_without_a_space_has_no_value)
{
    make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), nothing());
    std::vector<int32_t> found{-1};
    EXPECT_EQ(read(found, {.name = "field"}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "field", .dims = {1}}), not_read(20, "field 2 4 0"));
    EXPECT_EQ(write(found, {.name = "field"}), not_written(-3999, 999, "field 2 4 4 0 -1"));
    EXPECT_EQ(write(found, {.name = "field", .dims = {1}}), not_written(-3020, 20, "field 2 4 4 0 0"));
    EXPECT_EQ(found, std::vector<int32_t>{-1});
}

TEST_F(StorageHostile, objects_with_an_extent_of_0_have_no_first_value)
{
    make_attribute(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({3, 0}));
    make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({3, 0}));
    std::vector<int32_t> found{-1};
    EXPECT_EQ(read_attribute("field", found.data(), 2, 4), attribute_not_read("field 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "field"}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(found, std::vector<int32_t>{-1});
}

// Attributes above 64 KiB need the newer form of object headers.
hid_t file_for_large_attributes(const std::string& name)
{
    const Properties access(H5Pcreate(H5P_FILE_ACCESS));
    H5Pset_libver_bounds(access.get(), H5F_LIBVER_V18, H5F_LIBVER_LATEST);
    return H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get());
}

TEST_F(StorageHostile, the_first_value_of_an_attribute_above_64_mib_is_not_read)
{
    close_file();
    file = file_for_large_attributes(path("fresh.h5"));
    const Group group(H5Gcreate2(file, "group", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    const hsize_t most = (hsize_t{64} << 20) / 4;
    const std::vector<int32_t> values(most + 1, 5);
    const Type type(H5Tcopy(H5T_STD_I32LE));
    for (const hsize_t n : {most, most + 1}) {
        const std::string name = "n" + std::to_string(n - most);
        Attribute attribute(
            H5Acreate2(group.get(), name.c_str(), type.get(), simple({n}).get(), H5P_DEFAULT, H5P_DEFAULT));
        ASSERT_GE(H5Awrite(attribute.get(), H5T_NATIVE_INT, values.data()), 0);
    }
    int32_t found = -1;
    size_t size = 0;
    EXPECT_EQ(outcome([&] { return VAK_H5Aread("n0", &found, 2, 4, nullptr, 0, group.get(), &size); }), done);
    EXPECT_EQ(found, 5);
    found = -1;
    EXPECT_EQ(outcome([&] { return VAK_H5Aread("n1", &found, 2, 4, nullptr, 0, group.get(), &size); }),
              attribute_not_read("n1 2 4 -1"));
    EXPECT_EQ(found, -1);
}

// ---- Texts of other kinds ----

TEST_F(StorageHostile, texts_of_other_paddings_and_characters_fill_the_callers_fields)
{
    const auto store = [&](const char* name, const Type& type, const std::string& bytes) {
        Attribute attribute(H5Acreate2(file, name, type.get(), scalar().get(), H5P_DEFAULT, H5P_DEFAULT));
        H5Awrite(attribute.get(), type.get(), bytes.data());
    };
    store("terminated", text_of(8, H5T_STR_NULLTERM), std::string("abc\0defg", 8));
    store("zeros", text_of(8, H5T_STR_NULLPAD), std::string("abc\0\0\0\0\0", 8));
    store("utf8", text_of(4, H5T_STR_SPACEPAD, H5T_CSET_UTF8),
          "\xC3\xA4"
          "b ");
    const auto found = [&](const char* name, size_t length) {
        std::string text(length + 1, '?');
        EXPECT_EQ(read_attribute(name, text.data(), 1, length), done);
        EXPECT_EQ(text.back(), '?');
        return text.substr(0, length);
    };
    EXPECT_EQ(found("terminated", 10), "abc       ");
    EXPECT_EQ(found("zeros", 10), "abc       ");
    EXPECT_EQ(found("zeros", 8), std::string("abc\0\0\0\0\0", 8));
    EXPECT_EQ(found("utf8", 4),
              "\xC3\xA4"
              "b ");
    EXPECT_EQ(found("utf8", 6),
              "\xC3\xA4"
              "b   ");
    EXPECT_EQ(write_attribute("utf8", "xyz", 1, 3, 3), done);
    EXPECT_EQ(found("utf8", 4), "xyz ");
}

TEST_F(StorageHostile, numbers_of_other_sizes_and_orders_are_converted)
{
    const std::array<int16_t, 2> shorts{-3, 4};
    Dataset dataset = make_dataset(file, Type(H5Tcopy(H5T_STD_I16BE)), simple({2}));
    H5Dwrite(dataset.get(), H5T_NATIVE_SHORT, H5S_ALL, H5S_ALL, H5P_DEFAULT, shorts.data());
    dataset.close();
    std::vector<int32_t> found(2);
    EXPECT_EQ(read(found, {.name = "field", .dims = {2}}), done);
    EXPECT_EQ(found, (std::vector<int32_t>{-3, 4}));
}

// ---- Values that stand elsewhere ----

TEST_F(StorageHostile, external_storage_is_neither_read_nor_written)
{
    const std::string other = path("other.bin");
    std::ofstream(other) << "12345678";
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_external(list.get(), other.c_str(), 0, 8);
    make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({2}), list);
    std::vector<int32_t> found{-1, -1};
    EXPECT_EQ(read(found, {.name = "field", .dims = {2}}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(write(found, {.name = "field", .dims = {2}}), not_written(-3999, 999, "field 2 4 4 0 -1"));
    EXPECT_EQ(found, (std::vector<int32_t>{-1, -1}));
    std::ifstream bytes(other);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(bytes), {}), "12345678");
}

TEST_F(StorageHostile, a_virtual_dataset_is_neither_read_nor_written)
{
    const hid_t source = H5Fcreate(path("source.h5").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    const Space space = simple({2});
    Dataset real = make_dataset(source, Type(H5Tcopy(H5T_STD_I32LE)), space);
    const std::array<int32_t, 2> secret{1, 2};
    H5Dwrite(real.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, secret.data());
    real.close();
    H5Fclose(source);
    const Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_virtual(list.get(), space.get(), path("source.h5").c_str(), "field", space.get());
    ASSERT_TRUE(make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), space, list).valid());
    std::vector<int32_t> found{-1, -1};
    EXPECT_EQ(read(found, {.name = "field", .dims = {2}}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(write(found, {.name = "field", .dims = {2}}), not_written(-3999, 999, "field 2 4 4 0 -1"));
    EXPECT_EQ(found, (std::vector<int32_t>{-1, -1}));
}

TEST_F(StorageHostile, datasets_that_were_never_written_read_as_fill_values)
{
    const Properties chunked(H5Pcreate(H5P_DATASET_CREATE));
    const hsize_t extent = 2;
    H5Pset_chunk(chunked.get(), 1, &extent);
    std::vector<int32_t> found{-1, -1};
    make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({2}));
    EXPECT_EQ(read(found, {.name = "field", .dims = {2}}), done);
    EXPECT_EQ(found, (std::vector<int32_t>{0, 0}));
    H5Ldelete(file, "field", H5P_DEFAULT);
    make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({2}), chunked);
    found = {-1, -1};
    EXPECT_EQ(read(found, {.name = "field", .dims = {2}}), done);
    EXPECT_EQ(found, (std::vector<int32_t>{0, 0}));
}

// ---- Chunks ----

Properties deflated(const Dims& chunk)
{
    Properties list(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(list.get(), static_cast<int>(chunk.size()), chunk.data());
    H5Pset_deflate(list.get(), 6);
    return list;
}

TEST_F(StorageHostile, a_chunk_stored_larger_than_filters_can_make_it_is_not_read)
{
    Dataset dataset = make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({64}), deflated({64}));
    const std::vector<char> bomb(2 << 20, 'x');
    const hsize_t origin = 0;
    H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, &origin, bomb.size(), bomb.data());
    dataset.close();
    std::vector<int32_t> found(64, -1);
    EXPECT_EQ(read(found, {.name = "field", .dims = {64}}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "field", .dims = {64}, .count = {3}, .start = {60}, .mode = hyperslab}),
              not_read(999, "field 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "field", .dims = {64}, .count = {1}, .start = {5}, .mode = point_list}),
              not_read(999, "field 2 4 -1"));
    EXPECT_EQ(read(found, {.name = "field"}), not_read(999, "field 2 4 -1"));
    EXPECT_EQ(write(found, {.name = "field", .dims = {64}, .count = {3}, .start = {60}, .mode = hyperslab}),
              not_written(-3999, 999, "field 2 4 4 1 -1"));
    EXPECT_EQ(found, std::vector<int32_t>(64, -1));
}

TEST_F(StorageHostile, only_the_chunks_that_are_asked_for_count)
{
    Dataset dataset = make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple({192, 4}), deflated({64, 4}));
    const auto values = numbers<int32_t>(768);
    H5Dwrite(dataset.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    const std::vector<char> bomb(2 << 20, 'x');
    const Dims second{64, 0};
    ASSERT_GE(H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, second.data(), bomb.size(), bomb.data()), 0);
    dataset.close();
    std::vector<int32_t> found(256);
    Access access{.name = "field", .dims = {192, 4}, .count = {64, 4}, .start = {128, 0}, .mode = hyperslab};
    EXPECT_EQ(read(found, access), done);
    EXPECT_EQ(found, numbers<int32_t>(256, 512));
    access.start[0] = 127;
    EXPECT_EQ(read(found, access).code, -6999);
    access = {.name = "field", .dims = {192, 4}, .count = {2}, .start = {0, 0, 191, 3}, .mode = point_list};
    EXPECT_EQ(read(found, access), done);
    EXPECT_EQ(found[1], 767);
    access.start[2] = 127;
    EXPECT_EQ(read(found, access).code, -6999);
}

TEST_F(StorageHostile, a_chunk_may_be_an_eighth_and_64_kib_larger_than_its_values)
{
    const Dims extents{800};
    const Dataset dataset =
        make_dataset(file, Type(H5Tcopy(H5T_STD_I32LE)), simple(extents), deflated(extents));
    const FoundLayout found(dataset.get());
    const auto plausible = [&](size_t bytes) {
        const std::vector<char> content(bytes);
        const hsize_t origin = 0;
        H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, &origin, bytes, content.data());
        const Part all = part_of(whole_dataset, extents.data(), 1, nullptr, nullptr);
        return chunks_are_plausible(dataset.get(), found, all, extents, 4);
    };
    EXPECT_TRUE(plausible(3200 + 400 + 65536));
    EXPECT_FALSE(plausible(3200 + 400 + 65537));
}

TEST_F(StorageHostile, a_damaged_chunk_is_an_error)
{
    EXPECT_EQ(write(numbers<int32_t>(1000), {.name = "field", .dims = {1000}, .flags = 1, .params = {0, 6}}),
              done);
    Dataset dataset(H5Dopen2(file, "field", H5P_DEFAULT));
    haddr_t address = 0;
    hsize_t size = 0;
    const hsize_t origin = 0;
    H5Dget_chunk_info_by_coord(dataset.get(), &origin, nullptr, &address, &size);
    dataset.close();
    const std::string name = close_file();
    std::fstream bytes(name, std::ios::in | std::ios::out | std::ios::binary);
    bytes.seekp(static_cast<std::streamoff>(address + size / 2));
    bytes << std::string(size / 4, '\xFF');
    bytes.close();
    file = H5Fopen(name.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
    std::vector<int32_t> found(1000);
    EXPECT_EQ(read(found, {.name = "field", .dims = {1000}}), not_read(999, "field 2 4 -1"));
}

}  // namespace
}  // namespace vak::test
