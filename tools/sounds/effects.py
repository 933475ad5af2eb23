"""The nine effects. Each is to be known by its shape at once: what falls, what rises, what hums, what bangs."""

import numpy as np

from sounds.synth import (RATE, band, faded, harmonics, loudness, noise, phase, rounded_off, seconds, strike, sweep,
                          swell)

LOUDNESS = 0.16  # of each, as heard
CEILING = 0.8


def mixed(length, *layers):
    """Layers of (start in seconds, samples) in one sound."""
    result = np.zeros(int(round(length * RATE)))
    for start, samples in layers:
        first = int(round(start * RATE))
        count = min(len(samples), len(result) - first)
        result[first:first + count] += samples[:count]
    return result


def capture():
    """A net that closes: a rush of air upwards, then a bright falling figure over a soft thump."""
    time = seconds(0.14)
    rush = band(noise(len(time), 11), 900, 5000) * (0.3 + 0.7 * time / time[-1]) * swell(time, 0.02, 0.03)
    tones = []
    for step, frequency in enumerate((1174.7, 880.0, 587.3)):
        time = seconds(0.3)
        tone = harmonics(frequency, (1, 0.35, 0.12), time) * strike(time, 0.004, 0.09)
        tones.append((0.1 + 0.085 * step, 0.5 * tone))
    time = seconds(0.35)
    thump = np.sin(phase(sweep(190, 60, time))) * strike(time, 0.004, 0.1)
    return mixed(0.66, (0, 0.5 * rush), *tones, (0.27, 0.7 * thump))


def bounce():
    """Rubber: a short tone that jumps up and wobbles."""
    time = seconds(0.26)
    frequency = sweep(170, 430, time, 7) * (1 + 0.06 * np.sin(2 * np.pi * 21 * time) * np.exp(-time / 0.1))
    tone = np.sin(phase(frequency)) + 0.3 * np.sin(2 * phase(frequency)) + 0.1 * np.sin(3 * phase(frequency))
    return tone * strike(time, 0.004, 0.075)


def error():
    """Two low notes downwards, reedy: no."""
    def reed(frequency, length):
        time = seconds(length)
        tone = harmonics(frequency, [1 / n if n % 2 else 0.15 / n for n in range(1, 12)], time)
        return tone * swell(time, 0.012, 0.05)
    return mixed(0.44, (0, reed(233.1, 0.16)), (0.18, reed(174.6, 0.26)))


def shield():
    """A warm chord that opens upwards and shimmers."""
    layers = []
    for step, frequency in enumerate((261.6, 392.0, 523.3, 659.3, 880.0)):
        time = seconds(1.15 - 0.07 * step)
        shimmer = 1 + 0.25 * np.sin(2 * np.pi * (5.3 + step) * time)
        tone = harmonics(frequency, (1, 0.3, 0.15, 0.05), time) + harmonics(frequency * 1.004, (0.6, 0.2), time)
        layers.append((0.07 * step, tone * shimmer * swell(time, 0.09, 0.65)))
    return mixed(1.2, *layers)


def turbo():
    """An engine that leaps up, in a rush of air."""
    time = seconds(0.95)
    frequency = sweep(85, 340, time, 1.6)
    engine = sum(np.sin(n * phase(frequency)) / n for n in range(1, 9))
    growl = 1 + 0.35 * np.sin(phase(frequency / 4))
    air = noise(len(time), 12)
    rush = sum(band(air, low, low * 2.2) * np.exp(-((time / time[-1] - place) / 0.22) ** 2)
               for low, place in ((350, 0.15), (800, 0.4), (1800, 0.65), (3500, 0.85)))
    return (0.45 * engine * growl + 1.1 * rush) * swell(time, 0.05, 0.3)


def charged_tail():
    """Electricity: a hum that crackles."""
    time = seconds(0.95)
    hum = harmonics(110, [1 / n for n in range(1, 20)], time) * (0.6 + 0.4 * np.sign(np.sin(2 * np.pi * 27.5 * time)))
    hum = band(hum, 200, 4500)
    sparks = np.zeros(len(time))
    chance = np.random.default_rng(13)
    for start in np.sort(chance.uniform(0.03, 0.8, 38)):
        spark = seconds(0.03)
        shape = band(chance.uniform(-1, 1, len(spark)), 1200, 4500) * strike(spark, 0.002, 0.007)
        first = int(start * RATE)
        sparks[first:first + len(shape)] += shape * chance.uniform(0.5, 1.4)
    return (0.6 * hum + 0.9 * sparks) * swell(time, 0.04, 0.3)


def long_tail():
    """Something is drawn out: a glide upwards that keeps pulling, with echoes."""
    def pull(low, high):
        time = seconds(0.3)
        frequency = low * (high / low) ** ((time / time[-1]) ** 1.6)
        tone = np.sin(phase(frequency) + 0.9 * np.sin(2 * phase(frequency)))
        return tone * swell(time, 0.03, 0.1)
    dry = mixed(1.15, (0, pull(220, 440)), (0.2, pull(294, 660)), (0.4, pull(392, 988)))
    echo = mixed(1.15, (0.16, dry), (0.32, 0.5 * dry))
    return dry + 0.35 * echo


def laser():
    """A beam: a tone that falls from very high, with a hiss at its beginning."""
    time = seconds(0.5)
    frequency = sweep(2600, 190, time, 3.2)
    tone = sum(np.sin(n * phase(frequency)) / n**1.5 for n in (1, 2, 3, 5))
    ring = 1 + 0.4 * np.sin(2 * np.pi * 70 * time)
    hiss = band(noise(len(time), 14), 2500, 9000) * strike(time, 0.002, 0.03)
    return tone * ring * strike(time, 0.004, 0.17) + 0.7 * hiss


def missile():
    """The pulse: a deep bang whose ring runs outwards."""
    time = seconds(1.5)
    bang = np.sin(phase(sweep(170, 38, time, 6))) * strike(time, 0.005, 0.4)
    body = band(noise(len(time), 15), 60, 900) * strike(time, 0.006, 0.28)
    frequency = sweep(900, 240, time, 3)
    ring = np.sin(phase(frequency)) * np.sin(2 * np.pi * 57 * time) * strike(time, 0.05, 0.35)
    return 0.9 * bang + 1.3 * body + 0.45 * ring


def finished(samples):
    """At the common loudness, with no peak beyond the ceiling."""
    result = faded(samples)
    result *= LOUDNESS / loudness(result)
    return rounded_off(result, CEILING)


def all_effects():
    drawn = {
        "capture": capture, "bounce": bounce, "error": error, "puShield": shield, "puTurbo": turbo,
        "puChargedTail": charged_tail, "puLongTail": long_tail, "puLaser": laser, "puMissile": missile,
    }
    for name, make in drawn.items():
        yield name, finished(make())
