// A shown block as text and as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "show/view.h"

namespace vak::show {

void print(const BlockView& block);

nlohmann::ordered_json as_json(const BlockView& block);

}  // namespace vak::show
