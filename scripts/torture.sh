#!/usr/bin/env bash
# The long form of the hardening programme: runs until it has had its time or finds something.
# usage: torture.sh SANITIZE_BUILD RELEASE_BUILD [MINUTES_PER_FUZZER]     default: 60
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
sanitize=$(realpath "$1")
release=$(realpath "$2")
minutes=${3:-60}

"$here/scripts/programme.sh" "$sanitize" "$release" $((minutes * 60))
KA_SOAK_TICKS=10000000 "$release/bin/ka-test-faults" --gtest_filter='Soak.*' --gtest_brief=1
valgrind --quiet --error-exitcode=1 "$release/bin/ka-anim" demo -o "$(mktemp -d)"
echo "torture: nothing found"
