#!/usr/bin/env bash
# usage: exports.sh HEADER LIBRARY     the library's dynamic symbols must be exactly the header's VAK_API names
set -euo pipefail
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -n 's/^VAK_API [^(]*[ *]\([A-Za-z0-9_]*\)(.*/\1/p' "$1" | sort >"$work/declared"
nm -D --defined-only "$2" | awk '{ print $3 }' | sort >"$work/exported"

[ -s "$work/declared" ] || { echo "no declarations found in $1"; exit 1; }
[ "$(grep -c '^VAK_API' "$1")" = "$(wc -l <"$work/declared")" ] || { echo "a declaration was not understood"; exit 1; }
diff "$work/declared" "$work/exported" || { echo "< declared only, > exported only"; exit 1; }
