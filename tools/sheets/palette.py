"""The colours of players and particles, and the sign that belongs to each player colour.

Players differ in more than hue: the six colours have different lightness, and each has its own sign, which is on the
ball, the capture mark, the radar dot and the edge arrow.
"""

import numpy as np

from . import shapes


def rgb(*channels):
    return np.array(channels, dtype=float) / 255.0


# By colour number: red, yellow, green, cyan, blue, purple. Hues that are easily confused differ strongly in lightness:
# red is darker than green, green than cyan, blue than purple.
PLAYERS = [
    rgb(222, 10, 20),
    rgb(255, 224, 28),
    rgb(30, 176, 40),
    rgb(80, 232, 248),
    rgb(30, 56, 236),
    rgb(204, 104, 255),
]

# The colour of the sign on the ball: light on dark colours, dark on light ones.
SIGNS_LIGHT = [True, False, False, False, True, False]

# Around the colour circle, by kind of particle: red, orange, yellow, lime, green, spring green, cyan, azure, blue,
# violet, magenta.
PARTICLES = [
    rgb(255, 24, 24),
    rgb(255, 138, 16),
    rgb(255, 232, 24),
    rgb(158, 240, 24),
    rgb(32, 206, 32),
    rgb(24, 240, 140),
    rgb(32, 236, 244),
    rgb(40, 148, 255),
    rgb(48, 64, 255),
    rgb(140, 40, 255),
    rgb(255, 40, 220),
]


def sign(colour, x, y, size):
    """The signed distance to a player colour's sign, with a radius of about `size` around the origin."""
    if colour == 0:
        return shapes.ring(x, y, size * 0.68, size * 0.42)
    if colour == 1:
        return shapes.star(x, y, size * 1.12, 5, 0.45)
    if colour == 2:
        return shapes.polygon(x, y + size * 0.06, shapes.regular(3, size * 1.12))
    if colour == 3:
        return shapes.polygon(x, y, [(0, -size * 1.15), (size * 0.8, 0), (0, size * 1.15), (-size * 0.8, 0)])
    if colour == 4:
        return shapes.box(x, y, size * 0.76, size * 0.76)
    bar = size * 0.3
    return np.minimum(shapes.box(x, y, size, bar), shapes.box(x, y, bar, size))
