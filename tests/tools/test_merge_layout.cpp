// A merged block is stored as the writer of its kind stores one.
#include <gtest/gtest.h>

#include <numeric>
#include <set>
#include <sstream>

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
#include "samples/sparsematrix.h"
#include "samples/system.h"
#include "samples/text.h"
#include "samples/triangularmatrix.h"
#include "samples/variable.h"
#include "samples/variablegroup.h"
#include "samples/variables1.h"
#include "support/block_test.h"
#include "tools/merge_samples.h"
#include "tools/merge_test.h"

using namespace vak;
using namespace vak::test;

namespace {

// HDF5 copies what a group holds in the order of the names.
template <class S>
constexpr bool is_copied = S::key < 100 || S::key >= 10000;

std::string lines_in_order_of_text(const std::string& text)
{
    std::istringstream stream(text);
    std::set<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.insert(line + '\n');
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

template <class S>
std::string stored(hid_t file, const std::string& path)
{
    const std::string text = layout(file, path);
    return is_copied<S> ? lines_in_order_of_text(text) : text;
}

// Every filter that the flags know of, with levels; integers and reals alike.
constexpr int32_t all_filters = 255;

class MergeLayout : public MergeTest, public testing::WithParamInterface<Family> {
protected:
    MergeLayout() : MergeTest(GetParam()) {}

    template <class S>
    static void with_filters(S& sample)
    {
        sample.flags = all_filters;
        sample.params[0] = 3;
        sample.params[1] = 6;
    }

    template <class S>
    void expect_same_form(const S& sample, int n)
    {
        SCOPED_TRACE(std::string(S::type) + " of " + std::to_string(n) + " files");
        restart();
        hid_t domain = H5I_INVALID_HID;
        for (int i = 0; i < n; ++i) write_closed(sample, domain = add_domain());
        EXPECT_EQ(merge(), 0) << printed();
        const std::string path = sample.path();
        EXPECT_EQ(stored<S>(target(), path), stored<S>(domain, path));
        if (n > 1) return;  // other tests tell what becomes of values
        S from_domain = emptied(sample), from_target = emptied(sample);
        EXPECT_GE(from_domain.read(open_object(domain, path), everything<S>(sample.legacy())), 0);
        EXPECT_GE(from_target.read(open_object(target(), path), everything<S>(sample.legacy())), 0);
        EXPECT_EQ(listing(from_target), listing(from_domain));
    }
    template <class S>
    void expect_same_form(S sample)
    {
        expect_same_form(sample, 1);
        expect_same_form(sample, 2);
        with_filters(sample);
        expect_same_form(sample, 1);
        expect_same_form(sample, 2);
    }
    template <class S>
    void expect_same_form()
    {
        expect_same_form(ascending<S>());
    }
    template <class S>
    void both_precisions(S sample)
    {
        expect_same_form(sample);
        sample.ivsize *= 2;
        expect_same_form(sample);
    }
    template <class S>
    void all_variants()
    {
        both_precisions(sample_of<S>(family()));
        both_precisions(S::complex_of(family()));
    }
    // Merging orders the entities.
    template <class S>
    S ascending() const
    {
        S sample = sample_of<S>(family());
        if constexpr (requires { sample.entid; })
            if (S::key != Collector::key) std::ranges::sort(sample.entid);
        return sample;
    }
};

TEST_P(MergeLayout, of_shared_blocks_is_copied)
{
    expect_same_form<System>();
    expect_same_form<Indices>();
    expect_same_form<Text>();
    if (legacy()) return expect_same_form<Variables1>();
    expect_same_form<Variable>();
    expect_same_form<VariableGroup>();
}

TEST_P(MergeLayout, of_model_blocks_is_that_of_their_writers)
{
    expect_same_form<Parts>();
    expect_same_form<Attributes>();
    expect_same_form<Connectivities>();
    expect_same_form<ActivFlags>();
    if (legacy()) return;
    expect_same_form<Identifiers>();
    expect_same_form<ListedProperties>();
}

TEST_P(MergeLayout, of_collectors_is_that_of_their_writer)
{
    auto large = sample_of<Collector>(family());
    large.nent = {2, 5, 1, 0, 3, 0};
    large.entid = {1, 2, 60, 61, 62, 63, 64, 70, 30, 31, 32};
    large.nenttot = 11;
    expect_same_form<Collector>();
    expect_same_form(large);
}

TEST_P(MergeLayout, of_double_precision_model_blocks_is_that_of_their_writers)
{
    const auto wide = [](auto sample) {
        sample.real_size = 8;
        return sample;
    };
    expect_same_form(wide(sample_of<Parts>(family())));
    expect_same_form(wide(ascending<Attributes>()));
    expect_same_form(wide(sample_of<Connectivities>(family())));
    expect_same_form(wide(sample_of<Collector>(family())));
    if (!legacy()) expect_same_form(wide(ascending<ListedProperties>()));
}

TEST_P(MergeLayout, of_results_is_that_of_their_writers)
{
    all_variants<EntityResults>();
    all_variants<ElementResults>();
}

TEST_P(MergeLayout, of_results_with_one_frame_is_that_of_their_writers)
{
    auto entities = sample_of<EntityResults>(family());
    entities.zone.fswitch = 0;
    entities.zone.dmpswitch = 0;
    expect_same_form(entities);
    auto elements = sample_of<ElementResults>(family());
    elements.zone.fswitch = 0;
    elements.zone.dmpswitch = 0;
    expect_same_form(elements);
}

TEST_P(MergeLayout, of_series_is_that_of_their_writers)
{
    both_precisions(MultiEntityResults::of_states(family(), 3));
    both_precisions(MultiEntityResults::of_states(family(), 3, 16));
    all_variants<MultiElementResults>();
    expect_same_form<MultiActivFlags>();
}

TEST_P(MergeLayout, of_matrices_is_that_of_their_writers)
{
    all_variants<DenseMatrix>();
    all_variants<TriangularMatrix>();
    all_variants<SparseMatrix>();
}

INSTANTIATE_TEST_SUITE_P(, MergeLayout, both_families, family_name);

}  // namespace
