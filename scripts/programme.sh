#!/usr/bin/env bash
# The part of the hardening programme that runs beside the test suites: fuzzers on a build of the sanitize preset; random
# edits at full size, locales, bad disks and valgrind on one of the release preset, where they meet what users run.
# usage: programme.sh SANITIZE_BUILD RELEASE_BUILD [SECONDS_PER_FUZZER]     default: 60
# Runs as many parts at a time as there are processors. Needs root for the full disk; without it that part says so and is
# passed over.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "$1")
release=$(realpath "$2")
seconds=${3:-60}
logs=$build/programme
rm -rf "$logs"
mkdir -p "$logs"
export LSAN_OPTIONS=suppressions=$here/Tests/leaks.supp:print_suppressions=0
trap 'kill $(jobs -rp) 2>/dev/null || true' EXIT

# run NAME COMMAND...: runs the command and tells how it went; what it printed, when it failed.
run() {
    local name=$1 begin=$SECONDS
    shift
    if "$@" >"$logs/$name.log" 2>&1; then
        echo "ok      $name, $((SECONDS - begin)) s"
        touch "$logs/$name.passed"
    else
        echo "FAILED  $name, $((SECONDS - begin)) s"
        tail -n 40 "$logs/$name.log"
    fi
}

# start NAME COMMAND...: runs the command beside others once a processor is free.
started=0
start() {
    while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do
        wait -n || true
    done
    started=$((started + 1))
    run "$@" &
}

# The limit for one input is far above any hang worth the name: a machine that pauses is not taken for one.
fuzz() {
    local target=$1
    local found=$build/fuzz/$target
    mkdir -p "$found/new"
    cd "$found"
    "$build/bin/ka-fuzz-$target" -max_total_time="$seconds" -timeout=120 -rss_limit_mb=4096 -max_len=65536 \
        -print_final_stats=1 -artifact_prefix="$found/crash-" "$found/new" "$here/Tests/Fuzz/corpus/$target"
}

in_locale() {
    local locale=$1
    local folder=$build/locales
    mkdir -p "$folder"
    [ -d "$folder/$locale" ] || localedef -i "${locale%.*}" -f UTF-8 "$folder/$locale" || return 1
    local failed=0
    for program in "$release"/bin/ka-test-*; do
        case $program in
            *-faults | *-model | *-gallery) continue ;; # nothing of theirs is read or written as text
            *-studio-window) continue ;;                # needs a display, and has its own part below
        esac
        LOCPATH=$folder LC_ALL=$locale "$program" --gtest_brief=1 || failed=1
    done
    return "$failed"
}

# An older scene from its upgrade to its being saved again: no read of memory that nobody wrote.
under_valgrind() {
    local folder
    folder=$(mktemp -d)
    local checked=(valgrind --quiet --error-exitcode=99 "$release/bin/ka-anim")
    local failed=0
    "${checked[@]}" upgrade "$here/Tests/Life/data/camera_and_clips.osg" -o "$folder/scene.osg" --animation "$folder/document.xml" &&
        "${checked[@]}" convert "$folder/scene.osg" "$folder/document.xml" -o "$folder/again.osg" \
            --animation "$folder/again.xml" &&
        "${checked[@]}" play "$folder/scene.osg" --animation "$folder/document.xml" --frames 100 || failed=1
    rm -rf "$folder"
    return "$failed"
}

# The tool as a program of anybody's: built against installed headers and libraries, with no other file of the tree in sight
# but those of its own folder.
tool_from_prefix() {
    local folder=$build/tool
    rm -rf "$folder"
    cmake --install "$release" --prefix "$folder/prefix" >/dev/null
    rm "$folder/prefix/bin/ka-anim"
    mkdir "$folder/sources"
    cp -r "$here/Tools" "$here/cmake" "$folder/sources"
    cmake -G Ninja -S "$folder/sources/Tools" -B "$folder/build" -D CMAKE_PREFIX_PATH="$folder/prefix" \
        -D CMAKE_CXX_COMPILER=g++ -D CMAKE_INSTALL_PREFIX="$folder/prefix"
    ninja -C "$folder/build" -j 1 install
    "$folder/prefix/bin/ka-anim" demo -o "$folder/demo"
}

start tool-from-prefix tool_from_prefix
for target in document scene bvh gltf assimp motion arguments; do
    start "fuzz-$target" fuzz "$target"
done
start random-edits env KA_MODEL_SEEDS=2000 KA_MODEL_STEPS=500 "$release/bin/ka-test-model" --gtest_brief=1
for locale in de_DE tr_TR ar_EG fr_FR; do
    start "locale-$locale" in_locale "$locale.UTF-8"
done
start writers "$here/Tests/Faults/writers.sh" "$release/bin/ka-anim"
start valgrind under_valgrind
start studio xvfb-run -a -s "-screen 0 1600x1000x24" env KA_STUDIO_EVENTS=100000 KA_STUDIO_KILLS=50 \
    "$release/bin/ka-test-studio-window" --gtest_brief=1 --gtest_filter='Monkey.*:Recovering.*'
start models "$here/scripts/models.sh" "$release/bin/ka-anim"
wait

passed=$(find "$logs" -name '*.passed' | wc -l)
echo "$passed of $started passed"
[ "$passed" -eq "$started" ]
