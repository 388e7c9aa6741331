// Blocks that all domains share, copied from the first file that has them, and matrices, of which the lowest
// file's stands.
#include <cstdio>
#include <set>

#include "frame/guarded_links.h"
#include "tools/check_chunks.h"
#include "tools/merge.h"
#include "tools/same_contents.h"

namespace vak {

namespace {

struct SharedKind {
    int32_t key;
    const char* type;
    bool is_single;
};

// In the order in which they are copied.
std::vector<SharedKind> shared_kinds(Family family)
{
    if (family == Family::legacy)
        return {{10, "system", true}, {20, "indices", true}, {30, "variables", false}, {40, "text", false}};
    return {{10, "system", true},
            {20, "indices", true},
            {32, "variablegroup", false},
            {30, "variable", false},
            {40, "text", false}};
}

void print_copy(const SharedKind& kind, size_t file)
{
    if (kind.is_single)
        std::printf(" target file: copy \"%s\" block from file  [%d]\n", kind.type, static_cast<int>(file));
    else
        std::printf(" target file: copy \"%s\" blocks from file  [%d]\n", kind.type, static_cast<int>(file));
}

void report_count(const Merge& merge, const SharedKind& kind, size_t count)
{
    const bool told = merge.level > 0;
    if (kind.is_single) {
        if (count == 0 && told) std::printf(" block not found");
        if (count > 1)
            std::fprintf(stderr, "\nVAK WARNING file [%d]: multiple \"%s\" blocks\n", 0, kind.type);
        return;
    }
    if (!told) return;
    std::printf("\n %d \"%s\" block(s) found\n", static_cast<int>(count), kind.type);
    if (count == 0) std::fprintf(stderr, "\nVAK WARNING file [%d]: no \"%s\" blocks found\n", 0, kind.type);
}

int32_t copy_kind(const Merge& merge, const SharedKind& kind)
{
    std::set<std::string> copied;
    for (size_t file = 0; file < merge.domains.size(); ++file) {
        const FileBlocks& list = merge.domains[file].list;
        bool told = file == 0;
        if (file == 0 && merge.level > 0) print_copy(kind, 0);
        for (const int32_t number : blocks_with_key(list, kind.key)) {
            const std::string path = block_path(merge.family, list.blocks[static_cast<size_t>(number)].path);
            if (!copied.insert(path).second) continue;
            if (!told && merge.level > 0) print_copy(kind, file);
            told = true;
            const int32_t status = copy_block(merge, kind.type, {static_cast<int32_t>(file), kind.key, path});
            if (status != 0) return status;
        }
        if (file == 0) report_count(merge, kind, blocks_with_key(list, kind.key).size());
    }
    return 0;
}

bool copy_object(hid_t from, const char* name, hid_t to, const char* new_name)
{
    const Properties with_parents(H5Pcreate(H5P_LINK_CREATE));
    H5Pset_create_intermediate_group(with_parents.get(), 1);
    // A link would lead nowhere in the target.
    const Properties with_contents(H5Pcreate(H5P_OBJECT_COPY));
    H5Pset_copy_object(with_contents.get(), H5O_COPY_EXPAND_SOFT_LINK_FLAG);
    return H5Ocopy(from, name, to, new_name, with_contents.get(), with_parents.get()) >= 0;
}

// A target without a header receives that of the first file that has one.
int32_t copy_header(const Merge& merge)
{
    if (exists_in_target(merge, "vakheader")) return 0;
    for (size_t file = 0; file < merge.domains.size(); ++file) {
        const FileBlocks& list = merge.domains[file].list;
        const auto headers = blocks_with_key(list, header_key);
        if (headers.empty()) continue;
        const std::string& path = list.blocks[static_cast<size_t>(headers[0])].path;
        const bool done = copy_object(merge.domains[file].file, path.c_str(), merge.target, "vakheader");
        return done ? 0 : write_failed("vakheader", -1);
    }
    return 0;
}

bool copy_sections(const Group& from, hid_t target, const std::string& path)
{
    for (const char* section : {"header", "index", "data"}) {
        const htri_t is_there = H5Lexists(from.get(), section, H5P_DEFAULT);
        if (is_there < 0) return false;
        if (is_there == 0) continue;
        if (!copy_object(from.get(), section, target, (path + "/" + section).c_str())) return false;
    }
    return true;
}

}  // namespace

// The path leads through groups that may be missing, which HDF5 counts as an error rather than a no.
bool exists_in_target(const Merge& merge, const std::string& path)
{
    const std::string block = merge.family == Family::legacy && path != "vakheader" ? path + "/header" : path;
    return H5Lexists(merge.target, block.c_str(), H5P_DEFAULT) > 0;
}

// Those of the index block are a later step's matter.
static int32_t check_copied(const Merge& merge, const char* type, const DomainBlock& source)
{
    if (const int32_t status = source.key == 20 ? 0 : check_nindex(merge, type, source); status != 0)
        return status;
    const Group group = open_source(merge, source);
    const int32_t status = check_chunks(group.get());
    return status == 0 ? 0 : read_failed(type, 2, status);
}

int32_t copy_block(const Merge& merge, const char* type, const DomainBlock& source)
{
    if (exists_in_target(merge, source.path)) {
        std::fprintf(stderr, "VAK WARNING target file: block key %d \"%s\" is there already and stays\n",
                     source.key, source.path.c_str());
        return 0;
    }
    if (const int32_t status = check_copied(merge, type, source); status != 0) return status;
    const Group group = open_source(merge, source);
    const bool copied = merge.family == Family::current
                            ? copy_object(group.get(), ".", merge.target, source.path.c_str())
                            : copy_sections(group, merge.target, source.path);
    return copied ? 0 : write_failed(type, -1);
}

int32_t copy_shared_blocks(const Merge& merge)
{
    if (const int32_t status = copy_header(merge); status != 0) return status;
    for (const SharedKind& kind : shared_kinds(merge.family))
        if (const int32_t status = copy_kind(merge, kind); status != 0) return status;
    return 0;
}

int32_t copy_lowest(const Merge& merge, const char* type, const TargetBlock& target)
{
    const DomainBlock& lowest = target.sources.front();
    const Group ruling = open_source(merge, lowest);
    for (const DomainBlock& source : target.sources) {
        if (&source == &lowest) continue;
        if (const int32_t status = check_nindex(merge, type, source); status != 0) return status;
        const Group other = open_source(merge, source);
        if (!same_contents(ruling.get(), other.get())) warn_left_out(source, "its contents", lowest);
    }
    return copy_block(merge, type, lowest);
}

}  // namespace vak
