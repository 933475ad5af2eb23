"""The nine effects. Each has a shape that is recognised at once: falling, rising, humming, banging."""

import numpy as np

from sounds.loudness import loudest
from sounds.synth import (RATE, band, convolved, faded, frequency, moving_band, noise, phase, room_response,
                          rounded_off, saw, seconds, strike, sweep, swell)

CEILING = 0.55  # so that an effect over the music doesn't clip


def mixed(length, *layers):
    """Mixes layers of (start in seconds, samples) into one sound."""
    result = np.zeros(int(round(length * RATE)))
    for start, samples in layers:
        first = int(round(start * RATE))
        count = min(len(samples), len(result) - first)
        result[first:first + count] += samples[:count]
    return result


def in_a_room(samples, amount, length, seed):
    """Adds a little reverb."""
    return samples + amount * convolved(samples, room_response(length, seed, 250, 5000))[:len(samples)]


def glass(pitch, length, decay, hardness=1.4):
    """Struck glass: bright at first, mellow soon after."""
    time = seconds(length)
    turn = 2 * np.pi * pitch * time
    wobble = hardness * np.exp(-time / (0.25 * decay)) * np.sin(3 * turn)
    return np.sin(turn + wobble) * strike(time, 0.003, decay)


def capture():
    """A closing net: a rush of air upwards, a snap with a thump, and the catch falls away in glass."""
    time = seconds(0.15)
    rush = moving_band(noise(len(time), 11), sweep(500, 4200, time, 0.5), 0.9)
    rush *= (time / time[-1]) ** 1.5 * swell(time, 0.02, 0.012)
    time = seconds(0.32)
    thump = np.sin(phase(46 + 190 * np.exp(-time / 0.035))) * strike(time, 0.003, 0.1)
    snap = band(noise(1800, 16), 900, 5200) * strike(seconds(1800 / RATE), 0.001, 0.012)
    fall = [(0.16 + 0.075 * step, 0.62 * 0.97**step * glass(frequency(note), 0.5, 0.085))
            for step, note in enumerate((86, 81, 77, 74))]
    dry = mixed(0.95, (0, 2.2 * rush), (0.13, 1.0 * thump), (0.13, 0.5 * snap), *fall)
    return in_a_room(dry, 0.35, 0.7, 41)


def bounce():
    """Rubber against a wall: a dull hit, then a round tone that springs up and wobbles. Short, because it is
    frequent."""
    time = seconds(0.28)
    pitch = 205 + 235 * (1 - np.exp(-time / 0.035)) + 32 * np.sin(2 * np.pi * 17 * time) * np.exp(-time / 0.09)
    turn = phase(pitch)
    tone = np.sin(turn) + 0.32 * np.sin(2 * turn) * np.exp(-time / 0.05) + 0.1 * np.sin(3 * turn) * np.exp(-time / 0.03)
    tone *= strike(time, 0.004, 0.07)
    touch = band(noise(len(time), 17), 250, 1500) * strike(time, 0.002, 0.012)
    thud = np.sin(phase(60 + 90 * np.exp(-time / 0.03))) * strike(time, 0.003, 0.045)
    return tone + 0.5 * touch + 0.5 * thud


def error():
    """Two low descending notes, hollow like a clarinet: no."""
    def reed(note, length):
        time = seconds(length)
        tone = saw(frequency(note), time, 900 + 900 * np.exp(-time / 0.05), odd=True)
        tone += 0.35 * saw(1.006 * frequency(note), time, 1200, odd=True)
        return tone * swell(time, 0.008, 0.07) * np.exp(-time / 0.35)
    dry = mixed(0.5, (0, 0.85 * reed(59, 0.17)), (0.165, reed(53, 0.3)))
    return in_a_room(dry, 0.15, 0.25, 42)


def shield():
    """A warm chord that opens and closes like a dome, with a shimmer on top."""
    layers = []
    for step, note in enumerate((50, 57, 62, 66, 69, 73)):
        time = seconds(1.35 - 0.045 * step)
        cut = 350 + 2600 * np.sin(np.pi * np.clip(time / 1.15, 0, 1)) ** 2
        tone = saw(frequency(note), time, cut) + saw(1.005 * frequency(note), time, cut, start=2 + step)
        layers.append((0.045 * step, (1.1 - 0.1 * step) * tone * swell(time, 0.05, 0.85)))
    time = seconds(1.2)
    top = sum(np.sin(2 * np.pi * frequency(note) * time) * (1 + 0.6 * np.sin(2 * np.pi * (6 + rate) * time))
              for rate, note in enumerate((86, 90, 93)))
    layers.append((0.15, 0.28 * top * swell(time, 0.3, 0.8)))
    return in_a_room(mixed(1.5, *layers), 0.35, 1.1, 43)


def turbo():
    """An engine that ignites and races up through its gears, in a rush of passing air."""
    time = seconds(1.1)
    progress = time / time[-1]
    pitch = 62 * 2 ** (2.1 * progress**0.75) * (1 - 0.16 * np.exp(-((progress - 0.42) / 0.035) ** 2))
    engine = saw(pitch, time, 500 + 2200 * progress, 1.2) + saw(pitch * 1.5, time, 400 + 1500 * progress, start=1)
    growl = 1 + 0.5 * np.sin(phase(pitch / 2))
    air = moving_band(noise(len(time), 12), 380 * 2 ** (3.2 * progress), 1.1) * (0.3 + progress) * 1.1
    light = np.sin(phase(45 + 120 * np.exp(-time / 0.04))) * strike(time, 0.003, 0.1)
    body = (0.5 * engine * growl + 1.9 * air) * swell(time, 0.04, 0.42)
    return in_a_room(body + 0.8 * light, 0.2, 0.5, 44)


