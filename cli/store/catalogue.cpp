#include "store/catalogue.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "store/call.h"
#include "store/linked_files.h"

namespace vak::store {

namespace {

constexpr int32_t header_key = 1;

std::optional<int64_t> number(std::string_view digits)
{
    int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

std::vector<std::string_view> levels(std::string_view path)
{
    std::vector<std::string_view> parts;
    for (size_t from = 0; from <= path.size();) {
        const size_t end = std::min(path.find('/', from), path.size());
        parts.push_back(path.substr(from, end - from));
        from = end + 1;
    }
    return parts;
}

// "state000000000012" levels stand directly behind "singlestate", wherever that is.
std::vector<int64_t> state_numbers(const std::vector<std::string_view>& parts)
{
    std::vector<int64_t> states;
    auto from = static_cast<size_t>(std::ranges::find(parts, "singlestate") - parts.begin());
    for (size_t i = from + 1; i < parts.size() && parts[i].starts_with("state"); ++i) {
        const auto state = number(parts[i].substr(5));
        if (!state || parts[i].size() < 17) break;
        states.push_back(*state);
    }
    return states;
}

// "NAME_set2" is the last level before "vakblock" (legacy: before "header").
std::optional<int64_t> set_number(const std::vector<std::string_view>& parts)
{
    if (parts.size() < 2) return std::nullopt;
    const std::string_view name = parts[parts.size() - 2];
    const size_t at = name.rfind("_set");
    return at == std::string_view::npos ? std::nullopt : number(name.substr(at + 4));
}

BlockEntry entry(int32_t key, std::string path)
{
    BlockEntry block{.key = key, .path = std::move(path), .states = {}, .set = {}};
    const auto parts = levels(block.path);
    block.states = state_numbers(parts);
    block.set = set_number(parts);
    if (block.path.ends_with("/header")) block.path.erase(block.path.size() - 7);  // legacy
    return block;
}

std::vector<BlockEntry> lookup(const File& file, Layout layout)
{
    int32_t capacity = 0, blocks = 0;
    int64_t pool_size = 0, total = 0;
    int32_t* keys = nullptr;
    int64_t* offsets = nullptr;
    char* paths = nullptr;
    const auto routine = layout == Layout::current ? vak_lookup : vak1_lookup;
    const int32_t status = call("listing the blocks", routine, file.root(), Int{1}, Int{0}, &capacity,
                                &pool_size, &blocks, &total, &keys, &offsets, &paths);
    std::vector<BlockEntry> found;
    for (int32_t i = 0; status == 0 && i < blocks; ++i) found.push_back(entry(keys[i], paths + offsets[i]));
    std::free(keys);
    std::free(offsets);
    std::free(paths);
    if (status != 0)
        throw cli::Problem(
            "the blocks could not all be listed; the file is damaged, or its groups are nested too deeply");
    return found;
}

bool only_header(const std::vector<BlockEntry>& blocks)
{
    return std::all_of(blocks.begin(), blocks.end(), [](const BlockEntry& b) { return b.key == header_key; });
}

}  // namespace

// The library passes over links that lead nowhere; a reader of the list is to know what it lacks.
static void tell_missing(const File& file)
{
    for (const std::string& name : missing_files(*file.root()))
        std::fprintf(stderr, "vak: %s: linked from this file, but not there; its blocks are left out\n",
                     name.c_str());
}

Catalogue catalogue(const File& file, std::optional<Layout> layout)
{
    tell_missing(file);
    Catalogue found{.layout = layout.value_or(Layout::current), .blocks = {}};
    found.blocks = lookup(file, found.layout);
    if (layout || !only_header(found.blocks)) return found;
    auto legacy = lookup(file, Layout::legacy);
    if (!only_header(legacy)) return {.layout = Layout::legacy, .blocks = std::move(legacy)};
    return found;
}

const char* block_type(int32_t key)
{
    switch (key) {
        case 1: return "vakheader";
        case 10: return "system";
        case 20: return "indices";
        case 30: return "variable";
        case 32: return "variablegroup";
        case 40: return "text";
        case 100: return "parts";
        case 200: return "attributes";
        case 250: return "identifiers";
        case 300: return "connectivities";
        case 400: return "collector";
        case 500: return "properties";
        case 1000:
        case 1001: return "entityresults";
        case 1050:
        case 1051: return "multientityresults";
        case 1100:
        case 1101: return "elementresults";
        case 1150:
        case 1151: return "multielementresults";
        case 2100: return "activflags";
        case 2150: return "multiactivflags";
        case 10000:
        case 10001: return "densematrix";
        case 10100:
        case 10101: return "triangularmatrix";
        case 10200:
        case 10201: return "sparsematrix";
        default: return "unknown";
    }
}

}  // namespace vak::store
