// The place of a block as text, and the routines that open a block's group by it.
#include "frame/paths.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "frame/exported.h"
#include "vak_sp.h"

namespace vak {

namespace {

// Fixed, so that a name is the same in every locale; isgraph is not.
bool is_graphic(char c) { return c > ' ' && c <= '~'; }

const char* prefix(int32_t nstate)
{
    if (nstate == -1) return "multistate";
    return nstate == 0 ? "constant" : "singlestate";
}

void append_state(std::string& path, int32_t state)
{
    std::array<char, 24> level{};
    const int length = std::snprintf(level.data(), level.size(), "/state%012d", state);
    path.append(level.data(), static_cast<size_t>(length));
}

// One level for the state, or one for each of the list, the last entry outermost.
void append_states(std::string& path, const BlockPath& place)
{
    if (place.nstate <= 0) return;
    if (place.state >= 0)
        append_state(path, place.state);
    else if (place.states != nullptr)
        for (int32_t i = place.nstate; i > 0; --i) append_state(path, place.states[i - 1]);
}

void append_names(std::string& path, const BlockPath& place)
{
    for (const char* field : place.names) {
        const std::string_view name = counted(field);
        if (!name.empty()) path.append("/").append(name);
    }
}

}  // namespace

std::string_view counted(const char* field, size_t length)
{
    if (field == nullptr) return {};
    const std::string_view text(field, strnlen(field, length));
    const auto last = std::find_if(text.rbegin(), text.rend(), is_graphic);
    return text.substr(0, static_cast<size_t>(text.rend() - last));
}

std::string counted_name(const char* field, int32_t length)
{
    if (field == nullptr || length < 1) return {};
    const std::string_view text(field, strnlen(field, static_cast<size_t>(length)));
    return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

std::string path_text(Family family, const BlockPath& place)
{
    std::string path = prefix(place.nstate);
    append_states(path, place);
    append_names(path, place);
    if (place.index >= 0) path += std::to_string(place.index);
    if (place.set >= 0) path += "_set" + std::to_string(place.set);
    if (family == Family::current) path += "/vakblock";
    return path;
}

namespace {

// The names that the bits of name_flags select, in order.
std::array<const char*, 5> selected(int32_t name_flags, std::array<const char*, 5> names)
{
    for (size_t i = 0; i < names.size(); ++i)
        if ((static_cast<uint32_t>(name_flags) >> i & 1U) == 0) names[i] = nullptr;
    return names;
}

int32_t open_auto_path(Family family, hid_t location, const BlockPath& place, int32_t ioflag,
                       vak_id* group_id)
{
    *group_id = -1;
    return exported([&] { return h5gopen(location, path_text(family, place), ioflag, group_id); });
}

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_OPENAUTOPATH(
    const vak_id* loc_id, const int32_t* name_flags, const void*, const int32_t* ioflag,
    const int32_t* nstate, const int32_t* states, const int32_t* state,
    const char* name1, const char* name2, const char* name3, const char* name4, const char* name5,
    const int32_t* index, const int32_t* set,
    vak_id* group_id, int32_t* ierr)
{
    const vak::BlockPath place{
        .nstate = *nstate, .states = states, .state = *state,
        .names = vak::selected(*name_flags, {name1, name2, name3, name4, name5}),
        .index = *index, .set = *set};
    *ierr = vak::open_auto_path(vak::Family::current, *loc_id, place, *ioflag, group_id);
}

void VAK1_OPENAUTOPATH(
    const vak_id* loc_id, const int32_t* name_flags, const void*, const int32_t* ioflag,
    const int32_t* nstate, const int32_t* states, const int32_t* state,
    const char* name1, const char* name2, const char* name3, const char* name4, const char* name5,
    const int32_t* index, const int32_t* set,
    vak_id* group_id, int32_t* ierr)
{
    const vak::BlockPath place{
        .nstate = *nstate, .states = states, .state = *state,
        .names = vak::selected(*name_flags, {name1, name2, name3, name4, name5}),
        .index = *index, .set = *set};
    *ierr = vak::open_auto_path(vak::Family::legacy, *loc_id, place, *ioflag, group_id);
}
