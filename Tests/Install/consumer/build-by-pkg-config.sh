#!/usr/bin/env bash
# Builds the consumer with what pkg-config says of the installed library, and runs it. All installed headers are compiled with
# it.
# usage: [KA_PACKAGE=kaMotion] build-by-pkg-config.sh LIBRARY_FOLDER COMPILER PROGRAM [FLAG...]
set -euo pipefail
libraries=$1 compiler=$2 program=$3
shift 3
package=${KA_PACKAGE:-kaAnimation}

export PKG_CONFIG_PATH=$libraries/pkgconfig
folder=$(pkg-config --variable=includedir "$package")/$package
(cd "$folder" && find . -name '*.h' -printf '#include <%P>\n' | sort) >"$program-headers.cpp"
[ "$(wc -l <"$program-headers.cpp")" -gt 20 ]

# As the README has it.
# shellcheck disable=SC2046 # these are several words
"$compiler" "$@" -fPIC "$(dirname "$0")/main.cpp" "$program-headers.cpp" $(pkg-config --cflags --libs "$package") -o "$program"
LD_LIBRARY_PATH=$libraries "$program"
