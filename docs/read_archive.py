#!/usr/bin/env python3
"""Reads archives by what docs/file-formats.md says, without the library: read_archive.py FILE...

Prints what `kalvo archive --json` prints, and the pixels. A page to begin a reader of your own with.
"""
import json
import struct
import sys

SIGNATURE = 0x4B
PIXELS = {"bw1": (1, 1), "bw8": (1, 8), "bw16": (1, 16), "bw32": (1, 32), "c15": (3, 16), "c16": (3, 16), "c24": (3, 24),
          "yuy2": (3, 16), "c24a": (4, 32), "subpixel64": (1, 64), "complex64": (1, 64), "raw32": (1, 32), "raw96": (1, 96)}
FIRST_IMAGE, FIRST_REGION, JPEG_FIELDS = 33, 46, 59
TEXTS = ("author", "comment", "date", "title")


class Reader:
    """Little-endian values from bytes, one after the other."""

    def __init__(self, data):
        self.data = data
        self.next = 0

    def bytes(self, count):
        if count < 0 or self.next + count > len(self.data):
            raise ValueError("the file ends too early")
        self.next += count
        return self.data[self.next - count:self.next]

    def value(self, form):
        return struct.unpack("<" + form, self.bytes(struct.calcsize(form)))[0]


def read_texts(reader):
    """Each text twice: narrow, then UTF-16."""
    texts = {}
    for name in TEXTS:
        narrow = reader.bytes(reader.value("I"))
        wide = reader.bytes(2 * reader.value("I"))
        if narrow:
            texts[name] = narrow.decode("utf-8", "replace")
        if wide:
            texts[name + "Unicode"] = wide.decode("utf-16-le", "replace")
    return texts


def read_dimension(reader, version):
    """A number and its unit, which is never one of a list."""
    number = float(f"{reader.value('f'):.7g}")  # as few digits as a number of 32 bits has
    if version >= 3 and reader.value("i") != 0 and version >= 4:
        raise ValueError("units by number do not exist")
    magnitude = reader.value("f")
    name = reader.bytes(16).split(b"\0")[0].decode("latin-1")
    return number, magnitude, name


def read_object(reader):
    start, kind, version, check = reader.bytes(4)
    if start != SIGNATURE or check != start ^ kind ^ version:
        raise ValueError("no object begins here")
    if kind == JPEG_FIELDS:
        return {"object": "fields", "sizes": [len(reader.bytes(reader.value("I"))) for _ in range(2)]}
    if not FIRST_IMAGE <= kind < JPEG_FIELDS or not 1 <= version <= 4:
        raise ValueError(f"objects of type {kind}, version {version} are unknown")
    is_image = kind < FIRST_REGION
    name = list(PIXELS)[kind - (FIRST_IMAGE if is_image else FIRST_REGION)]
    planes, bits = PIXELS[name]
    found = {"object": "image" if is_image else "region", "type": name, "planes": planes, "bitsPerPixel": bits,
             "texts": read_texts(reader)}
    found["regions"] = [read_object(reader) for _ in range(reader.value("i"))]
    x, y, found["width"], found["height"] = (reader.value("i") for _ in range(4))
    _color_system, _mask_offsets, _cursor_x, _cursor_y = (reader.value("i") for _ in range(4))
    if not is_image:
        return found | {"x": x, "y": y}
    bits_per_pixel, bits_per_row = reader.value("i"), reader.value("i")
    rows = [reader.bytes(bits_per_row // 8) for _ in range(found["height"])]
    found["pixels"] = b"".join(row[:(found["width"] * bits_per_pixel + 7) // 8] for row in rows)
    (height, _, unit), (width, _, _) = read_dimension(reader, version), read_dimension(reader, version)
    return found | {"pixelSize": {"width": width, "height": height, "unit": unit}}


def read_archive(data):
    reader = Reader(data)
    objects = []
    while reader.next < len(data):
        objects.append(read_object(reader))
    return objects


def main():
    for path in sys.argv[1:]:
        with open(path, "rb") as file:
            objects = read_archive(file.read())
        print(json.dumps({"file": path, "objects": objects}, indent=2, default=lambda pixels: pixels.hex()))


if __name__ == "__main__":
    main()
