#!/usr/bin/python3
"""Synthesises all of the game's sounds and music. See README.md beside this file."""

import argparse
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # no bytecode in the source tree

from sounds import effects, pieces
from sounds.synth import write_wave

ROOT = pathlib.Path(__file__).resolve().parent.parent
BIT_RATE = 112  # average kbit/s: about a megabyte per piece
SCALE = 1 / 0.95  # with an average bit rate, the encoder scales everything to 0.95


def make_effects(folder):
    for name, samples in effects.all_effects():
        write_wave(folder / f"{name}.wav", samples)
        print(folder / f"{name}.wav")


def make_music(folder, chosen):
    for name, samples in pieces.all_pieces(chosen):
        with tempfile.TemporaryDirectory() as temporary:
            wave = pathlib.Path(temporary) / "piece.wav"
            write_wave(wave, samples)
            target = folder / f"{name}.mp3"
            options = ["-q", "2", "-m", "j", "--abr", f"{BIT_RATE}", "--scale", f"{SCALE:.4f}", "--lowpass", "16"]
            subprocess.run(["lame", "--quiet", *options, str(wave), str(target)], check=True)
        print(target)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--only", choices=["effects", "music"])
    parser.add_argument("--piece", help="one piece of music by its name")
    parser.add_argument("--output", type=pathlib.Path, default=ROOT / "sounds")
    arguments = parser.parse_args()
    arguments.output.mkdir(parents=True, exist_ok=True)
    if arguments.only != "music" and not arguments.piece:
        make_effects(arguments.output)
    if arguments.only != "effects":
        make_music(arguments.output, arguments.piece)


if __name__ == "__main__":
    main()
