#!/usr/bin/env bash
# Makes the pictures of the pages in Docs/ again and the API pages; a gap in a public header's documentation is an error.
# usage: docs.sh BUILD_FOLDER OUT_FOLDER
set -euo pipefail

build=$(realpath "$1")
mkdir -p "$2"
out=$(realpath "$2")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

"$build/bin/ka-docs-pictures" Docs/images
dot -Tpng -Gdpi=90 Docs/images/data-flow.dot -o Docs/images/data-flow.png
mkdir -p "$out/docs"
OUTPUT_DIRECTORY="$out/docs" doxygen Docs/Doxyfile
echo "API pages: $out/docs/html/index.html"
