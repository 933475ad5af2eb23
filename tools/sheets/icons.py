"""The powerups' icons: six on the canvas, and larger ones for the store."""

import numpy as np

from . import palette, shapes
from .paint import Layer, cut, matte_picture, smooth
from .players import gloss, orb

ACCENTS = [
    palette.rgb(80, 190, 255),
    palette.rgb(255, 150, 30),
    palette.rgb(255, 240, 90),
    palette.rgb(255, 84, 120),
    palette.rgb(60, 255, 90),
    palette.rgb(210, 110, 255),
]


class Easel:
    """A layer with coordinates from -1 to 1, so that one drawing serves every size."""

    def __init__(self, width, height):
        self.layer = Layer(width, height)
        self.unit = min(width, height) / 2
        self.cx, self.cy = width / 2, height / 2
        self.x = (self.layer.x - self.cx) / self.unit
        self.y = (self.layer.y - self.cy) / self.unit

    def fill(self, distance, colour, opacity=1.0, soft=0.0):
        self.layer.fill(distance * self.unit, colour, opacity, soft)

    def glow(self, distance, colour, reach, strength):
        plate = self.plate(0.12) < 0
        self.layer.add(np.exp(-np.clip(distance, 0, None) / reach) * strength * plate, colour)

    def ball(self, x, y, radius, colour):
        cx, cy = self.cx + x * self.unit, self.cy + y * self.unit
        orb(self.layer, cx, cy, radius * self.unit, colour, life=0.7)
        gloss(self.layer, cx, cy, radius * self.unit, 0.7)

    def plate(self, inset=0.0):
        half_width = self.cx / self.unit - 0.02 - inset
        half_height = self.cy / self.unit - 0.02 - inset
        return shapes.box(self.x, self.y, half_width, half_height, 0.34 - inset * 0.6)

    def background(self, accent):
        down = smooth(-1, 1, self.y)[..., None]
        self.fill(self.plate(), accent * 0.62)
        self.fill(self.plate(0.055), accent * 0.12)
        self.fill(self.plate(0.10), accent * (0.30 - 0.20 * down) + 0.03)


def shield(e):
    accent = ACCENTS[0]
    e.ball(0, 0.04, 0.36, palette.PLAYERS[0])
    ring = shapes.ring(e.x, e.y - 0.04, 0.62, 0.15)
    e.glow(ring, accent, 0.10, 0.5)
    e.fill(ring, accent)
    angle = np.arctan2(e.y - 0.04, e.x)
    e.fill(np.maximum(ring + 0.04, 0.3 - np.cos(3 * (angle + 1.2))), (1, 1, 1), soft=0.6)


def turbo(e):
    accent = ACCENTS[1]
    for i, tone in enumerate((0.4, 0.7, 1.0)):
        x = e.x - (-0.50 + 0.40 * i)
        mark = shapes.stroke(x, e.y - 0.05, [(-0.16, -0.46), (0.24, 0), (-0.16, 0.46)], 0.21)
        if i == 2:
            e.glow(mark, accent, 0.12, 0.5)
        e.fill(mark, accent * tone + (0.12 if i == 2 else 0))


BOLT = [(0.16, -0.66), (-0.34, 0.12), (-0.03, 0.12), (-0.18, 0.70), (0.36, -0.14), (0.05, -0.14)]


def tail_line(points, thin, thick):
    line = shapes.curve(points)
    return line, np.linspace(thin, thick, len(line))


def charged(e):
    line, widths = tail_line([(-0.72, 0.58), (-0.45, 0.1), (0.0, 0.36), (0.40, -0.08), (0.50, -0.38)], 0.06, 0.26)
    e.fill(shapes.stroke(e.x, e.y, line, widths), palette.rgb(210, 40, 30))
    e.ball(0.50, -0.44, 0.26, palette.PLAYERS[0])
    bolt = shapes.polygon(e.x + 0.22, e.y - 0.02, BOLT)
    e.glow(bolt, ACCENTS[2], 0.12, 0.7)
    e.fill(bolt - 0.06, palette.rgb(40, 30, 0))
    e.fill(bolt, palette.rgb(255, 250, 150))


