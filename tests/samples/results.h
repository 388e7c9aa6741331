// What the samples of result blocks have in common.
#pragma once

#include "samples/sample.h"
#include "vak_sp.h"

namespace vak::test {

struct SampleZone {
    std::string etypzone = padded("SOLID");
    int32_t zoneid = 3;
    std::string etypframe = padded("LOCAL");
    int32_t fswitch = 1, dmpswitch = 1;
};

template <class Zone, class F>
void each_zone(Zone& zone, F f)
{
    f("etypzone", zone.etypzone);
    f("zoneid", zone.zoneid);
    f("etypframe", zone.etypframe);
    f("fswitch", zone.fswitch);
    f("dmpswitch", zone.dmpswitch);
}

// Tables of `n` entities or elements and of two components.
struct SampleTables {
    std::vector<int32_t> ids{11, 12, 13};
    int32_t fidglob = 9;
    std::vector<int32_t> fid{21, 22, 23};
    std::string op = fields({"SUM", "AVERAGE"});
    std::vector<float> weight{0.5F, 1.0F, 0.25F};
};

// Which tables are stored follows from the switches, which are among the fields handed out: asked beforehand.
struct StoredTables {
    template <class Zone>
    explicit StoredTables(const Zone& zone)
        : one_frame(zone.fswitch == 0),
          frames(zone.fswitch == 1 || zone.fswitch == 2),
          merged(zone.dmpswitch == 1)
    {
    }
    bool one_frame, frames, merged;

    template <class Tables, class F>
    void each(const char* ids, Tables& tables, F f) const
    {
        f(ids, tables.ids);
        if (one_frame) f("fidglob", tables.fidglob);
        if (frames) f("fid", tables.fid);
        if (!merged) return;
        f("operator", tables.op);
        f("weight", tables.weight);
    }
};

// Text behind the last name of a result block's path: zone number and set.
inline std::string zone_and_set(const SampleZone& zone, int32_t set)
{
    return (zone.zoneid >= 0 ? std::to_string(zone.zoneid) : "") +
           (set >= 0 ? "_set" + std::to_string(set) : "");
}

inline std::string zone_level(const SampleZone& zone, int32_t set)
{
    return "/" + trimmed(zone.etypzone) + zone_and_set(zone, set);
}

// Values that differ from each other and that single precision holds.
inline std::vector<float> some_values(size_t n, float first = 0.25F)
{
    std::vector<float> values(n);
    for (size_t i = 0; i < n; ++i) values[i] = first + 0.5F * static_cast<float>(i);
    return values;
}

}  // namespace vak::test
