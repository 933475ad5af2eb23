#!/usr/bin/python3
"""Draws every picture of the game. See README.md beside this file."""

import argparse
import pathlib
import sys

sys.dont_write_bytecode = True  # no bytecode in the source tree

from sheets import backdrop, icons, logo, panel, players, pointers, setup
from sheets.paint import save

ROOT = pathlib.Path(__file__).resolve().parent.parent


def sheets():
    drawings = [
        players.player_sheets,
        players.shield_sheet,
        players.small_balls,
        players.swatches,
        pointers.pointer_sheet,
        pointers.edge_sheets,
        panel.radar_blips,
        panel.caps,
        panel.buttons,
        panel.radar_grid,
        panel.null,
        icons.action_icons,
        icons.store_pictures,
        backdrop.backdrop,
    ]
    result = {}
    for drawing in drawings:
        result.update(drawing())
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--output", type=pathlib.Path, default=ROOT, help="folder for the pictures, as in the project")
    parser.add_argument("--only", choices=["sheets", "logo", "icon", "setup"], help="draw just these")
    options = parser.parse_args()
    assets = options.output / "assets"
    assets.mkdir(parents=True, exist_ok=True)
    if options.only in (None, "sheets"):
        for name, picture in sorted(sheets().items()):
            save(assets / f"{name}.png", picture)
    if options.only in (None, "logo"):
        logo.draw(options.output / "kelvora.jpg")
    if options.only in (None, "icon"):
        logo.draw_icons(assets)
    if options.only in (None, "setup"):
        folder = options.output / "packaging" / "windows"
        folder.mkdir(parents=True, exist_ok=True)
        setup.draw(folder / "setup.bmp")


if __name__ == "__main__":
    main()
