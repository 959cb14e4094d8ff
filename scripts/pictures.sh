#!/usr/bin/env bash
# Makes the pictures of the README in docs/pictures, from an image that it draws itself.
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh pybind11-dev python3-dev python3-numpy
cmake --preset dev -DKALVO_BUILD_PYTHON=ON
cmake --build --preset dev --target _kalvo kalvo_view
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
PYTHONPATH=build/dev/python /usr/bin/python3 - "$work/part.kxa" <<'PYTHON'
"""A machined part with a label, in uneven light."""
import sys

import numpy as np

import kalvo

y, x = np.mgrid[0:360, 0:480]
light = 1 - ((x - 200) ** 2 + (y - 150) ** 2) / 250000
part = np.full((360, 480), 90.0)
for column, row, outer, inner in (130, 180, 100, 42), (360, 90, 45, 18):
    radius = np.hypot(x - column, y - row)
    part[radius < outer] = 150 + 25 * np.cos(np.arctan2(y - row, x - column) * 12)[radius < outer]
    part[radius < inner] = 25
part[220:300, 270:440] = 225
for line, width in (235, 130), (255, 100), (275, 115):
    part[line:line + 8, 285:285 + width][:, np.arange(width) % 9 < 6] = 40
part = part * light + np.random.default_rng(1).normal(0, 4, part.shape)
image = kalvo.Image.from_array(np.clip(part, 0, 255).astype(np.uint8))
image.pixel_size = 0.05, 0.05, "mm"
image.region(25, 75, 211, 211).title = "bearing"
label = image.region(262, 212, 186, 96)
label.title = "label"
label.region(18, 18, 140, 60).title = "print"
image.save(sys.argv[1])
PYTHON
cat >"$work/script" <<'SCRIPT'
key tab
key m
key m
key tab
key h
press 300 20 other
move 90 20
release
move 480 330
screenshot docs/pictures/viewer.png
SCRIPT
build/dev/bin/kalvo-view "$work/part.kxa" --size 1120x480 --script "$work/script"
echo "The pictures are in $PWD/docs/pictures."
