"""Takes the uneven light of a lamp out of images: divides them by one of a white surface."""
import numpy as np

import kalvo

# %% A white surface under the lamp, and a part in the same light.
y, x = np.mgrid[0:200, 0:300]
light = 1 - ((x - 150) ** 2 + (y - 100) ** 2) / 60000
white = kalvo.Image.from_array((light * 240).astype(np.uint8))
surface = np.full((200, 300), 0.5)
surface[50:150, 100:200] = 0.8
part = kalvo.Image.from_array((light * 240 * surface).astype(np.uint8))

# %% The pixels of an image are an array; what is assigned to it is in the image.
flat = kalvo.Image(300, 200)
flat.pixels[:] = np.clip(part.pixels.astype(float) / np.maximum(white.pixels, 1) * 200, 0, 255)

# %% Before and after, along the middle row.
for name, image in ("before", part), ("after", flat):
    row = image.region(0, 20, 300, 1)
    print(f"{name}: grey values from {row.pixels.min()} to {row.pixels.max()}")
    kalvo.Image.from_array(row.plot_profile((400, 200))).save(f"{name}.png")
assert np.ptp(flat.pixels[20].astype(int)) <= 4
