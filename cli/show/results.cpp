// The result blocks.
#include <vak_sp.h>

#include <limits>

#include "show/kinds.h"
#include "show/read.h"

namespace vak::show {

namespace {

constexpr int32_t not_read = std::numeric_limits<int32_t>::min();

// What results on entities and on elements have in common; `count` of them.
struct Results {
    Results(const Reading& reading, const char* type_name, const char* count_name, const char* entities_name)
        : type(type_name), count(count_name), entities(entities_name, {count}), complex(reading.complex())
    {
        fidglob.value = not_read;
        op.when([this] { return dmpswitch.value == 1; });
        weight.when([this] { return dmpswitch.value == 1; });
        weight.along("e", &entities);
    }
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;

    // The shape of values and its letters, the two parts of complex ones added.
    Reals values(Shape shape, const std::string& letters)
    {
        if (complex) shape.push_back(2);
        Reals res("res", std::move(shape));
        res.along(complex ? letters + "p" : letters, &entities);
        return res;
    }
    Integers frames(Shape shape, const std::function<bool()>& present)
    {
        Integers fid("fid", std::move(shape));
        fid.when(present);
        return fid;
    }

    Text series{"series"}, type, etypvar{"etypvar"}, etypzone{"etypzone"}, etypframe{"etypframe"};
    Integer count, ncoo{"ncoo"}, numl{"numl"}, ndim{"ndim"}, zoneid{"zoneid"}, fswitch{"fswitch"},
        dmpswitch{"dmpswitch"}, nstate{"nstate"};
    Index index;
    Integers entities;
    Integer fidglob{"fidglob", [this] { return fswitch.value == 0 && fidglob.value != not_read; }};
    Texts op{"operator", {ncoo}};
    Reals weight{"weight", {count}}, eloc{"eloc", {numl, ndim}};
    Found found;
    bool complex;
};

}  // namespace

void show_entityresults(Reading& reading)
{
    Pass pass{1, 2};
    Results r(reading, "etyp", "nent", "entid");
    Integers fid = r.frames({r.count}, [&] { return r.fswitch.value == 1; });
    Reals res = r.values({r.count, r.ncoo}, "ec");
    if (reading.legacy())
        return read_block(reading, VAK1_READ_ENTITYRESULTS, pass, pass, r.type, r.count, r.etypvar, r.ncoo,
                          r.etypzone, r.zoneid, r.etypframe, r.fswitch, r.dmpswitch, r.index.nindex,
                          r.index.indexident, r.index.indexval, r.entities, r.fidglob, fid, r.op, r.weight,
                          res, r.found.flags, r.found.params);
    read_block(reading, VAK_READ_ENTITYRESULTS, pass, pass, r.type, r.count, r.etypvar, r.ncoo, r.etypzone,
               r.zoneid, r.etypframe, r.fswitch, r.dmpswitch, r.index.nindex, r.index.indexic,
               r.index.indexident, r.index.indexval, r.entities, r.fidglob, fid, r.op, r.weight, res,
               r.found.flags, r.found.params);
}

void show_multientityresults(Reading& reading)
{
    Pass pass{1, 2};
    Results r(reading, "etyp", "nent", "entid");
    Integers fid = r.frames({r.count}, [&] { return r.fswitch.value == 1; });
    Reals res = r.values({r.count, r.ncoo}, "ec");
    res.of_states(r.nstate);
    r.index.indexident.of_states(r.nstate);
    r.index.indexval.of_states(r.nstate);
    Given<int32_t> slab{1};
    Selection count, start;
    read_series(
        reading, reading.legacy() ? VAK1_READ_MULTIENTITYRESULTC : VAK_READ_MULTIENTITYRESULTC, pass,
        [&](int32_t state) {
            count.values = {1, r.count.value, r.ncoo.value, 2};
            start.values = {state, 0, 0, 0};
        },
        r.nstate, r.index.indexident, pass, r.series, r.type, r.count, r.etypvar, r.ncoo, r.etypzone,
        r.zoneid, r.etypframe, r.fswitch, r.dmpswitch, r.index.nindex, r.nstate, r.index.indexident,
        r.index.indexval, r.entities, r.fidglob, fid, r.op, r.weight, res, r.found.flags, r.found.params,
        slab, count, start);
}

void show_elementresults(Reading& reading)
{
    Pass pass{1, 2};
    Results r(reading, "etypelem", "nele", "idele");
    Integers fid =
        r.frames({r.count, Extent([&] { return r.fswitch.value == 2 ? int64_t{r.numl.value} : 1; })},
                 [&] { return r.fswitch.value == 1 || r.fswitch.value == 2; });
    Reals res = r.values({r.count, r.numl, r.ncoo}, "elc");
    read_block(reading, reading.legacy() ? VAK1_READ_ELEMENTRESULTS : VAK_READ_ELEMENTRESULTS, pass, pass,
               r.type, r.count, r.etypvar, r.ncoo, r.numl, r.ndim, r.etypzone, r.zoneid, r.etypframe,
               r.fswitch, r.dmpswitch, r.index.nindex, r.index.indexic, r.index.indexident, r.index.indexval,
               r.entities, r.fidglob, fid, r.eloc, r.op, r.weight, res, r.found.flags, r.found.params);
}

void show_multielementresults(Reading& reading)
{
    Pass pass{1, 2};
    Results r(reading, "etypelem", "nele", "idele");
    Integers fid =
        r.frames({r.count, Extent([&] { return r.fswitch.value == 2 ? int64_t{r.numl.value} : 1; })},
                 [&] { return r.fswitch.value == 1 || r.fswitch.value == 2; });
    Reals res = r.values({r.count, r.numl, r.ncoo}, "elc");
    res.of_states(r.nstate);
    r.index.indexident.of_states(r.nstate);
    r.index.indexval.of_states(r.nstate);
    Given<int32_t> place{0};
    read_series(
        reading, reading.legacy() ? VAK1_READ_MULTIELEMENTRESULTS : VAK_READ_MULTIELEMENTRESULTS, pass,
        [&](int32_t state) { place.value = state; }, r.nstate, r.index.indexident, pass, r.series, r.type,
        r.count, r.etypvar, r.ncoo, r.numl, r.ndim, r.etypzone, r.zoneid, r.etypframe, r.fswitch, r.dmpswitch,
        r.index.nindex, r.nstate, r.index.indexident, r.index.indexval, r.entities, r.fidglob, fid, r.eloc,
        r.op, r.weight, res, place, r.found.flags, r.found.params);
}

void show_activflags(Reading& reading)
{
    Pass pass{1, 2};
    Text etyp("etyp");
    Integer nent("nent");
    Index index;
    Integers entid("entid", {nent}), status("status", {nent});
    status.along("e", &entid);
    Found found;
    read_block(reading, reading.legacy() ? VAK1_READ_ACTIVFLAGS : VAK_READ_ACTIVFLAGS, pass, pass, etyp, nent,
               index.nindex, index.indexic, index.indexident, index.indexval, entid, status, found.flags,
               found.params);
}

void show_multiactivflags(Reading& reading)
{
    Pass pass{1, 2};
    Text series("series"), etyp("etyp");
    Integer nent("nent"), nstate("nstate");
    Index index;
    Integers entid("entid", {nent}), status("status", {nent});
    status.along("e", &entid);
    status.of_states(nstate);
    index.indexident.of_states(nstate);
    index.indexval.of_states(nstate);
    Given<int32_t> place{0};
    Found found;
    read_series(
        reading, reading.legacy() ? VAK1_READ_MULTIACTIVFLAGS : VAK_READ_MULTIACTIVFLAGS, pass,
        [&](int32_t state) { place.value = state; }, nstate, index.indexident, pass, series, etyp, nent,
        index.nindex, nstate, index.indexident, index.indexval, entid, status, place, found.flags,
        found.params);
}

}  // namespace vak::show
