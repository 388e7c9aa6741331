// A reader takes the keys of its kind only, and says in one of three wordings what it found.
#include "contracts/kinds.h"

namespace vak::test {

namespace {

std::vector<Kind> kinds_with_a_key()
{
    std::vector<Kind> all;
    for (const Kind& kind : kinds())
        if (kind.write.name.find("FILEHEADER") == std::string::npos) all.push_back(kind);
    return all;
}

class KeyedKind : public KindTest {
protected:
    void SetUp() override
    {
        KindTest::SetUp();
        block_.emplace(written(GetParam()));
        key_ = attribute_value<int32_t>(block_->place, block_->stamped, "block");
    }
    void TearDown() override
    {
        block_.reset();
        KindTest::TearDown();
    }

    Result read()
    {
        const ObjectId group = block_->group();
        return call_at(GetParam().read, group, 1);
    }

    void stamp(hid_t type, const void* value)
    {
        const ObjectId holder = open_object(block_->place, block_->stamped);
        H5Adelete(holder, "block");
        const SpaceId space(H5Screate(H5S_SCALAR), "space");
        const AttributeId attribute(H5Acreate2(holder, "block", type, space, H5P_DEFAULT, H5P_DEFAULT),
                                    "block");
        EXPECT_GE(H5Awrite(attribute, type, value), 0);
    }

    // What the reader says of a key that is not its own.
    std::string line(int32_t found) const
    {
        const std::string& name = GetParam().read.name;
        const std::string keys = std::to_string(found) + ", ";
        const bool is_pair =
            name.find("RESULT") != std::string::npos || name.find("MATRIX") != std::string::npos;
        if (is_pair)
            return "VAK ERROR - wrong block key " + keys + std::to_string(key_ / 10 * 10) + " or " +
                   std::to_string(key_ / 10 * 10 + 1) + " expected\n";
        const std::string expected = keys + std::to_string(key_) + " expected\n";
        if (name.ends_with("_READ_ACTIVFLAGS")) return "VAK ERROR wrong - block key " + expected;
        for (const char* word :
             {"VAK_READ_PARTS", "VAK1_READ_PARTS", "VAK_READ_ATTRIBUTES", "IDENTIFIERS", "PROPERTIES"})
            if (name.ends_with(word)) return "VAK error - wrong block key " + expected;
        return "VAK ERROR - wrong block key " + expected;
    }

    std::optional<StoredBlock> block_;
    int32_t key_ = 0;
};

std::string internal_error(const std::string& number, const std::string& error)
{
    return "VAK INTERNAL ERROR (" + number +
           ") in VAK_H5Aread - name, vak_type, data_size, error: block 2 4 " + error + "\n";
}

TEST_P(KeyedKind, is_not_read_under_another_key)
{
    for (const int32_t found : {0, -1, key_ + 2, 2147483647}) {
        stamp(H5T_STD_I32LE, &found);
        EXPECT_EQ(read(), failure(-1, line(found)));
    }
}

TEST_P(KeyedKind, is_not_read_without_a_key)
{
    H5Adelete_by_name(block_->place, block_->stamped.c_str(), "block", H5P_DEFAULT);
    EXPECT_EQ(read(), failure(-4002, internal_error("2", "-1")));
}

TEST_P(KeyedKind, is_not_read_when_the_key_is_no_integer)
{
    const double number = key_;
    stamp(H5T_NATIVE_DOUBLE, &number);
    EXPECT_EQ(read(), failure(-4003, internal_error("3", std::to_string(H5T_FLOAT))));
    stamp(H5T_C_S1, "1");
    EXPECT_EQ(read(), failure(-4003, internal_error("3", std::to_string(H5T_STRING))));
}

TEST_P(KeyedKind, is_not_read_when_the_key_is_wider_than_an_integer)
{
    const int64_t wide = key_;
    stamp(H5T_NATIVE_INT64, &wide);
    EXPECT_EQ(read(), failure(-4011, internal_error("11", "8")));
}

TEST_P(KeyedKind, is_not_read_without_a_group)
{
    for (const hid_t none : {-1, -1000})
        EXPECT_EQ(call_at(GetParam().read, none, 1), failure(-1, "VAK ERROR - header not found\n"));
}

INSTANTIATE_TEST_SUITE_P(Contracts, KeyedKind, testing::ValuesIn(kinds_with_a_key()), kind_name);

}  // namespace

}  // namespace vak::test
