#!/usr/bin/python3
"""Shows the sheets as the game paints them: over stars, with the shield, and with the raster operations exchanged as
for a dead player. Writes PREFIX-stage.png, PREFIX-bar.png (enlarged four times) and PREFIX-plain.png (original size):
contact_sheet.py PREFIX [ASSETS]"""

import pathlib
import sys

import numpy as np
from PIL import Image

ASSETS = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else pathlib.Path(__file__).resolve().parent.parent / "assets"


def load(name):
    return np.asarray(Image.open(ASSETS / f"{name}.png").convert("RGB")).copy()


def sprite(target, x, y, matte, image, dead=False):
    height, width = image.shape[:2]
    spot = target[y : y + height, x : x + width]
    spot[...] = (spot | matte) & image if dead else (spot & matte) | image


def sky(width, height):
    random = np.random.RandomState(1)
    result = np.zeros((height, width, 3), dtype=np.uint8)
    for _ in range(width * height // 160):
        x, y = random.randint(0, width - 3), random.randint(0, height - 3)
        size = random.randint(1, 4)
        result[y : y + size, x : x + size] = random.randint(60, 256, 3)
    result[height // 2 - 6 : height // 2 + 6, :] = (200, 0, 0)
    return result


def stage():
    canvas = sky(570, 330)
    matte, shield, arrow_matte = load("playerMatte"), load("shield"), load("opponentArrowMatte")
    for colour in range(6):
        image, arrows = load(f"player{colour}"), load(f"opponentArrow{colour}")
        for frame in range(4):
            cell = slice(frame * 49, frame * 49 + 49)
            sprite(canvas, 4 + frame * 50, 4 + colour * 50, matte[:, cell], image[:, cell])
            sprite(canvas, 256 + frame * 50, 4 + colour * 50, matte[:, cell], image[:, cell], dead=True)
        cell = slice(49, 98)
        sprite(canvas, 206, 4 + colour * 50, matte[:, cell], image[:, cell])
        sprite(canvas, 206, 4 + colour * 50, shield[49:, cell], shield[:49, cell])
        for frame in range(8):
            cell = slice(frame * 18, frame * 18 + 18)
            left, top = 462 + frame % 4 * 20, 4 + colour * 50 + frame // 4 * 20
            sprite(canvas, left, top, arrow_matte[:, cell], arrows[:, cell])
    return canvas


def bar():
    canvas = sky(570, 220)
    canvas[::3, ::3] |= 40
    icons = load("action0")
    for slot in range(6):
        sprite(canvas, 4 + slot * 43, 4, icons, load(f"action{slot + 1}"))
    balls, ball_matte = load("balls"), load("ballMatte")
    for kind in range(11):
        cell = slice(kind * 21, kind * 21 + 21)
        sprite(canvas, 4 + kind * 23, 50, ball_matte, balls[:, cell])
        sprite(canvas, 4 + kind * 23, 194, ball_matte, balls[:, cell], dead=True)
    arrows = load("arrows")
    for frame in range(12):
        left = int(frame * 367 / 15 + 0.5)
        cell = slice(left, left + 24)
        sprite(canvas, 4 + frame * 26, 76, arrows[24:48, cell], arrows[:24, cell])
    grid = load("radarGrid")
    blips = load("radarBlips")
    for colour in range(6):
        left = int(colour * 960 / 7 / 15 + 0.5)
        sprite(grid, 8 + colour * 16, 20 + colour * 9, blips[:, 55:64], blips[:, left : left + 9])
    canvas[4:97, 300:417] = grid
    canvas[104:144, 4:102], canvas[104:144, 104:202] = load("btnPlay0"), load("btnPlay1")
    canvas[146:186, 4:102], canvas[146:186, 104:202] = load("btnStore0"), load("btnStore1")
    canvas[104:115, 210:275] = load("caps")
    for colour in range(6):
        canvas[120:141, 210 + colour * 23 : 231 + colour * 23] = load(f"userColor{colour}")
    return canvas


def main():
    scale = 4
    parts = [np.repeat(np.repeat(part, scale, 0), scale, 1) for part in (stage(), bar())]
    for name, part in zip(("stage", "bar"), parts):
        Image.fromarray(part).save(f"{sys.argv[1]}-{name}.png")
    plain = np.concatenate([stage(), bar()])
    Image.fromarray(plain).save(f"{sys.argv[1]}-plain.png")


if __name__ == "__main__":
    main()
