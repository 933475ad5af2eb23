"""The mouse pointer in twelve directions and the edge arrows of the six colours in eight."""

import numpy as np

from . import palette, shapes
from .paint import Layer, blank, cut, matte_picture, paste, smooth

# A pointer cell starts at frame * 367 twips and is 367 twips, 24 pixels, wide and high.
POINTER_TWIPS = 367


def pointer_cell(frame):
    size = 24
    layer = Layer(size, size)
    x, y = shapes.turned(*layer.centred(size / 2, size / 2), frame * np.pi / 6)
    # Its corners are on the circle that fits the cell, so that no rotation cuts one off.
    head = [(0, -11.1), (7.6, 9.0), (0, 6.0), (-7.6, 9.0)]
    outline = shapes.polygon(x, y, head) - 0.4
    inner = shapes.polygon(x, y, head) + 1.1
    layer.fill(outline, palette.rgb(0, 96, 150))
    shade = smooth(-10, 10, y)[..., None]
    tone = palette.rgb(255, 255, 255) * (1 - shade) + palette.rgb(96, 216, 255) * shade
    layer.fill(inner, tone * np.where(x < 0, 1.0, 0.80)[..., None])
    layer.within(outline)
    return layer


def pointer_sheet():
    sheet = blank(294, 49)
    sheet[24:] = 255
    for frame in range(12):
        layer = pointer_cell(frame)
        matte = layer.matte()
        left = int(frame * POINTER_TWIPS / 15 + 0.5)
        paste(sheet, cut(layer.picture(), matte), left)
        paste(sheet, matte_picture(matte), left, 24)
    return {"arrows": sheet}


# Eighth turns clockwise from straight up, by frame: up, right, down, left, then the four corners.
EDGE_TURNS = [0, 2, 4, 6, 7, 1, 5, 3]


def edge_cell(colour, frame):
    size = 18
    layer = Layer(size, size)
    turn = EDGE_TURNS[frame] * np.pi / 4
    corner = frame >= 4
    # The straight and the diagonal arrow are separate drawings, so that both fill the cell. Quarter turns give the
    # rest.
    quarter = turn + (np.pi / 4 if corner else 0)
    x, y = shapes.turned(*layer.centred(size / 2, size / 2), quarter)
    if corner:
        head = [(-8, -8), (6.4, -8), (1.6, -3.2), (8, 3.2), (3.2, 8), (-3.2, 1.6), (-8, 6.4)]
        middle = (-3.4, -3.4)
    else:
        head = [(0, -8.3), (8.3, 1.4), (3.9, 1.4), (3.9, 8.0), (-3.9, 8.0), (-3.9, 1.4), (-8.3, 1.4)]
        middle = (0, -1.4)
    outline = shapes.polygon(x, y, head) - 0.5
    inner = shapes.polygon(x, y, head) + 0.7
    base = palette.PLAYERS[colour]
    layer.fill(outline, base * 0.42)
    shade = smooth(-9, 9, y + (x if corner else 0))[..., None]
    layer.fill(inner, np.clip(base * (1.08 - 0.3 * shade), 0, 1))
    light = palette.SIGNS_LIGHT[colour]
    # The sign stays upright in every direction of the arrow.
    sx, sy = shapes.turned(x - middle[0], y - middle[1], -quarter)
    layer.fill(palette.sign(colour, sx, sy, 3.3), (1, 1, 1) if light else base * 0.1)
    layer.within(outline)
    return layer


def edge_sheets():
    sheets = {}
    for colour in range(6):
        sheet = blank(144, 18)
        mattes = blank(144, 18, 255)
        for frame in range(8):
            layer = edge_cell(colour, frame)
            matte = layer.matte()
            paste(sheet, cut(layer.picture(), matte), frame * 18)
            paste(mattes, matte_picture(matte), frame * 18)
        sheets[f"opponentArrow{colour}"] = sheet
        sheets["opponentArrowMatte"] = mattes
    return sheets
