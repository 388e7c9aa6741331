// A caller may pass null for any array: counts and texts come as ever, the arrays are checked, and nothing is
// delivered.
#include <functional>

#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
#include "samples/multiactivflags.h"
#include "samples/multielementresults.h"
#include "samples/multientityresults.h"
#include "samples/parts.h"
#include "samples/properties.h"
#include "samples/sparsematrix.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"

namespace vak::test {

namespace {

// A block that is written, read with all arrays and read with none.
struct Case {
    std::string name;
    std::function<int32_t(hid_t file)> write;
    std::function<std::string(hid_t file, bool wants_arrays)> read;  // status, filters and every scalar
};

std::ostream& operator<<(std::ostream& stream, const Case& block) { return stream << block.name; }

template <class S>
std::string scalars(const S& sample)
{
    std::string text;
    S::each(sample, [&](const char* name, const auto& value) {
        if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>)
            text += name + (" " + shown(value)) + "\n";
    });
    return text;
}

template <class S>
bool has_untouched_arrays(const S& sample)
{
    bool all = true;
    S::each(sample, [&](const char*, const auto& value) {
        if constexpr (requires { value.begin(); } &&
                      !std::is_same_v<std::decay_t<decltype(value)>, std::string>)
            for (const auto& element : value)
                all = all && element == static_cast<std::decay_t<decltype(element)>>(untouched);
    });
    return all;
}

// The writer of element results leaves its block's group open.
void close_groups(hid_t file)
{
    hid_t group = H5I_INVALID_HID;
    while (H5Fget_obj_ids(file, H5F_OBJ_GROUP, 1, &group) > 0) H5Gclose(group);
}

template <class S>
Case of(Family family)
{
    const S sample = sample_of<S>(family);
    const std::string end = family == Family::legacy ? "_legacy" : "";
    return {S::type + end,
            [=](hid_t file) {
                const int32_t status = sample.write(file);
                close_groups(file);
                return status;
            },
            [=](hid_t file, bool wants_arrays) {
                S found = emptied(sample);
                found.wants_arrays = wants_arrays;
                const ObjectId group = open_object(file, sample.path());
                const int32_t status = found.read(group, everything<S>(sample.legacy()));
                EXPECT_TRUE(wants_arrays || has_untouched_arrays(found));
                return std::to_string(status) + "\n" + std::to_string(found.found_flags) + "\n" +
                       scalars(found);
            }};
}

std::vector<Case> cases()
{
    const Family current = Family::current, legacy = Family::legacy;
    return {
        of<System>(current),
        of<System>(legacy),  //
        of<Indices>(current),
        of<Indices>(legacy),  //
        of<Variable>(current),
        of<Variables1>(legacy),      //
        of<VariableGroup>(current),  //
        of<Text>(current),
        of<Text>(legacy),  //
        of<Parts>(current),
        of<Parts>(legacy),  //
        of<Attributes>(current),
        of<Attributes>(legacy),    //
        of<Identifiers>(current),  //
        of<Connectivities>(current),
        of<Connectivities>(legacy),  //
        of<Collector>(current),
        of<Collector>(legacy),        //
        of<PropertyTables>(current),  //
        of<EntityResults>(current),
        of<EntityResults>(legacy),  //
        of<MultiEntityResults>(current),
        of<MultiEntityResults>(legacy),  //
        of<ElementResults>(current),
        of<ElementResults>(legacy),  //
        of<MultiElementResults>(current),
        of<MultiElementResults>(legacy),  //
        of<ActivFlags>(current),
        of<ActivFlags>(legacy),  //
        of<MultiActivFlags>(current),
        of<MultiActivFlags>(legacy),  //
        of<DenseMatrix>(current),
        of<DenseMatrix>(legacy),  //
        of<TriangularMatrix>(current),
        of<TriangularMatrix>(legacy),  //
        of<SparseMatrix>(current),
        of<SparseMatrix>(legacy),
    };
}

class UnwantedArrays : public BlockTest, public testing::WithParamInterface<Case> {
protected:
    std::string read(bool wants_arrays)
    {
        std::string found;
        EXPECT_EQ(call([&] { found = GetParam().read(file, wants_arrays); }), nothing_printed);
        return found;
    }
};

TEST_P(UnwantedArrays, are_not_delivered_and_the_rest_is_as_ever)
{
    ASSERT_EQ(run([&] { return GetParam().write(file); }).ierr, 0);
    EXPECT_EQ(read(false), read(true));
}

class UnwantedFilters : public BothFamilies {};
INSTANTIATE_TEST_SUITE_P(Contracts, UnwantedFilters, both_families, family_name);

TEST_P(UnwantedFilters, parameters_are_not_delivered_and_the_flags_are)
{
    const auto parts = sample<Parts>();
    ASSERT_EQ(write(parts), success);
    const ObjectId group = open_object(file, parts.path());
    auto p = emptied(parts);
    EXPECT_EQ(run([&] {
                  const hid_t id = group;
                  const int32_t all = 3;
                  int32_t ierr = untouched;
                  (legacy() ? VAK1_READ_PARTS : VAK_READ_PARTS)(
                      &id, &all, p.etyppart.data(), &p.npart, &p.off, &p.length, &p.index.nindex,
                      &p.index.indexic, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                      &p.found_flags, nullptr, &ierr);
                  return ierr;
              }),
              success);
    EXPECT_EQ(p.found_flags, 0);
}

TEST_P(UnwantedFilters, parameters_of_the_header_are_not_delivered)
{
    const auto header = [&](auto routine, auto... arguments) {
        return run([&] {
            const ObjectId location = open_object(file, exists(file, "vakheader") ? "vakheader" : "/");
            const hid_t id = location;
            int32_t ierr = untouched;
            routine(&id, arguments..., &ierr);
            return ierr;
        });
    };
    std::string version(32, '?');
    int32_t flags = untouched;
    ASSERT_EQ(header(legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER, nullptr, nullptr), success);
    EXPECT_EQ(header(legacy() ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER, version.data(), &flags, nullptr),
              success);
    EXPECT_EQ(flags, 0);
}

INSTANTIATE_TEST_SUITE_P(Contracts, UnwantedArrays, testing::ValuesIn(cases()),
                         [](const auto& block) { return block.param.name; });

}  // namespace

}  // namespace vak::test
