// The two families write the same kinds, each in its own layout, and neither takes the other's for its own.
#include "contracts/kinds.h"

namespace vak::test {

namespace {

struct Pair {
    Kind current, legacy;
};

std::ostream& operator<<(std::ostream& stream, const Pair& pair) { return stream << pair.current.write.name; }

std::vector<Pair> pairs()
{
    std::vector<Pair> all;
    for (const Kind& current : kinds())
        for (const Kind& legacy : kinds())
            if (current.write.name.starts_with("VAK_") &&
                legacy.write.name == "VAK1" + current.write.name.substr(3) &&
                current.write.name != "VAK_WRITE_FILEHEADER")
                all.push_back({current, legacy});
    return all;
}

// Written once in each family, at places of their own.
class KindOfBothFamilies : public ContractTest, public testing::WithParamInterface<Pair> {
protected:
    Result read(const Kind& kind, const StoredBlock& block)
    {
        const ObjectId group = block.group();
        return call_at(kind.read, group, 1);
    }
};

TEST_P(KindOfBothFamilies, has_the_same_key_and_type)
{
    const StoredBlock current = written(GetParam().current), legacy = written(GetParam().legacy);
    EXPECT_EQ(attribute_value<int32_t>(current.place, current.stamped, "block"),
              attribute_value<int32_t>(legacy.place, legacy.stamped, "block"));
    EXPECT_EQ(attribute_text(current.place, current.stamped, "blocktype"),
              attribute_text(legacy.place, legacy.stamped, "blocktype"));
}

TEST_P(KindOfBothFamilies, has_a_level_of_its_own_or_subgroups)
{
    EXPECT_THAT(written(GetParam().current).stamped, testing::Not(testing::EndsWith("header")));
    EXPECT_THAT(written(GetParam().legacy).stamped, testing::EndsWith("header"));
    EXPECT_THAT(written(GetParam().legacy).stamped, testing::Not(testing::HasSubstr("vakblock")));
}

TEST_P(KindOfBothFamilies, is_read_by_the_reader_of_its_family)
{
    EXPECT_GE(read(GetParam().current, written(GetParam().current)).ierr, 0);
    EXPECT_GE(read(GetParam().legacy, written(GetParam().legacy)).ierr, 0);
}

TEST_P(KindOfBothFamilies, is_refused_by_the_reader_of_the_other_family)
{
    EXPECT_EQ(
        read(GetParam().current, written(GetParam().legacy)),
        failure(-4002,
                "VAK INTERNAL ERROR (2) in VAK_H5Aread - name, vak_type, data_size, error: block 2 4 -1\n"));
    EXPECT_EQ(read(GetParam().legacy, written(GetParam().current)),
              failure(-1, "VAK ERROR - header not found\n"));
}

INSTANTIATE_TEST_SUITE_P(Contracts, KindOfBothFamilies, testing::ValuesIn(pairs()),
                         [](const auto& pair) { return pair.param.current.write.name.substr(10); });

}  // namespace

}  // namespace vak::test
