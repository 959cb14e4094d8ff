#!/usr/bin/env bash
# Tells what changed for programs that were built against an earlier revision: abi.sh [REVISION]
# The last tag is taken when none is given. Fails when such programs may break.
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh abigail-tools git
revision=${1:-$(git describe --tags --abbrev=0)}
old=$(mktemp -d)
trap 'git worktree remove --force "$old"' EXIT
git worktree add --quiet --detach "$old" "$revision"
for tree in "$old" .; do
    cmake -G Ninja -S "$tree" -B "$tree/build/abi" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKALVO_BUILD_APPS=OFF \
          -DKALVO_BUILD_TESTS=OFF -DKALVO_BUILD_BENCHMARKS=OFF >/dev/null
    cmake --build "$tree/build/abi" --target kalvo
    cmake --install "$tree/build/abi" --prefix "$tree/build/abi/installed" >/dev/null
done
library=build/abi/installed/lib/libkalvo.so
# Bit 3 of the result: incompatible.
abidiff --headers-dir1 "$old/build/abi/installed/include" --headers-dir2 build/abi/installed/include \
        "$old/$library" "$library" || [ $(($? & 8)) -eq 0 ]
