#include "tools/file_blocks.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <utility>

#include "vak_sp.h"

namespace vak {

FileBlocks blocks_of(Family family, hid_t file)
{
    Listing listing = list_blocks(family, file);
    FileBlocks found{std::move(listing.blocks), {}, listing.status, std::move(listing.unreadable)};
    std::vector<int32_t> keys(found.blocks.size());
    std::transform(found.blocks.begin(), found.blocks.end(), keys.begin(),
                   [](const auto& b) { return b.key; });
    found.by_key.resize(keys.size());
    std::iota(found.by_key.begin(), found.by_key.end(), 0);
    vak_iquicksort(keys.data(), found.by_key.data(), 0, static_cast<int32_t>(keys.size()) - 1);
    return found;
}

std::span<const int32_t> blocks_with_key(const FileBlocks& f, int32_t key)
{
    const auto key_of = [&](int32_t i) { return f.blocks[static_cast<size_t>(i)].key; };
    const auto first =
        std::partition_point(f.by_key.begin(), f.by_key.end(), [&](int32_t i) { return key_of(i) < key; });
    const auto last =
        std::partition_point(first, f.by_key.end(), [&](int32_t i) { return key_of(i) == key; });
    return {first, last};
}

size_t number_of_keys(const FileBlocks& f)
{
    size_t n = 0;
    for (size_t i = 0; i < f.by_key.size(); ++n)
        i += blocks_with_key(f, f.blocks[static_cast<size_t>(f.by_key[i])].key).size();
    return n;
}

static void print_rule()
{
    std::printf(" ----------------------------------------------------------------\n");
}

static void print_key(int32_t key, KeyFrame frame)
{
    print_rule();
    std::printf(" BlockKey   : %5d\n", key);
    if (frame == KeyFrame::around) print_rule();
}

void print_block_types(const FileBlocks& f, KeyFrame frame)
{
    std::printf("\n Number of blocktypes NBlockTypes: %d\n", static_cast<int>(number_of_keys(f)));
    for (size_t i = 0; i < f.by_key.size(); ++i) {
        const int32_t number = f.by_key[i];
        const ListedBlock& block = f.blocks[static_cast<size_t>(number)];
        const bool first = i == 0 || f.blocks[static_cast<size_t>(f.by_key[i - 1])].key != block.key;
        if (first) print_key(block.key, frame);
        std::printf(" %10d : %10d (key %5d) \"%s\"\n", static_cast<int>(i), number, block.key,
                    block.path.c_str());
    }
}

// As scanning with "%d", less its undefined overflow: a number that no int32 holds is not readable.
static PathNumber number_at(std::string_view path, size_t found, std::string_view word)
{
    if (found == std::string_view::npos) return {};
    const std::string text(path.substr(found + word.size()));
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    const bool fits = errno == 0 && value >= std::numeric_limits<int32_t>::min() &&
                      value <= std::numeric_limits<int32_t>::max();
    if (end == text.c_str() || !fits) return {.state = Numbered::unreadable};
    return {Numbered::read, static_cast<int32_t>(value)};
}

PathNumber state_number(std::string_view path) { return number_at(path, path.find("/state"), "/state"); }

PathNumber set_number(std::string_view path) { return number_at(path, path.rfind("_set"), "_set"); }

void warn_of_set(const ListedBlock& block)
{
    std::fprintf(stderr, "warning - blockkey %d: could not identify set no in \"%s\" - assume 0.\n",
                 block.key, block.path.c_str());
}

void warn_of_state(const ListedBlock& block)
{
    std::fprintf(stderr, "warning - blockkey %d: could not identify StateID  in \"%s\" - assume 0.\n",
                 block.key, block.path.c_str());
}

}  // namespace vak
