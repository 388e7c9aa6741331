// What vak merge looks for when it has read a merged file back: for each kind of block, a target that has one
// entity or one block less is refused and removed.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <hdf5.h>

#include <filesystem>
#include <functional>

#include "import/part_file.h"
#include "merge/rounds.h"
#include "problem.h"
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
#include "store/call.h"
#include "store/file.h"
#include "support/block_test.h"
#include "support/temp_file.h"

namespace {

// Done to the merged file as soon as it is closed, once.
std::function<void(const std::string& file)> mischief;

std::string file_of(hid_t object)
{
    char name[4096]{};
    H5Fget_name(object, name, sizeof name);
    return name;
}

}  // namespace

// Stands before the library's routine of that name.
extern "C" void VAK_CLOSE(const vak_id* group, int32_t* ierr)
{
    static const auto original =
        reinterpret_cast<void (*)(const vak_id*, int32_t*)>(dlsym(RTLD_NEXT, "VAK_CLOSE"));
    const std::string file = file_of(*group);
    original(group, ierr);
    if (!mischief || file.find("merged.h5") == std::string::npos) return;
    const auto done = std::move(mischief);
    mischief = nullptr;
    done(file);
}

using namespace vak;
using namespace vak::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct ShellProperties : PropertyTables {
    static std::string path() { return "constant/properties/SHELL/vakblock"; }
    int32_t write(hid_t file) const
    {
        const PropertiesId parents(H5Pcreate(H5P_LINK_CREATE), "list");
        H5Pset_create_intermediate_group(parents, 1);
        return write_into(
            ObjectId(H5Gcreate2(file, path().c_str(), parents, H5P_DEFAULT, H5P_DEFAULT), path()));
    }
};

class MergeCheck : public testing::TestWithParam<Family> {
protected:
    Family family() const { return GetParam(); }
    bool legacy() const { return family() == Family::legacy; }
    std::string file(const std::string& name) const { return folder.file(name); }
    std::string header() const { return legacy() ? "/header" : ""; }

