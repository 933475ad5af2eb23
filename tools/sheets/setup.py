"""The picture beside the last page of the installer for Windows."""

import numpy as np
from PIL import Image

from . import palette
from .logo import Tail, player_ball, space
from .paint import Layer
from .panel import text_mask

WIDTH, HEIGHT = 164, 314  # pixels, as the installer wants it


def draw(path):
    """The cyan player has closed a loop around the red one, and two others pass by."""
    layer = Layer(WIDTH, HEIGHT, 4)
    space(layer)
    for colour, points in ((1, [(176, 214), (140, 236), (120, 262), (136, 284)]),
                           (5, [(-10, 306), (24, 292), (40, 262), (66, 250)])):
        Tail(layer, points, 2, 8).paint(layer, palette.PLAYERS[colour])
        player_ball(layer, *points[-1], 11, colour)
    turns = np.linspace(0.85 - 2 * np.pi * 1.06, 0.85, 48)
    loop = [(WIDTH / 2 + 50 * np.sin(turn), 148 - 50 * np.cos(turn)) for turn in turns]
    Tail(layer, loop, 4, 12, steps=4).paint(layer, palette.PLAYERS[3], reach=8.0)
    player_ball(layer, WIDTH / 2, 148, 22, 0)
    player_ball(layer, *loop[-1], 16, 3)
    name = text_mask(layer, "KELVORA", 25, WIDTH / 2, 46, spacing=2.2)[..., None]
    layer.light = layer.light * (1 - name) + palette.rgb(190, 220, 255) * name
    Image.fromarray(layer.picture(), "RGB").save(path)
