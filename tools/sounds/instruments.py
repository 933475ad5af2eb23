"""The tuned instruments. Each function makes one note of a length in seconds, mono or stereo (two rows), with a level
of about 1."""

import functools

import numpy as np

from sounds.synth import band, frequency, moving_band, noise, partials, phase, saw, seconds, strike, swell


def _chance(note, salt=0):
    return np.random.default_rng(1000 * salt + int(note * 7))


def _spread(make, note, cents, salt):
    """A voice in the middle and two slightly detuned ones at the sides."""
    start = _chance(note, salt).uniform(0, 2 * np.pi, 3)
    low, middle, high = (make(frequency(note) * 2 ** (c / 1200), s) for c, s in zip((-cents, 0, cents), start))
    return np.array([0.7 * middle + low, 0.7 * middle + high]) * 0.5


@functools.lru_cache(maxsize=None)
def pad(note, length):
    """Warm strings of detuned saws through a slowly moving filter."""
    time = seconds(length + 0.7)
    cut = 650 + 1300 * np.sin(np.pi * np.clip(time / (length + 0.7), 0, 1)) ** 2
    tone = _spread(lambda pitch, start: saw(pitch, time, cut, 0, start), note, 8, 1)
    return tone * swell(time, min(0.4, length / 3), 0.75)


@functools.lru_cache(maxsize=None)
def wide(note, length):
    """Bright saws, wider apart, with an immediate attack."""
    time = seconds(length + 0.3)
    cut = 1400 + 2400 * np.exp(-time / 0.5)
    return _spread(lambda pitch, start: saw(pitch, time, cut, 0.3, start), note, 13, 2) * swell(time, 0.03, 0.3)


@functools.lru_cache(maxsize=None)
def choir(note, length):
    """Voices on a dark "ah": the partials near its formants are stronger."""
    time = seconds(length + 0.9)
    def voice(pitch, start):
        sway = 1 + 0.004 * np.sin(2 * np.pi * 4.7 * time + start) * np.clip(time / 0.6, 0, 1)
        gains = []
        for number in range(1, int(3600 / pitch) + 1):
            place = number * pitch
            formants = sum(level * np.exp(-((place - centre) / width) ** 2)
                           for level, centre, width in ((1, 560, 170), (0.55, 950, 200), (0.16, 2500, 400)))
            gains.append((0.05 + formants) / number**0.5)
        return partials(phase(pitch * sway) + start, gains)
    breath = band(noise(len(time), 51), 700, 3200) * 0.015
    return 1.6 * (_spread(voice, note, 9, 3) + breath) * swell(time, min(0.6, length / 3), 0.9)


@functools.lru_cache(maxsize=None)
def strings(note, length):
    """Bowed, with a swell in every note."""
    time = seconds(length + 0.35)
    sway = 1 + 0.0045 * np.sin(2 * np.pi * 5.3 * time) * np.clip((time - 0.2) / 0.4, 0, 1)
    cut = 900 + 1600 * swell(time, min(0.35, length / 2), 0.4)
    tone = _spread(lambda pitch, start: saw(pitch * sway, time, cut, 0.2, start), note, 6, 4)
    return tone * swell(time, min(0.16, length / 3), 0.35)


@functools.lru_cache(maxsize=None)
def synth_bass(note, length):
    """A saw whose filter snaps shut, over a sine at the same pitch."""
    time = seconds(length + 0.05)
    pitch = frequency(note)
    tone = 0.55 * saw(pitch, time, 220 + 2000 * np.exp(-time / 0.07), 0.9)
    tone += 0.8 * np.sin(2 * np.pi * pitch * time)
    return np.tanh(1.2 * tone) * strike(time, 0.004, 0.8) * swell(time, 0.003, 0.04)


@functools.lru_cache(maxsize=None)
def growl_bass(note, length):
    """Two dark saws that beat against each other."""
    time = seconds(length + 0.1)
    pitch = frequency(note)
    cut = 260 + 340 * (0.5 - 0.5 * np.cos(2 * np.pi * time / max(length, 0.4)))
    tone = saw(pitch * 0.996, time, cut, 0.6) + saw(pitch * 1.004, time, cut, 0.6, 1.0)
    return np.tanh(0.7 * tone + 0.6 * np.sin(2 * np.pi * pitch * time)) * swell(time, 0.02, 0.1)


@functools.lru_cache(maxsize=None)
def double_bass(note, length):
    """Plucked with the finger: round, with an initial thud."""
    time = seconds(length + 0.12)
    pitch = frequency(note) * (1 + 0.006 * np.exp(-time / 0.03))
    levels = (1, 0.6, 0.32, 0.2, 0.1, 0.06)
    gains = [np.exp(-time * number / 0.75) * level for number, level in enumerate(levels, start=1)]
    thud = band(noise(len(time), 52), 80, 900) * np.exp(-time / 0.018)
    return (partials(phase(pitch), gains) + 0.5 * thud) * swell(time, 0.005, 0.1)


@functools.lru_cache(maxsize=None)
def pluck(note, length, bright=1.0):
    """A short saw whose filter closes quickly, for arpeggios."""
    time = seconds(max(length, 0.12) + 0.22)
    pitch = frequency(note)
    cut = pitch + (500 + 3800 * bright) * np.exp(-time / (0.05 + 0.05 * bright))
    tone = _spread(lambda p, start: saw(p, time, cut, 0.5, start), note, 5, 5)
    return tone * strike(time, 0.003, 0.16) * swell(time, 0.002, 0.15)


@functools.lru_cache(maxsize=None)
def soft_pluck(note, length):
    return pluck(note, length, 0.25)


