#!/usr/bin/env bash
# Builds the programs and takes a photograph through all that the library does: demo.sh [PICTURE]
# The picture is a JPEG, TIFF or BMP file; one that a Debian package brings is used when none is given.
set -euo pipefail

picture=${1:+$(realpath "$1")}
cd "$(dirname "$0")/.."
scripts/setup.sh
picture=${picture:-$(dpkg --listfiles python-matplotlib-data | grep '/grace_hopper\.jpg$')}

cmake --preset release
cmake --build --preset release --target kalvo_program kalvo_view
build/release/bin/kalvo tour "$picture" --output build/demo
echo "The files are in $PWD/build/demo, the programs kalvo and kalvo-view in $PWD/build/release/bin."
