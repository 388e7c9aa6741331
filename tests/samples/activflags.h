#pragma once

#include "samples/results.h"

namespace vak::test {

// Both families have "indexic".
struct ActivFlags : Sample {
    static constexpr int32_t key = 2100, everything_mode = 2, everything_pass = 2;
    static constexpr const char* type = "activflags";

    std::string etyp = padded("ELEMENT");
    int32_t nent = 4;
    SampleIndex index;
    std::vector<int32_t> entid{11, 12, 13, 14}, status{1, 0, 1, -1};
    int32_t ivsize = 4;

    std::string path() const { return place("activflags/" + trimmed(etyp), index.nindex); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etyp", s.etyp);
        f("nent", s.nent);
        each_index(s.index, f, true);
        f("entid", s.entid);
        f("status", s.status);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_ACTIVFLAGS : VAK_WRITE_ACTIVFLAGS)(
            &file, etyp.data(), &nent, &index.nindex, &index.indexic, index.indexident.data(),
            index.indexval.data(), entid.data(), status.data(), &state, &flags, params, &ivsize, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t ipass)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_ACTIVFLAGS : VAK_READ_ACTIVFLAGS)(
            &group, &ipass, etyp.data(), &nent, &index.nindex, &index.indexic, out(index.indexident),
            out(index.indexval), out(entid), out(status), &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
