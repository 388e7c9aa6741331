#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct Collector : Sample {
    static constexpr int32_t key = 400, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "collector";

    std::string etypcoll = padded("SETS");
    int32_t ncoll = 2, ntyp = 3;
    int32_t nenttot = 6;  // computed by the writer
    SampleIndex index;
    std::vector<int32_t> idcoll{900, 901};
    std::string etyp = fields({"NODE", "SHELL", "BEAM"});
    std::vector<int32_t> nent{2, 0, 1, 0, 3, 0}, entid{1, 2, 70, 30, 31, 32};

    std::string path() const { return place("collector/" + trimmed(etypcoll), index.nindex); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etypcoll", s.etypcoll);
        f("ncoll", s.ncoll);
        f("ntyp", s.ntyp);
        f("nenttot", s.nenttot);
        each_index(s.index, f, !s.legacy());
        f("idcoll", s.idcoll);
        f("etyp", s.etyp);
        f("nent", s.nent);
        f("entid", s.entid);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_COLLECTOR(&file, etypcoll.data(), &ncoll, &ntyp, &index.nindex,
                                 index.indexident.data(), index.indexval.data(), idcoll.data(), etyp.data(),
                                 nent.data(), entid.data(), &state, &flags, params, &real_size, &ierr);
        else
            VAK_WRITE_COLLECTOR(&file, etypcoll.data(), &ncoll, &ntyp, &index.nindex, &index.indexic,
                                index.indexident.data(), index.indexval.data(), idcoll.data(), etyp.data(),
                                nent.data(), entid.data(), &state, &flags, params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_COLLECTOR(&group, &ipass, &nenttot, etypcoll.data(), &ncoll, &ntyp, &index.nindex,
                                out(index.indexident), out(index.indexval), out(idcoll), out(etyp), out(nent),
                                out(entid), &found_flags, found_params, &ierr);
        else
            VAK_READ_COLLECTOR(&group, &ipass, &nenttot, etypcoll.data(), &ncoll, &ntyp, &index.nindex,
                               &index.indexic, out(index.indexident), out(index.indexval), out(idcoll),
                               out(etyp), out(nent), out(entid), &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
