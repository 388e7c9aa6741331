#pragma once

#include "samples/results.h"

namespace vak::test {

// One state of a series; write() appends it.
struct MultiActivFlags : Sample {
    static constexpr int32_t key = 2150, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "multiactivflags";

    std::string series = padded("EROSION"), etyp = padded("ELEMENT");
    int32_t nent = 4;
    SampleIndex index;
    int32_t nstate = 1;
    std::vector<int32_t> entid{11, 12, 13, 14}, status{1, 0, 1, -1};
    int32_t ivsize = 4, ipos = 0;

    // The state behind this one, with values of its own; ipos is its place.
    MultiActivFlags next() const
    {
        MultiActivFlags later = *this;
        ++later.ipos;
        ++later.nstate;
        for (int32_t& ident : later.index.indexident) ident += 10;
        for (float& value : later.index.indexval) value += 1.0F;
        for (int32_t& flag : later.status) flag += 100;
        return later;
    }

    std::string path() const
    {
        return "multistate/" + trimmed(series) + "/multiactivflags/" + trimmed(etyp) +
               (legacy() ? "" : "/vakblock");
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("series", s.series);
        f("etyp", s.etyp);
        f("nent", s.nent);
        each_index(s.index, f, false);
        f("nstate", s.nstate);
        f("entid", s.entid);
        f("status", s.status);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_MULTIACTIVFLAGS : VAK_WRITE_MULTIACTIVFLAGS)(
            &file, series.data(), etyp.data(), &nent, &index.nindex, index.indexident.data(),
            index.indexval.data(), entid.data(), status.data(), &ipos, &flags, params, &ivsize, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_MULTIACTIVFLAGS : VAK_READ_MULTIACTIVFLAGS)(
            &group, &ipass, series.data(), etyp.data(), &nent, &index.nindex, &nstate, out(index.indexident),
            out(index.indexval), out(entid), out(status), &ipos, &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
