// What the state eraser is to do; found out, and checked to be possible, before anything is changed.
#pragma once

#include <set>

#include "tools/eraser.h"

namespace vak {

struct SeriesKind {
    const char* type;
    int32_t real_key, complex_key;
};
inline constexpr SeriesKind series_kinds[] = {
    {"multientityresults", 1050, 1051}, {"multielementresults", 1150, 1151}, {"multiactivflags", 2150, 2150}};

// Null for a block that is no series.
const SeriesKind* series_kind(int32_t key);

// A series of which states go, and those that stay.
struct SeriesCut {
    ErasableBlock block;
    std::vector<hsize_t> kept;
};

struct ErasePlan {
    std::vector<ErasableBlock> blocks;  // of single states
    std::vector<SeriesCut> series;
    std::set<ObjectToken> cut;  // several paths may lead to one series, whose states go once
};

// 0 or the status that ends the run.
int32_t make_plan(const EraserRun&, ErasePlan&);

}  // namespace vak
