// A block that may exist once is refused the second time, and the first stays as it is.
#include <fstream>
#include <iterator>

#include "contracts/kinds.h"

namespace vak::test {

namespace {

// What may be written again: matrices go on in their block, results and properties are rewritten, series
// grow.
bool is_unique(const Kind& kind)
{
    const std::string& name = kind.write.name;
    for (const char* word : {"MATRIX", "RESULT", "PROPERTIES", "MULTI", "FILEHEADER"})
        if (name.find(word) != std::string::npos) return false;
    return true;
}

std::vector<Kind> unique_kinds()
{
    std::vector<Kind> unique;
    for (const Kind& kind : kinds())
        if (is_unique(kind)) unique.push_back(kind);
    return unique;
}

class UniqueKind : public KindTest {
protected:
    std::string bytes()
    {
        EXPECT_GE(H5Fflush(file, H5F_SCOPE_GLOBAL), 0);
        std::ifstream stream(path("fresh.h5"), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
};

TEST_P(UniqueKind, is_refused_the_second_time_and_the_first_stays_byte_by_byte)
{
    const ObjectId location = place();
    ASSERT_EQ(call_at(GetParam().write, location, 4), success);
    const std::string stamped = stamped_groups(location).at(0);
    const auto key = attribute_value<int32_t>(location, stamped, "block");
    const std::string type = attribute_text(location, stamped, "blocktype").c_str();
    const std::string before = bytes();
    EXPECT_EQ(call_at(GetParam().write, location, 4),
              failure(-1, "VAK INTERNAL ERROR writing block key " + std::to_string(key) + " - \"" + type +
                              "\" already exists.\n"));
    EXPECT_TRUE(bytes() == before);
}

INSTANTIATE_TEST_SUITE_P(Contracts, UniqueKind, testing::ValuesIn(unique_kinds()), kind_name);

TEST(UniqueKind, is_every_one_that_describes_the_model) { EXPECT_EQ(unique_kinds().size(), 20U); }

}  // namespace

}  // namespace vak::test
