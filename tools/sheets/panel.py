"""The side panel's pictures: radar, capture marks, the two big buttons; and the blank icon."""

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import palette, shapes
from .paint import Layer, blank, cut, matte_picture, paste, smooth

FONT = "/usr/share/fonts/truetype/play/Play-Bold.ttf"


def text_mask(layer, text, size, cx, cy, font=FONT, spacing=0.0):
    """The coverage of a text centred on a point. `size` is the font's height in pixels."""
    s = layer.scale
    face = ImageFont.truetype(font, int(size * s))
    image = Image.new("L", (layer.width * s, layer.height * s))
    pen = ImageDraw.Draw(image)
    widths = [face.getlength(letter) for letter in text] if spacing else [face.getlength(text)]
    total = sum(widths) + spacing * s * (len(text) - 1 if spacing else 0)
    left = cx * s - total / 2
    for piece, width in zip(text if spacing else [text], widths):
        pen.text((left, cy * s), piece, font=face, fill=255, anchor="lm")
        left += width + spacing * s
    return np.asarray(image) / 255.0


def radar_blips():
    sheet = blank(64, 9)
    c = 4.5
    for cell in range(7):
        left = int(cell * 960 / 7 / 15 + 0.5)
        layer = Layer(9, 9)
        x, y = layer.centred(c, c)
        layer.within(shapes.circle(x, y, 4.1))
        matte = layer.matte()
        if cell == 6:
            paste(sheet, matte_picture(matte), left)
            continue
        base = palette.PLAYERS[cell]
        layer.fill(shapes.circle(x, y, 3.5), base)
        light = palette.SIGNS_LIGHT[cell]
        layer.fill(palette.sign(cell, x, y, 2.2 if light else 2.5), 1 - (1 - base) * 0.15 if light else base * 0.1)
        paste(sheet, cut(layer.picture(), matte), left)
    return {"radarBlips": sheet}


def caps():
    sheet = blank(65, 11)
    for colour, base in enumerate(palette.PLAYERS):
        # A black pixel on either side, because neighbouring cells share a column.
        layer = Layer(11, 11)
        x, y = layer.centred(5.5, 5.5)
        layer.fill(shapes.circle(x, y, 4.5), base * np.clip(1.05 - 0.08 * (y + 4)[..., None], 0, 1))
        light = palette.SIGNS_LIGHT[colour]
        layer.fill(palette.sign(colour, x, y, 2.7 if light else 3.2), 1 - (1 - base) * 0.1 if light else base * 0.12)
        left = int(colour * 975 / 6 / 15 + 0.5)
        spot = sheet[:, left : left + 11]
        spot[...] = np.maximum(spot, layer.picture())
    return {"caps": sheet}


def button(text, base, lit, symbol):
    layer = Layer(98, 40)
    x, y = layer.centred(49, 20)
    plate = shapes.box(x, y, 47.5, 18.5, 9)
    if not lit:
        base = np.full(3, 0.36)
    layer.fill(plate, base * 0.35)
    layer.fill(plate + 1.0, base * (1.0 if lit else 0.8))
    down = smooth(-18, 18, y)[..., None]
    layer.fill(plate + 2.6, base * (0.62 - 0.36 * down))
    sheen = shapes.box(x, y + 9, 44, 7.5, 6)
    layer.fill(np.maximum(sheen, plate + 3.2), base * (0.95 if lit else 0.7), 0.40 if lit else 0.2, soft=2)
    ink = palette.rgb(255, 255, 255) if lit else palette.rgb(150, 150, 150)
    mask = text_mask(layer, text, 17, 60.5, 19.5)
    shadow = np.roll(np.roll(mask, layer.scale, axis=0), layer.scale, axis=1)
    symbol_distance = symbol(*layer.centred(20, 20))
    layer.fill(0.5 - shadow, base * 0.12, 0.8)
    layer.fill(symbol(*layer.centred(21, 21)), base * 0.12, 0.8)
    if lit:
        layer.add(np.exp(-np.clip(symbol_distance, 0, None) / 2.0) * 0.25 * (plate < -2), base)
    layer.light = layer.light * (1 - mask[..., None]) + mask[..., None] * np.power(ink, 2.2)
    layer.fill(symbol_distance, ink)
    return layer.picture()


def spawn_symbol(x, y):
    """A ball with rays: a new life."""
    core = shapes.circle(x, y, 4.2)
    rays = np.inf
    for i in range(8):
        u, v = shapes.turned(x, y, i * np.pi / 4)
        rays = np.minimum(rays, shapes.segment(u, v, (0, -7.0), (0, -9.2), 2.0))
    return np.minimum(core, rays)


def store_symbol(x, y):
    """A shopping bag."""
    bag = shapes.polygon(x, y, [(-7, -3), (7, -3), (8, 9), (-8, 9)]) - 0.8
    handle = np.maximum(shapes.ring(x, y + 4, 4.6, 1.9), y + 4)
    notch = shapes.circle(np.abs(x) - 4.0, y + 0.2, 1.1)
    return np.minimum(np.maximum(bag, -notch), handle)


def buttons():
    sheets = {}
    for lit in (0, 1):
        sheets[f"btnPlay{lit}"] = button("Spawn", palette.rgb(40, 225, 70), lit, spawn_symbol)
        sheets[f"btnStore{lit}"] = button("Store", palette.rgb(255, 178, 24), lit, store_symbol)
    return sheets


def radar_grid():
    """Ten by ten squares of the world, a stronger cross in the middle, and a frame."""
    width, height = 117, 93
    sheet = blank(width, height)
    for i in range(1, 10):
        tone = (62, 62, 62) if i == 5 else (32, 32, 32)
        sheet[:, int(i * width / 10 + 0.5)] = tone
        sheet[int(i * height / 10 + 0.5), :] = tone
    sheet[[0, -1], :] = (110, 110, 110)
    sheet[:, [0, -1]] = (110, 110, 110)
    return {"radarGrid": sheet}


def null():
    return {"null": blank(32, 32)}
