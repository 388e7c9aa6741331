#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct Parts : Sample {
    static constexpr int32_t key = 100, everything_mode = 3, everything_pass = 2;
    static constexpr const char* type = "parts";

    std::string etyppart = padded("SHELL PART");
    int32_t npart = 3, off = 0, length = 8;
    SampleIndex index;
    std::vector<int32_t> pid{11, 12, 13};
    std::string title = fields({"door", "roof", "wheel no"}, 8);
    std::vector<int32_t> mid{1, 1, 2}, mtyp{24, 24, -1}, pcol{0, 7, 2147483647};

    std::string path() const { return place("parts/" + trimmed(etyppart), index.nindex); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etyppart", s.etyppart);
        f("npart", s.npart);
        f("off", s.off);
        f("length", s.length);
        each_index(s.index, f, true);
        f("pid", s.pid);
        f("title", s.title);
        f("mid", s.mid);
        f("mtyp", s.mtyp);
        f("pcol", s.pcol);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_WRITE_PARTS : VAK_WRITE_PARTS)(
            &file, etyppart.data(), &npart, &off, &length, &index.nindex, &index.indexic,
            index.indexident.data(), index.indexval.data(), pid.data(), title.data(), mid.data(), mtyp.data(),
            pcol.data(), &state, &flags, params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        (legacy() ? VAK1_READ_PARTS : VAK_READ_PARTS)(
            &group, &mode, etyppart.data(), &npart, &off, &length, &index.nindex, &index.indexic,
            out(index.indexident), out(index.indexval), out(pid), out(title), out(mid), out(mtyp), out(pcol),
            &found_flags, found_params, &ierr);
        return ierr;
    }
};

}  // namespace vak::test
