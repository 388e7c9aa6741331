#pragma once

#include "samples/results.h"

namespace vak::test {

// Two locations with three coordinates in each of three elements; both families have "indexic".
struct ElementResults : Sample {
    static constexpr int32_t key = 1100, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "elementresults";

    std::string etypelem = padded("HEXA 8");
    int32_t nele = 3;
    std::string etypvar = padded("STRESS");
    int32_t ncoo = 2, numl = 2, ndim = 3;
    SampleZone zone;
    SampleIndex index;
    SampleTables tables;
    std::vector<float> eloc = some_values(6, -1.0F), res = some_values(12);
    int32_t set = 2, ivsize = 4;

    static ElementResults complex_of(Family family)
    {
        ElementResults sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.res = some_values(24);
        return sample;
    }

    void take_frames_of_locations()
    {
        zone.fswitch = 2;
        tables.fid = {1, 2, 3, 4, 5, 6};
    }

    std::string path() const
    {
        const std::string names = "elementresults/" + trimmed(etypelem) + "/" + trimmed(etypvar);
        return place(names + zone_level(zone, set), index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        const StoredTables stored(s.zone);
        f("etypelem", s.etypelem);
        f("nele", s.nele);
        f("etypvar", s.etypvar);
        f("ncoo", s.ncoo);
        f("numl", s.numl);
        f("ndim", s.ndim);
        each_zone(s.zone, f);
        each_index(s.index, f, true);
        stored.each("idele", s.tables, f);
        f("eloc", s.eloc);
        f("res", s.res);
    }

    // Leaves the block's group open when it succeeds.
    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_ELEMENTRESULTS : VAK_WRITE_ELEMENTRESULTS)(
            &file, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
            &index.indexic, index.indexident.data(), index.indexval.data(), tables.ids.data(),
            &tables.fidglob, tables.fid.data(), eloc.data(), tables.op.data(), tables.weight.data(),
            res.data(), &set, &state, &flags, params, &ivsize, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_ELEMENTRESULTS : VAK_READ_ELEMENTRESULTS)(
            &group, &ipass, etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
            &index.indexic, out(index.indexident), out(index.indexval), out(tables.ids), &tables.fidglob,
            out(tables.fid), out(eloc), out(tables.op), out(tables.weight), out(res), &found_flags,
            found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
