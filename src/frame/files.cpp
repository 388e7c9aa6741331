// Opening a file: one function for each way, all ending at the group that is handed back.
#include <hdf5.h>

#include <cstdio>
#include <string>

#include "frame/exported.h"
#include "frame/file_probe.h"
#include "frame/guarded_links.h"
#include "frame/metadata_cache.h"
#include "frame/paths.h"
#include "frame/version.h"
#include "storage/whole_flush.h"
#include "vak_sp.h"

namespace vak {

namespace {

constexpr int32_t unknown_option = -9999;
constexpr int32_t mode_bits = 15;
constexpr int32_t verbose_bit = 1024;
constexpr unsigned known_modes = 1U << 0 | 1U << 1 | 1U << 2 | 1U << 8 | 1U << 9 | 1U << 10 | 1U << 13;

struct CountedField {
    const char* at;
    int32_t length;
};

// What the caller asks for. Group and domain matter to mode 0 only.
struct Request {
    CountedField file, group, domain;
    bool with_domain;
    int32_t option;
};

struct Opening {
    int32_t mode;
    bool verbose;
    std::string name;    // as the caller gave it, a group path behind the file's name included
    std::string root;    // the group handed back
    int32_t errors = 0;  // counted downwards
    File file{};
};

bool fail(Opening& o)
{
    --o.errors;
    return false;
}

// HDF5 truncates a file before it notices that its lock is held, and waits at a FIFO.
bool may_be_created(const std::string& path)
{
    const FileProbe there(path);
    return !there.readable() || (there.regular() && !there.in_use());
}

bool create_file(Opening& o, unsigned access)
{
    if (!may_be_created(o.name)) return false;
    o.file = File(H5Fcreate(o.name.c_str(), access, H5P_DEFAULT, access_list(FileUse::create).get()));
    if (!o.file.valid()) return false;
    watch_room(o.file.get());
    if (o.verbose) std::printf("VAK INFO - file \"%s\" created.\n", o.name.c_str());
    return true;
}

bool create_anew(Opening& o)
{
    if (create_file(o, H5F_ACC_TRUNC)) return true;
    std::fprintf(stderr, "VAK ERROR - vak_open - Cannot create file \"%s\".\n", o.name.c_str());
    return fail(o);
}

bool open_regular_file(Opening& o, const std::string& path, unsigned access)
{
    if (!FileProbe(path).regular()) return false;
    const FileUse use = access == H5F_ACC_RDONLY ? FileUse::read : FileUse::update;
    o.file = File(H5Fopen(path.c_str(), access, access_list(use).get()));
    if (!o.file.valid()) return false;
    if (use != FileUse::read) watch_room(o.file.get());
    if (o.verbose) std::printf("Opened \"%s\"\n", path.c_str());
    return true;
}

// The longest prefix of the name that is a file; the rest names the group handed back.
bool open_existing(Opening& o, unsigned access)
{
    std::string path = o.name;
    while (!open_regular_file(o, path, access)) {
        const size_t slash = path.rfind('/');
        if (slash == std::string::npos) {
            std::fprintf(stderr, "VAK ERROR - vak_open - \"%s\": Unable to open vak-hdf5 file.\n",
                         o.name.c_str());
            return fail(o);
        }
        path.resize(slash);
    }
    if (path.size() < o.name.size()) o.root = o.name.substr(path.size());
    return true;
}

bool create_or_open(Opening& o)
{
    if (!FileProbe(o.name).readable() && create_file(o, H5F_ACC_EXCL)) return true;
    if (o.verbose)
        std::printf("VAK INFO - vak_open - file \"%s\" cannot be created, trying to open it.\n",
                    o.name.c_str());
    return open_existing(o, H5F_ACC_RDWR);
}

Group create_group(hid_t location, const std::string& name)
{
    return Group(H5Gcreate2(location, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
}

// The group that blocks go into: the domain's if there is one. Not valid when it could not be made.
Group create_inner_group(Opening& o, Group outer, const std::string& domain)
{
    if (domain.empty()) return outer;
    Group inner = create_group(outer.get(), domain);
    if (!inner.valid()) {
        std::fprintf(stderr, "VAK ERROR - vak_open - Cannot create domain group \"%s\".\n", domain.c_str());
        fail(o);
    } else if (o.verbose) {
        std::printf("VAK INFO - Domain group \"%s\" created.\n", domain.c_str());
    }
    return inner;
}

void link_post(Opening& o, const Group& inner)
{
    if (!inner.valid()) return;
    if (H5Lcreate_hard(inner.get(), ".", o.file.get(), "post", H5P_DEFAULT, H5P_DEFAULT) >= 0) return;
    std::fprintf(stderr, "VAK ERROR - vak_open - Cannot create post link.\n");
    fail(o);
}

// A missing inner group or link is counted only; that "post" cannot be opened then is the next error.
bool create_layout(Opening& o, const std::string& group, const std::string& domain)
{
    Group outer = create_group(o.file.get(), group);
    if (!outer.valid()) {
        std::fprintf(stderr, "VAK ERROR - vak_open - Cannot create group \"%s\".\n", group.c_str());
        return fail(o);
    }
    if (o.verbose) std::printf("VAK INFO - group \"%s\" created.\n", group.c_str());
    link_post(o, create_inner_group(o, std::move(outer), domain));
    return true;
}

// The names are read before anything is created.
bool create_with_groups(Opening& o, const Request& r)
{
    const std::string group = counted_name(r.group.at, r.group.length);
    if (group.empty()) {
        std::fprintf(stderr, "VAK ERROR - vak_open - Invalid group name\n");
        return fail(o);
    }
    const std::string domain = r.with_domain ? counted_name(r.domain.at, r.domain.length) : "";
    if (r.with_domain && domain.empty()) {
        std::fprintf(stderr, "VAK ERROR - vak_open - Invalid domain name\n");
        return fail(o);
    }
    return create_anew(o) && create_layout(o, group, domain);
}

bool open_by_mode(Opening& o, const Request& r)
{
    switch (o.mode) {
        case 0: return create_with_groups(o, r);
        case 8: return create_anew(o);
        case 13: return create_or_open(o);
        case 1:
        case 9: return open_existing(o, H5F_ACC_RDWR);
        default: return open_existing(o, H5F_ACC_RDONLY);
    }
}

void print_access(const File& file)
{
    const Properties access(H5Fget_access_plist(file.get()));
    H5F_libver_t lower = H5F_LIBVER_ERROR, upper = H5F_LIBVER_ERROR;
    H5Pget_libver_bounds(access.get(), &lower, &upper);
    std::printf("\nVAK INFO - HDF5 LIBVER bounds (earliest=%d, 18=%d, LATEST=%d) lower=%d, upper=%d\n", 0, 4,
                4, lower, upper);
    const auto id = [](hid_t driver) { return static_cast<long long>(driver); };
    std::printf(
        "\nVAK INFO - HDF5 file driver (< 0 => n/a): %lld\n (%lld=CORE, %d=DIRECT, %lld=FAMILY, %lld=LOG, %d=MPIO, %lld=MULTI, %lld=SEC2, %lld=STDIO, %lld=WINDOWS)\n\n",
        id(H5Pget_driver(access.get())), id(H5FD_CORE), -1, id(H5FD_FAMILY), id(H5FD_LOG), -1, id(H5FD_MULTI),
        id(H5FD_SEC2), id(H5FD_STDIO), id(H5FD_SEC2));
}

bool hand_over_root(Opening& o, hid_t* group_id)
{
    if (o.verbose) {
        std::printf("VAK INFO - file \"%s\" opened.\n", o.name.c_str());
        std::printf("VAK INFO - opening group \"%s\"\n", o.root.c_str());
    }
    // The root may stand behind an external link, and that lead to a FIFO.
    const Properties access = guarded_links(LinkedFile::as_the_file_with_the_link);
    Group root(H5Gopen2(o.file.get(), o.root.c_str(), access.get()));
    if (!root.valid()) {
        std::fprintf(stderr, " VAK ERROR - vak_open - file %s - Cannot open group \"%s\".\n", o.name.c_str(),
                     o.root.c_str());
        return fail(o);
    }
    *group_id = root.release();
    if (o.verbose) print_access(o.file);
    return true;
}

int32_t check_library(bool verbose)
{
    Hdf5Version hdf5;
    const int32_t status = check_hdf5(hdf5);
    if (status == unfit_hdf5) std::fprintf(stderr, "\nVAK ERROR - vak_open - hdf version check failed\n");
    if (status == unknown_hdf5)
        std::fprintf(stderr, "\nVAK ERROR - vak_open - unable to get hdf lib version\n");
    if (status == 0 && verbose) {
        std::printf("\nVAK INFO - hdf5-lib version: %u.%u.%u\n", hdf5.major, hdf5.minor, hdf5.release);
        std::printf("\nVAK INFO - opening vak-hdf5 file\n");
    }
    return status;
}

int32_t open_checked(const Request& r, hid_t* group_id)
{
    const int32_t mode = r.option & mode_bits;
    Opening o{.mode = mode,
              .verbose = (r.option & verbose_bit) != 0,
              .name = counted_name(r.file.at, r.file.length),
              .root = mode < 8 ? "post" : "."};
    const int32_t library = check_library(o.verbose);
    if (library != 0) return library;
    if (o.name.empty()) {
        std::fprintf(stderr, "\nVAK ERROR - vak_open - Invalid filename\n");
        return --o.errors;
    }
    // The group keeps the file open. Where there is none to hand back the file stays open by its own
    // identifier.
    if (!open_by_mode(o, r) || !hand_over_root(o, group_id)) o.file.release();
    return o.errors;
}

int32_t open_file(const Request& r, hid_t* group_id)
{
    if ((known_modes >> (r.option & mode_bits) & 1U) == 0) {
        std::fprintf(stderr, "\nVAK ERROR - vak_open - unknown option %d\n", r.option);
        return unknown_option;
    }
    *group_id = 0;
    const int32_t status = open_checked(r, group_id);
    std::fflush(stdout);
    return status;
}

}  // namespace

}  // namespace vak

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_OPEN(
    const char* filename, const int32_t* filename_len,
    const char* groupname, const int32_t* groupname_len,
    const char* domainname, const int32_t* domainname_len,
    vak_id* group_id, const int32_t* domain_flag, const int32_t* option, int32_t* ierr)
{
    const vak::Request request{
        .file = {filename, *filename_len},
        .group = {groupname, *groupname_len},
        .domain = {domainname, *domainname_len},
        .with_domain = *domain_flag != 0, .option = *option};
    *ierr = vak::exported([&] { return vak::open_file(request, group_id); });
}

void VAK1_OPEN(
    const char* filename, const int32_t* filename_len,
    const char* groupname, const int32_t* groupname_len,
    const char* domainname, const int32_t* domainname_len,
    vak_id* group_id, const int32_t* domain_flag, const int32_t* option, int32_t* ierr)
{
    VAK_OPEN(filename, filename_len, groupname, groupname_len, domainname, domainname_len,
             group_id, domain_flag, option, ierr);
}
