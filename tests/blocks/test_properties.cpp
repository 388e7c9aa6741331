#include "samples/properties.h"

#include <limits>

#include "support/block_test.h"

namespace vak::test {

namespace {

class PropertiesBlock : public BlockTest {
protected:
    ObjectId group(const std::string& name)
    {
        return {H5Gcreate2(file, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }

    Result write_into(const PropertyTables& sample, hid_t group)
    {
        return run([&] { return sample.write_into(group); });
    }
};

// The same for each way of listing rows.
class PropertiesByRows : public PropertiesBlock, public testing::WithParamInterface<int32_t> {
protected:
    int32_t row_mode() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(, PropertiesByRows, testing::Values(1, 2),
                         [](const auto& row_mode) { return row_mode.param == 1 ? "run" : "list"; });

constexpr int32_t everything = 1 + 2 + 4 + 8;

// The parameters of two rows only, as a caller has them in memory.
PropertyTables two_rows(int32_t row_mode, const std::vector<int64_t>& rows)
{
    PropertyTables sample;
    sample.mode = 8;
    sample.row_mode = row_mode;
    sample.rows = rows;
    sample.idparam = {100, 200};
    sample.iparam = {101, 102, 201, 202};
    sample.fparam = {100.5F, 101.5F, 102.5F, 200.5F, 201.5F, 202.5F};
    sample.cparam = fields({"A", "B", "C", "D"}, 5);
    return sample;
}

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
    EXPECT_EQ(read(tables, everything), success);
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
    EXPECT_EQ(read(tables, everything), success);
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
        EXPECT_EQ(read(tables, everything), success);
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
    EXPECT_EQ(read(copy, everything), success);
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
    EXPECT_EQ(read(tables, everything), failure(-1, "VAK error - wrong block key 501, 500 expected\n"));
}

TEST_F(PropertiesBlock, shared_identifiers_are_stored_once_and_linked)
{
    const ObjectId shared = group("shared"), first = group("first"), second = group("second");
    PropertyTables tables;
    tables.mode = 4 + 16;
    tables.shared = shared;
    EXPECT_EQ(write_into(tables, first), success);
    EXPECT_EQ(layout(file, "shared"), "\nD entid int32 [4] compact links=2\n");
    EXPECT_EQ(layout(file, "first"), "\nD entid int32 [4] compact links=2\n");
    PropertyTables others = tables;
    others.entid = {1, 1, 1, 1};
    EXPECT_EQ(write_into(others, second), success);
    EXPECT_EQ(layout(file, "second"), "\nD entid int32 [4] compact links=3\n");
    EXPECT_EQ(dataset_values<int32_t>(file, "second/entid"), tables.entid);
    EXPECT_EQ(write_into(others, second), success);
    EXPECT_EQ(layout(file, "shared"), "\nD entid int32 [4] compact links=3\n");
    tables.mode = 1;
    EXPECT_EQ(write_into(tables, second), success);
    PropertyTables copy = emptied(tables);
    EXPECT_EQ(run([&] { return copy.read(second, 1 + 4); }), success);
    EXPECT_EQ(copy.entid, tables.entid);
}

TEST_F(PropertiesBlock, own_identifiers_are_not_replaced_by_shared_ones)
{
    const ObjectId shared = group("shared"), block = group("block");
    PropertyTables tables;
    tables.mode = 4;
    EXPECT_EQ(write_into(tables, block), success);
    PropertyTables others = tables;
    others.mode = 4 + 16;
    others.shared = shared;
    others.entid = {1, 1, 1, 1};
    EXPECT_EQ(write_into(others, block), success);
    EXPECT_EQ(dataset_values<int32_t>(file, "block/entid"), tables.entid);
    EXPECT_EQ(dataset_values<int32_t>(file, "shared/entid"), others.entid);
    EXPECT_EQ(layout(file, "shared"), "\nD entid int32 [4] compact\n");
}

TEST_F(PropertiesBlock, nothing_to_share_is_no_failure)
{
    const ObjectId shared = group("shared"), block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 16;
    tables.shared = shared;
    tables.nent = 0;
    EXPECT_EQ(write_into(tables, block), success);
    EXPECT_EQ(layout(file, "/"), "\nG shared\nG block\n");
}

TEST_F(PropertiesBlock, sharing_alone_writes_nothing)
{
    const ObjectId block = group("block");
    PropertyTables tables;
    tables.mode = 16;
    EXPECT_EQ(write_into(tables, block), success);
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_F(PropertiesBlock, no_shared_group_is_reported_like_no_group)
{
    const ObjectId block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 8 + 16;
    tables.shared = -7;
    EXPECT_EQ(write_into(tables, block), failure(-7, "VAK ERROR writing block key 500\n"));
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_F(PropertiesBlock, identifiers_in_another_file_cannot_be_shared)
{
    const FileId other = create_file(path("other.h5"));
    const ObjectId shared = open_object(other, "/"), block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 8 + 16;
    tables.shared = shared;
    EXPECT_EQ(write_into(tables, block), failure(-3, "VAK ERROR writing block key 500\n"));
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_P(PropertiesByRows, rows_of_a_stored_table_are_rewritten_in_all_four_kinds)
{
    PropertyTables tables;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(write(two_rows(row_mode(), {1, 2})), success);
    tables.idparam = {10, 100, 200, 40};
    tables.iparam = {1, 2, 101, 102, 201, 202, 7, 8};
    tables.fparam = {0.5F, 1, 2, 100.5F, 101.5F, 102.5F, 200.5F, 201.5F, 202.5F, 9, 10, 11.25F};
    tables.cparam = fields({"a0", "b0", "A", "B", "C", "D", "a3", "b3"}, 5);
    PropertyTables copy = emptied(tables);
    EXPECT_EQ(read(copy, everything), success);
    EXPECT_EQ(listing(copy), listing(tables));
    EXPECT_THAT(stored(tables), testing::HasSubstr("D iparam int32 [4,2] compact\n"));
}

TEST_P(PropertiesByRows, rows_are_read_in_all_four_kinds)
{
    EXPECT_EQ(write(PropertyTables()), success);
    PropertyTables rows = two_rows(row_mode(), {2, 3});
    empty(rows.cparam);
    EXPECT_EQ(read(rows, 8), success);
    EXPECT_EQ(rows.idparam, (std::vector<int32_t>{30, 40}));
    EXPECT_EQ(rows.iparam, (std::vector<int32_t>{5, 6, 7, 8}));
    EXPECT_EQ(rows.fparam, (std::vector<float>{6, 7, 8, 9, 10, 11.25F}));
    EXPECT_EQ(rows.cparam, fields({"a2", "b2", "a3", "b3"}, 5));
    EXPECT_EQ(rows.found_flags, 0);
}

TEST_F(PropertiesBlock, run_of_rows_starts_at_the_first_entry_and_ignores_the_others)
{
    EXPECT_EQ(write(PropertyTables()), success);
    EXPECT_EQ(write(two_rows(1, {0, 1000})), success);
    PropertyTables rows = two_rows(1, {1, -1000});
    EXPECT_EQ(read(rows, 8), success);
    EXPECT_EQ(rows.idparam, (std::vector<int32_t>{200, 30}));
}

TEST_F(PropertiesBlock, listed_rows_keep_the_order_of_the_list)
{
    EXPECT_EQ(write(PropertyTables()), success);
    EXPECT_EQ(write(two_rows(2, {3, 0})), success);
    EXPECT_EQ(dataset_values<int32_t>(file, "properties/iparam"),
              (std::vector<int32_t>{201, 202, 3, 4, 5, 6, 101, 102}));
    PropertyTables rows = two_rows(2, {3, 1});
    EXPECT_EQ(read(rows, 8), success);
    EXPECT_EQ(rows.iparam, (std::vector<int32_t>{101, 102, 3, 4}));
    EXPECT_EQ(rows.cparam, fields({"A", "B", "a1", "b1"}, 5));
}

TEST_F(PropertiesBlock, listed_row_may_be_read_twice)
{
    EXPECT_EQ(write(PropertyTables()), success);
    PropertyTables rows = two_rows(2, {2, 2});
    EXPECT_EQ(read(rows, 8), success);
    EXPECT_EQ(rows.fparam, (std::vector<float>{6, 7, 8, 6, 7, 8}));
}

TEST_P(PropertiesByRows, table_begun_by_rows_has_its_whole_extent)
{
    PropertyTables rows = two_rows(row_mode(), {1, 2});
    EXPECT_EQ(write(rows), success);
    EXPECT_EQ(stored(rows), R"(
D idparam int32 [4,1] compact
D iparam int32 [4,2] compact
D fparam float32 [4,3] compact
D cparam char[5] [4,2] compact
)");
    EXPECT_EQ(dataset_values<int32_t>(file, "properties/idparam"), (std::vector<int32_t>{0, 100, 200, 0}));
    EXPECT_EQ(dataset_values<float>(file, "properties/fparam"),
              (std::vector<float>{0, 0, 0, 100.5F, 101.5F, 102.5F, 200.5F, 201.5F, 202.5F, 0, 0, 0}));
}

TEST_P(PropertiesByRows, rows_beyond_a_table_are_refused_and_change_nothing)
{
    const int32_t code = row_mode() == 1 ? -6031 : -6032;
    const std::string number = row_mode() == 1 ? "(31)" : "(32)", mode = std::to_string(row_mode());
    constexpr int64_t largest = std::numeric_limits<int64_t>::max();
    for (const std::string path : {"begun", "properties"}) {  // a table being made, one that is stored
        const ObjectId place = group(path);
        if (path == "properties") {
            EXPECT_EQ(write_into(PropertyTables(), place), success);
        }
        for (const std::vector<int64_t>& rows :
             {std::vector<int64_t>{3, 4}, {4, 5}, {-1, 0}, {largest, 0}, {-2, -1}}) {
            PropertyTables tables = two_rows(row_mode(), rows);
            EXPECT_EQ(
                write_into(tables, place),
                failure(
                    code,
                    "VAK INTERNAL ERROR " + number +
                        " in VAK_H5Dwrite - name, vak_type, data_size, vak_size, mode, error: idparam 2 4 4 " +
                        mode + " 0\n"));
            if (path == "begun") continue;
            empty(tables.idparam);
            EXPECT_EQ(
                read(tables, 8),
                failure(code, "VAK INTERNAL ERROR " + number +
                                  " in VAK_H5Dread - name, vak_type, data_size, error: idparam 2 4 0\n"));
            EXPECT_EQ(tables.idparam, (std::vector<int32_t>{untouched, untouched}));
            EXPECT_EQ(tables.found_flags, untouched);
        }
    }
    PropertyTables copy = emptied(PropertyTables());
    EXPECT_EQ(read(copy, everything), success);
    EXPECT_EQ(listing(copy), listing(PropertyTables()));
}

TEST_P(PropertiesByRows, no_rows_do_nothing)
{
    const ObjectId place = group("properties");
    PropertyTables none = two_rows(row_mode(), {});
    EXPECT_EQ(write_into(none, place), success);
    EXPECT_EQ(layout(file, "properties"), "\n");
    EXPECT_EQ(write_into(PropertyTables(), place), success);
    for (const int64_t count : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min()}) {
        none.claimed_rows = count;
        EXPECT_EQ(write_into(none, place), success);
        EXPECT_EQ(read(none, 8), success);
        EXPECT_EQ(none.idparam, two_rows(1, {}).idparam);
        EXPECT_EQ(none.found_flags, untouched);
    }
    PropertyTables copy = emptied(PropertyTables());
    EXPECT_EQ(read(copy, everything), success);
    EXPECT_EQ(listing(copy), listing(PropertyTables()));
}

TEST_P(PropertiesByRows, absurd_number_of_rows_is_refused)
{
    EXPECT_EQ(write(PropertyTables()), success);
    PropertyTables rows = two_rows(row_mode(), {1, 2});
    rows.claimed_rows = std::numeric_limits<int64_t>::max();
    const Result refused =
        row_mode() == 1
            ? failure(
                  -6031,
                  "VAK INTERNAL ERROR (31) in VAK_H5Dread - name, vak_type, data_size, error: idparam 2 4 0\n")
            : failure(-1, "VAK ERROR - out of memory\n");
    EXPECT_EQ(read(rows, 8), refused);
}

TEST_P(PropertiesByRows, missing_table_is_reported)
{
    PropertyTables tables;
    tables.mode = 1;
    EXPECT_EQ(write(tables), success);
    PropertyTables rows = two_rows(row_mode(), {1, 2});
    EXPECT_EQ(
        read(rows, 8),
        failure(
            -6002,
            "VAK INTERNAL ERROR (2) in VAK_H5Dread - name, vak_type, data_size, error: idparam 2 4 -1\n"));
}

TEST_F(PropertiesBlock, another_row_mode_is_refused)
{
    const PropertyTables written;
    EXPECT_EQ(write(written), success);
    for (const int32_t row_mode : {3, -1}) {
        PropertyTables tables = emptied(written);
        tables.row_mode = row_mode;
        EXPECT_EQ(read(tables, everything),
                  failure(-999, "VAK ERROR reading block key 500 - invalid mode\n"));
        EXPECT_EQ(tables.entid, written.entid);
        EXPECT_EQ(tables.idparam, emptied(written).idparam);
        EXPECT_EQ(tables.found_flags, untouched);
        EXPECT_EQ(write(tables), failure(-999, "VAK ERROR writing block key 500 - invalid mode\n"));
    }
}

TEST_F(PropertiesBlock, row_mode_counts_only_where_there_is_a_table)
{
    PropertyTables tables;
    tables.row_mode = 3;
    tables.mode = 1 + 2 + 4;
    EXPECT_EQ(write(tables), success);
    tables.mode = everything;
    tables.nbid = tables.nbint = tables.nbfloat = tables.length = 0;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(read(tables, everything), success);
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
    EXPECT_EQ(read(copy, everything), success);
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

TEST_F(PropertiesBlock, shared_identifiers_are_filtered_like_others)
{
    const ObjectId shared = group("shared"), block = group("block");
    PropertyTables tables;
    tables.nent = 8;
    tables.entid = {1, 2, 3, 4, 5, 6, 7, 8};
    tables.mode = 4 + 16;
    tables.shared = shared;
    tables.flags = 1;
    tables.params[1] = 3;
    EXPECT_EQ(write_into(tables, block), success);
    EXPECT_EQ(layout(file, "block"), "\nD entid int32 [8] chunked(8) deflate(3) links=2\n");
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
        EXPECT_EQ(run([&] { return copy.read(place, everything); }), success);
        EXPECT_EQ(listing(copy), listing(tables));
    }
}

}  // namespace

}  // namespace vak::test
