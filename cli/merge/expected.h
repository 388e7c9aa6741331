// What blocks of the domains have in common when they are merged, and what one of them tells of itself.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "show/view.h"

namespace vak::merge {

using Ids = std::vector<int32_t>;
using Shape = std::vector<std::pair<std::string, int64_t>>;

enum class Fate {
    joined,   // by its entities
    copied,   // the lowest domain's stands
    present,  // is to be there, whatever it holds
    unknown   // is not merged
};
Fate fate_of(int32_t key);

// The array of a joined kind that tells its entities.
std::string identifiers_of(int32_t key);

// In which blocks must agree: where one does not, the lowest domain's stands, as the library has warned.
Shape shape_of(const show::BlockView& block);

int64_t entities_of(const show::BlockView& block);  // by its count

std::string text_of(const show::BlockView& block, const std::string& attribute);

template <class T>
std::vector<T> values_of(const show::BlockView& block, const std::string& array)
{
    for (const show::ArrayView& view : block.arrays)
        if (view.name == array && std::holds_alternative<std::vector<T>>(view.values))
            return std::get<std::vector<T>>(view.values);
    return {};
}

// What the collectors of a block hold: collector, entity type, entity. A collector and a type of which
// nothing is collected have an entry of their own.
using Members = std::set<std::tuple<int32_t, std::string, int32_t>>;
Members members_of(const show::BlockView& block);

}  // namespace vak::merge
