#include "listing.h"

#include <cstdio>

namespace vak::cli {

namespace {

using Json = nlohmann::ordered_json;

// States of nested indices are joined, outermost first: "9/5".
std::string states_text(const store::BlockEntry& block)
{
    std::string text;
    for (const int64_t state : block.states) {
        if (!text.empty()) text += "/";
        text += std::to_string(state);
    }
    return text.empty() ? "-" : text;
}

Json states_json(const store::BlockEntry& block)
{
    if (block.states.empty()) return nullptr;
    return block.states.size() == 1 ? Json(block.states[0]) : Json(block.states);
}

}  // namespace

std::string line(const store::BlockEntry& block)
{
    char columns[128];
    std::snprintf(columns, sizeof columns, "%7d  %-20s %8s %5s  ", block.key, store::block_type(block.key),
                  states_text(block).c_str(), block.set ? std::to_string(*block.set).c_str() : "-");
    return std::string(columns) + block.path;
}

Json as_json(const store::BlockEntry& block)
{
    return {{"key", block.key},
            {"type", store::block_type(block.key)},
            {"state", states_json(block)},
            {"set", block.set ? Json(*block.set) : Json(nullptr)},
            {"path", block.path}};
}

void print_document(const std::string& file, store::Layout layout, Json blocks)
{
    const Json document{{"file", file},
                        {"layout", layout == store::Layout::current ? "current" : "legacy"},
                        {"blocks", std::move(blocks)}};
    // Names in a file need not be UTF-8.
    std::puts(document.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

}  // namespace vak::cli
