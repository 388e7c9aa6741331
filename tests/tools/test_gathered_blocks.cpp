// A file of links alone: every kind of block is listed and read through it like in the file that holds it.
#include <sys/stat.h>

#include <filesystem>
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

// One kind: written into a file, and read from one in whatever way it comes there.
struct Kind {
    Family family;
    std::string path;
    std::function<int32_t(hid_t file)> write;
    std::function<int32_t(hid_t group, std::string& fields)> read;
};

template <class S>
Kind kind(Family family)
{
    const S sample = sample_of<S>(family);
    return {family, sample.path(), [=](hid_t file) { return sample.write(file); },
            [=](hid_t group, std::string& fields) {
                S found = emptied(sample);
                const int32_t status = found.read(group, everything<S>(sample.legacy()));
                fields = listing(found);
                return status;
            }};
}

template <class... S>
std::vector<Kind> kinds(Family family)
{
    return {kind<S>(family)...};
}

std::vector<Kind> kinds(Family family)
{
    auto all = kinds<System, Indices, Text, Parts, Attributes, Connectivities, Collector, EntityResults,
                     MultiEntityResults, ElementResults, MultiElementResults, ActivFlags, MultiActivFlags,
                     DenseMatrix, TriangularMatrix, SparseMatrix>(family);
    const auto own = family == Family::current
                         ? kinds<Variable, VariableGroup, Identifiers, PropertyTables>(family)
                         : kinds<Variables1>(family);
    all.insert(all.end(), own.begin(), own.end());
    return all;
}

class GatheredBlocks : public BothFamilies {
protected:
    void SetUp() override
    {
        BothFamilies::SetUp();
        const FileId source = create_file(holder);
        for (const Kind& k : all) {
            EXPECT_GE(k.write(source), 0) << k.path;
            close_groups(source);
        }
        const vak_id from = source, to = file;
        const int32_t one = 1, none = 0;
        const std::string subgroup = padded("all");
        captured_unnoted([&] {
            int32_t ierr = untouched;
            (legacy() ? VAK1_CREATE_EXTLINKS : VAK_CREATE_EXTLINKS)(&from, &to, &one, subgroup.data(), &one,
                                                                    &none, &ierr);
            EXPECT_GE(ierr, 0);
        });
    }
    // The writer of element results leaves its block's group open.
    static void close_groups(hid_t in)
    {
        hid_t group = H5I_INVALID_HID;
        while (H5Fget_obj_ids(in, H5F_OBJ_GROUP, 1, &group) > 0) H5Gclose(group);
    }
    // As a caller finds a block of which he knows the path. The group, or the status when there is none.
    vak_id open_group(const std::string& name, int64_t opened = 0)
    {
        const std::string below = "all/" + name;
        const auto length = static_cast<int32_t>(below.size());
        const int32_t existing = 1;
        vak_id group = H5I_INVALID_HID;
        int32_t ierr = untouched;
        last = call([&] { VAK_H5GOPEN(&file, below.c_str(), &length, &existing, &group, &ierr); }, opened);
        EXPECT_EQ(ierr < 0, group < 0);
        return ierr < 0 ? ierr : group;
    }

    void expect_gone()
    {
        EXPECT_TRUE(listed_blocks(file).empty());
        for (const std::string name : {"constant", "singlestate", "multistate"}) {
            EXPECT_EQ(open_group(name), -20);
            EXPECT_EQ(last, (Output{"", "VAK ERROR - vak_h5gopen - code -20, group \"all/" + name + "\"\n"}));
        }
        for (const Kind& k : all) {
            if (k.path.find('/') == std::string::npos) continue;  // is the link itself
            EXPECT_EQ(open_group(k.path), -1) << k.path;
            EXPECT_EQ(last, nothing_printed);
        }
    }

    const std::string holder = path("holder.h5");
    const std::vector<Kind> all = kinds(family());
    Output last;
};
INSTANTIATE_TEST_SUITE_P(, GatheredBlocks, both_families, family_name);

TEST_P(GatheredBlocks, are_listed_as_in_the_file_that_holds_them)
{
    const FileId source = read_file(holder);
    EXPECT_GE(listed_blocks(source).size(), all.size() - 1);  // properties lie in a group of the caller's
    EXPECT_EQ(listed_blocks(open_object(file, "all")), listed_blocks(source));
}

TEST_P(GatheredBlocks, are_found_by_what_is_asked_for)
{
    const std::string type = padded("entityresults"), any = padded("");
    const int32_t none = -1, no_nindex = -2, state = 12, collect = 0, verbose = 0;
    int32_t capacity = 0, n = 0, ierr = 0, *keys = nullptr;
    int64_t pool = 0, total = 0, *offsets = nullptr;
    char* paths = nullptr;
    EXPECT_EQ(call([&] {
                  (legacy() ? VAK1_SEARCHBLOCKS : VAK_SEARCHBLOCKS)(
                      &file, type.data(), any.data(), any.data(), any.data(), any.data(), &none, &state,
                      &none, &no_nindex, &collect, &verbose, &capacity, &pool, &n, &total, &keys, &offsets,
                      &paths, &ierr);
              }),
              nothing_printed);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(n, 1);
}

TEST_P(GatheredBlocks, read_as_in_the_file_that_holds_them)
{
    for (const Kind& k : all) {
        std::string expected, found;
        int32_t status = untouched;
        {
            const FileId source = read_file(holder);
            status = k.read(open_object(source, k.path), expected);
        }
        EXPECT_GE(status, 0) << k.path;
        const vak_id group = open_group(k.path, 1);
        ASSERT_GE(group, 0) << k.path;
        EXPECT_EQ(run([&] { return k.read(group, found); }), (Result{status, {}})) << k.path;
        EXPECT_EQ(found, expected) << k.path;
        H5Gclose(group);
    }
}

// The call that opens what the link leads to says so; to one that asks for a path behind it, the path is
// missing.
TEST_P(GatheredBlocks, of_a_file_that_is_gone_are_told_by_the_opening_call)
{
    std::filesystem::remove(holder);
    expect_gone();
}

TEST_P(GatheredBlocks, of_a_file_in_whose_place_something_else_stands_are_told_without_a_wait)
{
    std::filesystem::remove(holder);
    ASSERT_EQ(mkfifo(holder.c_str(), 0600), 0);
    expect_gone();
    const std::string name = close_file();
    file = H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);  // a reader waits where a writer does not
    expect_gone();
    std::filesystem::remove(holder);
    std::filesystem::create_directory(holder);
    expect_gone();
}

}  // namespace

}  // namespace vak::test
