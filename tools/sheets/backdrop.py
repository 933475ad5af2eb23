"""The store window's background: a quiet star field with a panel for each of its rows."""

import numpy as np

from . import palette, shapes
from .icons import ACCENTS
from .paint import Layer, display, linear, noise, smooth
from .panel import store_symbol, text_mask

WIDTH, HEIGHT = 761, 606
# Left, top, right and bottom in pixels of the picture. The window's controls are on these panels.
HEADER = (12, 6, 746, 47)
FOOTER = (12, 533, 746, 598)
ROWS = [(12, 72 + 76 * item, 746, 143 + 76 * item) for item in range(6)]
ITEM = (8, 65)  # the item picture's columns, from the left edge of its row

EDGE = palette.rgb(88, 104, 170)
GROUND = palette.rgb(20, 24, 52)


def box(layer, panel, inset=0.0, corner=7.0):
    left, top, right, bottom = panel
    x, y = layer.centred((left + right) / 2, (top + bottom) / 2)
    return shapes.box(x, y, (right - left) / 2 - inset, (bottom - top) / 2 - inset, corner - inset)


def plate(layer, panel, edge=EDGE):
    layer.fill(box(layer, panel), edge * 0.55, 0.9)
    shade = smooth(panel[1], panel[3], layer.y)[..., None]
    layer.fill(box(layer, panel, 1.0), GROUND * (1.15 - 0.45 * shade), 0.93)


def lettering(layer):
    """The store's sign at the left of the header."""
    accent = palette.rgb(255, 178, 24)
    bag = store_symbol(*layer.centred(36, 26))
    layer.add(np.exp(-np.clip(bag, 0, None) / 4) * 0.10, accent)
    layer.fill(bag, accent)
    mask = text_mask(layer, "POWERUPS", 21, 132, 26.5, spacing=3.0)[..., None]
    layer.light = layer.light * (1 - mask) + linear(palette.rgb(236, 240, 255)) * mask


def backdrop():
    layer = Layer(WIDTH, HEIGHT, 3)
    mist = np.clip(noise(layer.x / 190, layer.y / 190, 5, 4), 0, 2)
    layer.add(mist * 0.02, palette.rgb(60, 90, 255))
    layer.add(np.clip(noise(layer.x / 150 + 9, layer.y / 150 + 4, 6, 4), 0, 2) * 0.012, palette.rgb(200, 60, 255))
    random = np.random.RandomState(8)
    for _ in range(420):
        x, y = random.randint(0, WIDTH), random.randint(0, HEIGHT)
        tone = (20 + 120 * random.uniform() ** 3) / 255
        star = np.s_[y * layer.scale : (y + 1) * layer.scale, x * layer.scale : (x + 1) * layer.scale]
        layer.light[star] = np.maximum(layer.light[star], linear([tone] * 3))
    plate(layer, HEADER)
    plate(layer, FOOTER)
    for accent, row in zip(ACCENTS, ROWS):
        plate(layer, row)
        # The item's colour fades out behind its name.
        fade = np.clip(1 - (layer.x - row[0]) / 200, 0, 1) ** 2
        layer.add(fade * (box(layer, row, 1.0) < 0) * 0.06, accent)
        left, right = row[0] + ITEM[0], row[0] + ITEM[1]
        cell = (left - 3, row[1] + 4, right + 3, row[3] - 4)
        layer.fill(box(layer, cell, corner=4), accent * 0.4)
        layer.fill(box(layer, cell, 1.0, corner=4), (0, 0, 0))
    lettering(layer)
    return {"store": np.rint(display(layer.reduced(layer.light)) * 255).astype(np.uint8)}