def _struck(note, length, ratios, decays, levels, attack=0.002):
    time = seconds(length)
    pitch = frequency(note)
    tone = sum(level * np.sin(2 * np.pi * pitch * ratio * time) * np.exp(-time / decay)
               for ratio, decay, level in zip(ratios, decays, levels) if pitch * ratio < 15000)
    return tone * swell(time, attack, 0.2)


@functools.lru_cache(maxsize=None)
def bell(note, length):
    """Glass with a metallic part."""
    time = seconds(max(length, 0.8) + 0.9)
    pitch = frequency(note)
    ring = 1.3 * np.exp(-time / 0.4) * np.sin(2 * np.pi * 3.5 * pitch * time)
    tone = np.sin(2 * np.pi * pitch * time + ring) + 0.3 * np.sin(2 * np.pi * 2.003 * pitch * time)
    return tone * strike(time, 0.003, 0.6) * swell(time, 0.002, 0.3)


@functools.lru_cache(maxsize=None)
def music_box(note, length):
    decays, levels = (0.8, 0.45, 0.2, 0.1, 0.04), (1, 0.3, 0.25, 0.2, 0.1)
    return _struck(note, max(length, 0.6) + 0.9, (1, 2.0, 3.01, 5.4, 8.9), decays, levels)


@functools.lru_cache(maxsize=None)
def marimba(note, length):
    return _struck(note, max(length, 0.3) + 0.35, (1, 3.98, 9.2), (0.28, 0.1, 0.03), (1, 0.3, 0.12))


@functools.lru_cache(maxsize=None)
def vibraphone(note, length):
    """Struck metal with a motor that makes it swell from side to side."""
    tone = _struck(note, length + 0.9, (1, 4.0, 10.1), (1.1, 0.35, 0.06), (1, 0.22, 0.1), 0.003)
    turn = 0.35 * np.sin(2 * np.pi * 5.2 * seconds(length + 0.9)[:len(tone)])
    return np.array([tone * (1 + turn), tone * (1 - turn)])


@functools.lru_cache(maxsize=None)
def harp(note, length):
    """A string plucked near its end: each partial dies faster than the one below."""
    time = seconds(max(length, 0.5) + 0.9)
    pitch = frequency(note)
    gains = [np.sin(np.pi * number * 0.22) / number**1.2 * np.exp(-time * (0.8 + 0.9 * number) * (pitch / 330) ** 0.35)
             if number * pitch < 12000 else 0 for number in range(1, 16)]
    return 1.4 * partials(2 * np.pi * pitch * time, gains) * swell(time, 0.002, 0.3)


@functools.lru_cache(maxsize=None)
def keys(note, length):
    """An electric piano: a tine that barks and then sings."""
    time = seconds(length + 0.3)
    pitch = frequency(note)
    tine = (1.1 * np.exp(-time / 0.22) + 0.15) * np.sin(2 * np.pi * pitch * time)
    hammer = 0.22 * np.exp(-time / 0.025) * np.sin(2 * np.pi * 7 * pitch * time)
    tone = (np.sin(2 * np.pi * pitch * time + tine) + hammer) * strike(time, 0.003, 0.9) * swell(time, 0.003, 0.22)
    sway = 0.25 * np.sin(2 * np.pi * 4.1 * time)
    return np.array([tone * (1 + sway), tone * (1 - sway)])


@functools.lru_cache(maxsize=None)
def lead(note, length, before=None):
    """A singing voice: saw and hollow square, gliding from the previous note, with a late vibrato."""
    time = seconds(length + 0.14)
    glide = 0 if before is None else (before - note) * np.exp(-time / 0.022)
    vibrato = 0.16 * np.sin(2 * np.pi * 5.6 * time) * np.clip((time - 0.2) / 0.3, 0, 1)
    pitch = frequency(note + glide + vibrato)
    cut = 1500 + 2200 * np.exp(-time / 0.25) + pitch
    def voice(factor, start):
        return saw(pitch * factor, time, cut, 0.5, start) + 0.5 * saw(pitch * factor, time, cut, 0, start, odd=True)
    tone = np.array([voice(0.9975, 0.3) + voice(1.0, 1.1), voice(1.0, 1.1) + voice(1.0025, 2.0)])
    return 0.4 * tone * swell(time, 0.015, min(0.16, length / 2))


@functools.lru_cache(maxsize=None)
def flute(note, length, before=None):
    """A pipe with breath in it."""
    time = seconds(length + 0.12)
    glide = 0 if before is None else (before - note) * np.exp(-time / 0.015)
    rise = np.clip((time - 0.18) / 0.35, 0, 1)
    vibrato = np.sin(2 * np.pi * 5.1 * time) * rise
    pitch = frequency(note + glide + 0.1 * vibrato)
    chiff = np.exp(-time / 0.05)
    tone = partials(phase(pitch), [1, 0.3 + 0.1 * vibrato, 0.12 + 0.2 * chiff, 0.05, 0.02])
    breath = moving_band(noise(len(time), 53), 2 * pitch, 0.8) * (0.2 + 0.9 * chiff)
    return (tone * (1 + 0.14 * vibrato) + breath) * swell(time, 0.045, min(0.14, length / 2))


@functools.lru_cache(maxsize=None)
def brass(note, length):
    """Short and proud: the filter opens with the breath."""
    time = seconds(length + 0.1)
    cut = frequency(note) + 3200 * np.minimum(time / 0.04, 1) * (0.35 + 0.65 * np.exp(-time / 0.15))
    fall = -0.35 * np.exp(-time / 0.018)
    def voice(pitch, start):
        return saw(pitch * 2 ** (fall / 12), time, cut, 0.4, start)
    return _spread(voice, note, 7, 6) * swell(time, 0.012, 0.1)
