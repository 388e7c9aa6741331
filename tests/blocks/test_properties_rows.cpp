// Rows of property tables: runs of them, and rows from a list.
#include <limits>

#include "blocks/properties_test.h"

namespace vak::test {

namespace {

using PropertyRows = PropertiesTest;

// The same for each way of listing rows.
class PropertiesByRows : public PropertiesTest, public testing::WithParamInterface<int32_t> {
protected:
    int32_t row_mode() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(, PropertiesByRows, testing::Values(1, 2),
                         [](const auto& row_mode) { return row_mode.param == 1 ? "run" : "list"; });

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
    EXPECT_EQ(read(copy, every_table), success);
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

TEST_F(PropertyRows, run_of_rows_starts_at_the_first_entry_and_ignores_the_others)
{
    EXPECT_EQ(write(PropertyTables()), success);
    EXPECT_EQ(write(two_rows(1, {0, 1000})), success);
    PropertyTables rows = two_rows(1, {1, -1000});
    EXPECT_EQ(read(rows, 8), success);
    EXPECT_EQ(rows.idparam, (std::vector<int32_t>{200, 30}));
}

TEST_F(PropertyRows, listed_rows_keep_the_order_of_the_list)
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

TEST_F(PropertyRows, listed_row_may_be_read_twice)
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
    EXPECT_EQ(read(copy, every_table), success);
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
    EXPECT_EQ(read(copy, every_table), success);
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

TEST_F(PropertyRows, another_row_mode_is_refused)
{
    const PropertyTables written;
    EXPECT_EQ(write(written), success);
    for (const int32_t row_mode : {3, -1}) {
        PropertyTables tables = emptied(written);
        tables.row_mode = row_mode;
        EXPECT_EQ(read(tables, every_table),
                  failure(-999, "VAK ERROR reading block key 500 - invalid mode\n"));
        EXPECT_EQ(tables.entid, written.entid);
        EXPECT_EQ(tables.idparam, emptied(written).idparam);
        EXPECT_EQ(tables.found_flags, untouched);
        EXPECT_EQ(write(tables), failure(-999, "VAK ERROR writing block key 500 - invalid mode\n"));
    }
}

TEST_F(PropertyRows, row_mode_counts_only_where_there_is_a_table)
{
    PropertyTables tables;
    tables.row_mode = 3;
    tables.mode = 1 + 2 + 4;
    EXPECT_EQ(write(tables), success);
    tables.mode = every_table;
    tables.nbid = tables.nbint = tables.nbfloat = tables.length = 0;
    EXPECT_EQ(write(tables), success);
    EXPECT_EQ(read(tables, every_table), success);
}

}  // namespace

}  // namespace vak::test
