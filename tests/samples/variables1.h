#pragma once

#include "samples/sample.h"
#include "samples/units.h"
#include "vak_sp.h"

namespace vak::test {

// All variables of an entity type; legacy family.
struct Variables1 : Sample {
    static constexpr int32_t key = 30, everything_pass = 2;
    static constexpr const char* type = "variables";

    Variables1() { family = Family::legacy; }

    std::string etypvar = padded("NODE");
    int32_t idtrans = 2, rank = 1, ndim = 3, ncoo = 3;
    SampleUnits units;
    std::string cname = fields({"ux", "uy", "T"});
    std::vector<int32_t> cid{1, 2, 9}, comp{1, 2, 0};

    std::string path() const { return "constant/variables/" + trimmed(etypvar); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etypvar", s.etypvar);
        f("idtrans", s.idtrans);
        f("rank", s.rank);
        f("ndim", s.ndim);
        f("ncoo", s.ncoo);
        each_unit(s.units, f);
        f("cname", s.cname);
        f("cid", s.cid);
        f("comp", s.comp);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        VAK1_WRITE_VARIABLES(&file, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, units.mbunit.data(),
                             units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                             units.udexp.data(), cname.data(), cid.data(), comp.data(), &flags, params,
                             &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        VAK1_READ_VARIABLES(&group, &ipass, etypvar.data(), &idtrans, &rank, &ndim, &ncoo, out(units.mbunit),
                            out(units.mdunit), out(units.ubid), out(units.ubexp), out(units.udid),
                            out(units.udexp), out(cname), out(cid), out(comp), &found_flags, found_params,
                            &ierr);
        return ierr;
    }
};

}  // namespace vak::test
