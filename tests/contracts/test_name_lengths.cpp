// Names that fill the fields they are given in, or reach beyond them.
#include "samples/activflags.h"
#include "samples/entityresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "support/block_test.h"
#include "vak_sp.h"

namespace vak::test {

namespace {

class NameLengths : public BothFamilies {
protected:
    // A block is written under names of these lengths, listed, and read back with the first 256 characters.
    template <class S>
    void expect_names(std::string S::*name, int32_t status_of_reading)
    {
        for (const size_t length : {255U, 256U, 257U}) {
            SCOPED_TRACE(length);
            S written = sample<S>();
            const char letter = static_cast<char>('a' + length % 26);
            written.*name = length > 256 ? std::string(length, letter) : padded(std::string(length, letter));
            EXPECT_EQ(write(written), success);
            (written.*name).resize(256);
            EXPECT_THAT(listed_blocks(file), testing::Contains(std::to_string(S::key) + " " + written.path() +
                                                               (legacy() ? "/header" : "")));
            S found = emptied(written);
            EXPECT_EQ(read(found, everything<S>(legacy())), status(status_of_reading));
            EXPECT_EQ(found.*name, written.*name);
        }
    }
};
INSTANTIATE_TEST_SUITE_P(Contracts, NameLengths, both_families, family_name);

TEST_P(NameLengths, entity_types_and_variables_of_256_characters_are_kept_whole)
{
    expect_names(&EntityResults::etyp, 1000);
    expect_names(&EntityResults::etypvar, 1000);
    expect_names(&ActivFlags::etyp, 0);
    expect_names(&Parts::etyppart, 0);
}

TEST_P(NameLengths, series_of_256_characters_are_kept_whole)
{
    expect_names(&MultiEntityResults::series, 1050);
}

TEST_P(NameLengths, a_name_beyond_its_field_is_the_same_block_as_one_that_fills_it)
{
    auto sample = this->sample<ActivFlags>();
    sample.etyp = std::string(257, 'n');
    EXPECT_EQ(write(sample), success);
    sample.etyp = std::string(256, 'n');
    EXPECT_EQ(write(sample),
              failure(-1, "VAK INTERNAL ERROR writing block key 2100 - \"activflags\" already exists.\n"));
}

}  // namespace

}  // namespace vak::test
