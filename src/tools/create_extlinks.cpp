// External links: gathers the contents of groups of several files under one group, without copying data.
#include <cstdio>
#include <string>
#include <vector>

#include "frame/paths.h"
#include "tools/tool.h"
#include "vak_sp.h"

namespace vak {

namespace {

struct Destination {
    hid_t group;
    std::string_view subgroup;  // empty: the links stand in the destination itself
    bool verbose;
};

void print_banner()
{
    std::printf("\n");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("     |  %-52s|\n", "VAK external links");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("      Version: %d.%d.%d\n", 2, 2, 14);
    std::printf("\n\n");
}

// The answer of an HDF5 query for a name of unknown length.
template <class Query>
std::string name_of(Query query)
{
    const ssize_t length = query(nullptr, 0);
    if (length <= 0) return {};
    std::string name(static_cast<size_t>(length) + 1, '\0');
    query(name.data(), name.size());
    name.resize(static_cast<size_t>(length));
    return name;
}

// All names are taken before the first link is made: the destination may be one of the sources.
std::vector<std::string> link_names(hid_t group)
{
    std::vector<std::string> names;
    bool memory = true;
    struct Context {
        std::vector<std::string>* names;
        bool* memory;
    } context{&names, &memory};
    const auto add = [](hid_t, const char* name, const H5L_info2_t*, void* data) noexcept -> herr_t {
        const auto* c = static_cast<Context*>(data);
        try {
            c->names->emplace_back(name);
        } catch (const std::bad_alloc&) {
            *c->memory = false;
            return 1;
        }
        return 0;
    };
    hsize_t at = 0;
    H5Literate2(group, H5_INDEX_NAME, H5_ITER_NATIVE, &at, add, &context);
    if (!memory) throw std::bad_alloc();
    return names;
}

void print_link(const Destination& to, const char* name, const char* file, const char* target)
{
    if (to.subgroup.empty())
        std::printf("create link \"%s\" --> file/group:  \"%s\"\"%s\"\n", name, file, target);
    else
        std::printf("create link \"%.*s/%s\" --> file/group:  \"%s%s\"\n",
                    static_cast<int>(to.subgroup.size()), to.subgroup.data(), name, file, target);
}

void link_source(hid_t source, const Destination& to)
{
    const std::string file =
        name_of([&](char* text, size_t size) { return H5Fget_name(source, text, size); });
    std::string path = name_of([&](char* text, size_t size) { return H5Iget_name(source, text, size); });
    if (path != "/") path += '/';
    for (const std::string& name : link_names(source)) {
        if (name == "post") continue;
        const std::string target = path + name;
        if (to.verbose) print_link(to, name.c_str(), file.c_str(), target.c_str());
        if (H5Lcreate_external(file.c_str(), target.c_str(), to.group, name.c_str(), H5P_DEFAULT,
                               H5P_DEFAULT) < 0)
            std::fprintf(stderr, "\nVAK ERROR - could not create external link \"%s\"\n", name.c_str());
    }
}

int32_t create_extlinks(const vak_id* sources, int32_t nsource, const char* subgroup, int32_t option,
                        Destination to)
{
    int32_t status = 0;
    Group made;
    print_banner();
    if (option & 1) {
        to.subgroup = counted(subgroup);
        const auto length = static_cast<int32_t>(to.subgroup.size());
        const int32_t create = 0;
        vak_id group = H5I_INVALID_HID;
        VAK_H5GOPEN(&to.group, subgroup, &length, &create, &group, &status);
        if (status < 0) return status;
        made = Group(group);
        to.group = group;
    }
    for (int32_t i = 0; i < nsource; ++i) link_source(sources[i], to);
    std::printf("\n VAK external links successfully created.\n\n");
    return status;
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_CREATE_EXTLINKS(
    const vak_id* source_ids, const vak_id* dest, const int32_t* nsource, const char* subgroup,
    const int32_t* option, const int32_t* verbose, int32_t* ierr)
{
    run_tool("vak_create_extlinks", [&] {
        *ierr = create_extlinks(source_ids, *nsource, subgroup, *option,
                                {.group = *dest, .subgroup = {}, .verbose = *verbose > 0});
    });
}

void VAK1_CREATE_EXTLINKS(
    const vak_id* source_ids, const vak_id* dest, const int32_t* nsource, const char* subgroup,
    const int32_t* option, const int32_t* verbose, int32_t* ierr)
{
    VAK_CREATE_EXTLINKS(source_ids, dest, nsource, subgroup, option, verbose, ierr);
}
