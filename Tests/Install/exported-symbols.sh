#!/usr/bin/env bash
# Fails when an installed library exports what no installed header declares, or anything without a version. A name counts as
# declared when the headers have the words of which it is made.
# usage: exported-symbols.sh LIBRARY_FOLDER HEADER_FOLDER
set -euo pipefail
libraries=$1 headers=$2

words=$(mktemp)
trap 'rm -f "$words"' EXIT
{
    grep -rhoE '[A-Za-z_][A-Za-z0-9_]*' "$headers"
    printf '%s\n' metaObject qt_metacall qt_metacast staticMetaObject # what Q_OBJECT declares
} | sort -u >"$words"

failed=0
for library in kaSceneGraph kaHostUtils kaAnimation kaMotion; do
    symbols=$(nm -DC --defined-only "$libraries/lib$library.so" | cut -c18- | grep -v ' KA_[0-9.]*$')
    unversioned=$(grep -v '@@KA_' <<<"$symbols" || true)
    # Of "T a::b::c(d)@@KA_1.0" the words a, b and c; of "V vtable for a::b" those of a::b. What stands between <> is taken
    # away from the inside out. Names that the compiler makes up (local statics, lambdas) are left out with theirs.
    undeclared=$(sed -E -e 's/^. //' -e 's/@@KA_.*//' -e 's/^(vtable|VTT|typeinfo name|typeinfo|guard variable|(non-)?virtual thunk) (for|to) //' \
        -e 's/\[abi:[a-z0-9]+\]//g' -e ':a' -e 's/<[^<>]*>//' -e 'ta' -e 's/operator.*//' -e 's/\(.*//' -e 's/[~]//' <<<"$symbols" |
        grep -oE '[A-Za-z_][A-Za-z0-9_]*' | sort -u | comm -23 - "$words")
    count=$(wc -l <<<"$symbols")
    [ "$count" -gt 10 ] || { echo "$library exports $count symbols" && failed=1; }
    [ -z "$unversioned" ] || { echo "$library exports without a version: $unversioned" && failed=1; }
    [ -z "$undeclared" ] || { echo "$library exports what no installed header declares: "$undeclared && failed=1; }
done
exit "$failed"
