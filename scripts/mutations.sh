#!/usr/bin/env bash
# usage: scripts/mutations.sh [FOLDER [PATCH...]]
#
# Whether the tests notice faults: makes each fault of Tests/mutations (or each PATCH) in a copy of the tree, builds what
# it touches and runs the suites until one fails. Prints who caught it, or that nobody did. FOLDER holds the copy and
# its build; a second run builds only what changed. Fails when more than a tenth is missed.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/mutations}
shift $(($# > 0 ? 1 : 0))
patches=("$@")
[ ${#patches[@]} -gt 0 ] || patches=(Tests/mutations/*.patch)

suites=(gallery core model time life binding documents)
seconds=120 # for a suite: a fault may let it hang
export KA_MODEL_SEEDS=${KA_MODEL_SEEDS:-250}

tree=$folder/tree
build=$tree/build/release # as deep as everywhere, so that the compiler cache has it
mkdir -p "$tree"
tree=$(realpath "$tree")
export CCACHE_BASEDIR=$tree CCACHE_NOHASHDIR=1

# Only what differs, and as of now: what an earlier run left broken has to be built anew.
copy_tree() {
    local file
    git ls-files -z | while IFS= read -r -d '' file; do
        cmp -s "$file" "$tree/$file" || { mkdir -p "$tree/$(dirname "$file")" && cp "$file" "$tree/$file"; }
    done
}

build_suites() {
    ninja -C "$build" "${suites[@]/#/ka-test-}" >"$folder/build.log" 2>&1
}

# Names the first suite that fails; nothing when all pass.
first_failure() {
    local suite
    for suite in "${suites[@]}"; do
        (cd "$build" && timeout $((seconds + 30)) ctest --timeout $seconds -R "^ka-test-$suite\$") \
            >"$folder/test.log" 2>&1 || { echo "$suite" && return; }
    done
}

copy_tree
[ -f "$build/build.ninja" ] || cmake --preset release -S "$tree" -B "$build" >"$folder/build.log"
build_suites || { cat "$folder/build.log" && exit 1; }
failing=$(first_failure)
[ -z "$failing" ] || { echo "ka-test-$failing fails without any fault" >&2 && exit 1; }

caught=0
for patch in "${patches[@]}"; do
    name=$(basename "$patch" .patch)
    file=$(sed -n 's,^+++ b/,,p' "$patch")
    (cd "$tree" && GIT_CEILING_DIRECTORIES=$(dirname "$tree") git apply) <"$patch" ||
        { echo "$name does not fit the sources any more" >&2 && exit 1; }
    if build_suites; then by=$(first_failure); else by="the compiler"; fi
    [ -z "$by" ] || caught=$((caught + 1))
    printf '%-36s %s\n' "$name" "$([ -n "$by" ] && echo "caught by $by" || echo MISSED)"
    cp "$file" "$tree/$file"
done

echo "$caught of ${#patches[@]} caught"
[ $((10 * (${#patches[@]} - caught))) -le ${#patches[@]} ]
