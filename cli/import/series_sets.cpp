#include "import/series_sets.h"

#include <algorithm>

namespace vak::import {

size_t SeriesSets::number_of(const std::vector<int32_t>& nodes)
{
    const auto at = std::find(node_lists_.begin(), node_lists_.end(), nodes);
    const auto number = static_cast<size_t>(at - node_lists_.begin());
    if (at == node_lists_.end()) node_lists_.push_back(nodes);
    return number;
}

int32_t SeriesSets::set_of(size_t variable, int32_t value_form, const std::vector<int32_t>& nodes)
{
    const Kind kind{value_form, number_of(nodes)};
    std::vector<Kind>& kinds = kinds_[variable];
    const auto at = std::find(kinds.begin(), kinds.end(), kind);
    const auto number = static_cast<int32_t>(at - kinds.begin());
    if (at == kinds.end()) kinds.push_back(kind);
    return number == 0 ? -1 : number + 1;
}

}  // namespace vak::import
