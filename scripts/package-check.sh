#!/usr/bin/env bash
# Looks at the Debian packages as distributions do, then installs them into a bare system made for the purpose and uses them
# there: the tool with its manual and its completion first, then a project built against the library.
# usage: package-check.sh PACKAGE_FOLDER WORK_FOLDER     needs root; the bare system is kept as WORK_FOLDER/base.tar
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
packages=$(realpath "$1")
mkdir -p "$2"
work=$(realpath "$2")
root=$work/root
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")

if [ "$(id -u)" -ne 0 ]; then
    exec sudo "$0" "$@"
fi

# Mounts of a namespace of this script's own vanish with it, whatever happens.
if [ -z "${KA_OWN_MOUNTS:-}" ]; then
    KA_OWN_MOUNTS=1 exec unshare --mount --propagation private "$0" "$@"
fi

# This machine's own package sources: what they serve is known to be within reach.
# shellcheck disable=SC2016 # apt fills in the $(...)
sources() {
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        awk -v suite="$suite" '$2 ~ "^" suite "(-|$)" && $1 ~ /debian/ { print "deb", $1, $2, $3 }' | sort -u
}

echo "== lintian"
# Of all that it can find, what the missing licence causes is let pass, and that the maintainers have no address yet.
lintian --allow-root --fail-on error --tag-display-limit 0 --suppress-tags bogus-mail-host,copyright-without-copyright-notice \
    "$packages"/*.changes

echo "== hardening"
unpacked=$work/unpacked
rm -rf "$unpacked"
for package in "$packages"/libkaanimation[0-9]_*.deb "$packages"/libkaanimation-dev_*.deb "$packages"/libkamotion1_*.deb \
    "$packages"/libkamotion-dev_*.deb "$packages"/ka-anim_*.deb "$packages"/ka-studio_*.deb; do
    dpkg-deb -x "$package" "$unpacked"
done
mapfile -t binaries < <(find "$unpacked/usr/bin" "$unpacked/usr/lib" -type f \( -name 'ka-anim' -o -name 'ka-studio' -o -name '*.so.*' \))
# What a library never calls cannot be fortified in it. Debian's own start files are not marked as protected, so no program
# linked with them is (crti.o of glibc 2.36): the code is looked at instead.
hardening-check --nofortify --nocfprotection "${binaries[@]}"
case $(dpkg --print-architecture) in
amd64 | i386)
    for binary in "${binaries[@]}"; do
        landings=$(objdump -d --no-show-raw-insn "$binary" | grep -cE 'endbr(32|64)$' || true)
        echo "$(basename "$binary"): $landings landing places of indirect calls"
        [ "$landings" -gt 100 ] || { echo "$binary is built without -fcf-protection" >&2 && exit 1; }
    done
    ;;
esac

echo "== versions of symbols, and what they ask for"
dpkg-deb --info "$packages"/ka-anim_*.deb control | grep -E '^Depends:.*libkaanimation1 \(>= [0-9.]+\).*libkamotion1 \(>= [0-9.]+\)'
"$here/Tests/Install/exported-symbols.sh" "$(dirname "$(find "$unpacked" -name 'libkaAnimation.so.*' -type f)")" \
    "$unpacked/usr/include"

if [ ! -f "$work/base.tar" ]; then
    mirror=$(sources | awk -v suite="$suite" '$3 == suite { print $2; exit }')
    rm -rf "$root"
    debootstrap --variant=minbase "$suite" "$root" "$mirror"
    sources >"$root/etc/apt/sources.list"
    printf '%s\n' 'Acquire::Check-Valid-Until "false";' 'Dpkg::Use-Pty "false";' >"$root/etc/apt/apt.conf.d/90dated-sources"
    chroot "$root" apt-get clean
    tar -C "$root" -cf "$work/base.tar.part" .
    mv "$work/base.tar.part" "$work/base.tar"
fi

rm -rf "$root"
mkdir -p "$root"
tar -C "$root" -xf "$work/base.tar"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mount -t proc proc "$root/proc"
mkdir -p "$root/packages"
cd "$root" # so that a pattern names the same files outside and inside
cp "$packages"/*.deb "$root/packages/"
cp -r "$here/Tests/Install/consumer" "$root/consumer"

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
installInside() { inside apt-get -q install -y --no-install-recommends "$@"; }

inside apt-get -q update

echo "== the tool alone"
installInside ./packages/libkaanimation[0-9]_*.deb ./packages/libkamotion[0-9]_*.deb ./packages/ka-anim_*.deb man-db
inside ka-anim --version
inside ka-anim --help >/dev/null
inside man ka-anim | grep -A 1 '^NAME$'
# shellcheck disable=SC2016 # the shell inside fills it in
inside bash -c 'source /usr/share/bash-completion/completions/ka-anim
    COMP_WORDS=(ka-anim va) COMP_CWORD=1
    _ka_anim && test "${COMPREPLY[*]}" = validate && complete -p ka-anim'

echo "== the studio"
installInside ./packages/ka-studio_*.deb desktop-file-utils xauth xvfb
inside ka-studio --version
inside ka-studio --help >/dev/null
inside desktop-file-validate /usr/share/applications/ka-studio.desktop
cp "$here/Python/kaanimation/swing.bvh" "$root/swing.bvh"
inside env HOME=/root timeout 120 xvfb-run -a ka-studio --quit-after 3 /swing.bvh

echo "== Python"
installInside ./packages/python3-kaanimation_*.deb
inside python3 -c 'import kaanimation
with kaanimation.open(kaanimation.example()) as project:
    assert project.clips[0].sample(range(11)).shape == (11, 6)'

echo "== a project built against the library"
installInside ./packages/libkaanimation-dev_*.deb cmake g++ ninja-build pkg-config
inside cmake -G Ninja -S /consumer -B /build
inside cmake --build /build
inside /build/consumer
inside bash /consumer/build-by-pkg-config.sh "$(inside pkg-config --variable=libdir kaAnimation)" g++ /by-pkg-config
installInside ./packages/libkamotion-dev_*.deb
inside env KA_PACKAGE=kaMotion bash /consumer/build-by-pkg-config.sh "$(inside pkg-config --variable=libdir kaMotion)" g++ \
    /motion-by-pkg-config

echo "== gone without a trace"
inside apt-get -q remove -y ka-anim ka-studio python3-kaanimation libkamotion-dev 'libkamotion[0-9]*' libkaanimation-dev 'libkaanimation[0-9]*'
inside sh -c '! command -v ka-anim && ! command -v ka-studio && ! ls -d /usr/include/kaAnimation /usr/include/kaMotion'
echo "package-check: all packages install, work and leave"
