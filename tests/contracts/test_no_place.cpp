// A writer that cannot have its group says so by one line with the path, gives that status, and writes
// nothing.
#include "contracts/kinds.h"

namespace vak::test {

namespace {

// Those that find their own place; the others are given a group.
std::vector<Kind> placed_kinds()
{
    std::vector<Kind> placed;
    for (const Kind& kind : kinds()) {
        const std::string& name = kind.write.name;
        if (!name.ends_with("FILEHEADER") && !name.ends_with("2") && !name.ends_with("PROPERTIES"))
            placed.push_back(kind);
    }
    return placed;
}

class PlacedKind : public KindTest {
protected:
    static testing::Matcher<std::string> line(int32_t code)
    {
        return testing::MatchesRegex("VAK ERROR - vak_h5gopen - code " + std::to_string(code) +
                                     ", group (constant|singlestate|multistate)/[^\n]*\n");
    }
};

TEST_P(PlacedKind, is_refused_without_a_file)
{
    const Result result = call_at(GetParam().write, -1, 4);
    EXPECT_EQ(result.ierr, -10);
    EXPECT_THAT(result.output.err, line(-10));
    EXPECT_EQ(result.output.out, "");
}

TEST_P(PlacedKind, is_refused_where_something_else_stands_in_the_path)
{
    const ObjectId location = place();
    const SpaceId space(H5Screate(H5S_SCALAR), "space");
    for (const char* name : {"constant", "singlestate", "multistate"})
        ObjectId(H5Dcreate2(location, name, H5T_STD_I32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                 name);
    const std::string before = layout(location, ".");
    const Result result = call_at(GetParam().write, location, 4);
    EXPECT_EQ(result.ierr, -8);
    EXPECT_THAT(result.output.err, line(-8));
    EXPECT_EQ(layout(location, "."), before);
}

TEST_P(PlacedKind, is_refused_in_a_file_that_is_only_read)
{
    create_file(path("closed.h5"));
    const FileId read_only = read_file(path("closed.h5"));
    const Result result = call_at(GetParam().write, read_only, 4);
    EXPECT_EQ(result.ierr, -8);
    EXPECT_THAT(result.output.err, line(-8));
}

INSTANTIATE_TEST_SUITE_P(Contracts, PlacedKind, testing::ValuesIn(placed_kinds()), kind_name);

}  // namespace

}  // namespace vak::test