def charged_tail():
    """Electricity: a growing mains hum, sparks over it, and the rising whine of charging."""
    time = seconds(1.1)
    progress = time / time[-1]
    flutter = 0.62 + 0.38 * np.tanh(3 * np.sin(2 * np.pi * (22 + 14 * progress) * time))
    hum = band(saw(110, time, 1200 + 1100 * progress, 0.8), 160, 3600) * flutter
    whine = np.sin(phase(420 * 2 ** (1.3 * progress)) + 0.8 * np.sin(2 * np.pi * 55 * time)) * progress**1.2
    sparks = np.zeros(len(time))
    chance = np.random.default_rng(13)
    for start in np.sort(chance.uniform(0.02, 0.85, 32)):
        spark = seconds(0.035)
        shape = band(chance.uniform(-1, 1, len(spark)), 1100, 4800) * strike(spark, 0.001, chance.uniform(0.003, 0.01))
        first = int(start * RATE)
        sparks[first:first + len(shape)] += shape * chance.uniform(0.4, 2.2)
    return in_a_room((0.6 * hum + 0.25 * whine + 1.2 * sparks) * swell(time, 0.03, 0.35), 0.2, 0.4, 45)


def long_tail():
    """Something being stretched: one voice that glides up and up, leaving a ladder of echoes."""
    time = seconds(1.3)
    progress = np.clip(time / 0.85, 0, 1)
    pitch = frequency(57) * 2 ** (1.58 * progress**1.4) * (1 + 0.008 * np.sin(2 * np.pi * 6.5 * time))
    turn = phase(pitch)
    voice = np.sin(turn + 0.7 * np.sin(2 * turn) * (1 - 0.6 * progress)) * swell(time, 0.05, 0.5)
    ladder = []
    for step, note in enumerate((57, 62, 64, 69, 71, 76)):
        for echo in range(4):
            start = 0.05 + 0.125 * step + 0.19 * echo
            if start < 1.15:
                ladder.append((start, 0.5 * 0.5**echo * glass(frequency(note + 12), 0.35, 0.1, 0.9)))
    return in_a_room(mixed(1.5, (0, 0.8 * voice), *ladder), 0.3, 0.9, 46)


def laser():
    """A beam: a tone that falls from high up, sizzles at its source, and echoes once from afar."""
    time = seconds(0.5)
    turn = phase(160 + 2300 * np.exp(-time / 0.085))
    beam = np.sin(turn + 1.1 * np.sin(0.5 * turn)) + 0.3 * np.sin(1.007 * turn)
    beam *= (1 + 0.35 * np.sin(2 * np.pi * 62 * time)) * strike(time, 0.004, 0.13)
    sizzle = moving_band(noise(len(time), 14), sweep(6500, 1500, time, 2), 1.0) * strike(time, 0.002, 0.05)
    shot = beam + 0.9 * sizzle
    dry = mixed(0.7, (0, shot), (0.13, 0.28 * band(shot, 250, 2500)))
    return in_a_room(dry, 0.2, 0.5, 47)


def missile():
    """The pulse: a deep bang, a wave rolling outwards, and all machines running down."""
    time = seconds(1.7)
    bang = np.sin(phase(36 + 150 * np.exp(-time / 0.06))) * strike(time, 0.004, 0.4)
    wave = moving_band(noise(len(time), 15), 70 + 1500 * np.exp(-time / 0.22), 1.6) * strike(time, 0.006, 0.3)
    roll = moving_band(noise(len(time), 18), sweep(140, 900, time, 2), 0.8) * swell(time, 0.35, 1.1)
    slower = np.sin(phase(7 + 40 * np.exp(-time / 0.4)))
    down = saw(70 + 620 * np.exp(-time / 0.33), time, 250 + 1900 * np.exp(-time / 0.4)) * (0.6 + 0.4 * slower)
    down *= swell(time, 0.1, 1.2)
    return in_a_room(np.tanh(1.3 * bang) + 2.6 * wave + 1.0 * roll + 0.34 * down, 0.35, 1.3, 48)


# The loudness of the loudest tenth of a second, in LUFS. Frequent sounds are quieter than decisive ones.
LOUDNESS = {"capture": -13.5, "bounce": -17, "error": -16, "puShield": -15, "puTurbo": -14.5, "puChargedTail": -15,
            "puLongTail": -15, "puLaser": -14.5, "puMissile": -13.5}
MAKERS = {"capture": capture, "bounce": bounce, "error": error, "puShield": shield, "puTurbo": turbo,
          "puChargedTail": charged_tail, "puLongTail": long_tail, "puLaser": laser, "puMissile": missile}


def finished(samples, level):
    """Normalises to the effect's loudness, with no peak above the ceiling and silence at both ends."""
    clean = faded(band(samples, 35, 15000), 0.002, 0.03)
    result = clean
    for _ in range(4):  # rounding off a peak costs some loudness
        clean = clean * 10 ** ((level - loudest(result)) / 20)
        result = rounded_off(clean, CEILING)
    # Rounding off peaks can leave a DC offset. A curve that is zero at both ends removes it.
    arch = np.sin(np.pi * np.arange(len(result)) / (len(result) - 1)) ** 2
    return result - np.mean(result) / np.mean(arch) * arch


def all_effects():
    for name, make in MAKERS.items():
        yield name, finished(make(), LOUDNESS[name])
