#!/usr/bin/env bash
# usage: consumer.sh WAY     installs the built tree, then builds and runs a program of another project against it
set -euo pipefail
way=$1
language=${way#*_}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$CMAKE" --install "$VAK_BUILD" --prefix "$work/prefix" >"$work/install.log" || { cat "$work/install.log"; exit 1; }
"$work/prefix/bin/vak" --version >"$work/version.log" || { cat "$work/version.log"; exit 1; }
mkdir "$work/project"
cp "$here/consumer/CMakeLists.txt" "$work/project"
cp "$here/abi_c.c" "$work/project/program.c"
cp "$here/abi_c.c" "$work/project/program.cpp"

by_cmake() {
    "$CMAKE" -S "$work/project" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" -DLANGUAGE="$1"
    "$CMAKE" --build "$work/build"
}

by_pkgconfig() {
    local pc flags
    pc=$(dirname "$(find "$work/prefix" -name vak_sp.pc)")
    flags=$(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs vak_sp)
    mkdir "$work/build"
    # The flags are words.
    # shellcheck disable=SC2086
    if [ "$1" = C ]; then
        "$CC" $CFLAGS -std=c99 -o "$work/build/program" "$work/project/program.c" $flags
    else
        "$CXX" $CXXFLAGS -o "$work/build/program" "$work/project/program.cpp" $flags
    fi
    export LD_LIBRARY_PATH="${pc%/pkgconfig}${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
}

"by_${way%_*}" "$(echo "$language" | tr '[:lower:]' '[:upper:]')"
"$work/build/program" "$work/file.h5"
