#!/usr/bin/env bash
# The pictures and the tables of Docs/motion.md: each operation before and after, on a capture of the test models, and what
# reducing costs and keeps.
# usage: gallery.sh KA_ANIM KA_ROUND_TRIP DOCS
set -euo pipefail

ka_anim=$(realpath "$1")
round_trip=$(realpath "$2")
docs=$(realpath "$3")
models=/usr/share/assimp/models
capture=$models/BVH/01_01.bvh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$docs/images/motion"
cd "$work"

# plot NAME WHAT FILE...: curves of a stretch, into the gallery.
plot() {
    local name=$1 file=$2
    shift 2
    "$ka_anim" plot "$file" "$@" -o "$docs/images/motion/$name.png" --width 900 --height 300 2>/dev/null
}
# pose NAME FILE...: four poses, into the gallery.
pose() {
    local name=$1 file=$2
    shift 2
    "$ka_anim" render "$file" "$@" -o "$docs/images/motion/$name.png" --width 900 --count 4 2>/dev/null
}
# change NAME OPERATION...: what an operation makes of the capture, as NAME.osg and NAME.xml.
change() {
    local name=$1 operation=$2
    shift 2
    "$ka_anim" "$operation" "$capture" "$@" -o "$name.osg" --animation "$name.xml" 2>/dev/null >/dev/null
}

knee=(--curve LeftLeg.rotationX --from 100 --to 220)
plot before "$capture" "${knee[@]}"
change reduced reduce
plot reduce reduced.osg --animation reduced.xml "${knee[@]}" --handles
change smooth filter --smooth 1.5
plot smooth smooth.osg --animation smooth.xml "${knee[@]}"
change resampled resample --every 12 --shape straight
plot resample resampled.osg --animation resampled.xml "${knee[@]}"
change slow retime --map 0:0,100:100,160:220,574:634
plot retime slow.osg --animation slow.xml --curve LeftLeg.rotationX --from 100 --to 280

pose poses-before "$capture" --from 100 --to 220
change mirrored mirror
pose mirror mirrored.osg --animation mirrored.xml --from 100 --to 220
change cut trim --from 100 --to 220
change reversed trim --from 100 --to 220 --then reverse
pose reverse reversed.osg --animation reversed.xml
"$ka_anim" loop cut.osg cut.xml --seam 30 -o looped.osg --animation looped.xml 2>/dev/null >/dev/null
plot trim cut.osg --animation cut.xml --curve LeftLeg.rotationX
plot loop looped.osg --animation looped.xml --curve LeftLeg.rotationX
pairs=(Hips=Hips Spine=Ab Spine1=Chest Neck=Neck Head=Head)
for side in Left Right; do
    pairs+=("${side}Shoulder=${side}Collar" "${side}Arm=${side}Shoulder" "${side}ForeArm=${side}Elbow" "${side}Hand=${side}Wrist"
        "${side}UpLeg=${side}Hip" "${side}Leg=${side}Knee" "${side}Foot=${side}Ankle" "${side}ToeBase=${side}Toes")
done
"$ka_anim" retarget "$models/BVH/Boxing_Toes.bvh" --source "$capture" "${pairs[@]/#/--map=}" -o boxer.osg --animation boxer.xml 2>/dev/null >/dev/null
pose retarget boxer.osg --animation boxer.xml --object 01_01 --from 100 --to 220
pose meshes "$models/FBX/huesitos.fbx"

# The tables.
{
    echo "| capture | keys | bound | keys left | seconds of one processor |"
    echo "|---|---|---|---|---|"
    for name in 01_01 01_03 Boxing_Toes; do
        for bound in "--rotation 0.5 --translation 0.1" "--world 0.1"; do
            # shellcheck disable=SC2086
            seconds=$( { TIMEFORMAT=%U; time "$ka_anim" reduce "$models/BVH/$name.bvh" $bound --dry-run --format json \
                >report.json 2>messages; } 2>&1)
            before=$(sed -n 's/.*"keysBefore": \([0-9]*\).*/\1/p' report.json)
            after=$(sed -n 's/.*"keysAfter": \([0-9]*\).*/\1/p' report.json)
            echo "| $name.bvh | $before | \`$bound\` | $after | $seconds |"
        done
    done
} >reduce.md
find "$models" -type f -size -20M | grep -Ei '\.(glb|gltf|fbx|dae|zae|x|bvh|ase|csm|3ds|mdl)$' | sort >list
status=0
xargs -d '\n' -a list "$round_trip" --thin "$work" >trips.md 2>/dev/null || status=1 # what is beyond is in the table

# Between their marks in the page.
for table in reduce trips; do
    sed -i -e "/<!-- $table: begin -->/,/<!-- $table: end -->/{//!d}" -e "/<!-- $table: begin -->/r $table.md" \
        "$docs/motion.md"
done
exit "$status"
