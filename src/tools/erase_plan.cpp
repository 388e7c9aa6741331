#include "tools/erase_plan.h"

#include <algorithm>

#include "catalogue/quiet_attribute.h"

namespace vak {

namespace {

// Compared entry by entry over the shorter list; equal that far is kept.
bool lies_after(const int32_t* row, size_t width, const std::vector<int32_t>& index)
{
    for (size_t i = 0; i < std::min(width, index.size()); ++i)
        if (row[i] != index[i]) return row[i] > index[i];
    return false;
}

std::string type_of(const EraserRun& run, int32_t number)
{
    constexpr const char* name[] = {"blocktype"};
    const Group group = open_listed(run, number);
    const auto text = text_of(first_attribute(group.get(), name));
    return text ? std::string(counted(text->data(), text->size())) : std::string();
}

std::vector<hsize_t> kept_states(const IndexRows& rows, const std::vector<int32_t>& index)
{
    std::vector<hsize_t> kept;
    for (size_t i = 0; i < rows.size(); ++i)
        if (!lies_after(&rows.values[i * rows.width], rows.width, index)) kept.push_back(i);
    return kept;
}

int32_t plan_series(const EraserRun& run, const SeriesKind& kind, const ErasableBlock& block, ErasePlan& plan)
{
    const IndexRows rows = read_series_rows(block);
    if (rows.status != 0) return read_error(kind.type, 1, rows.status);
    std::vector<hsize_t> kept = kept_states(rows, run.index);
    if (kept.size() == rows.size()) return 0;
    if (!kept.empty() && !plan.cut.insert(token_of(block)).second) return 0;
    if (const int32_t status = check_states(block, kept); status != 0)
        return read_error(kind.type, 2, status);
    plan.series.push_back({block, std::move(kept)});
    return 0;
}

int32_t plan_block(const EraserRun& run, int32_t number, ErasePlan& plan)
{
    const ErasableBlock block = erasable(run, number);
    if (block.key == header_key || !is_of_this_file(block)) return 0;
    if (const SeriesKind* kind = series_kind(block.key)) return plan_series(run, *kind, block, plan);
    const IndexRows row = read_index_row(block);
    if (row.status != 0) return read_error(type_of(run, number).c_str(), 1, row.status);
    if (row.size() > 0 && lies_after(row.values.data(), row.width, run.index)) plan.blocks.push_back(block);
    return 0;
}

}  // namespace

const SeriesKind* series_kind(int32_t key)
{
    const auto found = std::ranges::find_if(
        series_kinds, [&](const SeriesKind& k) { return key == k.real_key || key == k.complex_key; });
    return found == std::end(series_kinds) ? nullptr : found;
}

int32_t make_plan(const EraserRun& run, ErasePlan& plan)
{
    for (const int32_t number : run.file.by_key)
        if (const int32_t status = plan_block(run, number, plan); status != 0) return status;
    return 0;
}

}  // namespace vak
