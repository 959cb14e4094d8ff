"""Images as arrays, trees of regions, files, pictures, errors."""
import gc
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import kalvo

EXAMPLES = sorted((Path(__file__).parent.parent / "examples").glob("*.py"))


def noise(shape, dtype=np.uint8):
    return np.random.default_rng(1).integers(0, 255, shape).astype(dtype)


@pytest.mark.parametrize("type_name, shape, dtype", [
    ("bw1", (5, 3), np.uint8), ("bw8", (5, 20), np.uint8), ("bw16", (5, 20), np.uint16), ("bw32", (5, 20), np.uint32),
    ("c15", (5, 20), np.uint16), ("c16", (5, 20), np.uint16), ("c24", (5, 20, 3), np.uint8), ("c24a", (5, 20, 4), np.uint8),
    ("yuy2", (5, 20, 2), np.uint8), ("float32", (5, 20), np.float32), ("float64", (5, 20), np.float64),
    ("complex64", (5, 20), np.complex64), ("subpixel64", (5, 20, 2), np.int32), ("raw32", (5, 20), np.uint32),
    ("raw96", (5, 20, 3), np.uint32)])
def test_pixels_are_those_of_the_image(type_name, shape, dtype):
    image = kalvo.Image(20, 5, type_name)
    assert image.pixels.shape == shape and image.pixels.dtype == dtype and not image.pixels.any()
    image.pixels[:] = noise(shape, dtype)
    assert (image.pixels == noise(shape, dtype)).all()
    if not type_name.startswith("float"):
        assert (kalvo.Image.from_bytes(image.to_bytes()).pixels == image.pixels).all()


@pytest.mark.parametrize("array", [noise((4, 9)), noise((4, 9), np.uint16), noise((4, 9, 3)), noise((4, 9)) > 99,
                                   noise((4, 9), np.float32), noise((9, 4)).T, noise((4, 18))[:, ::2]])
def test_arrays_become_images(array):
    image = kalvo.Image.from_array(array)
    assert ((image.bits if array.dtype == bool else image.pixels) == array).all()


def test_colours_are_red_green_and_blue():
    image = kalvo.Image(2, 1, "c24")
    image.pixels[0, 0] = 255, 0, 0
    assert image.draw()[0, 0].tolist() == [255, 0, 0]
    assert image.convert("bw8").pixels[0].tolist() == [76, 0]


def test_regions_share_pixels_and_stay_with_their_image():
    image = kalvo.Image(20, 10)
    region = image.region(2, 3, 10, 5)
    child = region.region(1, 1, 2, 2)
    child.title = "größe"
    child.pixels[:] = 9
    assert image.pixels[4:6, 3:5].tolist() == [[9, 9], [9, 9]] and image.pixels.sum() == 36
    assert image.regions == [region] and child.parent == region and image.parent is None
    region.place(0, 0, 10, 5)
    pixels = child.pixels
    del image, child, region
    gc.collect()
    assert pixels.shape == (2, 2)


def test_what_was_removed_is_gone():
    image = kalvo.Image(20, 10)
    region = image.region(2, 3, 10, 5)
    child = region.region(1, 1, 2, 2)
    region.remove()
    again = image.region(2, 3, 10, 5)
    for gone in region, child:
        with pytest.raises(kalvo.Error, match="removed"):
            gone.width
    assert image.regions == [again]


@pytest.mark.parametrize("name, is_exact", [("a.bmp", True), ("a.tif", True), ("a.png", True), ("a.kxa", True), ("a.jpg", False)])
def test_files_come_back(tmp_path, name, is_exact):
    image = kalvo.Image.from_array(noise((32, 40, 3)) // 8 + 100)
    image.region(1, 2, 3, 4).title = "inside"
    image.pixel_size = 0.5, 0.25, "mm"
    path = str(tmp_path / name)
    image.save(path, quality=100)
    loaded = kalvo.load(path)
    assert np.abs(loaded.pixels.astype(int) - image.pixels).mean() <= (0 if is_exact else 9)
    assert kalvo.describe(path)["width"] == 40
    assert [region.title for region in loaded.regions] == (["inside"] if name == "a.kxa" else [])


def test_masks_tell_which_pixels_count():
    region = kalvo.Image(20, 20).region(2, 2, 9, 9)
    assert region.mask.all()
    region.set_mask("ring", 0.5)
    assert region.mask[0, 4] and not region.mask[0, 0] and not region.mask[4, 4]


def test_plots_and_pictures_are_arrays():
    image = kalvo.Image.from_array(noise((30, 40)))
    assert image.plot_histogram((300, 200)).shape == (200, 300, 3)
    assert image.draw(zoom=2).shape == (60, 80, 3)
    assert (image.resize(80, 60).pixels == image.pixels.repeat(2, 0).repeat(2, 1)).all()


def test_failures_have_codes(tmp_path):
    with pytest.raises(kalvo.Error) as failure:
        kalvo.load(str(tmp_path / "none.bmp"))
    assert failure.value.code == 1102
    with pytest.raises(kalvo.Error) as failure:
        kalvo.Image(9, 9).region(5, 5, 9, 9)
    assert failure.value.code == 1414
    with pytest.raises(ValueError):
        kalvo.Image(9, 9, "bw7")
    with pytest.raises(TypeError):
        kalvo.Image.from_array(np.zeros((2, 2, 5)))


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda path: path.stem)
def test_examples_run(example, tmp_path):
    subprocess.run([sys.executable, example], check=True, cwd=tmp_path)
