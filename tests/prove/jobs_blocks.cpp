#include "prove/jobs.h"
#include "samples/activflags.h"
#include "samples/attributes.h"
#include "samples/collector.h"
#include "samples/connectivities.h"
#include "samples/densematrix.h"
#include "samples/elementresults.h"
#include "samples/entityresults.h"
#include "samples/indices.h"
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

// The same block with other values; what describes them is written once.
template <class S>
S changed(S sample)
{
    S::each(sample, [](std::string_view name, auto& value) {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::vector<float>>)
            for (float& real : value)
                real += name == "val" || name == "res" || name == "fparam" ? 1000.0F : 0;
    });
    return sample;
}

template <class S>
Job once(const std::string& name, const S& sample)
{
    return writing_job(name, sample.family, {}, {writing(sample)}, {item<S>({sample})});
}

// Written, flushed, and written again with other values.
template <class S>
Job twice(const std::string& name, const S& sample)
{
    const S later = changed(sample);
    return writing_job(name, sample.family, {writing(sample)}, {writing(later)}, {item<S>({sample, later})});
}

Attributes filtered_attributes(Family family)
{
    auto a = sample_of<Attributes>(family);
    a.nent = 500;
    a.nuid = 2;
    a.entid.resize(500, 7);
    a.uid.resize(1000, -3);
    a.title.resize(a.title.size() * 125, 't');
    a.flags = 255;
    a.params[1] = 6;
    return a;
}

EntityResults large_results(Family family, int32_t flags)
{
    auto r = enlarged(sample_of<EntityResults>(family));
    r.flags = flags;
    r.params[0] = 2;
    r.params[1] = 6;
    return r;
}

DenseMatrix large_matrix(Family family, int32_t flags)
{
    auto m = sample_of<DenseMatrix>(family);
    m.nrow = 100;
    m.ncolumn = 80;
    m.val = some_values(8000);
    m.flags = flags;
    m.params[1] = 6;
    return m;
}

// Rows 20 to 29 are replaced.
Job rows_again(const std::string& name, const DenseMatrix& whole)
{
    DenseMatrix rows = whole, later = whole;
    rows.part = {1, {10, 80}, {20, 0}};
    rows.val = some_values(800, -5000);
    std::copy(rows.val.begin(), rows.val.end(), later.val.begin() + 1600);
    return writing_job(name, whole.family, {writing(whole)}, {writing(rows)},
                       {item<DenseMatrix>({whole, later})});
}

// By the lower entry, part by part, in a group of the caller's.
Job in_parts(Family family)
{
    const auto r = sample_of<EntityResults>(family);
    const auto write = [=](vak_id root) {
        Calls calls(family);
        for (const int32_t what : {1, 2, 4, 8})
            calls.in_group(root, r.path(), [&](vak_id group) {
                return r.write_parts(group, H5I_INVALID_HID, {.what = what});
            });
        return calls.status();
    };
    return writing_job("entityresults2", family, {}, {write}, {item<EntityResults>({r})});
}

Job properties()
{
    const PropertyTables first, later = changed(first);
    const auto write = [](const PropertyTables& p) {
        return [p](vak_id root) {
            Calls calls(Family::current);
            calls.in_group(root, p.path(), [&](vak_id group) { return p.write_into(group); });
            return calls.status();
        };
    };
    return writing_job("properties", Family::current, {write(first)}, {write(later)},
                       {item<PropertyTables>({first, later})});
}

}  // namespace

std::vector<Job> block_jobs(Family family)
{
    std::vector<Job> all{
        once("system", sample_of<System>(family)),
        once("indices", sample_of<Indices>(family)),
        once("text", sample_of<Text>(family)),
        once("parts", sample_of<Parts>(family)),
        once("attributes", sample_of<Attributes>(family)),
        once("attributes filtered", filtered_attributes(family)),
        once("connectivities", sample_of<Connectivities>(family)),
        once("collector", sample_of<Collector>(family)),
        once("activflags", sample_of<ActivFlags>(family)),
        twice("entityresults", sample_of<EntityResults>(family)),
        twice("entityresults large", large_results(family, 0)),
        twice("entityresults deflated", large_results(family, 18)),
        twice("entityresults scale-offset", large_results(family, 128 + 18)),
        twice("elementresults", sample_of<ElementResults>(family)),
        twice("densematrix", sample_of<DenseMatrix>(family)),
        rows_again("densematrix rows", large_matrix(family, 0)),
        rows_again("densematrix rows deflated", large_matrix(family, 18)),
        twice("triangularmatrix", sample_of<TriangularMatrix>(family)),
        twice("sparsematrix", SparseMatrix::complex_of(family)),
        in_parts(family),
    };
    if (family == Family::legacy) {
        all.push_back(once("variables", sample_of<Variables1>(family)));
    } else {
        all.push_back(once("variable", Variable()));
        all.push_back(once("variablegroup", VariableGroup()));
        all.push_back(once("identifiers", Identifiers()));
        all.push_back(properties());
    }
    return all;
}

}  // namespace vak::test
