"""The player's ball, its shield, the particles' small balls and the swatches of the players' list."""

import numpy as np

from . import palette, shapes
from .paint import Layer, blank, cut, linear, matte_picture, noise, paste, smooth

CELL = 49
# The ball pulsates: its radius by frame.
RADII = [17.0, 17.5, 18.1, 18.8]
GLOW = 2.6  # pixels of light around the ball that belong to the sprite


def orb(layer, cx, cy, radius, colour, life=0.5, plasma=None):
    """A ball of lit glass: dark towards the lower right, with light gathering again at that rim. `plasma` rotates the
    clouds inside by this angle in radians."""
    x, y = layer.centred(cx, cy)
    r = np.hypot(x, y) / radius
    inside = shapes.circle(x, y, radius)
    height = np.sqrt(np.clip(1 - r * r, 0, 1))
    light = np.clip((-0.42 * x - 0.58 * y) / radius + 0.70 * height, 0, 1)
    lively = np.clip(colour * 1.15 + 0.10, 0, 1)
    tone = (0.44 + 0.64 * light)[..., None]
    layer.fill(inside, np.clip(colour ** (1.5 - 0.5 * tone) * tone, 0, 1), soft=0.8)
    # Light gathers where it leaves the glass, opposite the light source.
    behind = np.clip((0.60 * x + 0.80 * y) / radius, 0, 1)
    layer.add(behind**1.5 * np.clip(r, 0, 1) ** 3 * (r < 1) * (0.30 + 0.28 * life), lively)
    if plasma is not None:
        # The clouds inside are seen through the curved glass and fade towards its edge.
        u, v = shapes.turned(x / radius, y / radius, plasma + 1.1 * (1 - r))
        field = noise(u * 1.9 + 20, v * 1.9 + 20, 11, 2)
        edge = 1 - smooth(0.66, 1.0, r)
        layer.light *= (1 - 0.50 * smooth(0.0, 0.7, -field) * edge)[..., None]
        layer.add(smooth(0.05, 0.9, field) * edge * (0.22 + 0.30 * life), lively)
    layer.light *= (1 - 0.40 * smooth(0.80, 1.0, r) * (r < 1) * (1 - behind))[..., None]
    return r


def rim(layer, cx, cy, radius, colour, strength=0.78, width=2.3):
    """Light in the edge of the glass, at least this strong all around. Only the edge remains of a ghost."""
    x, y = layer.centred(cx, cy)
    out = shapes.circle(x, y, radius)
    caught = 1 - smooth(0.5, 1.6, np.abs(out + 1.0))
    layer.light = np.maximum(layer.light, linear(colour * strength) * caught[..., None])
    layer.clear(shapes.ring(x, y, radius + 0.4 - width / 2, width))


def gloss(layer, cx, cy, radius, strength=1.0):
    """The reflection at the upper left: a bright window with a sharp lower edge."""
    x, y = layer.centred(cx - 0.30 * radius, cy - 0.52 * radius)
    u, v = shapes.turned(x, y, -0.52)
    spot = np.hypot(u / (0.46 * radius), v / (0.22 * radius))
    inside = shapes.circle(layer.x - cx, layer.y - cy, radius * 0.95) < 0
    layer.add((1 - smooth(0.35, 1.15, spot)) * smooth(1.3, -0.9, v / (0.22 * radius)) * inside * strength, (1, 1, 1))


def marked(layer, colour, cx, cy, size, edge=0.55, strength=1.0):
    """The player's sign on the ball, with an outline of contrasting lightness."""
    base = palette.PLAYERS[colour]
    mark = palette.sign(colour, *layer.centred(cx, cy), size)
    if palette.SIGNS_LIGHT[colour]:
        layer.fill(mark - edge * size / 5, base * 0.20, 0.85, soft=0.12 * size)
        layer.fill(mark, 1 - (1 - base) * 0.14 * (2 - strength), soft=0.07 * size)
    else:
        layer.fill(mark - edge * size / 5, 1 - (1 - base) * 0.45, 0.60, soft=0.16 * size)
        layer.fill(mark, base * 0.13 * (2 - strength), soft=0.07 * size)
    return mark


def player_cell(colour, frame):
    layer = Layer(CELL, CELL)
    c = CELL / 2
    base = palette.PLAYERS[colour]
    radius = RADII[frame]
    life = frame / 3
    x, y = layer.centred(c, c)
    # The glow fades to black where the shape ends: on the black canvas the ball's only edge is light.
    out = np.hypot(x, y) - radius
    layer.add(np.clip(1 - out / GLOW, 0, 1) ** 2 * (0.30 + 0.30 * life), base)
    orb(layer, c, c, radius, base, life=life, plasma=0.30 * frame)
    marked(layer, colour, c, c, 8.8 + 0.3 * frame, strength=0.7 + 0.3 * life)
    gloss(layer, c, c, radius, 0.75)
    # Dark colours get more of it, because eyes see little of blue and red light.
    rim(layer, c, c, radius, base, strength=0.84 if palette.SIGNS_LIGHT[colour] else 0.78)
    layer.within(shapes.circle(x, y, radius + GLOW))
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
    radius = 21.0 + 0.25 * frame
    r = np.hypot(x, y)
    angle = np.arctan2(y, x)
    outer = shapes.ring(x, y, radius, 4.2)
    across = (r - radius) / 2.1
    # Outside, the light fades to black as on the balls. Inside is the ball.
    layer.add(np.clip(1 - outer / 1.2, 0, 1) ** 2 * 0.30, palette.rgb(40, 120, 255))
    layer.fill(outer, palette.rgb(20, 74, 140), soft=0.8)
    layer.add(np.exp(-np.square(across / 0.55)) * (outer < 0), palette.rgb(70, 190, 255))
    # Six bright arcs move around the ring while it pulsates.
    arcs = 0.5 + 0.5 * np.cos(6 * (angle - frame * np.pi / 12))
    layer.add(np.exp(-np.square(across / 0.42)) * arcs**3 * (0.80 + 0.10 * frame), palette.rgb(255, 255, 255))
    shape = np.where(r < radius, outer, outer - 1.0)
    layer.light *= (shape < 0)[..., None]
    layer.within(shape)
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
        x, y = layer.centred(c, c)
        out = np.hypot(x, y) - 8.2
        layer.add(np.clip(1 - out / 1.8, 0, 1) ** 2 * 0.35, colour)
        orb(layer, c, c, 8.2, colour, life=0.6)
        layer.add(np.exp(-np.square(np.hypot(x + 0.5, y + 0.5) / 3.6)) * 0.30, 1 - (1 - colour) * 0.6)
        gloss(layer, c, c, 8.2, 0.85)
        rim(layer, c, c, 8.2, colour, width=1.9)
        layer.within(shapes.circle(x, y, 10.0))
        matte = layer.matte()
        paste(sheet, cut(layer.picture(), matte), kind * size)
    return {"balls": sheet, "ballMatte": matte_picture(matte)}


def swatches():
    sheets = {}
    for colour, base in enumerate(palette.PLAYERS):
        layer = Layer(21, 21)
        c = 10.5
        orb(layer, c, c, 9.4, base, life=0.8)
        marked(layer, colour, c, c, 4.9, edge=0.3)
        gloss(layer, c, c, 9.4, 0.45)
        sheets[f"userColor{colour}"] = layer.picture()
    return sheets
