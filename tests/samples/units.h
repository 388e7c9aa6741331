// Units of three columns: metres, metres per second squared, none.
#pragma once

#include "samples/sample.h"

namespace vak::test {

struct SampleUnits {
    std::vector<int32_t> mbunit{1, 2, 0}, mdunit{0, 1, 0};
    std::vector<int32_t> ubid{1, 1, 3};
    std::vector<float> ubexp{1, 1, -2};
    std::vector<int32_t> udid{7};
    std::vector<float> udexp{0.5F};
};

template <class Units, class F>
void each_unit(Units& units, F f)
{
    f("mbunit", units.mbunit);
    f("mdunit", units.mdunit);
    f("ubid", units.ubid);
    f("ubexp", units.ubexp);
    f("udid", units.udid);
    f("udexp", units.udexp);
}

}  // namespace vak::test
