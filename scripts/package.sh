#!/usr/bin/env bash
# Builds the Debian packages from a copy of the sources, so that nothing of a build reaches the tree and nothing of the tree
# but the sources reaches a package. The time in the packages is that of the last commit: the same commit gives the same
# packages, whatever folder they are built in.
# usage: package.sh PACKAGE_FOLDER WORK_FOLDER
set -euo pipefail

mkdir -p "$1" "$2"
packages=$(realpath "$1")
work=$(realpath "$2")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

version=$(sed -nE 's/^project\(kaAnimation VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
packaged=$(dpkg-parsechangelog --show-field Version)
if [ "${packaged%-*}" != "$version" ]; then
    echo "package: debian/changelog is of $packaged, CMakeLists.txt of $version" >&2
    exit 1
fi

tree=$work/kaanimation-$version
rm -rf "$work"/*.deb "$work"/*.buildinfo "$work"/*.changes "$tree"
mkdir -p "$tree"
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ ! -f "$file" ] || printf '%s\0' "$file"
    done | tar --null --files-from=- -cf - | tar -C "$tree" -xf -
    SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
    export SOURCE_DATE_EPOCH
else
    tar --exclude=./build --exclude=./out -cf - . | tar -C "$tree" -xf -
fi

# The build has no home, and with it no cache of objects unless it is told where that is. What the cache rewrites paths to
# would stand in the debug information: a build without it must give the same bytes.
CCACHE_DIR=${CCACHE_DIR:-$(ccache --get-config cache_dir)}
export CCACHE_DIR
unset CCACHE_BASEDIR CCACHE_NOHASHDIR
(cd "$tree" && DEB_BUILD_OPTIONS="parallel=${JOBS:-$(nproc)} ${DEB_BUILD_OPTIONS:-}" dpkg-buildpackage -b -us -uc)

rm -f "$packages"/*.deb "$packages"/*.changes "$packages"/*.buildinfo
cp "$work"/*.deb "$work"/*.changes "$work"/*.buildinfo "$packages"
