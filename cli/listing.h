// A block in a list: one line of text, or the beginning of a JSON object.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "store/catalogue.h"

namespace vak::cli {

// Key, type, state, set and path.
std::string line(const store::BlockEntry& block);

nlohmann::ordered_json as_json(const store::BlockEntry& block);

// {"file": ..., "layout": ..., "blocks": [...]}, printed to standard output.
void print_document(const std::string& file, store::Layout layout, nlohmann::ordered_json blocks);

}  // namespace vak::cli
