// Attributes and identifiers: one form under two keys.
#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct Attributes : Sample {
    static constexpr int32_t key = 200, everything_mode = 1 + 2 + 8, everything_pass = 2;
    static constexpr const char* type = "attributes";

    std::string etyp = padded("NODE");
    int32_t nent = 4, nuid = 3, length = 24;
    SampleIndex index;
    std::vector<int32_t> entid{5, 3, -9, 40};
    std::string title = fields({"first", "", "third of them", "titles of 24 characters "}, 24);
    std::vector<int32_t> uid{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

    std::string path() const { return place("attributes/" + trimmed(etyp), index.nindex); }

    template <class Self, class F>
    static void each(Self& s, F f)
    {
        f("etyp", s.etyp);
        f("nent", s.nent);
        f("nuid", s.nuid);
        if (!s.legacy()) f("length", s.length);
        each_index(s.index, f, !s.legacy());
        f("entid", s.entid);
        f("title", s.title);
        f("uid", s.uid);
    }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_WRITE_ATTRIBUTES(&file, etyp.data(), &nent, &nuid, &index.nindex, index.indexident.data(),
                                  index.indexval.data(), entid.data(), title.data(), uid.data(), &state,
                                  &flags, params, &real_size, &ierr);
        else
            write_current(VAK_WRITE_ATTRIBUTES, file, ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        if (legacy())
            VAK1_READ_ATTRIBUTES(&group, &mode, etyp.data(), &nent, &nuid, &index.nindex,
                                 out(index.indexident), out(index.indexval), out(entid), out(title), out(uid),
                                 &found_flags, found_params, &ierr);
        else
            read_current(VAK_READ_ATTRIBUTES, group, mode, ierr);
        return ierr;
    }

    // Legacy titles are always 256 characters long.
    static Attributes of(Family family)
    {
        Attributes a;
        a.family = family;
        if (a.legacy()) a.title = fields({"first", "", "third of them", "fourth"});
        return a;
    }

protected:
    void write_current(decltype(VAK_WRITE_ATTRIBUTES) routine, hid_t file, int32_t& ierr) const
    {
        routine(&file, etyp.data(), &nent, &nuid, &length, &index.nindex, &index.indexic,
                index.indexident.data(), index.indexval.data(), entid.data(), title.data(), uid.data(),
                &state, &flags, params, &real_size, &ierr);
    }

    void read_current(decltype(VAK_READ_ATTRIBUTES) routine, hid_t group, int32_t mode, int32_t& ierr)
    {
        routine(&group, &mode, etyp.data(), &nent, &nuid, &length, &index.nindex, &index.indexic,
                out(index.indexident), out(index.indexval), out(entid), out(title), out(uid), &found_flags,
                found_params, &ierr);
    }
};

struct Identifiers : Attributes {
    static constexpr int32_t key = 250;
    static constexpr const char* type = "identifiers";

    std::string path() const { return place("identifiers/" + trimmed(etyp), index.nindex); }

    int32_t write(hid_t file) const
    {
        int32_t ierr = untouched;
        write_current(VAK_WRITE_IDENTIFIERS, file, ierr);
        return ierr;
    }

    int32_t read(hid_t group, int32_t mode)
    {
        int32_t ierr = untouched;
        read_current(VAK_READ_IDENTIFIERS, group, mode, ierr);
        return ierr;
    }
};

}  // namespace vak::test
