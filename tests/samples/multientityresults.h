#pragma once

#include "samples/results.h"

namespace vak::test {

// Which states a call transfers, and which part of them.
struct SeriesPart {
    int32_t mode = 0;
    std::vector<int64_t> count{}, start{};
    int32_t what = 15;
    int32_t data_size = 4;
    int32_t nstates = 1;
    void* res = nullptr;  // instead of the sample's own
};

// A series of `nstate` states; write() appends them all.
struct MultiEntityResults : Sample {
    static constexpr int32_t key = 1050, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "multientityresults";

    std::string series = padded("MODAL"), etyp = padded("NODE");
    int32_t nent = 3;
    std::string etypvar = padded("DISPLACEMENT");
    int32_t ncoo = 2;
    SampleZone zone;
    SampleIndex index;
    int32_t nstate = 1;
    SampleTables tables;
    std::vector<float> res = some_values(6);
    int32_t set = 2, ivsize = 4;

    // Its states differ in every value.
    static MultiEntityResults of_states(Family family, int32_t nstate, int32_t ivsize = 4)
    {
        MultiEntityResults sample;
        sample.family = family;
        sample.ivsize = ivsize;
        sample.nstate = nstate;
        const auto states = static_cast<size_t>(nstate);
        sample.res = some_values(states * 6 * (ivsize == 16 || ivsize == 32 ? 2 : 1));
        sample.index.indexident.resize(states * 2);
        for (size_t i = 0; i < states * 2; ++i) sample.index.indexident[i] = static_cast<int32_t>(i) + 4;
        sample.index.indexval = some_values(states * 2, -7.0F);
        return sample;
    }

    // The states from `first` on, as a caller has them who appends them.
    MultiEntityResults states(int32_t first, int32_t n) const
    {
        MultiEntityResults part = *this;
        part.nstate = n;
        part.index.indexident = rows(index.indexident, first, n);
        part.index.indexval = rows(index.indexval, first, n);
        part.res = rows(res, first, n);
        return part;
    }

    std::string path() const
    {
        return "multistate/" + trimmed(series) + "/multientityresults/" + trimmed(etyp) + "/" +
               trimmed(etypvar) + zone_level(zone, set) + (legacy() ? "" : "/vakblock");
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        const StoredTables stored(s.zone);
        f("series", s.series);
        f("etyp", s.etyp);
        f("nent", s.nent);
        f("etypvar", s.etypvar);
        f("ncoo", s.ncoo);
        each_zone(s.zone, f);
        each_index(s.index, f, false);
        f("nstate", s.nstate);
        stored.each("entid", s.tables, f);
        f("res", s.res);
    }

    int32_t write(hid_t file) const { return write_at(file, nstate); }

    int32_t write_at(hid_t file, int32_t at) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_MULTIENTITYRESULTS : VAK_WRITE_MULTIENTITYRESULTS)(
            &file, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
            index.indexident.data(), index.indexval.data(), tables.ids.data(), &tables.fidglob,
            tables.fid.data(), tables.op.data(), tables.weight.data(), res.data(), &set, &at, &flags, params,
            &ivsize, &ierr);
        return ierr;
    }

    // By the caller's own choice of what is appended.
    int32_t write_chosen(hid_t file, int32_t at, const SeriesPart& p) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_MULTIENTITYRESULTC : VAK_WRITE_MULTIENTITYRESULTC)(
            &file, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
            index.indexident.data(), index.indexval.data(), tables.ids.data(), &tables.fidglob,
            tables.fid.data(), tables.op.data(), tables.weight.data(), values(p), &set, &at, &flags, params,
            &ivsize, &p.mode, p.count.data(), p.start.data(), &ierr);
        return ierr;
    }

    // Into an open group; `states_then` is what the routine hands back.
    int32_t write_into(hid_t group, const SeriesPart& p, int32_t& states_then) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_MULTIENTITYRESULTS2 : VAK_WRITE_MULTIENTITYRESULTS2)(
            &group, nullptr, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
            zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
            &index.nindex, index.indexident.data(), index.indexval.data(), tables.ids.data(), &tables.fidglob,
            tables.fid.data(), tables.op.data(), tables.weight.data(), values(p), &p.data_size, &p.nstates,
            &flags, params, &ivsize, &p.mode, p.count.data(), p.start.data(), &states_then, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_MULTIENTITYRESULTS : VAK_READ_MULTIENTITYRESULTS)(
            &group, &ipass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex, &nstate,
            out(index.indexident), out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid),
            out(tables.op), out(tables.weight), out(res), &found_flags, found_params, &ierr);
        return ierr;
    }

    int32_t read_chosen(hid_t group, int32_t ipass, const SeriesPart& p)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_MULTIENTITYRESULTC : VAK_READ_MULTIENTITYRESULTC)(
            &group, &ipass, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
            &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex, &nstate,
            out(index.indexident), out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid),
            out(tables.op), out(tables.weight), out(res), &found_flags, found_params, &p.mode, p.count.data(),
            p.start.data(), &ierr);
        return ierr;
    }

    int32_t read_parts(hid_t group, const SeriesPart& p)
    {
        auto* to = p.res != nullptr ? static_cast<float*>(p.res) : out(res);
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_MULTIENTITYRESULTS2 : VAK_READ_MULTIENTITYRESULTS2)(
            &group, &p.what, nullptr, series.data(), etyp.data(), &nent, etypvar.data(), &ncoo,
            zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
            &index.nindex, &nstate, out(index.indexident), out(index.indexval), out(tables.ids),
            &tables.fidglob, out(tables.fid), out(tables.op), out(tables.weight), to, &p.data_size,
            &found_flags, found_params, &p.mode, p.count.data(), p.start.data(), &ierr);
        return ierr;
    }

private:
    const float* values(const SeriesPart& p) const
    {
        return p.res != nullptr ? static_cast<const float*>(p.res) : res.data();
    }

    template <class T>
    std::vector<T> rows(const std::vector<T>& all, int32_t first, int32_t n) const
    {
        const auto row = static_cast<std::ptrdiff_t>(all.size()) / nstate;
        return {all.begin() + first * row, all.begin() + (first + n) * row};
    }
};

}  // namespace vak::test
