#!/usr/bin/env bash
# Every animated model of the test models through import, saving, checking and comparing at 24, 25, 30 and 60 frames a
# second: no damage and no silence. Prints a table: model, rate, curves, keys, the worst difference from the source as a
# part of the curve's range, the worst one between the model and what was saved, in degrees or units.
# usage: models.sh KA_ANIM [--all]
# Models of more than 100000 keys are taken at 25 only, unless --all is given.
set -euo pipefail

ka_anim=$(realpath "$1")
all=${2:-}
models=/usr/share/assimp/models
most_keys=100000
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
damaged=0 rows=0

# number NAME: what the last import reported under this name
number() {
    sed -n "s/^  \"$1\": \([^,]*\),\{0,1\}$/\1/p" "$work/report"
}

# at MODEL RATE: one row of the table; what is wrong goes below it.
at() {
    local model=$1 rate=$2 step status apart
    : >"$work/wrong"
    for step in convert validate diff; do
        status=0
        case $step in
            convert) set -- "$model" --fps "$rate" -o "$work/m.osg" --animation "$work/m.xml" ;;
            validate) set -- "$work/m.xml" --scene "$work/m.osg" ;;
            diff) set -- "$model" "$work/m.osg" --animation-b "$work/m.xml" --fps "$rate" --by 1e-5 ;;
        esac
        timeout 300 "$ka_anim" "$step" "$@" >"$work/out" 2>"$work/err" || status=$?
        [ "$status" -eq 0 ] || { echo "$step: exit $status"; tail -n 5 "$work/out" "$work/err"; } >>"$work/wrong"
    done
    apart=$(sed -n 's/.*at worst \([^ ]*\) apart.*/\1/p' "$work/err")
    printf '%-52s %3s %6s %7s  %-10s %s\n' "${model#"$models"/}" "$rate" "$(number curves)" "$(number keys)" \
        "$(number worstDifference)" "${apart:-0}"
    rows=$((rows + 1))
    [ ! -s "$work/wrong" ] || { damaged=$((damaged + 1)) && sed 's/^/    /' "$work/wrong"; }
}

printf '%-52s %3s %6s %7s  %-10s %s\n' model fps curves keys worst saved
while IFS= read -r model; do
    for rate in 25 24 30 60; do
        status=0
        timeout 300 "$ka_anim" import "$model" --fps "$rate" --json >"$work/report" 2>"$work/err" || status=$?
        curves=$(number curves)
        if [ "$status" -eq 3 ] || [ "${curves:-0}" -eq 0 ]; then
            break # no model, or none that moves
        fi
        if [ "$status" -ne 0 ]; then
            damaged=$((damaged + 1))
            echo "    import: exit $status"
            tail -n 5 "$work/err"
        fi
        at "$model" "$rate"
        [ -n "$all" ] || [ "$(number keys)" -le "$most_keys" ] || break
    done
done < <(find "$models" -type f | sort)

echo "$rows rows, $damaged damaged"
[ "$rows" -ge 100 ] && [ "$damaged" -eq 0 ]
