#pragma once

#include "samples/sample.h"
#include "samples/transfer.h"
#include "vak_sp.h"

namespace vak::test {

struct DenseMatrix : Sample {
    static constexpr int32_t key = 10000, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "densematrix";

    std::string etyp = padded("SUPER"), etypvar = padded("STIFFNESS");
    int32_t entid = 4;
    int32_t nrow = 2, ncolumn = 3;
    SampleIndex index;
    std::vector<float> val{1, 0.5F, -2, 3.25F, 1e-9F, 6};
    int32_t ivsize = 4;
    SampleTransfer part;

    static DenseMatrix complex_of(Family family)
    {
        DenseMatrix sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.val = {1, 0.5F, -2, 3.25F, 1e-9F, 6, 7, 8, 9, 10, 11, -12.5F};
        return sample;
    }

    std::string path() const
    {
        return place("densematrix/" + trimmed(etyp) + "/" + trimmed(etypvar) + std::to_string(entid),
                     index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etyp", s.etyp);
        f("entid", s.entid);
        f("etypvar", s.etypvar);
        f("nrow", s.nrow);
        f("ncolumn", s.ncolumn);
        each_index(s.index, f, true);
        f("val", s.val);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_DENSEMATRIX : VAK_WRITE_DENSEMATRIX)(
            &file, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &index.nindex, &index.indexic,
            index.indexident.data(), index.indexval.data(), val.data(), &state, &flags, params, &ivsize,
            &part.mode, part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_DENSEMATRIX : VAK_READ_DENSEMATRIX)(
            &group, &mode, etyp.data(), &entid, etypvar.data(), &nrow, &ncolumn, &index.nindex,
            &index.indexic, out(index.indexident), out(index.indexval), out(val), &found_flags, found_params,
            part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }
};

}  // namespace vak::test
