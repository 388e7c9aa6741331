// What the merger tells of its steps, at each level of its report.
#include <gtest/gtest.h>

#include "samples/connectivities.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

class MergeSteps : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeSteps() : MergeTest(GetParam()) {}

    template <class S>
    void put(hid_t domain) const
    {
        EXPECT_GE(sample_of<S>(family()).write(domain), 0);
    }

    // A run's file: shared blocks, elements, one result.
    void add_full_domain()
    {
        const hid_t domain = add_domain();
        put_header(domain);
        put<System>(domain);
        put<Indices>(domain);
        if (legacy()) {
            put<Variables1>(domain);
        } else {
            put<Variable>(domain);
            put<VariableGroup>(domain);
        }
        put<Text>(domain);
        put<Connectivities>(domain);
        put<EntityResults>(domain);
    }
};

const std::string full_start = R"(
     +------------------------------------------------------+
     |  VAK DMP domain file merger                          |
     +------------------------------------------------------+
      Compiled    : DATE TIME
      VAK Version : 2.2.14
 Info    : file  [         0]:          8 VAK blocks found
 Info    : file  [         1]:          8 VAK blocks found
)";
const std::string full_list = R"(
 Number of blocktypes NBlockTypes: 8
 ----------------------------------------------------------------
 BlockKey   :     1
          0 :          7 (key     1) "vakheader"
 ----------------------------------------------------------------
 BlockKey   :    10
          1 :          1 (key    10) "constant/system/vakblock"
 ----------------------------------------------------------------
 BlockKey   :    20
          2 :          0 (key    20) "constant/indices/vakblock"
 ----------------------------------------------------------------
 BlockKey   :    30
          3 :          2 (key    30) "constant/variable/DISP/vakblock"
 ----------------------------------------------------------------
 BlockKey   :    32
          4 :          3 (key    32) "constant/variablegroup/Mechanics/vakblock"
 ----------------------------------------------------------------
 BlockKey   :    40
          5 :          6 (key    40) "singlestate/state000000000012/text/run log/vakblock"
 ----------------------------------------------------------------
 BlockKey   :   300
          6 :          4 (key   300) "singlestate/state000000000012/connectivities/HEXA 8/vakblock"
 ----------------------------------------------------------------
 BlockKey   :  1000
          7 :          5 (key  1000) "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/SOLID3_set2/vakblock"
)";
const std::string full_rest =
    R"( VAK check file        0 / 2: OK      - version file: 2.2.14 - program: 2.2.14
 VAK check file        1 / 2: OK      - version file: 2.2.14 - program: 2.2.14

 Start file merge

 target file: copy "system" block from file  [0]
 target file: copy "indices" block from file  [0]
 target file: copy "variablegroup" blocks from file  [0]

 1 "variablegroup" block(s) found
 target file: copy "variable" blocks from file  [0]

 1 "variable" block(s) found
 target file: copy "text" blocks from file  [0]

 1 "text" block(s) found
 target file: create 1 merged "connectivities" block(s)
 target file: create 0 merged "activflags" block(s)
 target file: create 0 merged "parts" block(s)
 target file: create 0 merged "attributes" block(s)
 target file: create 0 merged "identifiers" block(s)
 target file: create 0 merged "collector" block(s)
 target file: create 0 merged "elementresults" block(s)
 target file: create 1 merged "entityresults" block(s)
 target file: create 0 merged "multientityresults" block(s)
 target file: create 0 merged "densematrix" block(s)
 target file: create 0 merged "triangularmatrix" block(s)

 VAK DMP domain file merge successfully completed.

)";
const std::string full_report = full_start + full_list + full_list + full_rest;

