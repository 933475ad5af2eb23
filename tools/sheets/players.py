"""The player's ball, its shield, the particles' small balls and the swatches of the players' list."""

import numpy as np

from . import palette, shapes
from .paint import Layer, blank, cut, matte_picture, noise, paste, smooth

CELL = 49
RADII = [16.6, 17.3, 18.0, 18.6]


def orb(layer, cx, cy, radius, colour, turn=0.0, life=0.5, veins=True):
    """A glossy ball of light: dark limb, turning filaments, a bright heart and a window of reflected light."""
    x, y = layer.centred(cx, cy)
    r = np.hypot(x, y) / radius
    inside = shapes.circle(x, y, radius)
    height = np.sqrt(np.clip(1 - r * r, 0, 1))
    light = np.clip((-0.45 * x - 0.6 * y) / radius + 0.75 * height, 0, 1)
    body = colour[None, None, :] * (0.30 + 0.62 * light)[..., None]
    layer.fill(inside, np.clip(body, 0, 1))
    if veins:
        swirl_x, swirl_y = shapes.turned(x, y, turn + 1.1 * (1 - r))
        bulge = 1.0 + 0.35 * r * r
        field = noise(swirl_x / radius * 2.1 * bulge + 20, swirl_y / radius * 2.1 * bulge + 20, 11)
        vein = np.exp(-np.square(field / 0.16)) * np.clip(1 - r, 0, 1) ** 0.35 * (r < 1)
        layer.add(vein * (0.28 + 0.25 * life), np.clip(colour + 0.25, 0, 1))
    rim = smooth(0.72, 0.97, r) * (r < 1)
    layer.add(rim * (0.30 + 0.25 * life) * (0.55 + 0.45 * np.clip((x + y) / (1.3 * radius), -1, 1)), colour)
    return r


def gloss(layer, cx, cy, radius, strength=1.0):
    """The reflection at the upper left."""
    x, y = layer.centred(cx - 0.33 * radius, cy - 0.52 * radius)
    u, v = shapes.turned(x, y, -0.55)
    spot = np.exp(-(np.square(u / (0.36 * radius)) + np.square(v / (0.19 * radius))) * 1.6)
    inside = shapes.circle(layer.x - cx, layer.y - cy, radius) < 0
    layer.add(spot * inside * strength, (1, 1, 1))


def player_cell(colour, frame):
    layer = Layer(CELL, CELL)
    c = CELL / 2
    base = palette.PLAYERS[colour]
    radius = RADII[frame]
    life = frame / 3
    x, y = layer.centred(c, c)
    # A thin halo hugs the ball; it is part of the shape, so it needs no mixing with what lies behind.
    halo = np.exp(-np.clip(np.hypot(x, y) - radius, 0, None) / 0.9)
    layer.add(halo * (0.30 + 0.20 * life), base)
    orb(layer, c, c, radius, base, turn=0.32 * frame, life=life)
    size = 7.3 + 0.35 * frame
    mark = palette.sign(colour, x, y, size)
    if palette.SIGNS_LIGHT[colour]:
        layer.add(np.exp(-np.clip(mark, 0, None) / 1.6) * (0.25 + 0.3 * life) * (np.hypot(x, y) < radius), base)
        layer.fill(mark - 0.9, base * 0.35, 0.55, soft=1.2)
        layer.fill(mark, 1 - (1 - base) * (0.22 - 0.12 * life), soft=0.7)
    else:
        layer.fill(mark - 0.9, 1 - (1 - base) * 0.3, 0.45 + 0.35 * life, soft=1.2)
        layer.fill(mark, base * (0.20 + 0.06 * life), soft=0.7)
    gloss(layer, c, c, radius, 0.85)
    layer.within(shapes.circle(x, y, radius + 1.1))
    return layer


def player_sheets():
    sheets = {}
    matte = None
    for colour in range(6):
        sheet = blank(4 * CELL, CELL)
        mattes = blank(4 * CELL, CELL, 255)
        for frame in range(4):
            layer = player_cell(colour, frame)
            matte = layer.matte()
            paste(sheet, cut(layer.picture(), matte), frame * CELL)
            paste(mattes, matte_picture(matte), frame * CELL)
        sheets[f"player{colour}"] = sheet
        sheets["playerMatte"] = mattes
    return sheets


def shield_cell(frame):
    layer = Layer(CELL, CELL)
    c = CELL / 2
    x, y = layer.centred(c, c)
    radius = 21.2 + 0.25 * frame
    r = np.hypot(x, y)
    angle = np.arctan2(y, x)
    outer = shapes.ring(x, y, radius, 4.4)
    across = (r - radius) / 2.2
    layer.fill(outer, palette.rgb(20, 70, 120))
    layer.add(np.exp(-np.square(across / 0.55)) * (outer < 0), palette.rgb(90, 200, 255))
    # Six bright arcs wander round the ring while it breathes.
    arcs = 0.5 + 0.5 * np.cos(6 * (angle - frame * np.pi / 12))
    layer.add(np.exp(-np.square(across / 0.42)) * arcs**3 * (0.75 + 0.08 * frame), palette.rgb(255, 255, 255))
    layer.light *= (outer < 0)[..., None]
    layer.within(outer)
    return layer


def shield_sheet():
    sheet = blank(4 * CELL, 2 * CELL)
    sheet[CELL:] = 255
    for frame in range(4):
        layer = shield_cell(frame)
        matte = layer.matte()
        paste(sheet, cut(layer.picture(), matte), frame * CELL)
        paste(sheet, matte_picture(matte), frame * CELL, CELL)
    return {"shield": sheet}


def small_balls():
    size = 21
    sheet = blank(11 * size, size)
    matte = None
    for kind, colour in enumerate(palette.PARTICLES):
        layer = Layer(size, size)
        c = size / 2
        orb(layer, c, c, 8.6, colour, life=0.6, veins=False)
        x, y = layer.centred(c, c)
        layer.add(np.exp(-np.square(np.hypot(x + 1, y + 1) / 4.2)) * 0.35, np.clip(colour + 0.35, 0, 1))
        gloss(layer, c, c, 8.6, 0.9)
        layer.within(shapes.circle(x, y, 9.0))
        matte = layer.matte()
        paste(sheet, cut(layer.picture(), matte), kind * size)
    return {"balls": sheet, "ballMatte": matte_picture(matte)}


def swatches():
    sheets = {}
    for colour, base in enumerate(palette.PLAYERS):
        layer = Layer(21, 21)
        c = 10.5
        x, y = layer.centred(c, c)
        orb(layer, c, c, 9.4, base, life=0.8, veins=False)
        mark = palette.sign(colour, x, y, 4.6)
        light = palette.SIGNS_LIGHT[colour]
        layer.fill(mark, 1 - (1 - base) * 0.12 if light else base * 0.2, soft=0.4)
        gloss(layer, c, c, 9.4, 0.6)
        sheets[f"userColor{colour}"] = layer.picture()
    return sheets