def extended(e):
    points = [(-0.68, 0.66), (0.10, 0.68), (0.66, 0.50), (0.42, 0.20), (-0.28, 0.20), (-0.66, -0.02), (-0.36, -0.30)]
    points += [(0.10, -0.34), (0.40, -0.44)]
    line, widths = tail_line(points, 0.06, 0.24)
    trail = shapes.stroke(e.x, e.y, line, widths)
    e.glow(trail, ACCENTS[3], 0.06, 0.25)
    e.fill(trail, palette.rgb(255, 60, 96))
    e.ball(0.46, -0.46, 0.28, palette.PLAYERS[0])


def laser(e):
    beam = shapes.segment(e.x, e.y, (-0.36, 0.40), (1.6, -1.30), 0.26)
    inside = e.plate(0.10)
    e.layer.add(np.exp(-np.clip(beam, 0, None) / 0.12) * 0.6 * (inside < 0), ACCENTS[4])
    e.fill(np.maximum(beam, inside), (1, 1, 1))
    core = shapes.segment(e.x, e.y, (-0.36, 0.40), (1.6, -1.30), 0.11)
    e.fill(np.maximum(core, inside), palette.rgb(0, 220, 40))
    e.ball(-0.38, 0.42, 0.30, palette.PLAYERS[4])


def pulse(e):
    accent = ACCENTS[5]
    y = e.y - 0.03
    r = np.hypot(e.x, y)
    for radius, tone in ((0.74, 0.55), (0.50, 0.85)):
        wave = np.abs(r - radius - 0.05 * np.cos(9 * np.arctan2(y, e.x))) - 0.055
        e.glow(wave, accent, 0.05, 0.3 * tone)
        e.fill(wave, accent * tone)
    star = shapes.star(e.x, y, 0.40, 8, 0.45)
    e.glow(star, accent, 0.15, 0.8)
    e.fill(star, (1, 1, 1))


DRAWINGS = [shield, turbo, charged, extended, laser, pulse]

# Letters four by seven pixels, for the key that fires the powerup.
PIXEL_FONT = {
    "F": "#### #... #... ###. #... #... #...",
    "1": ".#.. ##.. .#.. .#.. .#.. .#.. ###.",
    "2": ".##. #..# ...# ..#. .#.. #... ####",
    "3": "###. ...# ...# .##. ...# ...# ###.",
    "4": "..#. .##. #.#. #.#. #### ..#. ..#.",
    "5": "#### #... ###. ...# ...# #..# .##.",
    "6": ".##. #... #... ###. #..# #..# .##.",
}


def key_label(picture, text, left, top):
    """Writes the key pixel by pixel on a dark background: at this size, averaged letters would blur."""
    width = 5 * len(text) + 1
    ground = picture[top - 1 : top + 8, left - 1 : left - 1 + width]
    ground[...] = ground // 5
    for index, letter in enumerate(text):
        for row, bits in enumerate(PIXEL_FONT[letter].split()):
            for column, bit in enumerate(bits):
                if bit == "#":
                    picture[top + row, left + 5 * index + column] = (226, 242, 255)


def drawn(slot, width, height):
    easel = Easel(width, height)
    easel.background(ACCENTS[slot])
    DRAWINGS[slot](easel)
    easel.layer.within(easel.plate())
    return easel.layer


def action_icons():
    sheets = {}
    for slot in range(6):
        layer = drawn(slot, 41, 42)
        matte = layer.matte()
        picture = cut(layer.picture(), matte)
        key_label(picture, f"F{slot + 1}", 5, 5)
        sheets[f"action{slot + 1}"] = cut(picture, matte)
        sheets["action0"] = matte_picture(matte)
    return sheets


def store_pictures():
    """The item pictures of the store window."""
    return {f"storeItem{slot}": drawn(slot, 57, 57).picture() for slot in range(6)}
