// Counts that lengths are summed from, which the library reads into memory of its own where the caller wants
// none: it takes no more than 64 MiB, however many the file claims.
#include <limits>

#include "contracts/stored_fields.h"
#include "samples/indices.h"
#include "samples/system.h"
#include "samples/variables1.h"
#include "support/block_test.h"
#include "support/memory_limit.h"

namespace vak::test {

namespace {

constexpr int32_t at_most = 16 << 20;

// The attribute with the number of columns becomes n, and what has one entry for each is as long: without a
// value stored, so that the file stays small.
void claim(hid_t file, const std::string& block_path, const std::string& number, int32_t n)
{
    const ObjectId block = open_object(file, block_path);
    const hsize_t extent = static_cast<hsize_t>(n);
    for (const Field& field : fields_of(block)) {
        const ObjectId holder = open_object(block, field.group);
        if (field.name == number) {
            const AttributeId attribute = open_attribute(holder, ".", number);
            ASSERT_GE(H5Awrite(attribute, H5T_NATIVE_INT32, &n), 0);
        }
        if (field.is_attribute || field.extents != std::vector<hsize_t>{3}) continue;
        const ObjectId before = open_object(holder, field.name);
        const TypeId type(H5Dget_type(before), "type");
        remove_field(block, field);
        ObjectId(H5Dcreate2(holder, field.name.c_str(), type, array_space({extent}), H5P_DEFAULT, H5P_DEFAULT,
                            H5P_DEFAULT),
                 field.name);
    }
}

Result refusal(const std::string& name)
{
    return failure(-6999, "VAK INTERNAL ERROR (999) in VAK_H5Dread - name, vak_type, data_size, error: " +
                              name + " 2 4 -1\n");
}

class ClaimedCounts : public BothFamilies {
protected:
    template <class S>
    Result read_claimed(const std::string& number, int32_t n)
    {
        const S made = sample<S>();
        EXPECT_EQ(write(made), success);
        claim(file, made.path(), number, n);
        S found = emptied(made);
        found.wants_arrays = false;
        return BlockTest::read(found, everything<S>(legacy()));
    }

    template <class S>
    void expect_bounded(const std::string& number, const std::string& counts)
    {
        Result result;
        const Limited run = with_memory(size_t{48} << 20, [&] {
            result = read_claimed<S>(number, std::numeric_limits<int32_t>::max());
            return result == refusal(counts);
        });
        EXPECT_TRUE(run.ended_well);
    }
};
INSTANTIATE_TEST_SUITE_P(Contracts, ClaimedCounts, both_families, family_name);

TEST_P(ClaimedCounts, of_derived_units_are_refused_beyond_64_MiB)
{
    EXPECT_EQ(read_claimed<System>("ndunit", at_most + 1), refusal("ndbunit"));
}

TEST_P(ClaimedCounts, of_derived_units_are_read_up_to_64_MiB)
{
    EXPECT_EQ(read_claimed<System>("ndunit", at_most), success);
}

TEST_P(ClaimedCounts, take_no_memory_beyond_that)
{
    expect_bounded<System>("ndunit", "ndbunit");
    if (!legacy()) return;
    expect_bounded<Indices>("nindex", "mbunit");
}

}  // namespace

}  // namespace vak::test
