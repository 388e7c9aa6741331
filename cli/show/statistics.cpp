#include "show/statistics.h"

#include <algorithm>
#include <cmath>

namespace vak::show {

namespace {

const char* axis_name(char letter)
{
    switch (letter) {
        case 'e': return "entity";
        case 'l': return "location";
        case 'i': return "row";
        case 'j': return "column";
        default: return "entry";
    }
}

}  // namespace

Statistics::Statistics(Axes axes) : rows_(std::move(axes))
{
    size_t row_length = 1;
    for (; rows_.letters.ends_with('c') || rows_.letters.ends_with('p'); rows_.letters.pop_back()) {
        const auto extent = static_cast<size_t>(std::max<int64_t>(rows_.shape.back(), 0));
        if (rows_.letters.back() == 'p') parts_ = extent;
        if (rows_.letters.back() == 'c') named_ = true;
        row_length *= extent;
        rows_.shape.pop_back();
    }
    components_.resize(row_length);
}

template <class T>
void Statistics::add(const std::vector<T>& values, int64_t state)
{
    for (size_t i = 0; i < values.size(); ++i) {
        Component& component = components_[i % components_.size()];
        const auto value = static_cast<double>(values[i]);
        if (std::isnan(value)) {
            ++component.nan;
            continue;
        }
        const Found found{value, static_cast<int64_t>(i / components_.size()), state};
        if (!component.any || value < component.minimum.value) component.minimum = found;
        if (!component.any || value > component.maximum.value) component.maximum = found;
        component.any = true;
    }
}

template void Statistics::add(const std::vector<float>&, int64_t);
template void Statistics::add(const std::vector<int32_t>&, int64_t);

Extreme Statistics::placed(const Found& found, const std::vector<int32_t>& entities, bool states) const
{
    Extreme extreme{.value = found.value, .places = {}};
    int64_t row = found.row;
    for (size_t i = rows_.shape.size(); i-- > 0; row /= rows_.shape[i]) {
        const int64_t at = row % rows_.shape[i];
        const bool is_entity = rows_.letters[i] == 'e' && static_cast<size_t>(at) < entities.size();
        extreme.places.push_back(
            {axis_name(rows_.letters[i]), is_entity ? entities[static_cast<size_t>(at)] : at + 1});
    }
    if (states) extreme.places.push_back({"state", found.state});
    std::reverse(extreme.places.begin(), extreme.places.end());
    return extreme;
}

std::vector<ComponentExtremes> Statistics::extremes(const std::vector<int32_t>& entities, bool states) const
{
    std::vector<ComponentExtremes> found;
    for (size_t i = 0; i < components_.size(); ++i) {
        const Component& component = components_[i];
        ComponentExtremes extremes{
            .name = {}, .any = component.any, .minimum = {}, .maximum = {}, .nan = component.nan};
        if (named_) extremes.name = std::to_string(i / parts_ + 1);
        if (parts_ == 2) extremes.name.append(named_ ? "." : "").append(i % 2 == 0 ? "re" : "im");
        if (component.any) {
            extremes.minimum = placed(component.minimum, entities, states);
            extremes.maximum = placed(component.maximum, entities, states);
        }
        found.push_back(std::move(extremes));
    }
    return found;
}

}  // namespace vak::show
