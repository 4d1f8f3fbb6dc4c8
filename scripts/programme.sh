#!/usr/bin/env bash
# The part of the hardening programme that runs beside the test suites, on a build of the sanitize preset.
# usage: programme.sh BUILD_FOLDER [SECONDS_PER_FUZZER]     default: 60
# Needs root for the full disk; without it that part says so and is passed over.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "$1")
seconds=${2:-60}
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
    for program in "$build"/bin/ka-test-*; do
        case $program in
            *-faults | *-model | *-gallery) continue ;; # nothing of theirs is read or written as text
        esac
        LOCPATH=$folder LC_ALL=$locale "$program" --gtest_brief=1
    done
}

report fuzz-document-and-scene fuzz_two document scene
report fuzz-bvh-and-arguments fuzz_two bvh arguments
for locale in de_DE.UTF-8 tr_TR.UTF-8 ar_EG.UTF-8 fr_FR.UTF-8; do
    report "locale-$locale" in_locale "$locale"
done
report writers "$here/Tests/Faults/writers.sh" "$build/bin/ka-anim"

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
