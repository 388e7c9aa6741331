#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct Text : Sample {
    static constexpr int32_t key = 40, everything_mode = 3, everything_pass = 2;
    static constexpr const char* type = "text";

    std::string name = padded("run log");
    int32_t nlines = 3, length = 80;
    SampleIndex index;
    std::string line = fields({"started", "", "a last line, ended"}, 80);

    std::string path() const
    {
        const std::string names = "text/" + trimmed(name);
        return legacy() ? "constant/" + names : place(names, index.nindex);
    }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        if (s.legacy()) f("etyptext", s.name);
        f("nlines", s.nlines);
        f("length", s.length);
        if (!s.legacy()) each_index(s.index, f, true);
        f("line", s.line);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_TEXT(&file, name.data(), &nlines, &length, line.data(), &flags, params, &ierr);
        else
            VAK_WRITE_TEXT(&file, name.data(), &nlines, &length, &index.nindex, &index.indexic,
                           index.indexident.data(), index.indexval.data(), line.data(), &state, &flags,
                           params, &real_size, &ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_TEXT(&group, &mode, name.data(), &nlines, &length, out(line), &found_flags,
                           found_params, &ierr);
        else
            VAK_READ_TEXT(&group, &mode, nullptr, &nlines, &length, &index.nindex, &index.indexic,
                          out(index.indexident), out(index.indexval), out(line), &found_flags, found_params,
                          &ierr);
        return ierr;
    }
};

}  // namespace vak::test
