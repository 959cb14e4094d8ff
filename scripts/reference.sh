#!/usr/bin/env bash
# Makes the reference of the public headers in build/reference/html. A comment that doxygen cannot make sense of fails.
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh doxygen
cmake --preset dev
rm -rf build/reference
cmake --install build/dev --prefix build/reference --component development >/dev/null
doxygen docs/reference/Doxyfile
echo "The reference is $PWD/build/reference/html/index.html."
