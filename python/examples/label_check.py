"""Is the label on the part, straight and readable? A region looks at the place where it should be."""
import kalvo

# %% The part, as a camera would see it: dark, with a bright label and print on it.
part = kalvo.Image(320, 240)
part.pixels[:] = 40
part.pixels[60:120, 80:240] = 210
part.pixels[80:100:4, 100:220] = 30
part.pixel_size = 0.05, 0.05, "mm"

# %% Where the label should be, and where its print.
label = part.region(80, 60, 160, 60)
label.title = "label"
text = label.region(20, 20, 120, 20)
text.title = "print"

# %% What we find there.
bright = (label.pixels > 128).mean()
contrast = int(text.pixels.max()) - int(text.pixels.min())
print(f"{bright:.0%} of the label is bright, the print has a contrast of {contrast}")
assert bright > 0.8 and contrast > 100, "the label is missing or cannot be read"

# %% A picture for the report, and the image with its regions for whoever looks into it.
kalvo.Image.from_array(part.draw(zoom=2, handles=True)).save("label.png")
part.save("label.kxa")
assert [region.title for region in kalvo.load("label.kxa").regions] == ["label"]
