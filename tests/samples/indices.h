#pragma once

#include "samples/sample.h"
#include "samples/units.h"
#include "vak_sp.h"

namespace vak::test {

struct Indices : Sample {
    static constexpr int32_t key = 20, everything_mode = 0, everything_pass = 2;
    static constexpr const char* type = "indices";

    int32_t nindex = 3;
    std::string etypvar = padded("TIME");
    std::string etypindex = fields({"TIME", "FREQUENCY", "LOADCASE"});  // legacy, with units
    SampleUnits units;

    std::string path() const { return legacy() ? "constant/indices" : "constant/indices/vakblock"; }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("nindex", s.nindex);
        if (!s.legacy()) return f("etypvar", s.etypvar);
        f("etypindex", s.etypindex);
        each_unit(s.units, f);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_INDEX(&file, &nindex, etypindex.data(), units.mbunit.data(), units.mdunit.data(),
                             units.ubid.data(), units.ubexp.data(), units.udid.data(), units.udexp.data(),
                             &flags, params, &real_size, &ierr);
        else
            VAK_WRITE_INDEX(&file, &nindex, etypvar.data(), nullptr, nullptr, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_INDEX(&group, &ipass, &nindex, out(etypindex), out(units.mbunit), out(units.mdunit),
                            out(units.ubid), out(units.ubexp), out(units.udid), out(units.udexp),
                            &found_flags, found_params, &ierr);
        else
            VAK_READ_INDEX(&group, nullptr, &nindex, etypvar.data(), nullptr, nullptr, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
