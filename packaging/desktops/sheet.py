"""One picture of the panel in all sessions."""

import math
import os

from PIL import Image, ImageDraw

COLUMNS = 3
CELL = (480, 300)
CAPTION = 18
COLORS = 256


def sheet(pictures, path):
    """`pictures` are titles and the files that go with them; those that are missing stay empty."""
    rows = math.ceil(len(pictures) / COLUMNS)
    whole = Image.new("RGB", (COLUMNS * CELL[0], rows * (CELL[1] + CAPTION)), "white")
    draw = ImageDraw.Draw(whole)
    for index, (title, file) in enumerate(pictures):
        x, y = index % COLUMNS * CELL[0], index // COLUMNS * (CELL[1] + CAPTION)
        draw.text((x + 4, y + 3), title, fill="black")
        if os.path.exists(file):
            with Image.open(file) as picture:
                whole.paste(picture.convert("RGB").resize(CELL, Image.Resampling.LANCZOS), (x, y + CAPTION))
    whole.quantize(COLORS, Image.Quantize.FASTOCTREE, dither=Image.Dither.NONE).save(path, optimize=True)
