// Whichever step of a routine fails, its code is the status, no step follows and nothing stays open.
#include <fstream>
#include <iterator>
#include <set>

#include "contracts/kinds.h"
#include "contracts/storage_that_fails.h"
#include "support/matches.h"

namespace vak::test {

class EveryKind : public KindTest {
protected:
    // Counts, modes and passes are all of this value in turn, so that every branch is taken by one of them.
    static constexpr std::array<int32_t, 4> values{0, 1, 2, 15};

    // One call at a place of its own, with the given step failing; the status.
    int32_t run(const Routine& routine, int32_t value, int failing_step)
    {
        const ObjectId location = place();
        if (routine.name.find("_READ_") != std::string::npos)
            for (const char* section : {"header", "index", "data"}) group(location, section);
        count_steps(failing_step);
        return call_at(routine, location, value).ierr;
    }

    void fail_at_every_step(const Routine& routine, int32_t value)
    {
        run(routine, value, 0);
        const int steps = steps_taken();
        for (int step = 1; step <= steps; ++step) {
            SCOPED_TRACE(routine.name + " with " + std::to_string(value) + " failing at step " +
                         std::to_string(step) + " of " + std::to_string(steps));
            EXPECT_EQ(run(routine, value, step), step_failure);
            EXPECT_EQ(steps_taken(), step);
        }
        most_steps_ = std::max(most_steps_, steps);
    }

    int most_steps_ = 0;
};

TEST_P(EveryKind, is_written_until_the_first_step_that_fails)
{
    for (const int32_t value : values) fail_at_every_step(GetParam().write, value);
    EXPECT_GE(most_steps_, 1);
}

TEST_P(EveryKind, is_read_until_the_first_step_that_fails)
{
    for (const int32_t value : values) {
        run(GetParam().write, value, 0);
        fail_at_every_step(GetParam().read, value);
    }
    EXPECT_GE(most_steps_, 1);
}

INSTANTIATE_TEST_SUITE_P(Contracts, EveryKind, testing::ValuesIn(kinds()), kind_name);

TEST(EveryKind, is_in_the_list)
{
    std::ifstream file(VAK_HEADER);
    const std::string header(std::istreambuf_iterator<char>(file), {});
    std::set<std::string> listed;
    for (const Kind& kind : kinds()) listed.insert({kind.write.name, kind.read.name});
    EXPECT_EQ(listed, matches(header, R"(VAK_API void (VAK1?_(WRITE|READ)_(?!PARAM\()\w+)\()"));
}

}  // namespace vak::test
