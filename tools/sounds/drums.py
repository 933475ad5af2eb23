"""The drums. Each function makes one stroke, mono or stereo (two rows), with a level of about 1."""

import functools

import numpy as np

from sounds.synth import band, moving_band, noise, phase, seconds, strike, sweep, swell


def _metal(time, low, seed):
    """Six inharmonic square tones with some noise, the basis of cymbals."""
    tone = sum(np.sign(np.sin(2 * np.pi * pitch * time + seed * number))
               for number, pitch in enumerate((205.3, 304.4, 369.6, 522.7, 540.0, 800.0)))
    return band(tone / 3 + 0.8 * noise(len(time), seed), low, 13500, 8)


def kick():
    """A drum skin with the beater's click."""
    time = seconds(0.34)
    tone = np.sin(phase(49 + 190 * np.exp(-time / 0.022))) * strike(time, 0.002, 0.13)
    click = band(noise(len(time), 60), 1500, 6000) * np.exp(-time / 0.004)
    return np.tanh(1.8 * tone + 0.35 * click) * swell(time, 0.001, 0.1)


def soft_kick():
    time = seconds(0.4)
    return np.sin(phase(44 + 70 * np.exp(-time / 0.03))) * strike(time, 0.005, 0.16) * swell(time, 0.002, 0.12)


def snare():
    time = seconds(0.3)
    bend = 1 + 0.35 * np.exp(-time / 0.012)
    skin = np.sin(phase(182 * bend)) * np.exp(-time / 0.07) + 0.6 * np.sin(phase(331 * bend)) * np.exp(-time / 0.045)
    rattle = band(noise(len(time), 61), 1400, 9500) * (0.7 * np.exp(-time / 0.09) + 0.8 * np.exp(-time / 0.012))
    return np.tanh(1.1 * skin + 1.3 * rattle) * swell(time, 0.001, 0.1)


def clap():
    """Several hands, not quite together, on both sides."""
    time = seconds(0.3)
    sides = []
    for seed, shift in ((62, 0.0), (63, 0.0025)):
        shape = 0.7 * np.exp(-np.maximum(time - 0.032, 0) / 0.075) * (time > 0.032)
        for start in (0, 0.011, 0.021, 0.032):
            late = time - start - shift
            shape = shape + np.where(late > 0, np.exp(-late / 0.006), 0)
        sides.append(band(noise(len(time), seed), 850, 5200) * shape)
    return np.array(sides) * swell(time, 0.001, 0.1)


def hat():
    time = seconds(0.09)
    return _metal(time, 6500, 64) * strike(time, 0.0008, 0.022) * swell(time, 0.0005, 0.03)


def open_hat():
    time = seconds(0.36)
    return _metal(time, 6000, 65) * strike(time, 0.001, 0.13) * swell(time, 0.0005, 0.1)


def ride():
    time = seconds(0.9)
    ping = sum(np.sin(2 * np.pi * pitch * time) for pitch in (2790, 3410, 4230)) * np.exp(-time / 0.03)
    metal = _metal(time, 5000, 66) * (0.35 * np.exp(-time / 0.3) + np.exp(-time / 0.02))
    return (0.7 * metal + 0.12 * ping) * swell(time, 0.001, 0.3)


def crash():
    time = seconds(2.2)
    shape = strike(time, 0.002, 0.5) * swell(time, 0.001, 0.8)
    return np.array([_metal(time, 3200, 67), _metal(time, 3300, 68)]) * shape


def shaker():
    time = seconds(0.12)
    return band(noise(len(time), 69), 3800, 10500) * swell(time, 0.035, 0.07)


def rim():
    time = seconds(0.09)
    tone = np.sin(2 * np.pi * 1720 * time) + 0.6 * np.sin(2 * np.pi * 910 * time)
    return tone * strike(time, 0.001, 0.013) * swell(time, 0.0005, 0.02)


