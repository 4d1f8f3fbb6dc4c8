#!/usr/bin/env bash
# Every animated model of the test models through import, export and import, as .glb, .gltf and .bvh: a table of how far
# the places of all nodes are off, at every frame, as parts of the scene's size, and what Assimp reads of the exported
# keys. Then the public glTF validator on every glTF file that came out.
# usage: round-trips.sh KA_ROUND_TRIP
set -euo pipefail

round_trip=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
find /usr/share/assimp/models -type f -size -20M |
    grep -Ei '\.(glb|gltf|vrm|fbx|dae|zae|x|b3d|bvh|ms3d|smd|lws|ase|3ds|irr|ogex|m3d|iqm|csm|blend)$' |
    sort >"$work/models"
for kind in glb gltf bvh; do
    mkdir "$work/$kind"
    echo "== $kind"
    xargs -d '\n' -a "$work/models" "$round_trip" "$work/$kind" "$kind" 2>"$work/messages" || status=1
done

npm install --silent --no-audit --no-fund --prefix "$work" gltf-validator@2.0.0-dev.3.10 >/dev/null
cat >"$work/validate.js" <<'SCRIPT'
const fs = require('fs'), validator = require('gltf-validator');
(async () => {
    let bad = 0;
    for (const file of process.argv.slice(2)) {
        const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)));
        // Pictures are passed on as they are, with what they hold of colour spaces.
        const found = report.issues.messages.filter(
            (m) => m.severity <= 1 && m.code !== 'IMAGE_FEATURES_UNSUPPORTED');
        if (found.length === 0) continue;
        bad++;
        console.log(file, JSON.stringify(found.slice(0, 3)));
    }
    console.log(`validator: ${process.argv.length - 2} files, ${bad} with errors or warnings`);
    process.exit(bad === 0 && process.argv.length > 2 ? 0 : 1);
})();
SCRIPT
(cd "$work" && node validate.js glb/*.glb gltf/*.gltf) || status=1
exit "$status"
