#pragma once

#include "samples/sample.h"
#include "samples/transfer.h"
#include "vak_sp.h"

namespace vak::test {

struct TriangularMatrix : Sample {
    static constexpr int32_t key = 10100, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "triangularmatrix";

    std::string etyp = padded("SUPER"), etypvar = padded("STIFFNESS");
    int32_t entid = 4;
    int32_t nsize = 3, matrixtype = 1;
    SampleIndex index;
    std::vector<float> val{1, 0.5F, -2, 3.25F, 1e-9F, 6};
    int32_t ivsize = 4;
    SampleTransfer part;

    static TriangularMatrix complex_of(Family family)
    {
        TriangularMatrix sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.val = {1, 0.5F, -2, 3.25F, 1e-9F, 6, 7, 8, 9, 10, 11, -12.5F};
        return sample;
    }

    std::string path() const
    {
        return place("triangularmatrix/" + trimmed(etyp) + "/" + trimmed(etypvar) + std::to_string(entid),
                     index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etypvar", s.etypvar);
        f("nsize", s.nsize);
        f("matrixtype", s.matrixtype);
        each_index(s.index, f, true);
        f("val", s.val);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_TRIANGULARMATRIX : VAK_WRITE_TRIANGULARMATRIX)(
            &file, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &index.nindex, &index.indexic,
            index.indexident.data(), index.indexval.data(), val.data(), &state, &flags, params, &ivsize,
            &part.mode, part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_TRIANGULARMATRIX : VAK_READ_TRIANGULARMATRIX)(
            &group, &mode, etyp.data(), &entid, etypvar.data(), &nsize, &matrixtype, &index.nindex,
            &index.indexic, out(index.indexident), out(index.indexval), out(val), &found_flags, found_params,
            part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }
};

}  // namespace vak::test
