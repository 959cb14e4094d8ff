#!/usr/bin/env bash
# Builds what the tests need and runs them; arguments go to ctest: test.sh -R TiffRead
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh imagemagick libtiff-dev xvfb xauth xdotool librsvg2-bin  # files of others; a window without a screen
cmake --preset dev
cmake --build --preset dev --target all_tests
ctest --preset dev --exclude-regex '^(fuzz\.|python)' "$@"
