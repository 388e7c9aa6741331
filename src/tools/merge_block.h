// Blocks of several domains joined into one.
#pragma once

#include "tools/merge.h"
#include "tools/merge_kinds.h"

namespace vak {

int32_t join_blocks(Merge&, const MergedKind&, const TargetBlock&);

}  // namespace vak
