#!/usr/bin/env bash
# Builds the consumer with what pkg-config says of the installed library, and runs it.
# usage: build-by-pkg-config.sh LIBRARY_FOLDER COMPILER PROGRAM
set -euo pipefail
libraries=$1 compiler=$2 program=$3

export PKG_CONFIG_PATH=$libraries/pkgconfig
read -ra flags < <(pkg-config --cflags --libs kaAnimation)
"$compiler" -std=c++17 -fPIC "$(dirname "$0")/main.cpp" -o "$program" "${flags[@]}"
LD_LIBRARY_PATH=$libraries "$program"
