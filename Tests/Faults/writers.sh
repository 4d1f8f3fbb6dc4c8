#!/usr/bin/env bash
# Saving under bad conditions: whatever goes wrong, the old file stays and the exit code says so.
# usage: writers.sh KA_ANIM
set -euo pipefail

ka_anim=$(realpath "$1")
model=/usr/share/assimp/models/BVH/Boxing_Toes.bvh
work=$(mktemp -d)
full=$work/full
trap 'umount "$full" "$work/again" "$work/two.xml" 2>/dev/null || true; rm -rf "$work"' EXIT

fail() {
    echo "writers: $1" >&2
    exit 1
}

# save INTO: imports the model to INTO/scene.osg and INTO/animation.xml
save() {
    "$ka_anim" import "$model" -o "$1/scene.osg" --animation "$1/animation.xml" >/dev/null 2>"$work/message"
}

# expect_kept FOLDER: the animation document is byte for byte the old one, and no temporary is left
expect_kept() {
    cmp -s "$1/animation.xml" "$work/old.xml" || fail "the old document is gone after: $2"
    [ "$(find "$1" -name '.ka-*.tmp' | wc -l)" -eq 0 ] || fail "a temporary file is left after: $2"
}

# expect_failure FOLDER WHAT: saving fails with exit code 4 and one line, and costs nothing
expect_failure() {
    local status=0
    save "$1" || status=$?
    [ "$status" -eq 4 ] || fail "$2: exit code $status instead of 4"
    [ "$(grep -c . "$work/message")" -ge 1 ] || fail "$2: no message"
    expect_kept "$1" "$2"
}

mkdir "$work/good"
save "$work/good"
printf '<!DOCTYPE ORVA>\n<AnimationPool objects="0"/>\n' >"$work/old.xml"

# A limit on the size of files.
mkdir "$work/limit"
cp "$work/old.xml" "$work/limit/animation.xml"
(
    trap '' XFSZ
    ulimit -f 8
    expect_failure "$work/limit" "a limit on file sizes"
)

# expect_same_rights FOLDER WHAT: owner, group and permissions of the document are still those that were set
expect_same_rights() {
    [ "$(stat -c '%u %g %a' "$1/animation.xml")" = "$rights" ] || fail "the rights changed after: $2"
}

# A full disk and a folder that can only be read, on file systems of their own.
mkdir "$full"
if mount -t tmpfs -o size=64k tmpfs "$full" 2>/dev/null; then
    cp "$work/old.xml" "$full/animation.xml"
    chown 41001:42001 "$full/animation.xml"
    chmod 640 "$full/animation.xml"
    rights="41001 42001 640"
    expect_failure "$full" "a full disk"
    expect_same_rights "$full" "a full disk"
    mount -o remount,ro "$full"
    expect_failure "$full" "a read-only folder"
    expect_same_rights "$full" "a read-only folder"
    mount -o remount,rw,size=64m "$full"
    save "$full" || fail "a disk with room again: $(cat "$work/message")"
    expect_same_rights "$full" "a save"
else
    echo "writers: only root may mount the full disk and the read-only folder; passed over" >&2
fi

# A scene and a document that lead to one file, by mounts: a folder in two places, a file in the place of another.
mkdir "$work/again" "$work/once"
echo old >"$work/one.osg"
touch "$work/two.xml"
if mount --bind "$work/once" "$work/again" 2>/dev/null && mount --bind "$work/one.osg" "$work/two.xml"; then
    ln -s new.osg "$work/once/link.xml"
    for outputs in once/new.osg:again/link.xml one.osg:two.xml; do
        status=0
        "$ka_anim" import "$model" -o "$work/${outputs%:*}" --animation "$work/${outputs#*:}" 2>"$work/message" || status=$?
        [ "$status" -eq 2 ] || fail "a scene and a document in one file by a mount: exit code $status instead of 2"
        grep -q "would be one file" "$work/message" || fail "one file by a mount: $(cat "$work/message")"
    done
    [ ! -e "$work/once/new.osg" ] || fail "a scene was written although it is the document's file"
    [ "$(cat "$work/one.osg")" = old ] || fail "the file behind two mounts was written"
else
    echo "writers: only root may mount; passed over" >&2
fi

# Killed while it saves: the document is the old one or the new one, never half of one.
mkdir "$work/killed"
cp "$work/old.xml" "$work/killed/animation.xml"
begin=$(date +%s%N)
save "$work/good"
length=$((($(date +%s%N) - begin) / 1000))
ended=0
for i in $(seq 50); do
    # The program itself, not a shell around it; all over the time that a whole run takes.
    "$ka_anim" import "$model" -o "$work/killed/scene.osg" --animation "$work/killed/animation.xml" \
        >/dev/null 2>&1 &
    child=$!
    sleep "$(printf '%d.%06d' $((length * i / 50 / 1000000)) $((length * i / 50 % 1000000)))"
    kill -9 "$child" 2>/dev/null || ended=$((ended + 1))
    wait "$child" 2>/dev/null || true
    cmp -s "$work/killed/animation.xml" "$work/old.xml" ||
        cmp -s <(wc -l <"$work/killed/animation.xml") <(wc -l <"$work/good/animation.xml") ||
        fail "half a document after a kill"
    rm -f "$work/killed"/.ka-*.tmp
done
[ "$ended" -lt 25 ] || fail "the runs were over before they could be killed"

# Asked to end while it saves: nothing is left beside the document, which is the old one or the new one. Once more where
# /proc is hidden, which is where files need a name from the start.
# end_at_random ROUNDS COMMAND...: runs the command that many times and ends each with one of four signals
end_at_random() {
    local rounds=$1 signals=(INT TERM HUP QUIT) moment
    shift
    for i in $(seq "$rounds"); do
        # The shell has Ctrl-C ignored in what it runs beside itself.
        env --default-signal=INT,QUIT "$@" import "$model" -o "$work/ended/scene.osg" \
            --animation "$work/ended/animation.xml" >/dev/null 2>&1 &
        child=$!
        moment=$((RANDOM * length / 32768))
        sleep "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))"
        kill -s "${signals[i % 4]}" "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
        [ "$(find "$work/ended" -name '.ka-*' | wc -l)" -eq 0 ] || fail "${signals[i % 4]} left a temporary file"
        cmp -s "$work/ended/animation.xml" "$work/old.xml" ||
            cmp -s <(wc -l <"$work/ended/animation.xml") <(wc -l <"$work/good/animation.xml") ||
            fail "half a document after ${signals[i % 4]}"
    done
}
ulimit -c 0
mkdir "$work/ended"
cp "$work/old.xml" "$work/ended/animation.xml"
end_at_random 24 "$ka_anim"
hide='mount --make-rprivate / && mount -t tmpfs none /proc && exec "$@"'
if unshare -m sh -c "$hide" sh true 2>/dev/null; then
    end_at_random 24 unshare -m sh -c "$hide" sh "$ka_anim"
else
    echo "writers: only root may hide /proc; passed over" >&2
fi
echo "writers: every failure was told, nothing was lost"
