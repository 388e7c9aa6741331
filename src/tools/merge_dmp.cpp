// The merger: joins the files that the domains of a distributed run have written. The steps, in their order.
#include <algorithm>
#include <cstdio>
#include <numeric>

#include "storage/whole_flush.h"
#include "tools/merge.h"
#include "tools/merge_block.h"
#include "tools/tool.h"
#include "vak_sp.h"

namespace vak {

namespace {

void print_banner(Family family)
{
    const bool is_current = family == Family::current;
    std::printf("\n");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("     |  %-52s|\n", "VAK DMP domain file merger");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("      Compiled    : %s %s\n", __DATE__, __TIME__);
    std::printf("      VAK Version : %d.%d.%d\n", is_current ? 2 : 1, 2, is_current ? 14 : 0);
}

void check_numbers(const FileBlocks& list)
{
    for (const ListedBlock& block : list.blocks) {
        if (state_number(block.path).state == Numbered::unreadable) warn_of_state(block);
        if (set_number(block.path).state == Numbered::unreadable) warn_of_set(block);
    }
}

void list_domains(Merge& merge)
{
    for (size_t file = 0; file < merge.domains.size(); ++file) {
        Domain& domain = merge.domains[file];
        domain.list = blocks_of(merge.family, domain.file);
        const auto number = static_cast<int>(file), n = static_cast<int>(domain.list.blocks.size());
        if (n == 0)
            std::printf(" WARNING file [%d]:  NO        VAK blocks found\n", number);
        else if (merge.level > 0)
            std::printf(" Info    : file  [%10d]: %10d VAK blocks found\n", number, n);
        check_numbers(domain.list);
    }
}

int32_t merge_kind(Merge& merge, const MergedKind& kind)
{
    const std::vector<TargetBlock> targets = target_blocks(merge, kind.kind.key, kind.kind.complex_key);
    if (merge.level > 0 && !(kind.is_rare && targets.empty()))
        std::printf(" target file: create %d merged \"%s\" block(s)\n", static_cast<int>(targets.size()),
                    kind.kind.type);
    for (const TargetBlock& target : targets) {
        int32_t status = 0;
        switch (kind.way) {
            case Way::join: status = join_blocks(merge, kind, target); break;
            case Way::collect: status = merge_collector(merge, kind, target); break;
            case Way::copy: status = copy_lowest(merge, kind.kind.type, target); break;
        }
        if (status != 0) return status;
    }
    return 0;
}

bool is_known(int32_t key)
{
    if (key == header_key || key == 10 || key == 20 || key == 30 || key == 32 || key == 40) return true;
    return std::ranges::any_of(merged_kinds(), [&](const MergedKind& k) {
        return key == k.kind.key || (k.kind.complex_key != 0 && key == k.kind.complex_key);
    });
}

// What the listing passed over would be missing in the target.
int32_t check_list(const FileBlocks& list, int file)
{
    for (const std::string& path : list.unreadable)
        std::fprintf(stderr, "VAK WARNING file [%d]: \"%s\" cannot be read\n", file, path.c_str());
    const int32_t status = list.status == 0 && !list.unreadable.empty() ? -1 : list.status;
    return status == 0 ? 0 : read_failed("vakblock", 1, status);
}

int32_t check_lists(const Merge& merge)
{
    int file = 0;
    for (const Domain& domain : merge.domains)
        if (const int32_t status = check_list(domain.list, file++); status != 0) return status;
    return 0;
}

// HDF5 takes changes of a file that is open for reading, and fails to write them on closing it.
int32_t check_target(const Merge& merge)
{
    const File file(H5Iget_file_id(merge.target));
    unsigned intent = 0;
    const bool is_writable = H5Fget_intent(file.get(), &intent) >= 0 && (intent & H5F_ACC_RDWR);
    return is_writable ? 0 : write_failed("vakblock", -1);
}

int32_t flush_target(const Merge& merge)
{
    return flush_whole(merge.target, H5F_SCOPE_GLOBAL) ? 0 : write_failed("vakblock", -1);
}

int32_t run(Merge& merge)
{
    if (merge.domains.empty()) return 0;
    if (merge.level > 0) print_banner(merge.family);
    list_domains(merge);
    for (const Domain& domain : merge.domains)
        if (merge.level > 0) print_block_types(domain.list, KeyFrame::above);
    if (const int32_t status = check_lists(merge); status != 0) return status;
    if (const int32_t status = check_target(merge); status != 0) return status;
    if (const int32_t status = check_versions(merge); status != 0) return status;
    if (merge.level > 0) std::printf("\n Start file merge\n\n");
    if (const int32_t status = copy_shared_blocks(merge); status != 0) return status;
    if (const int32_t status = check_index_limit(merge); status != 0) return status;
    if (const int32_t status = write_domain_variable(merge); status != 0) return status;
    if (const int32_t status = merge_kinds(merge); status != 0) return status;
    if (const int32_t status = write_domain_numbers(merge); status != 0) return status;
    warn_of_other_kinds(merge);
    // What does not reach the disk must not be reported as done.
    if (const int32_t status = flush_target(merge); status != 0) return status;
    if (merge.level > 0) std::printf("\n VAK DMP domain file merge successfully completed.\n\n");
    return 0;
}

Exponents exponents_of(int32_t n, const char* names, const int32_t* values)
{
    Exponents exponents{names, values, std::vector<int32_t>(static_cast<size_t>(std::max(n, 0)))};
    std::iota(exponents.sorted.begin(), exponents.sorted.end(), 0);
    vak_cquicksort(names, exponents.sorted.data(), 0, n - 1, 256);
    return exponents;
}

}  // namespace

int32_t check_nindex(const Merge& merge, const char* type, const DomainBlock& source)
{
    const Group block = open_source(merge, source);
    const Group header(merge.family == Family::legacy ? H5Gopen2(block.get(), "header", H5P_DEFAULT)
                                                      : H5I_INVALID_HID);
    const hid_t group = header.valid() ? header.get() : block.get();
    if (H5Aexists(group, "nindex") == 0) return 0;
    int32_t nindex = 0;
    size_t stored = 0;
    const int32_t status =
        VAK_H5Aread("nindex", &nindex, integer_type, sizeof nindex, nullptr, 0, group, &stored);
    if (status != 0) return read_failed(type, 1, status);
    return nindex > max_index ? refuse_index(merge, nindex) : 0;
}

int32_t check_index_limit(const Merge& merge)
{
    int32_t file = 0;
    for (const Domain& domain : merge.domains) {
        for (const int32_t number : blocks_with_key(domain.list, 20)) {
            const std::string& listed = domain.list.blocks[static_cast<size_t>(number)].path;
            const int32_t status =
                check_nindex(merge, "indices", {file, 20, block_path(merge.family, listed)});
            if (status != 0) return status;
        }
        ++file;
    }
    return 0;
}

int32_t merge_kinds(Merge& merge)
{
    for (const MergedKind& kind : merged_kinds()) {
        if (merge.family == Family::legacy && kind.kind.key == 250) continue;  // none in that generation
        if (const int32_t status = merge_kind(merge, kind); status != 0) return status;
    }
    return 0;
}

void warn_of_other_kinds(const Merge& merge)
{
    for (size_t file = 0; file < merge.domains.size(); ++file)
        for (const ListedBlock& block : merge.domains[file].list.blocks)
            if (!is_known(block.key))
                std::fprintf(stderr,
                             "VAK WARNING file [%d]: block key %d \"%s\" is of no kind that is merged\n",
                             static_cast<int>(file), block.key, block.path.c_str());
}

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

static int32_t merge_files(
    Family family, const vak_id* files, vak_id target, int32_t n, const int32_t* flags, const int32_t* params,
    const Exponents& exponents, int32_t options, const int32_t* real_size)
{
    Merge merge{
        .family = family, .domains = {}, .target = target, .storage = storage_of(flags, params, real_size),
        .exponents = exponents, .level = options & 2 ? 2 : options & 1,
        .adds_domain_number = family == Family::current && n > 1 && !(options & 4), .orders = {}, .scratch = {}, .elements = {}};
    for (int32_t i = 0; i < n; ++i) merge.domains.push_back({files[i], {}});
    return run(merge);
}

void VAK_MERGE_DMP(
    const vak_id* files, const vak_id* target, const int32_t* n, const int32_t* flags, const int32_t* params,
    const int32_t* nvar, const char* names, const int32_t* exponents,
    const int32_t* options, const int32_t* real_size, int32_t* ierr)
{
    run_tool("vak_merge_dmp", [&] {
        *ierr = merge_files(Family::current, files, *target, *n, flags, params,
                            exponents_of(*nvar, names, exponents), *options, real_size);
    });
}

void VAK1_MERGE_DMP(
    const vak_id* files, const vak_id* target, const int32_t* n, const int32_t* flags, const int32_t* params,
    const int32_t* nvar, const char* names, const int32_t* exponents,
    const int32_t* options, const int32_t* real_size, int32_t* ierr)
{
    run_tool("vak_merge_dmp", [&] {
        *ierr = merge_files(Family::legacy, files, *target, *n, flags, params,
                            exponents_of(*nvar, names, exponents), *options, real_size);
    });
}
