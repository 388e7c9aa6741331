#include "prove/readings.h"

#include <array>
#include <cstdlib>

#include "prove/inside.h"
#include "prove/jobs.h"
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

namespace vak::test {

namespace {

// The reader's own calls and allocations are counted, and may fail.
template <class Routine>
void counted(Delivered& delivered, Routine routine)
{
    const long held = library.held;
    library.counting = true;
    delivered.status = routine();
    library.counting = false;
    delivered.held = library.held - held;
}

template <class S>
std::string listing_with_filters(const S& s)
{
    return listing(s) + "flags " + shown(s.found_flags) + " " + shown(s.found_params[0]) + " " +
           shown(s.found_params[1]) + "\n";
}

template <class S>
Reading reading(const std::string& name, const S& written, std::function<int32_t(S&, vak_id)> routine)
{
    const auto read = [=](vak_id group) {
        S found = emptied(written);
        Delivered delivered;
        counted(delivered, [&] { return routine(found, group); });
        delivered.values = listing_with_filters(found);
        return delivered;
    };
    return {name + (written.legacy() ? " legacy" : ""), [=](vak_id root) { return written.write(root); },
            written.path(), read};
}

// Everything, whose values are those written; the counts alone, for a caller who has yet to allocate.
template <class S>
void add(std::vector<Reading>& all, const std::string& name, const S& written)
{
    const int32_t how = everything<S>(written.legacy());
    all.push_back(reading<S>(name, written, [=](S& s, vak_id group) { return s.read(group, how); }));
    all.back().expected = listing(written);
    all.push_back(reading<S>(name + ", counts", written, [](S& s, vak_id group) {
        s.wants_arrays = false;
        return s.read(group, 1);
    }));
}

template <class S>
void add_of(std::vector<Reading>& all, const std::string& name, Family family)
{
    add(all, name, sample_of<S>(family));
}

EntityResults large_results(Family family, int32_t flags)
{
    auto r = enlarged(sample_of<EntityResults>(family));
    r.flags = flags;
    r.params[0] = 2;
    r.params[1] = 6;
    return r;
}

MultiEntityResults series(Family family, int32_t flags)
{
    auto s = enlarged(MultiEntityResults::of_states(family, 5), 5);
    s.flags = flags;
    s.params[0] = 2;
    s.params[1] = 6;
    return s;
}

void add_results(std::vector<Reading>& all, Family family)
{
    add_of<EntityResults>(all, "entityresults", family);
    add(all, "entityresults large", large_results(family, 0));
    add(all, "entityresults deflated", large_results(family, 18));
    add(all, "entityresults scale-offset", large_results(family, 128 + 18));
    for (const int32_t flags : {0, 18, 128 + 18})
        all.push_back(reading<EntityResults>(
            "entityresults2 " + std::to_string(flags), large_results(family, flags),
            [](EntityResults& r, vak_id group) {
                r.nent = 800;
                r.ncoo = 8;
                return r.read_parts(group, {.what = 15, .mode = 1, .start = {10, 2}, .count = {3, 2}});
            }));
    add_of<ElementResults>(all, "elementresults", family);
}

void add_series(std::vector<Reading>& all, Family family)
{
    for (const int32_t flags : {0, 18, 128 + 18}) {
        const auto whole = series(family, flags);
        const std::string name = "multientityresults " + std::to_string(flags);
        add(all, name, whole);
        all.push_back(
            reading<MultiEntityResults>(name + ", an entity", whole, [](MultiEntityResults& s, vak_id group) {
                return s.read_chosen(group, 2, {.mode = 1, .count = {5, 1, 8}, .start = {0, 7, 0}});
            }));
        all.push_back(
            reading<MultiEntityResults>(name + ", points", whole, [](MultiEntityResults& s, vak_id group) {
                return s.read_parts(group, {.mode = 2, .count = {2}, .start = {1, 2, 3, 4, 5, 6}});
            }));
    }
    add_of<MultiElementResults>(all, "multielementresults", family);
    add_of<MultiActivFlags>(all, "multiactivflags", family);
}

void add_matrices(std::vector<Reading>& all, Family family)
{
    add_of<DenseMatrix>(all, "densematrix", family);
    auto large = sample_of<DenseMatrix>(family);
    large.nrow = 100;
    large.ncolumn = 80;
    large.val = some_values(8000);
    large.flags = 18;
    large.params[1] = 6;
    large.part = {0, {2, 80}, {7, 0, 50, 79}};
    for (const int32_t how : {3, 4})
        all.push_back(reading<DenseMatrix>(how == 3 ? "densematrix, rows" : "densematrix, points", large,
                                           [=](DenseMatrix& m, vak_id group) {
                                               m.nrow = 100;
                                               m.ncolumn = 80;
                                               return m.read(group, how);
                                           }));
    add_of<TriangularMatrix>(all, "triangularmatrix", family);
    add(all, "sparsematrix", SparseMatrix::complex_of(family));
}

void add_descriptions(std::vector<Reading>& all, Family family)
{
    add_of<System>(all, "system", family);
    add_of<Indices>(all, "indices", family);
    add_of<Text>(all, "text", family);
    add_of<Parts>(all, "parts", family);
    add_of<Attributes>(all, "attributes", family);
    add_of<Connectivities>(all, "connectivities", family);
    add_of<Collector>(all, "collector", family);
    add_of<ActivFlags>(all, "activflags", family);
    if (family == Family::legacy) return add_of<Variables1>(all, "variables", family);
    add(all, "variable", Variable());
    add(all, "variablegroup", VariableGroup());
    add(all, "identifiers", Identifiers());
    add(all, "properties", PropertyTables());
}

Reading header(Family family)
{
    const auto read = [=](vak_id group) {
        std::string version(32, '?');
        int32_t flags = untouched, params[2] = {untouched, untouched}, ierr = untouched;
        Delivered delivered;
        counted(delivered, [&] {
            (family == Family::legacy ? VAK1_READ_FILEHEADER : VAK_READ_FILEHEADER)(&group, version.data(),
                                                                                    &flags, params, &ierr);
            return ierr;
        });
        delivered.values = version + shown(flags) + " " + shown(params[0]) + " " + shown(params[1]) + "\n";
        return delivered;
    };
    return {family == Family::legacy ? "vakheader legacy" : "vakheader",
            [](vak_id) { return 0; },
            "vakheader",
            read,
            {},
            false,
            "VAK ERROR reading header"};
}

// The arrays that the catalogue makes.
struct Arrays {
    int32_t capacity = 0, nblocks = 0;
    int64_t pool = 0, length = 0;
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;
    ~Arrays()
    {
        std::free(keys);
        std::free(offsets);
        std::free(paths);
    }
    std::string lines() const
    {
        std::string text;
        for (int32_t k = 0; k < nblocks; ++k) text += shown(keys[k]) + " " + (paths + offsets[k]) + "\n";
        return text;
    }
};

int32_t look_up(Family family, vak_id root, Arrays& a)
{
    const int32_t collect = 1, verbose = 0;
    int32_t ierr = untouched;
    (family == Family::legacy ? vak1_lookup : vak_lookup)(&root, &collect, &verbose, &a.capacity, &a.pool,
                                                          &a.nblocks, &a.length, &a.keys, &a.offsets,
                                                          &a.paths, &ierr);
    return ierr;
}

// Every criterion applies.
int32_t search(Family family, vak_id root, Arrays& a)
{
    const auto sought = sample_of<EntityResults>(family);
    const int32_t collect = 1, verbose = 0;
    const std::string type = padded("entityresults"), any = padded("undefined");
    int32_t ierr = untouched;
    (family == Family::legacy ? VAK1_SEARCHBLOCKS : VAK_SEARCHBLOCKS)(
        &root, type.data(), any.data(), sought.etyp.data(), sought.etypvar.data(),
        sought.zone.etypzone.data(), &sought.zone.zoneid, &sought.state, &sought.nent, &sought.index.nindex,
        &collect, &verbose, &a.capacity, &a.pool, &a.nblocks, &a.length, &a.keys, &a.offsets, &a.paths,
        &ierr);
    return ierr;
}

Reading listing_by(const std::string& name, Family family, int32_t (*routine)(Family, vak_id, Arrays&))
{
    const auto read = [=](vak_id root) {
        Arrays arrays;
        Delivered delivered;
        counted(delivered, [&] { return routine(family, root, arrays); });
        delivered.values = arrays.lines();
        return delivered;
    };
    const auto write = [=](vak_id root) {
        const int32_t status = sample_of<EntityResults>(family).write(root);
        return status != 0 ? status : sample_of<Parts>(family).write(root);
    };
    return {name + (family == Family::legacy ? " legacy" : ""), write, ".", read, {}, true};
}

}  // namespace

std::vector<Reading> readings()
{
    std::vector<Reading> all;
    for (const Family family : {Family::current, Family::legacy}) {
        add_descriptions(all, family);
        add_results(all, family);
        add_series(all, family);
        add_matrices(all, family);
        all.push_back(header(family));
        all.push_back(listing_by("lookup", family, look_up));
        all.push_back(listing_by("search", family, search));
    }
    return all;
}

}  // namespace vak::test
