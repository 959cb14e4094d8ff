#!/usr/bin/env bash
# Makes the pictures of the README and the gallery in docs/pictures, from images that it draws itself.
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh pybind11-dev python3-dev python3-numpy
cmake --preset dev -DKALVO_BUILD_PYTHON=ON
cmake --build --preset dev --target _kalvo kalvo_view kalvo_program
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
PYTHONPATH=build/dev/python /usr/bin/python3 - "$work/part.kxa" "$work/fruit.png" <<'PYTHON'
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

# Balls of three colours on a cloth.
fruit = np.full((240, 320, 3), (70.0, 80, 105))
for column, row, radius, color in (90, 90, 60, (220, 50, 40)), (220, 100, 75, (240, 200, 50)), (140, 180, 50, (60, 170, 60)):
    slope = 1 - np.hypot(x - column, y - row)[:240, :320] ** 2 / radius**2
    fruit[slope > 0] = (np.sqrt(np.abs(slope))[:, :, None] * 0.8 + 0.2)[slope > 0] * color
fruit += np.random.default_rng(2).normal(0, 5, fruit.shape)
kalvo.Image.from_array(np.clip(fruit, 0, 255).astype(np.uint8)).save(sys.argv[2])
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
pictures=$PWD/docs/pictures
PATH=$PWD/build/dev/bin:$PATH
cd "$work"
kalvo draw part.kxa "$pictures/regions.png" --handles
kalvo plot part.kxa "$pictures/histogram.svg" --size 640x320
kalvo plot fruit.png "$pictures/profile.svg" --row 100 --size 640x320
kalvo relief part.kxa "$pictures/relief.png" --point 4
kalvo histogram3d fruit.png "$pictures/cube.png" --size 400x400
echo "The pictures are in $pictures."
