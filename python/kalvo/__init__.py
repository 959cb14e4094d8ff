"""Images and regions of interest of machine vision, as arrays of numpy.

>>> import kalvo
>>> image = kalvo.Image(64, 48)
>>> image.pixels[:] = 7
>>> image.region(10, 10, 20, 20).pixels.sum()
2800
"""

from ._kalvo import Error, Image, __version__, describe, load

__all__ = ["Error", "Image", "describe", "load", "__version__"]
