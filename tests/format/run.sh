#!/usr/bin/env bash
# usage: run.sh WRITER DOCUMENT     writes one file for each kind of block and reads them by the document's tables
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

# The python that Debian's packages belong to is not always the first one.
for python in python3 /usr/bin/python3; do
    if "$python" -c 'import h5py, numpy, pytest' 2>/dev/null; then
        samples=$(mktemp -d)
        trap 'rm -rf "$samples"' EXIT
        "$1" "$samples"
        VAK_SAMPLES=$samples VAK_FORMAT=$2 PYTHONDONTWRITEBYTECODE=1 \
            "$python" -m pytest -q -p no:cacheprovider "$here/test_format.py"
        exit
    fi
done
echo "skipped: the python modules h5py and pytest are missing (script/setup installs them)"
exit 77
