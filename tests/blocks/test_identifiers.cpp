// What identifiers have in common with attributes is tested there; here is what differs.
#include "samples/attributes.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

class IdentifiersBlock : public BlockTest {};

TEST_F(IdentifiersBlock, is_stored_as_described)
{
    const Identifiers identifiers;
    EXPECT_EQ(write(identifiers), success);
    EXPECT_EQ(layout(file, "singlestate/state000000000012/identifiers/NODE/vakblock"), R"(
A block int32
A blocktype char[256]
A etyp char[256]
A nent int32
A nuid int32
A length int32
A nindex int32
A indexic int32
D indexident int32 [2] compact
D indexval float32 [2] compact
D entid int32 [4] compact
D title char[24] [4] compact
D uid int32 [4,3] compact
)");
    EXPECT_EQ(attribute_value<int32_t>(file, identifiers.path(), "block"), 250);
    EXPECT_EQ(attribute_text(file, identifiers.path(), "blocktype"),
              std::string("identifiers") + std::string(245, '\0'));
}

TEST_F(IdentifiersBlock, reads_back_what_was_written)
{
    const Identifiers written;
    EXPECT_EQ(write(written), success);
    Identifiers identifiers = emptied(written);
    EXPECT_EQ(read(identifiers, 1 + 2 + 8), success);
    EXPECT_EQ(listing(identifiers), listing(written));
}

TEST_F(IdentifiersBlock, mode_that_reads_nothing_gives_the_key)
{
    const Identifiers written;
    EXPECT_EQ(write(written), success);
    for (const int32_t mode : {0, 4, 2}) {
        Identifiers identifiers = emptied(written);
        identifiers.index.nindex = 0;
        EXPECT_EQ(read(identifiers, mode), status(250));
        EXPECT_EQ(identifiers.found_flags, untouched);
    }
}

TEST_F(IdentifiersBlock, attributes_are_another_kind)
{
    const Attributes attributes;
    EXPECT_EQ(write(attributes), success);
    Identifiers identifiers;
    EXPECT_EQ(read(identifiers, 1, attributes.path()),
              failure(-1, "VAK error - wrong block key 200, 250 expected\n"));
}

TEST_F(IdentifiersBlock, attributes_of_the_same_entities_may_stand_beside)
{
    EXPECT_EQ(write(Identifiers()), success);
    EXPECT_EQ(write(Attributes()), success);
}

TEST_F(IdentifiersBlock, titles_and_further_identifiers_may_be_missing)
{
    Identifiers written;
    written.length = 0;
    written.nuid = 0;
    EXPECT_EQ(write(written), success);
    EXPECT_THAT(stored(written), testing::EndsWith("D entid int32 [4] compact\n"));
    Identifiers identifiers = emptied(written);
    EXPECT_EQ(read(identifiers, 1 + 2 + 8), success);
    EXPECT_EQ(identifiers.entid, written.entid);
    EXPECT_EQ(identifiers.title, emptied(written).title);
}

}  // namespace

}  // namespace vak::test
