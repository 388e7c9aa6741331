// Property tables as a whole: stored form, bits, filters.
#include <limits>

#include "blocks/properties_test.h"

namespace vak::test {

namespace {

using PropertiesBlock = PropertiesTest;

TEST_F(PropertiesBlock, is_stored_as_described)
{
    const PropertyTables tables;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(stored(tables), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A etypprop char[256]
A etypzone char[256]
A zoneid int32
A nent int32
A nbid int32
A nbint int32
A nbfloat int32
A nbstring int32
A length int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D entid int32 [4] compact
D idparam int32 [4,1] compact
D iparam int32 [4,2] compact
D fparam float32 [4,3] compact
D cparam char[5] [4,2] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, tables.path(), "block"), 500);
    EXPECT_EQ(attribute_text(file, tables.path(), "blocktype"),
              std::string("properties") + std::string(246, '\0'));
    EXPECT_EQ(dataset_values<float>(file, tables.path() + "/fparam"), tables.fparam);
    EXPECT_EQ(dataset_texts(file, tables.path() + "/cparam")[3], "b1   ");
}

TEST_F(PropertiesBlock, each_bit_writes_its_fields_alone)
{
    PropertyTables tables;
    tables.mode = 4;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(stored(tables), "\nD entid int32 [4] compact\n");
    tables.mode = 2;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(stored(tables), R"(
D entid int32 [4] compact
D indexident int32 [2] compact
D indexval float32 [2] compact
)");
    tables.mode = 1;
    EXPECT_EQ(write(tables), success);
    EXPECT_THAT(stored(tables),
                testing::EndsWith("A indexic int32\nD entid int32 [4] compact\n"
                                  "D indexident int32 [2] compact\nD indexval float32 [2] compact\n"));
    tables.mode = 8;
    EXPECT_EQ(write(tables), success);
    EXPECT_THAT(stored(tables),
                testing::EndsWith("D idparam int32 [4,1] compact\nD iparam int32 [4,2] compact\n"
                                  "D fparam float32 [4,3] compact\nD cparam char[5] [4,2] compact\n"));
    tables.mode = 0;
    EXPECT_EQ(write(tables), success);
}

TEST_F(PropertiesBlock, reads_back_what_was_written)
{
    const PropertyTables written;
    EXPECT_EQ(write(written), success);
    PropertyTables tables = emptied(written);
    EXPECT_EQ(read(tables, every_table), success);
    EXPECT_EQ(listing(tables), listing(written));
    EXPECT_EQ(tables.found_flags, 0);
}

TEST_F(PropertiesBlock, each_bit_reads_its_fields_alone)
{
    const PropertyTables written;
    EXPECT_EQ(write(written), success);
    PropertyTables header = written;
    empty(header.index.indexident);
    empty(header.index.indexval);
    empty(header.entid);
    empty(header.idparam);
    empty(header.iparam);
    empty(header.fparam);
    empty(header.cparam);

    PropertyTables tables = emptied(written);
    EXPECT_EQ(read(tables, 1), success);
    EXPECT_EQ(listing(tables), listing(header));
    EXPECT_EQ(read(tables, 2), success);
    header.index = written.index;
    EXPECT_EQ(listing(tables), listing(header));
    EXPECT_EQ(read(tables, 4), success);
    header.entid = written.entid;
    EXPECT_EQ(listing(tables), listing(header));
    EXPECT_EQ(tables.found_flags, untouched);
    EXPECT_EQ(read(tables, 8), success);
    EXPECT_EQ(listing(tables), listing(written));
    EXPECT_EQ(tables.found_flags, 0);
    EXPECT_EQ(tables.found_params[0], 0);
}

TEST_F(PropertiesBlock, mode_that_reads_nothing_gives_the_key)
{
    const PropertyTables written;
    EXPECT_EQ(write(written), success);
    PropertyTables tables = emptied(written);
    tables.nbid = tables.nbint = tables.nbfloat = 0;
    tables.nbstring = -1;
    tables.index.nindex = 0;
    const std::string before = listing(tables);
    for (const int32_t mode : {0, 2, 8, 2 + 8, 16, 32}) EXPECT_EQ(read(tables, mode), status(500));
    EXPECT_EQ(listing(tables), before);
    EXPECT_EQ(tables.found_flags, untouched);
}

TEST_F(PropertiesBlock, tables_without_columns_are_left_out)
{
    PropertyTables written;
    written.nbid = 0;
    written.nbfloat = -1;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::EndsWith("D entid int32 [4] compact\nD iparam int32 [4,2] compact\n"
                                                   "D cparam char[5] [4,2] compact\n"));
    PropertyTables tables = emptied(written);
    EXPECT_EQ(read(tables, every_table), success);
    EXPECT_EQ(tables.idparam, emptied(written).idparam);
    EXPECT_EQ(tables.fparam, emptied(written).fparam);
    EXPECT_EQ(tables.iparam, written.iparam);
    EXPECT_EQ(tables.cparam, written.cparam);
}

