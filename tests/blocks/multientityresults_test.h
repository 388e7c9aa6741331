// The fixture of the tests of series of entity results.
#pragma once

#include "samples/multientityresults.h"

#include "support/block_test.h"

namespace vak::test {

class SeriesTest : public BothFamilies {
protected:
    MultiEntityResults series_of(int32_t nstate, int32_t ivsize = 4) const
    {
        return MultiEntityResults::of_states(family(), nstate, ivsize);
    }
    Result read_chosen(MultiEntityResults& r, int32_t ipass, const SeriesPart& part)
    {
        const ObjectId group = open_object(file, r.found_at);
        return run([&] { return r.read_chosen(group, ipass, part); });
    }
    Result read_parts(MultiEntityResults& r, const SeriesPart& part)
    {
        const ObjectId group = open_object(file, r.found_at);
        return run([&] { return r.read_parts(group, part); });
    }
    std::string header(const MultiEntityResults& r) const { return r.path() + (legacy() ? "/header" : ""); }
    std::string data(const MultiEntityResults& r, const std::string& name) const
    {
        return r.path() + (legacy() ? "/data/" : "/") + name;
    }
    std::string index(const MultiEntityResults& r, const std::string& name) const
    {
        return r.path() + (legacy() ? "/index/" : "/") + name;
    }
};

// What the caller of a reader of parts knows already.
inline void take_header(MultiEntityResults& to, const MultiEntityResults& from)
{
    to.series = from.series;
    to.etyp = from.etyp;
    to.nent = from.nent;
    to.etypvar = from.etypvar;
    to.ncoo = from.ncoo;
    to.zone = from.zone;
    to.index.nindex = from.index.nindex;
    to.nstate = from.nstate;
}

}  // namespace vak::test
