// Identifiers that several property blocks share.
#include "blocks/properties_test.h"

namespace vak::test {

namespace {

using SharedIdentifiers = PropertiesTest;

TEST_F(SharedIdentifiers, shared_identifiers_are_stored_once_and_linked)
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

TEST_F(SharedIdentifiers, own_identifiers_are_not_replaced_by_shared_ones)
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

TEST_F(SharedIdentifiers, nothing_to_share_is_no_failure)
{
    const ObjectId shared = group("shared"), block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 16;
    tables.shared = shared;
    tables.nent = 0;
    EXPECT_EQ(write_into(tables, block), success);
    EXPECT_EQ(layout(file, "/"), "\nG shared\nG block\n");
}

TEST_F(SharedIdentifiers, sharing_alone_writes_nothing)
{
    const ObjectId block = group("block");
    PropertyTables tables;
    tables.mode = 16;
    EXPECT_EQ(write_into(tables, block), success);
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_F(SharedIdentifiers, no_shared_group_is_reported_like_no_group)
{
    const ObjectId block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 8 + 16;
    tables.shared = -7;
    EXPECT_EQ(write_into(tables, block), failure(-7, "VAK ERROR writing block key 500\n"));
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_F(SharedIdentifiers, identifiers_in_another_file_cannot_be_shared)
{
    const FileId other = create_file(path("other.h5"));
    const ObjectId shared = open_object(other, "/"), block = group("block");
    PropertyTables tables;
    tables.mode = 4 + 8 + 16;
    tables.shared = shared;
    EXPECT_EQ(write_into(tables, block), failure(-3, "VAK ERROR writing block key 500\n"));
    EXPECT_EQ(layout(file, "/"), "\nG block\n");
}

TEST_F(SharedIdentifiers, shared_identifiers_are_filtered_like_others)
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

}  // namespace

}  // namespace vak::test