const std::string legacy_start = R"(
     +------------------------------------------------------+
     |  VAK DMP domain file merger                          |
     +------------------------------------------------------+
      Compiled    : DATE TIME
      VAK Version : 1.2.0
 Info    : file  [         0]:          7 VAK blocks found
 Info    : file  [         1]:          7 VAK blocks found
)";
const std::string legacy_list = R"(
 Number of blocktypes NBlockTypes: 7
 ----------------------------------------------------------------
 BlockKey   :     1
          0 :          6 (key     1) "vakheader"
 ----------------------------------------------------------------
 BlockKey   :    10
          1 :          1 (key    10) "constant/system/header"
 ----------------------------------------------------------------
 BlockKey   :    20
          2 :          0 (key    20) "constant/indices/header"
 ----------------------------------------------------------------
 BlockKey   :    30
          3 :          3 (key    30) "constant/variables/NODE/header"
 ----------------------------------------------------------------
 BlockKey   :    40
          4 :          2 (key    40) "constant/text/run log/header"
 ----------------------------------------------------------------
 BlockKey   :   300
          5 :          4 (key   300) "singlestate/state000000000012/connectivities/HEXA 8/header"
 ----------------------------------------------------------------
 BlockKey   :  1000
          6 :          5 (key  1000) "singlestate/state000000000012/entityresults/NODE/DISPLACEMENT/SOLID3_set2/header"
)";
const std::string legacy_rest =
    R"( VAK check file        0 / 2: OK      - version file: 1.2.0 - program: 1.2.0
 VAK check file        1 / 2: OK      - version file: 1.2.0 - program: 1.2.0

 Start file merge

 target file: copy "system" block from file  [0]
 target file: copy "indices" block from file  [0]
 target file: copy "variables" blocks from file  [0]

 1 "variables" block(s) found
 target file: copy "text" blocks from file  [0]

 1 "text" block(s) found
 target file: create 1 merged "connectivities" block(s)
 target file: create 0 merged "activflags" block(s)
 target file: create 0 merged "parts" block(s)
 target file: create 0 merged "attributes" block(s)
 target file: create 0 merged "collector" block(s)
 target file: create 0 merged "elementresults" block(s)
 target file: create 1 merged "entityresults" block(s)
 target file: create 0 merged "multientityresults" block(s)
 target file: create 0 merged "densematrix" block(s)
 target file: create 0 merged "triangularmatrix" block(s)

 VAK DMP domain file merge successfully completed.

)";
const std::string legacy_report = legacy_start + legacy_list + legacy_list + legacy_rest;

TEST_P(MergeSteps, are_all_told_at_levels_one_and_two)
{
    for (const int32_t options : {1, 2, 3}) {
        restart();
        add_full_domain();
        add_full_domain();
        EXPECT_EQ(merge(options), 0);
        EXPECT_EQ(told(), legacy() ? legacy_report : full_report);
        EXPECT_EQ(printed().err, "");
    }
}

TEST_P(MergeSteps, are_silent_at_level_zero)
{
    add_full_domain();
    add_full_domain();
    EXPECT_EQ(merge(0), 0);
    EXPECT_EQ(printed(), nothing_printed);
}

TEST_P(MergeSteps, of_no_file_are_nothing_to_do)
{
    EXPECT_EQ(merge(2), 0);
    EXPECT_EQ(printed(), nothing_printed);
    EXPECT_EQ(layout(target(), "."), "\n");
}

TEST_P(MergeSteps, tell_of_a_file_without_blocks_at_every_level)
{
    add_domain();
    add_full_domain();
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(printed().out, " WARNING file [0]:  NO        VAK blocks found\n");
    EXPECT_EQ(printed().err,
              "\nVAK WARNING file [0]: \"vakheader\" not found\n"
              "\nVAK WARNING - files maybe incompatible\n");
}

// Many files have no text or no groups, so that it is told in the report alone.
TEST_P(MergeSteps, tell_of_shared_kinds_that_the_first_file_lacks_above_level_zero)
{
    put_header(add_domain());
    EXPECT_EQ(merge(1 + 4), 0);
    EXPECT_EQ(printed().err,
              std::string(legacy() ? "\nVAK WARNING file [0]: no \"variables\" blocks found\n"
                                   : "\nVAK WARNING file [0]: no \"variablegroup\" blocks found\n"
                                     "\nVAK WARNING file [0]: no \"variable\" blocks found\n") +
                  "\nVAK WARNING file [0]: no \"text\" blocks found\n");
    restart();
    put_header(add_domain());
    EXPECT_EQ(merge(4), 0);
    EXPECT_EQ(printed(), nothing_printed);
}

