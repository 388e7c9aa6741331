#pragma once

#include "samples/results.h"

namespace vak::test {

// Which part of a block, and of "res", a lower entry transfers.
struct ResultParts {
    int32_t what = 15;
    int32_t data_size = 4;
    int32_t mode = 0;
    std::vector<int64_t> start{}, count{};
    void* res = nullptr;  // instead of the sample's own
};

struct EntityResults : Sample {
    static constexpr int32_t key = 1000, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "entityresults";

    std::string etyp = padded("NODE");
    int32_t nent = 3;
    std::string etypvar = padded("DISPLACEMENT");
    int32_t ncoo = 2;
    SampleZone zone;
    SampleIndex index;
    SampleTables tables;
    std::vector<float> res = some_values(6);
    int32_t set = 2, ivsize = 4;

    static EntityResults complex_of(Family family)
    {
        EntityResults sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.res = some_values(12);
        return sample;
    }

    std::string path() const
    {
        const std::string names = "entityresults/" + trimmed(etyp) + "/" + trimmed(etypvar);
        return place(names + zone_level(zone, set), index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        const StoredTables stored(s.zone);
        f("etyp", s.etyp);
        f("nent", s.nent);
        f("etypvar", s.etypvar);
        f("ncoo", s.ncoo);
        each_zone(s.zone, f);
        each_index(s.index, f, !s.legacy());
        stored.each("entid", s.tables, f);
        f("res", s.res);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_ENTITYRESULTS(&file, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
                                     &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
                                     &index.nindex, index.indexident.data(), index.indexval.data(),
                                     tables.ids.data(), &tables.fidglob, tables.fid.data(), tables.op.data(),
                                     tables.weight.data(), res.data(), &set, &state, &flags, params, &ivsize,
                                     &ierr);
        else
            VAK_WRITE_ENTITYRESULTS(&file, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
                                    &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch,
                                    &index.nindex, &index.indexic, index.indexident.data(),
                                    index.indexval.data(), tables.ids.data(), &tables.fidglob,
                                    tables.fid.data(), tables.op.data(), tables.weight.data(), res.data(),
                                    &set, &state, &flags, params, &ivsize, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_ENTITYRESULTS(
                &group, &ipass, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(), &zone.zoneid,
                zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex, out(index.indexident),
                out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid), out(tables.op),
                out(tables.weight), out(res), &found_flags, found_params, &ierr);
        else
            VAK_READ_ENTITYRESULTS(
                &group, &ipass, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(), &zone.zoneid,
                zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex, &index.indexic,
                out(index.indexident), out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid),
                out(tables.op), out(tables.weight), out(res), &found_flags, found_params, &ierr);
        return ierr;
    }

    int32_t write_parts(hid_t group, hid_t shared, const ResultParts& p) const
    {
        const hid_t groups[2] = {group, shared};
        const auto* values = p.res != nullptr ? static_cast<const float*>(p.res) : res.data();
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_ENTITYRESULTS2(
                groups, &p.what, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
                &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
                index.indexident.data(), index.indexval.data(), tables.ids.data(), &tables.fidglob,
                tables.fid.data(), tables.op.data(), tables.weight.data(), values, &p.data_size, &flags,
                params, &ivsize, &p.mode, p.start.data(), p.count.data(), &ierr);
        else
            VAK_WRITE_ENTITYRESULTS2(
                groups, &p.what, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo, zone.etypzone.data(),
                &zone.zoneid, zone.etypframe.data(), &zone.fswitch, &zone.dmpswitch, &index.nindex,
                &index.indexic, index.indexident.data(), index.indexval.data(), tables.ids.data(),
                &tables.fidglob, tables.fid.data(), tables.op.data(), tables.weight.data(), values,
                &p.data_size, &flags, params, &ivsize, &p.mode, p.start.data(), p.count.data(), &ierr);
        return ierr;
    }

    int32_t read_parts(hid_t group, const ResultParts& p)
    {
        auto* values = p.res != nullptr ? static_cast<float*>(p.res) : out(res);
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_ENTITYRESULTS2(&group, &p.what, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo,
                                     zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch,
                                     &zone.dmpswitch, &index.nindex, out(index.indexident),
                                     out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid),
                                     out(tables.op), out(tables.weight), values, &p.data_size, &found_flags,
                                     found_params, &p.mode, p.start.data(), p.count.data(), &ierr);
        else
            VAK_READ_ENTITYRESULTS2(&group, &p.what, nullptr, etyp.data(), &nent, etypvar.data(), &ncoo,
                                    zone.etypzone.data(), &zone.zoneid, zone.etypframe.data(), &zone.fswitch,
                                    &zone.dmpswitch, &index.nindex, &index.indexic, out(index.indexident),
                                    out(index.indexval), out(tables.ids), &tables.fidglob, out(tables.fid),
                                    out(tables.op), out(tables.weight), values, &p.data_size, &found_flags,
                                    found_params, &p.mode, p.start.data(), p.count.data(), &ierr);
        return ierr;
    }
};

}  // namespace vak::test
