"""Measures a round part through a ring: its edge counts, its hole and the table around it do not."""
import numpy as np

import kalvo

# %% A disc with a hole, seen from above.
y, x = np.mgrid[0:121, 0:121]
radius = np.hypot(x - 60, y - 60)
image = kalvo.Image.from_array(np.where((radius > 25) & (radius < 55), 180, 20).astype(np.uint8))

# %% A region around it whose mask is a ring.
ring = image.region(5, 5, 111, 111)
ring.set_mask("ring", 0.5)
counted = ring.pixels[ring.mask]
print(f"{counted.size} pixels count, {counted.mean():.1f} is their mean, {counted.std():.1f} their deviation")
assert counted.mean() > 175

# %% Without the mask, hole and table would spoil it.
ring.set_mask("none")
assert ring.pixels[ring.mask].mean() < 130

# %% How the levels spread, for the report.
kalvo.Image.from_array(ring.plot_histogram((400, 250))).save("levels.png")
