// Groups by path: VAK_H5GOPEN with its three ways of opening, VAK_H5GCLOSE.
#include <algorithm>
#include <cstdio>

#include "frame/exported.h"
#include "frame/guarded_links.h"
#include "frame/metadata_cache.h"
#include "frame/paths.h"
#include "vak_sp.h"

namespace vak {

namespace {

Group open(hid_t location, const std::string& path, hid_t access = H5P_DEFAULT)
{
    return Group(H5Gopen2(location, path.c_str(), access));
}

Group create(hid_t location, const std::string& path, hid_t link_creation, hid_t access)
{
    return Group(H5Gcreate2(location, path.c_str(), link_creation, H5P_DEFAULT, access));
}

// In a file that is open to read, HDF5 would wait for a writer of a FIFO that an external link leads to.
// HDF5's default list is as good as one of our own, where it takes the guard.
struct LinkAccess {
    const GuardedDefault guarded{};
    const Properties own{guarded.valid() ? Properties()
                                         : guarded_links(LinkedFile::as_the_file_with_the_link)};

    bool valid() const { return guarded.valid() || own.valid(); }
    hid_t list() const { return guarded.valid() ? H5P_DEFAULT : own.get(); }
};

// A path of which HDF5 cannot tell (a dataset on the way, a link that leads nowhere) is not there.
bool exists(hid_t location, const std::string& path, hid_t access = H5P_DEFAULT)
{
    return H5Lexists(location, path.c_str(), access) > 0;
}

// Creates the levels of the path that are missing; their number, or -8.
int32_t create_missing(hid_t location, const std::string& path, hid_t access)
{
    if (location < 0) return 0;  // the opening fails
    if (!hold_metadata_back(location)) return -8;
    int32_t created = 0;
    for (size_t end = 0; end < path.size();) {
        end = std::min(path.find('/', end + 1), path.size());
        const std::string level = path.substr(0, end);
        if (exists(location, level, access)) continue;
        if (!create(location, level, H5P_DEFAULT, access).valid()) return -8;
        ++created;
    }
    return created;
}

int32_t fail_unquoted(int32_t code, const std::string& path)
{
    std::fprintf(stderr, "VAK ERROR - vak_h5gopen - code %d, group %s\n", code, path.c_str());
    return code;
}

int32_t fail_quoted(int32_t code, const std::string& path)
{
    std::fprintf(stderr, "VAK ERROR - vak_h5gopen - code %d, group \"%s\"\n", code, path.c_str());
    return code;
}

int32_t open_creating(hid_t location, const std::string& path, Group& group)
{
    const LinkAccess access;
    const int32_t created = create_missing(location, path, access.list());
    if (created < 0) return fail_unquoted(created, path);
    group = open(location, path, access.list());
    return group.valid() ? created : fail_unquoted(-10, path);
}

// Opening alone tells whether the path is there. Only a failure needs the question why.
int32_t open_present(hid_t location, const std::string& path, Group& group,
                     int32_t (*fail)(int32_t, const std::string&))
{
    const LinkAccess access;
    group = open(location, path, access.list());
    if (group.valid()) return 0;
    return !access.valid() || exists(location, path, access.list()) ? fail(-20, path) : -1;
}

int32_t open_by_flag(hid_t location, const std::string& path, int32_t ioflag, Group& group)
{
    switch (ioflag) {
        case 0: return open_creating(location, path, group);
        case 1: return open_present(location, path, group, fail_quoted);
        // A missing level makes the whole path missing, so one question serves for every level.
        case 2: return open_present(location, path, group, fail_unquoted);
        default: std::fprintf(stderr, "VAK ERROR - vak_h5gopen - invalid ioflag %d\n", ioflag); return -30;
    }
}

int32_t open_named(hid_t location, const char* name, int32_t name_len, int32_t ioflag, hid_t* group)
{
    *group = -1;
    if (name_len == -1 && *name == '\0') {
        std::fprintf(stderr, "VAK ERROR - vak_h5gopen - invalid name, string must \\0 terminated\n");
        return -50;
    }
    if (name_len != -1 && name_len < 1) {
        std::fprintf(stderr,
                     "VAK ERROR - vak_h5gopen - invalid len=%d must >0 or -1 for \\0 terminated strings\n",
                     name_len);
        return -40;
    }
    return h5gopen(location, name_len == -1 ? std::string(name) : counted_name(name, name_len), ioflag,
                   group);
}

Group create_with_parents(hid_t location, const std::string& path)
{
    const Properties parents(H5Pcreate(H5P_LINK_CREATE));
    if (H5Pset_create_intermediate_group(parents.get(), 1) < 0) return Group();
    return create(location, path, parents.get(), H5P_DEFAULT);
}

}  // namespace

int32_t h5gopen(hid_t location, std::string_view path, int32_t ioflag, hid_t* group)
{
    Group opened;
    const int32_t status = open_by_flag(location, std::string(path), ioflag, opened);
    *group = opened.release();
    return status;
}

OpenedGroup open_or_create_group(hid_t location, const std::string& path)
{
    if (!hold_metadata_back(location)) return {Group(), fail_unquoted(-8, path)};
    Group group = create_with_parents(location, path);
    if (group.valid()) return {std::move(group), 1};
    group = open(location, path);
    if (group.valid()) return {std::move(group), 0};
    // Neither: the walk level by level tells why.
    const int32_t status = open_creating(location, path, group);
    return {std::move(group), std::min(status, 1)};
}

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_H5GOPEN(
    const vak_id* loc_id, const char* name, const int32_t* name_len, const int32_t* ioflag,
    vak_id* group_id, int32_t* ierr)
{
    *ierr = vak::exported([&] { return vak::open_named(*loc_id, name, *name_len, *ioflag, group_id); });
}

void VAK1_H5GOPEN(
    const vak_id* loc_id, const char* name, const int32_t* name_len, const int32_t* ioflag,
    vak_id* group_id, int32_t* ierr)
{
    VAK_H5GOPEN(loc_id, name, name_len, ioflag, group_id, ierr);
}

void VAK_H5GCLOSE(const vak_id* group_id, int32_t* ierr)
{
    const vak::QuietHdf5 quiet;
    *ierr = H5Gclose(*group_id) < 0 ? -1 : 0;
}

void VAK1_H5GCLOSE(const vak_id* group_id, int32_t* ierr)
{
    VAK_H5GCLOSE(group_id, ierr);
}
