// Whichever step of a routine fails, its code is the status, no step follows and nothing stays open.
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <set>

#include "contracts/sample_arguments.h"
#include "contracts/storage_that_fails.h"
#include "support/library.h"
#include "vak_sp.h"

namespace vak::test {

struct Routine {
    std::string name;
    std::function<int32_t(hid_t location, int32_t value)> call;
};

// The writer's key is what its reader finds.
struct Kind {
    Routine write;
    Routine read;
};

std::ostream& operator<<(std::ostream& stream, const Kind& kind) { return stream << kind.write.name; }

#define ROUTINE(name)                                                                     \
    Routine                                                                               \
    {                                                                                     \
#name, [](hid_t at, int32_t value) { return call_with_samples(name, at, value); } \
    }
#define KIND(family, noun) \
    Kind { ROUTINE(family##_WRITE_##noun), ROUTINE(family##_READ_##noun) }

const std::vector<Kind>& kinds()
{
    static const std::vector<Kind> all{
        KIND(VAK, FILEHEADER),
        KIND(VAK1, FILEHEADER),  //
        KIND(VAK, SYSTEM),
        KIND(VAK1, SYSTEM),  //
        KIND(VAK, INDEX),
        KIND(VAK1, INDEX),  //
        KIND(VAK, VARIABLE),
        KIND(VAK1, VARIABLES),     //
        KIND(VAK, VARIABLEGROUP),  //
        KIND(VAK, TEXT),
        KIND(VAK1, TEXT),  //
        KIND(VAK, PARTS),
        KIND(VAK1, PARTS),  //
        KIND(VAK, ATTRIBUTES),
        KIND(VAK1, ATTRIBUTES),  //
        KIND(VAK, IDENTIFIERS),  //
        KIND(VAK, CONNECTIVITIES),
        KIND(VAK1, CONNECTIVITIES),  //
        KIND(VAK, COLLECTOR),
        KIND(VAK1, COLLECTOR),  //
        KIND(VAK, PROPERTIES),  //
        KIND(VAK, DENSEMATRIX),
        KIND(VAK1, DENSEMATRIX),  //
        KIND(VAK, TRIANGULARMATRIX),
        KIND(VAK1, TRIANGULARMATRIX),  //
        KIND(VAK, SPARSEMATRIX),
        KIND(VAK1, SPARSEMATRIX),  //
        KIND(VAK, ENTITYRESULTS),
        KIND(VAK1, ENTITYRESULTS),  //
        KIND(VAK, ENTITYRESULTS2),
        KIND(VAK1, ENTITYRESULTS2),  //
        KIND(VAK, MULTIENTITYRESULTS),
        KIND(VAK1, MULTIENTITYRESULTS),  //
        KIND(VAK, MULTIENTITYRESULTC),
        KIND(VAK1, MULTIENTITYRESULTC),  //
        KIND(VAK, MULTIENTITYRESULTS2),
        KIND(VAK1, MULTIENTITYRESULTS2),  //
        KIND(VAK, ELEMENTRESULTS),
        KIND(VAK1, ELEMENTRESULTS),  //
        KIND(VAK, MULTIELEMENTRESULTS),
        KIND(VAK1, MULTIELEMENTRESULTS),  //
        KIND(VAK, ACTIVFLAGS),
        KIND(VAK1, ACTIVFLAGS),  //
        KIND(VAK, MULTIACTIVFLAGS),
        KIND(VAK1, MULTIACTIVFLAGS),  //
    };
    return all;
}

class EveryKind : public LibraryTest, public testing::WithParamInterface<Kind> {
protected:
    // Counts, modes and passes are all of this value in turn, so that every branch is taken by one of them.
    static constexpr std::array<int32_t, 4> values{0, 1, 2, 15};

    // One call at a place of its own, with the given step failing; the status.
    int32_t run(const Routine& routine, int32_t value, int failing_step)
    {
        const ObjectId place = group(file, std::to_string(++places_));
        if (routine.name.find("_READ_") != std::string::npos)
            for (const char* section : {"header", "index", "data"}) group(place, section);
        count_steps(failing_step);
        int32_t status = 0;
        call([&] {
            status = routine.call(place, value);
            if (status == 0 && leaves_group_open(routine)) close_groups_but(place);
        });
        return status;
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

private:
    // The one writer whose callers expect the block's group open after it.
    static bool leaves_group_open(const Routine& routine)
    {
        return routine.name.ends_with("_WRITE_ELEMENTRESULTS");
    }

    void close_groups_but(hid_t place) const
    {
        std::array<hid_t, 4> open{};
        const ssize_t count = H5Fget_obj_ids(file, H5F_OBJ_GROUP, open.size(), open.data());
        EXPECT_EQ(count, 2) << "the place and the block";
        for (ssize_t i = 0; i < count; ++i)
            if (open[static_cast<size_t>(i)] != place) H5Gclose(open[static_cast<size_t>(i)]);
    }

    static ObjectId group(hid_t location, const std::string& name)
    {
        return {H5Gcreate2(location, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
    }

    int places_ = 0;
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

INSTANTIATE_TEST_SUITE_P(Contracts, EveryKind, testing::ValuesIn(kinds()),
                         [](const auto& parameter) { return parameter.param.write.name; });

TEST(EveryKind, is_in_the_list)
{
    std::ifstream file(VAK_HEADER);
    const std::string header(std::istreambuf_iterator<char>(file), {});
    const std::regex declaration(R"(VAK_API void (VAK1?_(WRITE|READ)_(?!PARAM\()\w+)\()");
    std::set<std::string> declared, listed;
    for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match)
        declared.insert((*match)[1]);
    for (const Kind& kind : kinds()) listed.insert({kind.write.name, kind.read.name});
    EXPECT_EQ(listed, declared);
}

}  // namespace vak::test