def snap():
    """Two fingers."""
    time = seconds(0.16)
    shape = (np.exp(-time / 0.012) + 0.25 * np.exp(-time / 0.05)) * swell(time, 0.001, 0.05)
    return band(noise(len(time), 70), 1300, 3600) * shape


def _tom(pitch, decay):
    time = seconds(4 * decay)
    skin = np.sin(phase(pitch * (1 + 0.6 * np.exp(-time / 0.03)))) * strike(time, 0.003, decay)
    stick = band(noise(len(time), 71), 200, 2600) * np.exp(-time / 0.012)
    return (skin + 0.4 * stick) * swell(time, 0.001, decay)


def tom():
    return _tom(118, 0.16)


def low_tom():
    return _tom(78, 0.22)


def taiko():
    """A large, very deep skin."""
    time = seconds(1.1)
    skin = np.sin(phase(56 * (1 + 0.5 * np.exp(-time / 0.04))))
    skin += 0.4 * np.sin(phase(93 * (1 + 0.3 * np.exp(-time / 0.03)))) * np.exp(-time / 0.12)
    slap = band(noise(len(time), 72), 120, 1500) * np.exp(-time / 0.03)
    return np.tanh(1.2 * skin * strike(time, 0.003, 0.26) + 0.7 * slap) * swell(time, 0.001, 0.5)


def _hand_drum(pitch, length, decay, hand):
    time = seconds(length)
    skin = np.sin(phase(pitch * (1 + 0.1 * np.exp(-time / 0.02)))) * strike(time, 0.002, decay)
    return (skin + 0.27 * band(noise(len(time), 73), 600, hand) * np.exp(-time / 0.009)) * swell(time, 0.001, 0.1)


def conga():
    return _hand_drum(215, 0.3, 0.08, 3000)


def high_conga():
    return _hand_drum(318, 0.22, 0.05, 4000)


def brush():
    """Wire over a snare drum."""
    time = seconds(0.28)
    return band(noise(len(time), 75), 1600, 8500) * swell(time, 0.05, 0.2)


def tap():
    """The same wire, struck."""
    time = seconds(0.2)
    wire = band(noise(len(time), 76), 1200, 7500) * strike(time, 0.003, 0.05)
    skin = np.sin(2 * np.pi * 195 * time) * np.exp(-time / 0.04)
    return (wire + 0.3 * skin) * swell(time, 0.002, 0.08)


def riser():
    """Air that rises for two seconds and stops, to announce a new part."""
    time = seconds(2.0)
    sides = [moving_band(noise(len(time), seed), sweep(350, 6500, time, 0.3), 1.0) for seed in (77, 78)]
    return 1.5 * np.array(sides) * (time / 2) ** 2 * swell(time, 0.1, 0.03)


KIT = {make.__name__: make for make in (kick, soft_kick, snare, clap, hat, open_hat, ride, crash, shaker, rim, snap,
                                        tom, low_tom, taiko, conga, high_conga, brush, tap, riser)}
# Level and position, from -1 left to 1 right.
LEVELS = {"kick": 0.85, "soft_kick": 0.9, "snare": 0.5, "clap": 0.55, "hat": 0.2, "open_hat": 0.17, "ride": 0.2,
          "crash": 0.22, "shaker": 0.22, "rim": 0.25, "snap": 0.6, "tom": 0.5, "low_tom": 0.6, "taiko": 0.9,
          "conga": 0.34, "high_conga": 0.28, "brush": 0.22, "tap": 0.3, "riser": 0.25}
SIDES = {"hat": 0.25, "open_hat": 0.25, "ride": -0.35, "shaker": -0.35, "rim": -0.25, "tom": 0.3, "low_tom": -0.3,
         "conga": 0.4, "high_conga": 0.15, "brush": 0.2, "tap": -0.1, "snap": 0.1}


@functools.lru_cache(maxsize=None)
def stroke(name):
    return KIT[name]() * LEVELS[name]
