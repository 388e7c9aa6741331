#!/usr/bin/env bash
# Each rule of script/rules must notice a small tree that breaks it, and let a clean one pass.
set -euo pipefail
rules=$(cd "$(dirname "$0")/../../script" && pwd)/rules
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

fresh() {
    rm -rf "$tree"
    mkdir -p "$tree"/{include,tests,cli,bench} "$tree"/src/{storage,frame,blocks,catalogue,tools}
}

noticed() {
    fresh
    echo "$2" >"$tree/$1"
    ! "$rules" "$tree" >/dev/null 2>&1 || { echo "not noticed: $1: $2"; exit 1; }
}

fresh
echo '#include "storage/storage.h"' >"$tree/src/blocks/block.cpp"
"$rules" "$tree"
noticed src/storage/a.cpp '#include "frame/paths.h"'
noticed src/frame/a.cpp '#include "blocks/block.h"'
noticed src/blocks/a.cpp '#  include "../catalogue/walk.h"'
noticed src/catalogue/a.cpp '#include <tools/merge.h>'
noticed cli/a.cpp '#include "storage/storage.h"'
noticed src/tools/a.h '// no pragma'
noticed src/tools/a.cpp $'\tint tab;'