    template <class S>
    void write_domains(const S& sample)
    {
        for (const std::string& name : domains) {
            auto domain = store::File::create(file(name), "run");
            store::call("writing", legacy() ? VAK1_WRITE_FILEHEADER : VAK_WRITE_FILEHEADER, domain.root(),
                        nullptr, nullptr);
            EXPECT_GE(sample.write(*domain.root()), 0);
            domain.close();
        }
    }
    // In the second domain the first of these is another one.
    void change_first(const std::string& block, const std::string& array)
    {
        auto domain = store::File::update(file(domains[1]));
        {
            const ObjectId ids = open_object(*domain.root(), block + (legacy() ? "/data/" : "/") + array);
            std::vector<int32_t> values(1000);
            EXPECT_GE(H5Dread(ids, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
            values[0] += 1000;
            EXPECT_GE(H5Dwrite(ids, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
        }
        domain.close();
    }

    // What the merge says when it fails; nothing of it is left then.
    std::string merge()
    {
        std::filesystem::remove(file("merged.h5"));
        std::vector<std::string> names;
        for (const std::string& name : domains) names.push_back(file(name));
        std::string said;
        testing::internal::CaptureStderr();
        try {
            import::PartFile part(file("merged.h5"));
            merge::Progress progress(1);
            merge::merge_in_rounds(names, part.path(), file("merged.h5"), "run", {}, names.size(), progress);
            part.complete();
        } catch (const cli::Problem& problem) {
            said = problem.what();
        }
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(mischief, nullptr);
        std::vector<std::string> expected = domains;
        if (said.empty()) expected.push_back("merged.h5");
        EXPECT_EQ(files(), expected);
        return said;
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    // Merging with that done to the target.
    std::string merge_with(const std::function<void(hid_t target)>& change)
    {
        mischief = [change](const std::string& name) {
            auto target = store::File::update(name);
            change(*target.root());
            target.close();
        };
        return merge();
    }
    std::string merge_without(const std::string& block)
    {
        return merge_with([&](hid_t target) { EXPECT_GE(H5Ldelete(target, block.c_str(), H5P_DEFAULT), 0); });
    }
    // The block of the first domain alone stands in its place, which is sound but has one entity less.
    std::string merge_with_the_first_alone(const std::string& block)
    {
        return merge_with([&](hid_t target) {
            // VAK_CLOSE would close it for the merge as well.
            const FileId first(H5Fopen(file(domains[0]).c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
            const ObjectId root = open_object(first, "run");
            EXPECT_GE(H5Ldelete(target, block.c_str(), H5P_DEFAULT), 0);
            EXPECT_GE(H5Ocopy(root, block.c_str(), target, block.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
        });
    }

    template <class S>
    void joins(const S& sample, const std::string& identifiers)
    {
        SCOPED_TRACE(std::string(S::type) + " by " + identifiers);
        write_domains(sample);
        change_first(sample.path(), identifiers);
        EXPECT_EQ(merge(), "");
        const auto is_told = AllOf(HasSubstr("read back and is not complete: " + sample.path() + " "),
                                   HasSubstr("Nothing was kept"));
        EXPECT_THAT(merge_without(sample.path()), AllOf(is_told, HasSubstr("is missing")));
        EXPECT_THAT(merge_with_the_first_alone(sample.path()), AllOf(is_told, HasSubstr(" entities ")));
        EXPECT_THAT(merge_with([&](hid_t target) {
                        const std::string ids = sample.path() + (legacy() ? "/data/" : "/") + identifiers;
                        EXPECT_GE(H5Ldelete(target, ids.c_str(), H5P_DEFAULT), 0);
                    }),
                    AllOf(is_told, HasSubstr("cannot be read")));
    }
    template <class S>
    void joins(const std::string& identifiers)
    {
        joins(sample_of<S>(family()), identifiers);
    }

    template <class S>
    void copies()
    {
        const S sample = sample_of<S>(family());
        SCOPED_TRACE(S::type);
        write_domains(sample);
        EXPECT_EQ(merge(), "");
        EXPECT_THAT(merge_without(sample.path()), HasSubstr(sample.path() + " is missing. Nothing was kept"));
    }

    const TempFolder folder;
    const std::vector<std::string> domains{"domain-0.h5", "domain-1.h5"};
};

INSTANTIATE_TEST_SUITE_P(, MergeCheck, both_families, family_name);

}  // namespace

TEST_P(MergeCheck, misses_an_entity_and_a_block_of_the_model)
{
    joins<Connectivities>("idele");
    joins<Parts>("pid");
    joins<Attributes>("entid");
    joins<Collector>("idcoll");
    joins<Collector>("entid");
    if (legacy()) return;
    joins<Identifiers>("entid");
    joins(ShellProperties(), "entid");
}

TEST_P(MergeCheck, misses_an_entity_and_a_block_of_the_results)
{
    joins<EntityResults>("entid");
    joins(EntityResults::complex_of(family()), "entid");
    joins<ElementResults>("idele");
    joins(ElementResults::complex_of(family()), "idele");
    joins<ActivFlags>("entid");
    joins<MultiActivFlags>("entid");
    joins<MultiElementResults>("idele");
    joins(MultiEntityResults::of_states(family(), 3), "entid");
}

TEST_P(MergeCheck, misses_a_block_that_is_copied)
{
    copies<System>();
    copies<Indices>();
    copies<Text>();
    copies<DenseMatrix>();
    copies<TriangularMatrix>();
    copies<SparseMatrix>();
    if (legacy()) return copies<Variables1>();
    copies<Variable>();
    copies<VariableGroup>();
}

TEST_P(MergeCheck, misses_the_header)
{
    write_domains(sample_of<EntityResults>(family()));
    EXPECT_THAT(merge_without("vakheader"), HasSubstr("vakheader is missing"));
}

TEST_P(MergeCheck, misses_a_state_of_a_series)
{
    const auto series = MultiEntityResults::of_states(family(), 3);
    write_domains(series);
    const auto shorter = MultiEntityResults::of_states(family(), 2);
    EXPECT_THAT(merge_with([&](hid_t target) {
                    EXPECT_GE(H5Ldelete(target, series.path().c_str(), H5P_DEFAULT), 0);
                    EXPECT_GE(shorter.write(target), 0);
                }),
                HasSubstr("has another form"));
}

TEST_P(MergeCheck, misses_what_the_counts_of_a_copied_matrix_say)
{
    const auto matrix = sample_of<DenseMatrix>(family());
    write_domains(matrix);
    const auto set_rows = [&](hid_t target) {
        const AttributeId rows = open_attribute(open_object(target, matrix.path() + header()), ".", "nrow");
        const int32_t less = matrix.nrow - 1;
        EXPECT_GE(H5Awrite(rows, H5T_NATIVE_INT32, &less), 0);
    };
    EXPECT_THAT(merge_with(set_rows), HasSubstr("cannot be read"));
    EXPECT_THAT(merge_with([&](hid_t target) {
                    auto smaller = matrix;
                    smaller.nrow = 1;
                    EXPECT_GE(H5Ldelete(target, matrix.path().c_str(), H5P_DEFAULT), 0);
                    EXPECT_GE(smaller.write(target), 0);
                }),
                HasSubstr("has other attributes"));
}

// Blocks that were left out with a warning are not missed.
TEST_P(MergeCheck, misses_no_block_that_the_lowest_domain_disagrees_with)
{
    const auto results = sample_of<EntityResults>(family());
    write_domains(results);
    change_first(results.path(), "entid");
    {
        auto domain = store::File::update(file(domains[1]));
        auto other = results;
        other.ncoo = 1;
        EXPECT_GE(H5Ldelete(*domain.root(), results.path().c_str(), H5P_DEFAULT), 0);
        EXPECT_GE(other.write(*domain.root()), 0);
        domain.close();
    }
    EXPECT_EQ(merge(), "");
}

TEST_P(MergeCheck, misses_no_block_of_an_unknown_kind)
{
    const auto results = sample_of<EntityResults>(family());
    write_domains(results);
    for (const std::string& name : domains) {
        auto domain = store::File::update(file(name));
        const AttributeId key =
            open_attribute(open_object(*domain.root(), results.path() + header()), ".", "block");
        const int32_t unknown = 7777;
        EXPECT_GE(H5Awrite(key, H5T_NATIVE_INT32, &unknown), 0);
    }
    EXPECT_EQ(merge(), "");
}

class MergeCheckNumbers : public MergeCheck {};
INSTANTIATE_TEST_SUITE_P(, MergeCheckNumbers, testing::Values(Family::current), family_name);

TEST_P(MergeCheckNumbers, misses_the_domain_of_an_element)
{
    const auto elements = sample_of<Connectivities>(family());
    write_domains(elements);
    change_first(elements.path(), "idele");
    const std::string numbers =
        "constant/entityresults/" + trimmed(elements.etyp) + "/DMPComputeDomainNumber/vakblock";
    EXPECT_EQ(merge(), "");
    for (const std::string& path : {numbers, std::string("constant/variable/DMPComputeDomainNumber/vakblock"),
                                    std::string("constant/variablegroup/Domain/vakblock")})
        EXPECT_THAT(merge_without(path), HasSubstr(path + " is missing"));
    EXPECT_THAT(merge_with([&](hid_t target) {
                    EntityResults less;
                    less.nent = 2;
                    less.etyp = elements.etyp;
                    less.etypvar = padded("DMPComputeDomainNumber");
                    EXPECT_GE(H5Ldelete(target, numbers.c_str(), H5P_DEFAULT), 0);
                    less.index.nindex = 0;
                    less.state = -1;
                    less.zone.etypzone = padded("");
                    less.zone.zoneid = -1;
                    less.set = -1;
                    EXPECT_GE(less.write(target), 0);
                }),
                HasSubstr(numbers + " has 2 entities instead of 3"));
}