TEST_P(MergeSteps, warn_of_numbers_that_cannot_be_read)
{
    const hid_t domain = add_domain();
    put_header(domain);
    put<Connectivities>(domain);
    put<EntityResults>(domain);
    H5Lmove(domain, "singlestate/state000000000012", domain, "singlestate/state12x", H5P_DEFAULT,
            H5P_DEFAULT);
    H5Lmove(domain, "singlestate/state12x/connectivities", domain, "singlestate/statex", H5P_DEFAULT,
            H5P_DEFAULT);
    H5Lmove(domain, "singlestate/state12x/entityresults/NODE/DISPLACEMENT/SOLID3_set2", domain,
            "singlestate/state12x/entityresults/NODE/DISPLACEMENT/SOLID3_set99999999999", H5P_DEFAULT,
            H5P_DEFAULT);

    EXPECT_EQ(merge(), 0);

    const std::string end = legacy() ? "header" : "vakblock";
    EXPECT_THAT(
        printed().err,
        testing::HasSubstr("warning - blockkey 300: could not identify StateID  in \"singlestate/statex/"
                           "HEXA 8/" +
                           end + "\" - assume 0.\n"));
    EXPECT_THAT(printed().err, testing::HasSubstr("warning - blockkey 1000: could not identify set no in "
                                                  "\"singlestate/state12x/entityresults/NODE/DISPLACEMENT/"
                                                  "SOLID3_set99999999999/" +
                                                  end + "\" - assume 0.\n"));
    EXPECT_TRUE(exists(target(), "singlestate/statex/HEXA 8"));
    EXPECT_TRUE(
        exists(target(), "singlestate/state12x/entityresults/NODE/DISPLACEMENT/SOLID3_set99999999999"));
}

TEST_P(MergeSteps, name_a_block_of_an_unknown_kind)
{
    add_full_domain();
    const hid_t domain = add_domain();
    put_header(domain);
    put<Connectivities>(domain);
    const std::string holder = sample_of<Connectivities>(family()).path() + header();
    {
        const ObjectId group = open_object(domain, holder);
        const AttributeId attribute = open_attribute(group, ".", "block");
        const int32_t other = 7777;
        EXPECT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &other), 0);
    }

    EXPECT_EQ(merge(), 0);

    EXPECT_EQ(printed().err,
              "VAK WARNING file [1]: block key 7777 \"" + holder + "\" is of no kind that is merged\n");
}

TEST_P(MergeSteps, refuse_a_block_that_the_target_has)
{
    add_full_domain();
    EXPECT_GE(sample_of<Connectivities>(family()).write(target()), 0);

    EXPECT_EQ(merge(1), -1);

    EXPECT_EQ(printed().err,
              "VAK INTERNAL ERROR writing block key 300 - \"connectivities\" already exists.\n"
              "\nVAK ERROR writing \"connectivities\" block - error code = -1\n");
    EXPECT_THAT(printed().out, testing::Not(testing::HasSubstr("successfully")));
}

TEST_P(MergeSteps, refuse_more_index_values_than_can_be_merged)
{
    const std::string name = legacy() ? "MAXINDEX1" : "MAXINDEX";
    for (const int32_t nindex : {5, 6}) {
        restart();
        auto indices = sample_of<Indices>(family());
        indices.nindex = nindex;
        indices.etypindex = fields({"A", "B", "C", "D", "E", "F"});
        indices.units.mbunit.assign(6, 0);
        indices.units.mdunit.assign(6, 0);
        const hid_t domain = add_domain();
        put_header(domain);
        EXPECT_EQ(indices.write(domain), 0);
        put<Connectivities>(domain);

        EXPECT_EQ(merge(1), nindex == 6 ? 1 : 0);

        EXPECT_EQ(exists(target(), sample_of<Connectivities>(family()).path()), nindex == 5);
        const std::string line = "\nVAK ERROR - nindex too large = 6. Increase " + name + ": 5\n";
        EXPECT_EQ(printed().err.ends_with(line), nindex == 6);
        EXPECT_EQ(printed().out.find("successfully") != std::string::npos, nindex == 5);
    }
}

TEST_P(MergeSteps, refuse_a_single_block_with_more_index_values)
{
    auto block = sample_of<Connectivities>(family());
    block.index.nindex = 6;
    block.index.indexident = {1, 2, 3, 4, 5, 6};
    block.index.indexval.assign(6, 0.5F);
    const hid_t domain = add_domain();
    put_header(domain);
    EXPECT_EQ(block.write(domain), 0);

    EXPECT_EQ(merge(), 1);

    EXPECT_THAT(printed().err, testing::EndsWith("\nVAK ERROR - nindex too large = 6. Increase " +
                                                 std::string(legacy() ? "MAXINDEX1" : "MAXINDEX") + ": 5\n"));
}

INSTANTIATE_TEST_SUITE_P(, MergeSteps, both_families, family_name);

}  // namespace
