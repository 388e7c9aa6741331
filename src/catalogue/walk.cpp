// The walk over all blocks below a group. Its stack stands on the heap, since the depth is the file's.
#include "catalogue/walk.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>

#include "catalogue/quiet_attribute.h"
#include "frame/guarded_links.h"

namespace vak {

namespace {

struct Link {
    std::string name;
    H5L_type_t type;
    H5O_token_t target;  // of a hard link
};

// Which object a group is, however it was reached.
struct Identity {
    unsigned long file;
    H5O_token_t token;
};

// A group on the current path, and the links of it that are still to be followed.
struct Level {
    Group group;
    Identity identity;
    std::vector<Link> links;
    size_t next;
    size_t path_length;
    size_t named;  // the last level up to this one that was opened by its name
};

struct Walk {
    Family family;
    const std::function<bool(const FoundBlock&)>& visit;
    const WalkLimits& limits;
    const std::function<void(std::string_view)>& unreadable;
    Properties guarded = guarded_links();
    std::vector<Level> levels{};
    std::string path{};
    int64_t visits = 0;
    bool incomplete = false;
    bool ended = false;
};

enum class Role { file_header, block, group, skipped };

// A legacy block is told by its subgroup "header"; the two others hold its arrays.
Role role_of(Family family, std::string_view name)
{
    if (name == "vakheader") return Role::file_header;
    if (family == Family::current) return name == "vakblock" ? Role::block : Role::group;
    if (name == "header") return Role::block;
    return name == "data" || name == "index" ? Role::skipped : Role::group;
}

struct Collector {
    std::vector<Link>& links;
    int64_t left;
    bool out_of_memory = false;
};

// Called back by HDF5, through which nothing may be thrown.
herr_t collect(hid_t, const char* name, const H5L_info2_t* info, void* data) noexcept
{
    auto& collector = *static_cast<Collector*>(data);
    if (--collector.left < 0) return 1;
    try {
        const bool hard = info->type == H5L_TYPE_HARD;
        collector.links.push_back({name, info->type, hard ? info->u.token : H5O_TOKEN_UNDEF});
    } catch (const std::bad_alloc&) {
        collector.out_of_memory = true;
        return -1;
    }
    return 0;
}

// The links of a group in the order of their names. All are taken before the first is followed: going on
// with an interrupted listing would make HDF5 search its place again.
std::vector<Link> links_of(Walk& walk, hid_t group)
{
    std::vector<Link> links;
    Collector collector{links, walk.limits.visits - walk.visits};
    hsize_t place = 0;
    if (H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, &place, collect, &collector) != 0)
        walk.incomplete = true;
    if (collector.out_of_memory) throw std::bad_alloc();
    walk.visits = walk.limits.visits - std::max<int64_t>(collector.left, 0);
    walk.ended = collector.left < 0;
    return links;
}

std::optional<Identity> identity_of(hid_t group)
{
    H5O_info2_t info;
    if (H5Oget_info3(group, &info, H5O_INFO_BASIC) < 0) return std::nullopt;
    return Identity{info.fileno, info.token};
}

bool on_path(const Walk& walk, const Identity& identity)
{
    return std::any_of(walk.levels.begin(), walk.levels.end(), [&](const Level& level) {
        return level.identity.file == identity.file &&
               std::equal(std::begin(identity.token.__data), std::end(identity.token.__data),
                          std::begin(level.identity.token.__data));
    });
}

// Makes the group the end of the current path, unless it stands there already.
void enter(Walk& walk, Group group, const std::optional<Identity>& identity, size_t named)
{
    if (identity && on_path(walk, *identity)) return;
    if (!identity || walk.levels.size() > walk.limits.depth) {
        walk.incomplete = true;
        return;
    }
    auto links = links_of(walk, group.get());
    walk.levels.push_back({std::move(group), *identity, std::move(links), 0, walk.path.size(), named});
}

void found(Walk& walk, int32_t key, hid_t group)
{
    if (!walk.visit({key, walk.path, group})) walk.ended = true;
}

void pass_over(const Walk& walk)
{
    if (walk.unreadable) walk.unreadable(walk.path);
}

void found_block(Walk& walk, hid_t group)
{
    static constexpr std::array<const char*, 1> key_name{"block"};
    const Attribute attribute = first_attribute(group, key_name);
    const auto key = attribute.valid() ? integer_of(attribute) : std::nullopt;
    if (key.value_or(0) != 0) return found(walk, *key, group);
    if (!key && H5Aexists(group, "block") != 0) pass_over(walk);
}

// What a hard link leads to, which spares HDF5 the search for the name. There is something.
Group open_target(const Walk& walk, hid_t holder, const H5O_token_t& target)
{
    Object object(H5Oopen_by_token(holder, target));
    const H5I_type_t type = H5Iget_type(object.get());
    if (type == H5I_BADID) pass_over(walk);
    return Group(type == H5I_GROUP ? object.release() : H5I_INVALID_HID);
}

// What another link leads to, by the path that ends in it. HDF5 does not know the names of groups that were
// opened as targets, and would search the whole file for them at an external link; so the path begins above.
Group open_path(Walk& walk, const Level& named)
{
    if (!walk.guarded.valid()) walk.incomplete = true;
    const size_t begin = named.path_length == 0 ? 0 : named.path_length + 1;
    return Group(H5Gopen2(named.group.get(), walk.path.c_str() + begin, walk.guarded.get()));
}

void follow(Walk& walk, const Level& level, const Link& link)
{
    const Role role = role_of(walk.family, link.name);
    if (role == Role::skipped) return;
    if (!walk.path.empty()) walk.path += '/';
    walk.path += link.name;
    const bool hard = link.type == H5L_TYPE_HARD;
    Group group =
        hard ? open_target(walk, level.group.get(), link.target) : open_path(walk, walk.levels[level.named]);
    if (!group.valid()) return;
    if (role == Role::file_header) return found(walk, 1, H5I_INVALID_HID);
    if (role == Role::block) return found_block(walk, group.get());
    const auto identity = hard ? Identity{level.identity.file, link.target} : identity_of(group.get());
    enter(walk, std::move(group), identity, hard ? level.named : walk.levels.size());
}

// Follows the next link of the last group on the path, or leaves that group.
void step(Walk& walk)
{
    Level& level = walk.levels.back();
    walk.path.resize(level.path_length);
    if (level.next == level.links.size()) {
        walk.levels.pop_back();
        return;
    }
    const Link link = std::move(level.links[level.next++]);
    follow(walk, level, link);
}

}  // namespace

bool can_be_walked(hid_t start)
{
    const H5I_type_t type = H5Iget_type(start);
    return type == H5I_FILE || type == H5I_GROUP;
}

int32_t walk_blocks(Family family, hid_t start, const std::function<bool(const FoundBlock&)>& visit,
                    const WalkLimits& limits, const std::function<void(std::string_view)>& unreadable)
{
    Walk walk{family, visit, limits, unreadable};
    Group group(H5Gopen2(start, ".", H5P_DEFAULT));
    if (!group.valid()) return 1;
    const auto identity = identity_of(group.get());
    enter(walk, std::move(group), identity, 0);
    while (!walk.levels.empty() && !walk.ended) step(walk);
    return walk.incomplete ? 1 : 0;
}

Listing list_blocks(Family family, hid_t start)
{
    if (!can_be_walked(start)) return {-1, {}, {}};
    Listing listing;
    const auto list = [&](const FoundBlock& block) {
        listing.blocks.push_back({block.key, std::string(block.path)});
        return true;
    };
    const auto note = [&](std::string_view path) { listing.unreadable.emplace_back(path); };
    listing.status = walk_blocks(family, start, list, {}, note);
    return listing;
}

}  // namespace vak