TEST_F(PropertiesBlock, length_below_1_has_no_texts)
{
    for (const int32_t length : {0, -1}) {
        PropertyTables written;
        written.length = length;
        EXPECT_EQ(write(written), success);
        EXPECT_FALSE(exists(file, "properties/cparam"));
        PropertyTables tables = emptied(written);
        EXPECT_EQ(read(tables, every_table), success);
        EXPECT_EQ(tables.length, length);
        EXPECT_EQ(tables.nbstring, 2);
        EXPECT_EQ(tables.cparam, emptied(written).cparam);
    }
}

TEST_F(PropertiesBlock, writing_again_puts_the_new_values_in_place)
{
    PropertyTables tables;
    EXPECT_EQ(write(tables), success);
    tables.zoneid = 9;
    tables.entid[0] = -1;
    tables.iparam[7] = 99;
    EXPECT_EQ(write(tables), success);
    PropertyTables copy = emptied(tables);
    EXPECT_EQ(read(copy, every_table), success);
    EXPECT_EQ(listing(copy), listing(tables));
}

TEST_F(PropertiesBlock, another_number_of_entities_does_not_fit_into_stored_tables)
{
    PropertyTables tables;
    EXPECT_EQ(write(tables), success);
    tables.nent = 3;
    tables.mode = 8;
    EXPECT_EQ(
        write(tables),
        failure(
            -6030,
            "VAK INTERNAL ERROR (30) in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: idparam 2 4 4 0 0\n"));
    EXPECT_EQ(
        read(tables, 8),
        failure(
            -6030,
            "VAK INTERNAL ERROR (30) in VAK_H5Dread - name, vak_type, data_size, error: idparam 2 4 0\n"));
}

TEST_F(PropertiesBlock, no_group_is_reported_with_its_identifier)
{
    const PropertyTables tables;
    EXPECT_EQ(write_into(tables, -5), failure(-5, "VAK ERROR writing block key 500\n"));
    EXPECT_EQ(write_into(tables, std::numeric_limits<int64_t>::min()),
              failure(std::numeric_limits<int32_t>::min(), "VAK ERROR writing block key 500\n"));
    PropertyTables copy = tables;
    EXPECT_EQ(run([&] { return copy.read(-5, 1); }), failure(-1, "VAK ERROR - header not found\n"));
}

TEST_F(PropertiesBlock, another_kind_of_block_is_not_read)
{
    PropertyTables tables;
    EXPECT_EQ(write(tables), success);
    falsify_attribute(tables.path(), "block", 501);
    EXPECT_EQ(read(tables, every_table), failure(-1, "VAK error - wrong block key 501, 500 expected\n"));
}

TEST_F(PropertiesBlock, reals_lose_scale_offset_and_the_others_keep_it)
{
    PropertyTables tables;
    tables.nent = 8;
    tables.nbstring = 1;
    tables.nbfloat = 1;
    tables.entid = tables.idparam = {1, 2, 3, 4, 5, 6, 7, 8};
    tables.iparam = std::vector<int32_t>(16, 5);
    tables.fparam = {0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F, 0.7F, 1e20F};
    tables.cparam = std::string(8 * 5, 'c');
    tables.real_size = 8;
    tables.flags = 255;
    tables.params[0] = 1;
    tables.params[1] = 5;
    EXPECT_EQ(write(tables), success);
    EXPECT_THAT(stored(tables), testing::EndsWith(R"(
D indexident int32 [2] compact
D indexval float64 [2] compact
D entid int32 [8] chunked(8) scaleoffset(int,0) shuffle deflate(5) fill=10000
D idparam int32 [8,1] chunked(8,1) scaleoffset(int,0) shuffle deflate(5) fill=10000
D iparam int32 [8,2] chunked(8,2) scaleoffset(int,0) shuffle deflate(5) fill=10000
D fparam float64 [8,1] chunked(8,1) shuffle deflate(5)
D cparam char[5] [8,1] chunked(8,1) shuffle deflate(5)
)"));
    PropertyTables copy = emptied(tables);
    EXPECT_EQ(read(copy, every_table), success);
    EXPECT_EQ(listing(copy), listing(tables));
    EXPECT_EQ(copy.found_flags, 255 - 128);
    EXPECT_EQ(copy.found_params[0], 0);
    EXPECT_EQ(copy.found_params[1], 5);
    PropertyTables row = copy;
    row.row_mode = 2;
    row.rows = {7, 0};
    row.mode = 8;
    row.idparam = {70, -10};
    EXPECT_EQ(write(row), success);
    EXPECT_EQ(dataset_values<int32_t>(file, "properties/idparam"),
              (std::vector<int32_t>{-10, 2, 3, 4, 5, 6, 7, 70}));
}

TEST_F(PropertiesBlock, texts_may_be_of_any_length)
{
    for (const size_t length : {1U, 256U, 300U}) {
        PropertyTables tables;
        const ObjectId place = group("of " + std::to_string(length));
        tables.length = static_cast<int32_t>(length);
        tables.cparam = fields({"a", "b", "c", "d", "e", "f", "g", std::string(length, 'x')}, length);
        EXPECT_EQ(write_into(tables, place), success);
        PropertyTables copy = emptied(tables);
        EXPECT_EQ(run([&] { return copy.read(place, every_table); }), success);
        EXPECT_EQ(listing(copy), listing(tables));
    }
}

}  // namespace

}  // namespace vak::test
