#pragma once

#include "samples/sample.h"
#include "samples/transfer.h"
#include "vak_sp.h"

namespace vak::test {

struct SparseMatrix : Sample {
    static constexpr int32_t key = 10200, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "sparsematrix";

    std::string etyp = padded("SUPER"), etypvar = padded("STIFFNESS");
    int32_t entid = 4;
    int32_t nrow = 3;
    int64_t nnz = 6;
    SampleIndex index;
    std::vector<int32_t> colind{1, 3, 2, 1, 2, 3};
    std::vector<int64_t> rowptr{0, 2, 3, 6};
    std::vector<float> val{1, 0.5F, -2, 3.25F, 1e-9F, 6};
    int32_t ivsize = 4;
    SampleTransfer part;

    static SparseMatrix complex_of(Family family)
    {
        SparseMatrix sample;
        sample.family = family;
        sample.ivsize = 16;
        sample.val = {1, 0.5F, -2, 3.25F, 1e-9F, 6, 7, 8, 9, 10, 11, -12.5F};
        return sample;
    }

    std::string path() const
    {
        return place("sparsematrix/" + trimmed(etyp) + "/" + trimmed(etypvar) + std::to_string(entid),
                     index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etypvar", s.etypvar);
        f("nrow", s.nrow);
        f("nnz", s.nnz);
        each_index(s.index, f, true);
        f("colind", s.colind);
        f("rowptr", s.rowptr);
        f("val", s.val);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_SPARSEMATRIX : VAK_WRITE_SPARSEMATRIX)(
            &file, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &index.nindex, &index.indexic,
            index.indexident.data(), index.indexval.data(), colind.data(), rowptr.data(), val.data(), &state,
            &flags, params, &ivsize, &part.mode, part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_SPARSEMATRIX : VAK_READ_SPARSEMATRIX)(
            &group, &mode, etyp.data(), &entid, etypvar.data(), &nrow, &nnz, &index.nindex, &index.indexic,
            out(index.indexident), out(index.indexval), out(colind), out(rowptr), out(val), &found_flags,
            found_params, part.counts.data(), part.starts.data(), &ierr);
        return ierr;
    }
};

}  // namespace vak::test
