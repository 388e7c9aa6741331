// A block whose group HDF5 could not close has not been written for certain: the status of the writer says
// so.
#include "contracts/kinds.h"
#include "samples/entityresults.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "storage/refusal.h"

MAY_FAIL_CLOSING(H5Gclose)

namespace vak::test {

namespace {

template <class Call>
Result without_closing(Call call)
{
    refused = "H5Gclose";
    Result result = call();
    refused.clear();
    return result;
}

std::vector<Kind> kinds_that_tell()
{
    std::vector<Kind> all;
    for (const Kind& kind : kinds()) {
        const std::string& name = kind.write.name;
        // Properties have their group from the caller; the others are below.
        if (name.find("RESULT") == std::string::npos && !name.ends_with("MULTIACTIVFLAGS") &&
            !name.ends_with("PROPERTIES"))
            all.push_back(kind);
    }
    return all;
}

class UnclosedKind : public KindTest {};

TEST_P(UnclosedKind, is_minus_1_and_one_line)
{
    const ObjectId location = place();
    const Result result = without_closing([&] { return call_at(GetParam().write, location, 4); });
    EXPECT_EQ(result.ierr, -1);
    EXPECT_THAT(result.output.err, testing::MatchesRegex("VAK ERROR writing (header|block key [0-9]+)\n"));
    EXPECT_EQ(result.output.out, "");
}

INSTANTIATE_TEST_SUITE_P(Contracts, UnclosedKind, testing::ValuesIn(kinds_that_tell()), kind_name);

class UnclosedResults : public BothFamilies {
protected:
    template <class S>
    void expect_told()
    {
        EXPECT_EQ(without_closing([&] { return write(sample<S>()); }), status(-1)) << S::type;
    }
};
INSTANTIATE_TEST_SUITE_P(Contracts, UnclosedResults, both_families, family_name);

TEST_P(UnclosedResults, are_minus_1)
{
    expect_told<EntityResults>();
    expect_told<MultiEntityResults>();
    expect_told<MultiElementResults>();
    expect_told<MultiActivFlags>();
}

}  // namespace

}  // namespace vak::test
