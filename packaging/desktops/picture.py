"""What is to be seen in a picture of the screen."""

from PIL import Image, ImageChops, ImageFilter

GROUNDS = {"cream": (0xF5, 0xEC, 0xD7), "amber": (0xE8, 0xD5, 0xA3), "dark": (0x2A, 0x22, 0x18)}
ICON = (0x2D, 0x50, 0x16)
OTHER_WINDOW = (0x00, 0x80, 0x90)
PANEL_LEAST = (400, 300)  # pixels; less is a rest of it behind something
PANEL_SHARE = 0.5         # of its rectangle is bare ground


def _where(picture, color, tolerance, least):
    """A mask of the places where squares of `least` pixels have the colour."""
    flat = Image.new("RGB", picture.size, color)
    bands = ImageChops.difference(picture, flat).split()
    farthest = ImageChops.lighter(ImageChops.lighter(bands[0], bands[1]), bands[2])
    mask = farthest.point(lambda value: 255 if value <= tolerance else 0)
    return mask.filter(ImageFilter.MinFilter(least))


def _share(mask, box):
    part = mask.crop(box)
    return part.histogram()[255] / (part.width * part.height)


def panel(picture):
    """The theme and the rectangle (left, top, right, bottom) of the panel, or None."""
    for theme, color in GROUNDS.items():
        mask = _where(picture, color, 2, 9)
        box = mask.getbbox()
        if not box or box[2] - box[0] < PANEL_LEAST[0] or box[3] - box[1] < PANEL_LEAST[1]:
            continue
        if _share(mask, box) > PANEL_SHARE:
            return theme, (box[0] - 5, box[1] - 5, box[2] + 5, box[3] + 5)
    return None


def icon(picture):
    """The middle of the icon in the status area, or None."""
    box = _where(picture, ICON, 8, 3).getbbox()
    return ((box[0] + box[2]) // 2, (box[1] + box[3]) // 2) if box else None


def shows_other_window(picture):
    box = _where(picture, OTHER_WINDOW, 2, 9).getbbox()
    return bool(box)


def is_filled_by_other_window(picture):
    """Whether its ground reaches into all four corners of the screen."""
    mask = _where(picture, OTHER_WINDOW, 2, 3)
    right, bottom = picture.width - 3, picture.height - 3
    return all(mask.getpixel(corner) for corner in ((2, 2), (right, 2), (2, bottom), (right, bottom)))


def surrounds(picture):
    """Whether the other window reaches the sides of the screen; a bar may be at the top or the bottom."""
    mask, middle = _where(picture, OTHER_WINDOW, 2, 3), picture.height // 2
    return bool(mask.getpixel((2, middle)) and mask.getpixel((picture.width - 3, middle)))


def difference(before, after):
    """The share of the pixels that changed."""
    changed = ImageChops.difference(before, after).convert("L").point(lambda value: 255 if value > 8 else 0)
    return changed.histogram()[255] / (changed.width * changed.height)


def change(before, after, least=(4, 4)):
    """The rectangle around what changed within the screen, bars at its edges left out; None if it is
    smaller than `least`."""
    margin = 50
    inner = (margin, margin, before.width - margin, before.height - margin)
    changed = ImageChops.difference(before.crop(inner), after.crop(inner)).convert("L")
    box = changed.point(lambda value: 255 if value > 8 else 0).filter(ImageFilter.MinFilter(3)).getbbox()
    if not box or box[2] - box[0] < least[0] or box[3] - box[1] < least[1]:
        return None
    return tuple(side + margin for side in box)


def is_within(inner, outer):
    return inner[0] >= outer[0] and inner[1] >= outer[1] and inner[2] <= outer[2] and inner[3] <= outer[3]
