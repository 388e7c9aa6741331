// The state eraser: cuts a file back to a given index, for a solver that starts again from there.
#include <algorithm>
#include <cstdio>

#include "storage/whole_flush.h"
#include "tools/erase_plan.h"
#include "tools/tool.h"
#include "vak_sp.h"

namespace vak {

namespace {

void print_banner(const EraserRun& run)
{
    const bool is_current = run.family == Family::current;
    std::printf("     +------------------------------------------------------+\n");
    std::printf("     |  %-52s|\n", "VAK state eraser");
    std::printf("     +------------------------------------------------------+\n");
    std::printf("      Compiled    : %s %s\n", __DATE__, __TIME__);
    std::printf("      VAK Version : %d.%d.%d\n", is_current ? 2 : 1, 2, is_current ? 14 : 0);
    std::printf("VAK INFO - erase all data after index:");
    for (const int32_t value : run.index) std::printf(" %d", value);
    std::printf("\n\n");
}

// Every listed path has a set; where none can be read it counts as set 0.
void check_sets(const EraserRun& run)
{
    for (const ListedBlock& block : run.file.blocks)
        if (set_number(block.path).state != Numbered::read) warn_of_set(block);
}

int32_t erase_block(const EraserRun& run, const ErasableBlock& block)
{
    const int32_t status = delete_block(block, run.verbose > 1);
    if (status != 0) std::fprintf(stderr, " erase of block \"%s\" failed\n", block.path.c_str());
    return status;
}

int32_t flush(const EraserRun& run) { return flush_whole(run.root, H5F_SCOPE_GLOBAL) ? 0 : -1; }

// Flushed now and then: what is not yet in the file is then little, and never pushed out half by later work.
// Flushed at the end, before anything new takes the space that is now free.
int32_t erase_single_states(const EraserRun& run, const ErasePlan& plan)
{
    constexpr int32_t flushed_together = 64;
    int32_t deleted = 0;
    for (const ErasableBlock& block : plan.blocks) {
        if (!is_of_this_file(block)) continue;  // gone already: the same block under another path
        if (const int32_t status = erase_block(run, block); status != 0) return status;
        if (++deleted % flushed_together == 0 && flush(run) != 0) return -1;
    }
    if (run.verbose > 0) std::printf("VAK INFO - %d singlestate blocks deleted\n", deleted);
    return flush(run);
}

int32_t erase_series(const EraserRun& run, const ErasableBlock& block)
{
    if (!is_of_this_file(block)) return 0;  // gone already
    const int32_t status = erase_block(run, block);
    return status != 0 ? status : flush(run);
}

int32_t rewrite(const EraserRun& run, const SeriesKind& kind, const SeriesCut& c)
{
    const int32_t status = keep_states(c.block, c.kept);
    if (status != 0)
        std::fprintf(stderr, "\nVAK ERROR writing \"%s\" block - error code = %d\n", kind.type, status);
    else if (run.verbose > 1)
        std::printf(" block \"%s\" deleted \n", c.block.path.c_str());  // the one that was replaced
    return status;
}

bool has_blocks_of(const EraserRun& run, const SeriesKind& kind)
{
    return std::ranges::any_of(run.file.blocks,
                               [&](const ListedBlock& b) { return series_kind(b.key) == &kind; });
}

int32_t cut_series(const EraserRun& run, const ErasePlan& plan, const SeriesKind& kind)
{
    int32_t rewritten = 0;
    for (const SeriesCut& c : plan.series) {
        if (series_kind(c.block.key) != &kind) continue;
        const int32_t status = c.kept.empty() ? erase_series(run, c.block) : rewrite(run, kind, c);
        if (status != 0) return status;
        if (!c.kept.empty()) ++rewritten;
    }
    // Files of solvers have series of entity results; the other kinds are told of where there are any.
    if (run.verbose > 0 && (&kind == series_kinds || has_blocks_of(run, kind)))
        std::printf("\nVAK INFO - %d \"%s\" blocks rewritten\n", rewritten, kind.type);
    return 0;
}

int32_t carry_out(const EraserRun& run, const ErasePlan& plan)
{
    if (const int32_t status = stamp_system(run); status != 0) return status;
    if (const int32_t status = erase_single_states(run, plan); status != 0) return status;
    for (const SeriesKind& kind : series_kinds)
        if (const int32_t status = cut_series(run, plan, kind); status != 0) return status;
    if (run.verbose > 0) std::printf("\nVAK state eraser successfully passed.\n\n");
    return 0;
}

int32_t take_listing(EraserRun& run)
{
    run.file = blocks_of(run.family, run.root);
    if (run.file.blocks.empty()) {
        std::fprintf(stderr, "\nVAK ERROR - no VAK blocks found - error code = %d\n", -1);
        return -1;
    }
    if (run.file.status == 0) return 0;
    std::fprintf(stderr, "\nVAK ERROR - not all VAK blocks could be listed - error code = %d\n",
                 run.file.status);
    return -1;
}

void tell_listing(const EraserRun& run)
{
    if (run.verbose > 0)
        std::printf(" Info    : %d VAK blocks found\n", static_cast<int>(run.file.blocks.size()));
    check_sets(run);
    if (run.verbose > 0) print_block_types(run.file, KeyFrame::around);
}

int32_t erase_states(EraserRun run)
{
    if (run.verbose > 0) print_banner(run);
    if (const int32_t status = take_listing(run); status != 0) return status;
    tell_listing(run);
    ErasePlan plan;
    if (const int32_t status = check_header(run); status != 0) return status;
    if (const int32_t status = check_index(run); status != 0) return status;
    if (const int32_t status = make_plan(run, plan); status != 0) return status;
    return carry_out(run, plan);
}

int32_t erase_in(Family family, hid_t group, const int32_t* nindex, const int32_t* index, int32_t verbose)
{
    return erase_states({.family = family,
                         .root = group,
                         .index = {index, index + std::max(*nindex, 0)},
                         .verbose = verbose,
                         .file = {}});
}

}  // namespace

}  // namespace vak

using namespace vak;

// Exported routines: the arguments stand in groups, as in vak_sp.h.
// clang-format off

void VAK_ERASE_STATES(
    const vak_id* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose, int32_t* ierr)
{
    run_tool("vak_erase_states", [&] { *ierr = erase_in(Family::current, *group, nindex, index, *verbose); });
}

void VAK1_ERASE_STATES(
    const vak_id* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose, int32_t* ierr)
{
    run_tool("vak_erase_states", [&] { *ierr = erase_in(Family::legacy, *group, nindex, index, *verbose); });
}
