#!/usr/bin/env bash
# The part of the hardening programme that runs beside the test suites: fuzzers on a build of the sanitize preset,
# locales, bad disks and valgrind on one of the release preset, where they meet what users run.
# usage: programme.sh SANITIZE_BUILD RELEASE_BUILD [SECONDS_PER_FUZZER]     default: 60
# Needs root for the full disk; without it that part says so and is passed over.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "$1")
release=$(realpath "$2")
seconds=${3:-60}
passed=0
failed=0

# report NAME COMMAND...: runs the command, counts it and shows its output when it fails.
report() {
    local name=$1
    shift
    local log=$build/programme-$name.log
    if "$@" >"$log" 2>&1; then
        echo "ok      $name"
        passed=$((passed + 1))
    else
        echo "FAILED  $name"
        tail -n 40 "$log"
        failed=$((failed + 1))
    fi
}

fuzz() {
    local target=$1
    local found=$build/fuzz/$target
    mkdir -p "$found/new"
    (cd "$found" && "$build/bin/ka-fuzz-$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 \
        -max_len=65536 -print_final_stats=1 -artifact_prefix="$found/crash-" "$found/new" \
        "$here/Tests/Fuzz/corpus/$target")
}

fuzz_two() {
    fuzz "$1" >"$build/programme-fuzz-$1.log" 2>&1 &
    local first=$!
    local status=0
    fuzz "$2" >"$build/programme-fuzz-$2.log" 2>&1 || status=$?
    wait "$first" || status=$?
    return "$status"
}

in_locale() {
    local locale=$1
    local folder=$build/locales
    mkdir -p "$folder"
    [ -d "$folder/$locale" ] || localedef -i "${locale%.*}" -f UTF-8 "$folder/$locale"
    for program in "$release"/bin/ka-test-*; do
        case $program in
            *-faults | *-model | *-gallery) continue ;; # nothing of theirs is read or written as text
        esac
        LOCPATH=$folder LC_ALL=$locale "$program" --gtest_brief=1
    done
}

# Two at a time: each test program keeps one processor busy.
in_locales() {
    in_locale "$1" >"$build/programme-locale-$1.log" 2>&1 &
    local first=$!
    local status=0
    in_locale "$2" || status=$?
    wait "$first" || { status=$?; tail -n 40 "$build/programme-locale-$1.log"; }
    return "$status"
}

# An older scene from its upgrade to its being saved again: no read of memory that nobody wrote.
under_valgrind() {
    local folder
    folder=$(mktemp -d)
    local checked=(valgrind --quiet --error-exitcode=99 "$release/bin/ka-anim")
    "${checked[@]}" upgrade "$here/Tests/Life/data/camera_and_clips.osg" -o "$folder/scene.osg" --animation "$folder/document.xml"
    "${checked[@]}" convert "$folder/scene.osg" "$folder/document.xml" -o "$folder/again.osg" \
        --animation "$folder/again.xml"
    "${checked[@]}" play "$folder/scene.osg" --animation "$folder/document.xml" --frames 100
    rm -rf "$folder"
}

report fuzz-document-and-scene fuzz_two document scene
report fuzz-bvh-and-arguments fuzz_two bvh arguments
report locales-de-and-tr in_locales de_DE.UTF-8 tr_TR.UTF-8
report locales-ar-and-fr in_locales ar_EG.UTF-8 fr_FR.UTF-8
report writers "$here/Tests/Faults/writers.sh" "$release/bin/ka-anim"
report valgrind under_valgrind

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
