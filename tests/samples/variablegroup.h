#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

// Current family.
struct VariableGroup : Sample {
    static constexpr int32_t key = 32, everything_mode = 3;
    static constexpr const char* type = "variablegroup";

    std::string name = padded("Mechanics"), etypvar = padded("NODE");
    int32_t nvar = 3, ncoo = 10;
    std::vector<int32_t> cnt{3, 6, 1}, offs{0, 3, 9};
    std::string varkey = fields({"DISP", "STRESS", "TEMP"});

    std::string path() const { return "constant/variablegroup/" + trimmed(name) + "/vakblock"; }

    // The name is in the path alone.
    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etypvar", s.etypvar);
        f("nvar", s.nvar);
        f("ncoo", s.ncoo);
        f("cnt", s.cnt);
        f("offs", s.offs);
        f("varkey", s.varkey);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        VAK_WRITE_VARIABLEGROUP(&file, etypvar.data(), nullptr, name.data(), &nvar, &ncoo, cnt.data(),
                                offs.data(), varkey.data(), &flags, params, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        VAK_READ_VARIABLEGROUP(&group, &mode, nullptr, etypvar.data(), &nvar, &ncoo, out(cnt), out(offs),
                               out(varkey), &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
