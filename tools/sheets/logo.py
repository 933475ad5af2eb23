"""The title picture and the application's icon."""

import numpy as np
from PIL import Image

from . import palette, shapes
from .paint import Layer, noise
from .panel import text_mask
from .players import gloss, orb

WIDTH, HEIGHT = 763, 608


def draw(path):
    layer = Layer(WIDTH, HEIGHT, 2)
    Image.fromarray(layer.picture(), "RGB").save(path, quality=92)


def draw_icons(assets):
    pass
