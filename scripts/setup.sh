#!/usr/bin/env bash
# Installs the Debian packages of the given lists that are missing, and nothing else.
# usage: setup.sh [LIST...]     a list has one package a line, or alternatives with | between them, of which the first is
#                                installed unless one of them is there; default: packages.txt beside this script
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
lists=("$@")
[ ${#lists[@]} -gt 0 ] || lists=("$here/packages.txt")

mapfile -t wanted < <(sed -e 's/#.*//' -e 's/[[:space:]]//g' "${lists[@]}" | grep . | sort -u)
[ ${#wanted[@]} -gt 0 ] || { echo "setup: no package in ${lists[*]}" >&2; exit 1; }

# What to type where this script may not install by itself.
refuse() {
    echo "setup: $1; please run:" >&2
    echo "  apt-get update && apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 1
}

missing=("${wanted[@]%%|*}")
command -v dpkg-query >/dev/null || refuse "this is not a Debian system, so packages of these names have to be found for it"

mapfile -t names < <(printf '%s\n' "${wanted[@]}" | tr '|' '\n')
installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${names[@]}" 2>/dev/null | sed -n 's/^installed //p') || true
missing=()
for line in "${wanted[@]}"; do
    tr '|' '\n' <<<"$line" | grep -qxF -f <(echo "$installed") || missing+=("${line%%|*}")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || refuse "packages are missing, and there is neither root nor sudo to install them"
    # Without a terminal nobody could type a password.
    [ -t 0 ] || sudo -n true 2>/dev/null || refuse "packages are missing, and sudo would ask for a password"
    as_root=(sudo)
fi

echo "setup: installing ${missing[*]}" >&2
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
"${apt[@]}" update >&2 || refuse "the package lists could not be fetched"
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" >&2 </dev/null || refuse "the packages could not be installed"
