#pragma once

#include "samples/sample.h"
#include "samples/units.h"
#include "vak_sp.h"

namespace vak::test {

struct Connectivities : Sample {
    static constexpr int32_t key = 300, everything_mode = 1 + 2 + 4 + 8, everything_pass = 2;
    static constexpr const char* type = "connectivities";

    std::string etyp = padded("ELEMENT"), etypelem = padded("HEXA 8"), etyppart = padded("PART"),
                etypnode = padded("NODE"), etypvar = padded("THICKNESS");
    int32_t nele = 2, npele = 4, ndim = 3, nbint = 2, nbfloat = 3;
    SampleIndex index;
    std::vector<int32_t> idele{100, 200}, pid{1, 2}, ic{1, 2, 3, 4, 4, 3, 2, 5};
    SampleUnits units;  // legacy
    std::vector<int32_t> iparam{1, -2, 3, -4};
    std::vector<float> fparam{0.1F, 0.2F, 0.3F, 1e-9F, -4.0F, 5.5F};

    std::string path() const { return place("connectivities/" + trimmed(etypelem), index.nindex); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        if (!s.legacy()) f("etyp", s.etyp);
        f("etypelem", s.etypelem);
        f("etyppart", s.etyppart);
        f("etypnode", s.etypnode);
        f("nele", s.nele);
        f("npele", s.npele);
        f("ndim", s.ndim);
        f("nbint", s.nbint);
        f("nbfloat", s.nbfloat);
        if (!s.legacy()) f("etypvar", s.etypvar);
        each_index(s.index, f, !s.legacy());
        f("idele", s.idele);
        f("pid", s.pid);
        f("ic", s.ic);
        if (s.legacy()) each_unit(s.units, f);
        f("iparam", s.iparam);
        f("fparam", s.fparam);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_CONNECTIVITIES(
                &file, etypelem.data(), etyppart.data(), etypnode.data(), &nele, &npele, &ndim, &nbint,
                &nbfloat, &index.nindex, index.indexident.data(), index.indexval.data(), idele.data(),
                pid.data(), ic.data(), units.mbunit.data(), units.mdunit.data(), units.ubid.data(),
                units.ubexp.data(), units.udid.data(), units.udexp.data(), iparam.data(), fparam.data(),
                &state, &flags, params, &real_size, &ierr);
        else
            VAK_WRITE_CONNECTIVITIES(&file, etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                     etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &index.nindex,
                                     &index.indexic, index.indexident.data(), index.indexval.data(),
                                     idele.data(), pid.data(), ic.data(), iparam.data(), fparam.data(),
                                     &state, &flags, params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_CONNECTIVITIES(&group, &mode, etypelem.data(), etyppart.data(), etypnode.data(), &nele,
                                     &npele, &ndim, &nbint, &nbfloat, &index.nindex, out(index.indexident),
                                     out(index.indexval), out(idele), out(pid), out(ic), out(units.mbunit),
                                     out(units.mdunit), out(units.ubid), out(units.ubexp), out(units.udid),
                                     out(units.udexp), out(iparam), out(fparam), &found_flags, found_params,
                                     &ierr);
        else
            VAK_READ_CONNECTIVITIES(&group, &mode, etyp.data(), etypelem.data(), etyppart.data(),
                                    etypnode.data(), etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat,
                                    &index.nindex, &index.indexic, out(index.indexident), out(index.indexval),
                                    out(idele), out(pid), out(ic), out(iparam), out(fparam), &found_flags,
                                    found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
