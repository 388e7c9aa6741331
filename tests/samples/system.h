#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct System : Sample {
    static constexpr int32_t key = 10, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "system";

    std::string title = padded("Beam under its own weight"), sys = padded("SI"),
                solver_name = padded("solver"), solver_vers = padded("1.0");
    std::string cdate = "20240229", ctime = "235959  ", mdate = "20240301", mtime = "000000  ";
    int32_t nbunit = 2, ndunit = 3;
    std::vector<int32_t> ubid{1, 2};
    std::string ubtyp = fields({"LENGTH", "TIME"}), ubnam = fields({"mm", "s"});
    std::vector<float> ubshift{0, 273.15F}, ubcon{0.001F, 1};
    std::vector<int32_t> udid{10, 11, 12};
    std::string udnam = fields({"speed", "count", "area"});
    std::vector<float> udscal{1, 2, 0.5F};
    std::vector<int32_t> ndbunit{2, 0, 1}, udbid{1, 2, 1};
    std::vector<float> udbexp{1, -1, 2};

    std::string path() const { return legacy() ? "constant/system" : "constant/system/vakblock"; }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("title", s.title);
        f("sys", s.sys);
        f("solver_name", s.solver_name);
        f("solver_vers", s.solver_vers);
        f("cdate", s.cdate);
        f("ctime", s.ctime);
        f("mdate", s.mdate);
        f("mtime", s.mtime);
        f("nbunit", s.nbunit);
        f("ndunit", s.ndunit);
        f("ubid", s.ubid);
        f("ubtyp", s.ubtyp);
        f("ubnam", s.ubnam);
        f("ubshift", s.ubshift);
        f("ubcon", s.ubcon);
        f("udid", s.udid);
        f("udnam", s.udnam);
        f("udscal", s.udscal);
        f("ndbunit", s.ndbunit);
        f("udbid", s.udbid);
        f("udbexp", s.udbexp);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_SYSTEM : VAK_WRITE_SYSTEM)(
            &file, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
            ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, ubid.data(), ubtyp.data(),
            ubnam.data(), ubshift.data(), ubcon.data(), udid.data(), udnam.data(), udscal.data(),
            ndbunit.data(), udbid.data(), udbexp.data(), &flags, params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_SYSTEM : VAK_READ_SYSTEM)(
            &group, &ipass, title.data(), sys.data(), solver_name.data(), solver_vers.data(), cdate.data(),
            ctime.data(), mdate.data(), mtime.data(), &nbunit, &ndunit, out(ubid), out(ubtyp), out(ubnam),
            out(ubshift), out(ubcon), out(udid), out(udnam), out(udscal), out(ndbunit), out(udbid),
            out(udbexp), &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
