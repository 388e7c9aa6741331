#pragma once

#include "samples/results.h"

namespace vak::test {

// One state of a series; write() appends it.
struct MultiElementResults : Sample {
    static constexpr int32_t key = 1150, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "multielementresults";

    std::string series = padded("STATIC"), etypelem = padded("HEXA 8");
    int32_t nele = 3;
    std::string etypvar = padded("STRESS");
    int32_t ncoo = 2, numl = 2, ndim = 3;
    SampleZone zone;
    SampleIndex index;
    int32_t nstate = 1;
    SampleTables tables;
    std::vector<float> eloc = some_values(6, -1.0F), res = some_values(12);
    int32_t set = 2, ivsize = 4, ipos = 0;

    static MultiElementResults complex_of(Family family)
    {
        MultiElementResults sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.res = some_values(24);
        return sample;
    }

    // The state behind this one, with values of its own; ipos is its place.
    MultiElementResults next() const
    {
        MultiElementResults later = *this;
        ++later.ipos;
        ++later.nstate;
        for (int32_t& ident : later.index.indexident) ident += 10;
        for (float& value : later.index.indexval) value += 1.0F;
        for (float& value : later.res) value += 100.0F;
        return later;
    }

    std::string path() const
    {
        return "multistate/" + trimmed(series) + "/multielementresults/" + trimmed(etypelem) + "/" +
               trimmed(etypvar) + zone_level(zone, set) + (legacy() ? "" : "/vakblock");
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        const StoredTables stored(s.zone);
        f("series", s.series);
        f("etypelem", s.etypelem);
        f("nele", s.nele);
        f("etypvar", s.etypvar);
        f("ncoo", s.ncoo);
        f("numl", s.numl);
        f("ndim", s.ndim);
        each_zone(s.zone, f);
        each_index(s.index, f, false);
        f("nstate", s.nstate);
        stored.each("idele", s.tables, f);
        f("eloc", s.eloc);
        f("res", s.res);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_MULTIELEMENTRESULTS : VAK_WRITE_MULTIELEMENTRESULTS)(
            &file, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
            zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
            &index.nindex, index.indexident.data(), index.indexval.data(), tables.ids.data(), &tables.fidglob,
            tables.fid.data(), eloc.data(), tables.op.data(), tables.weight.data(), res.data(), &set, &ipos,
            &flags, params, &ivsize, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_MULTIELEMENTRESULTS : VAK_READ_MULTIELEMENTRESULTS)(
            &group, &ipass, series.data(), etypelem.data(), &nele, etypvar.data(), &ncoo, &numl, &ndim,
            zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
            &index.nindex, &nstate, out(index.indexident), out(index.indexval), out(tables.ids),
            &tables.fidglob, out(tables.fid), out(eloc), out(tables.op), out(tables.weight), out(res), &ipos,
            &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
