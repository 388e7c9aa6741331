#pragma once

#include "samples/sample.h"
#include "samples/units.h"
#include "vak_sp.h"

namespace vak::test {

// A variable of three components with subscripts and a map onto a vector of two dimensions; current family.
struct Variable : Sample {
    static constexpr int32_t key = 30, everything_mode = 3;
    static constexpr const char* type = "variable";

    std::string varkey = padded("DISP"), varclass = padded("CLASS_VECTOR"), varnam = padded("Displacement");
    int32_t ncoo = 3, rank = 1, ndim = 2, tensor = 4;
    std::string value_type = padded("FLOAT");
    int32_t lenb = 3, lend = 1, lvmap = 1, subslen = 4;  // the first two are counted by the writer
    SampleUnits units;
    std::string subscr = "xyzz";
    std::vector<int32_t> subscnt{1, 1, 2}, subsoffs{0, 1, 2};
    std::vector<float> vmap = {1, 0, 0, 1, 0.5F, 0.25F};

    std::string path() const { return "constant/variable/" + trimmed(varkey) + "/vakblock"; }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("varkey", s.varkey);
        f("varclass", s.varclass);
        f("varnam", s.varnam);
        f("ncoo", s.ncoo);
        f("rank", s.rank);
        f("ndim", s.ndim);
        f("tensor", s.tensor);
        f("type", s.value_type);
        f("lenb", s.lenb);
        f("lend", s.lend);
        f("lvmap", s.lvmap);
        f("subslen", s.subslen);
        each_unit(s.units, f);
        f("subscr", s.subscr);
        f("subscnt", s.subscnt);
        f("subsoffs", s.subsoffs);
        f("vmap", s.vmap);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        VAK_WRITE_VARIABLE(&file, nullptr, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo,
                           &rank, &ndim, &tensor, value_type.data(), &lvmap, &subslen, units.mbunit.data(),
                           units.mdunit.data(), units.ubid.data(), units.ubexp.data(), units.udid.data(),
                           units.udexp.data(), subscr.data(), subscnt.data(), subsoffs.data(), vmap.data(),
                           &flags, params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        VAK_READ_VARIABLE(&group, &mode, nullptr, varkey.data(), varclass.data(), varnam.data(), &ncoo, &rank,
                          &ndim, &tensor, value_type.data(), &lenb, &lend, &lvmap, &subslen,
                          out(units.mbunit), out(units.mdunit), out(units.ubid), out(units.ubexp),
                          out(units.udid), out(units.udexp), out(subscr), out(subscnt), out(subsoffs),
                          out(vmap), &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
