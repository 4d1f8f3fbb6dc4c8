#!/usr/bin/env bash
# Builds the packages once more, in another folder and without the cache of objects, and compares: the same commit is to give
# the same packages to the last byte.
# usage: package-again.sh PACKAGE_FOLDER WORK_FOLDER
set -euo pipefail

packages=$(realpath "$1")
again=$2/somewhere/else
mkdir -p "$2"
CCACHE_DISABLE=1 "$(dirname "${BASH_SOURCE[0]}")/package.sh" "$2/packages" "$again" >"$2/log" 2>&1 || {
    tail -n 50 "$2/log" >&2
    exit 1
}
status=0
for package in "$packages"/*.deb; do
    if cmp "$package" "$2/packages/$(basename "$package")"; then
        echo "the same: $(basename "$package")"
    else
        status=1
    fi
done
[ "$(find "$packages" -name '*.deb' | wc -l)" = "$(find "$2/packages" -name '*.deb' | wc -l)" ] || status=1
exit "$status"
